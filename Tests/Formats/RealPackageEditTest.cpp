// SPDX-License-Identifier: MIT
#include "Tests/Formats/PackageEditSupport.h"
#include "Tests/Formats/TestContent.h"

#include <map>

using namespace QVFormats;
using namespace QVTest;

namespace
{
FPackageRename Reversed(const FPackageRename& Rename)
{
	FPackageRename Back{Rename.To, Rename.From, {}};
	for (const auto& [Old, New] : Rename.Objects)
	{
		Back.Objects.emplace_back(New, Old);
	}
	return Back;
}

struct FRealFile
{
	std::filesystem::path Path;
	FFile Bytes;
	/** As the header says or, where it does not, made of the file's name. */
	std::string Package;
};

/** Calls Try with all packages of the content folder that are readable; returns how many. */
template<class TTry>
int ForEachRealPackage(const TTry& Try)
{
	std::istringstream List(ReadText(ContentFolder() / "files.tsv"));
	int Count = 0;
	std::string Line;
	std::getline(List, Line);
	while (std::getline(List, Line))
	{
		FRealFile File{ContentFolder() / Line.substr(0, Line.find('\t')), {}, {}};
		File.Bytes = ToBytes(ReadText(File.Path));
		const TResult<FPackageHeader> Header = ReadPackageHeader(File.Bytes);
		if (!Header)
		{
			continue;
		}
		SCOPED_TRACE(File.Path.generic_string());
		const std::string Written = Header->Summary.PackageName.ToUtf8();
		File.Package = Written.starts_with('/') ? Written : "/Game/" + File.Path.stem().string();
		Try(File, *Header);
		++Count;
	}
	return Count;
}

FPackageRename RenameOwn(const FRealFile& File, const FPackageHeader& Header, std::string To, const std::string& Prefix)
{
	FPackageRename Rename{File.Package, std::move(To), {}};
	std::set<std::string> Known;
	for (const FPackageExport& Export : Header.Exports)
	{
		const std::string Name = Header.Names.Text(Export.ObjectName);
		if (Export.bAsset && Export.Outer.IsNull() && Known.insert(Name).second)
		{
			Rename.Objects.emplace_back(Name, Prefix + std::to_string(Known.size()) + Name.substr(Name.size() / 2));
		}
	}
	return Rename;
}

/** The first other package that is no code; empty when there is none. */
std::string FirstAssetPackage(const FPackageHeader& Header, const std::string& Own)
{
	for (const std::string& Name : DependenciesOf(Header))
	{
		if (Name.starts_with('/') && !Name.starts_with("/Script/") && Name != Own)
		{
			return Name;
		}
	}
	return {};
}
} // namespace

TEST(RealPackageEditTest, WritesWhatTheEngineWrote)
{
	if (ContentFolder().empty())
	{
		GTEST_SKIP() << "QVMAP_TEST_CONTENT is not set";
	}
	const int Count = ForEachRealPackage(
		[](const FRealFile& File, const FPackageHeader& Header)
		{
			const TResult<std::vector<std::byte>> Anew = WriteHeaderAnew(File.Bytes);
			ASSERT_TRUE(Anew) << Anew.Error().Message;
			EXPECT_TRUE(std::ranges::equal(*Anew, Header.Bytes));
		});
	EXPECT_EQ(Count, 834);
}

TEST(RealPackageEditTest, RenamesRealPackagesThereAndBack)
{
	if (ContentFolder().empty())
	{
		GTEST_SKIP() << "QVMAP_TEST_CONTENT is not set";
	}
	int Edits = 0;
	ForEachRealPackage(
		[&Edits](const FRealFile& File, const FPackageHeader& Header)
		{
			for (const auto& [To, Prefix] :
				{std::pair("/Game/A/Much/Longer/Folder/Than/Any/That/It/Had/Before/Stone", "Longer_Name_"),
					std::pair("/S/T", "S"), std::pair("/Game/Räume/Stein_12", "Größe")})
			{
				SCOPED_TRACE(To);
				const FPackageRename Rename = RenameOwn(File, Header, To, Prefix);
				const FFile There = Renamed(File.Bytes, File.Package, {Rename});
				ASSERT_NO_FATAL_FAILURE(ExpectSoundAfter(File.Bytes, There));
				const FPackageHeader After = *ReadPackageHeader(There);
				if (Header.Summary.PackageName.ToUtf8() == File.Package)
				{
					EXPECT_EQ(After.Summary.PackageName.ToUtf8(), To);
				}
				EXPECT_TRUE(Renamed(There, To, {Reversed(Rename)}) == File.Bytes);
				++Edits;
			}
		});
	EXPECT_EQ(Edits, 3 * 834);
}

TEST(RealPackageEditTest, RenamesWhatRealPackagesImport)
{
	if (ContentFolder().empty())
	{
		GTEST_SKIP() << "QVMAP_TEST_CONTENT is not set";
	}
	int Edits = 0;
	ForEachRealPackage(
		[&Edits](const FRealFile& File, const FPackageHeader& Header)
		{
			const std::string Name = FirstAssetPackage(Header, File.Package);
			if (Name.empty())
			{
				return;
			}
			const std::string Asset = Name.substr(Name.rfind('/') + 1);
			const FPackageRename Rename{Name, "/Über/All/Stone", {{Asset, "Stone"}, {Asset + "_C", "Stone_C"}}};
			const FFile There = Renamed(File.Bytes, File.Package, {Rename});
			ASSERT_NO_FATAL_FAILURE(ExpectSoundAfter(File.Bytes, There));
			std::set<std::string> Expected = DependenciesOf(Header);
			Expected.erase(Name);
			Expected.insert(Rename.To);
			EXPECT_EQ(DependenciesOf(*ReadPackageHeader(There)), Expected);
			EXPECT_TRUE(Renamed(There, File.Package, {Reversed(Rename)}) == File.Bytes);
			++Edits;
		});
	EXPECT_EQ(Edits, 660);
}
