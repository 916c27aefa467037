// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/HeaderUses.h"
#include "Standalone/Formats/Package/PackageDependencies.h"
#include "Standalone/Formats/Package/PackageEditor.h"
#include "Standalone/Formats/Package/PackageSections.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace QVTest
{
using namespace QVFormats;

using FFile = std::vector<std::byte>;

inline FFile Joined(FBytes Old, const FPackageEdit& Edit)
{
	FFile File = Edit.Header;
	const FBytes Rest = Old.subspan(Edit.OldHeaderBytes);
	File.insert(File.end(), Rest.begin(), Rest.end());
	return File;
}

inline FFile Renamed(FBytes File, std::string_view PackageName, const std::vector<FPackageRename>& Renames)
{
	const TResult<FPackageEdit> Edit = RenameInPackage(File, PackageName, Renames);
	EXPECT_TRUE(Edit) << (Edit ? "" : Edit.Error().Message);
	return Edit ? Joined(File, *Edit) : FFile();
}

/** What an edit must not break: sections end to end, exports' data where their offsets say, the trailer likewise. */
inline void ExpectSoundAfter(FBytes Old, FBytes New)
{
	const FPackageHeader Before = *ReadPackageHeader(Old);
	const TResult<FPackageHeader> After = ReadPackageHeader(New);
	ASSERT_TRUE(After) << After.Error().Message;
	const TResult<std::vector<FPackageSection>> Sections = LocateSections(*After);
	ASSERT_TRUE(Sections) << Sections.Error().Message;
	std::size_t End = 0;
	for (const FPackageSection& Section : *Sections)
	{
		ASSERT_EQ(Section.Begin, End) << "section " << static_cast<int>(Section.Kind);
		End = Section.End;
	}
	ASSERT_EQ(End, After->Bytes.size());
	const auto Growth = static_cast<std::int64_t>(New.size()) - static_cast<std::int64_t>(Old.size());
	ASSERT_EQ(After->Exports.size(), Before.Exports.size());
	for (std::size_t Index = 0; Index < Before.Exports.size(); ++Index)
	{
		ASSERT_EQ(After->Exports[Index].SerialOffset, Before.Exports[Index].SerialOffset + Growth) << Index;
	}
	EXPECT_EQ(After->Summary.BulkDataStart, Before.Summary.BulkDataStart + Growth);
	EXPECT_TRUE(std::ranges::equal(Old.subspan(Before.Bytes.size()), New.subspan(After->Bytes.size())));
	const std::int64_t Trailer = Before.Summary.PayloadTocOffset;
	EXPECT_EQ(After->Summary.PayloadTocOffset, Trailer > 0 ? Trailer + Growth : Trailer);
	FByteReader Reader(New);
	Reader.Seek(After->Summary.Names.Offset);
	for (std::int32_t Left = After->Summary.Names.Count; Left > 0; --Left)
	{
		const FStringView Name = Reader.String();
		ASSERT_EQ(Reader.Read<FNameHashes>(), ComputeNameHashes(Name)) << Name.ToUtf8();
	}
}

/** The text of every name field of the header. */
inline std::vector<std::string> NamesIn(FBytes File)
{
	const FPackageHeader Header = *ReadPackageHeader(File);
	std::vector<std::string> Names;
	const std::vector<FNameUse> Uses = *LocateNames(Header);
	for (const FNameUse& Use : Uses)
	{
		Names.push_back(Header.Names.Text(Use.Name));
	}
	return Names;
}

inline std::set<std::string> DependenciesOf(const FPackageHeader& Header)
{
	std::set<std::string> Packages;
	for (const FPackageDependency& Each : PackageDependencies(Header))
	{
		Packages.insert(Header.Names.Text(Each.Package));
	}
	return Packages;
}
} // namespace QVTest
