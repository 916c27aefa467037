// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVPrintf.h"
#include "Standalone/Formats/Package/PackageHeader.h"
#include "Tests/Formats/TestContent.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <set>

namespace QVTest
{
/**
 * What a map's file says of itself, found without the reader of levels: from the tables alone, from the ends of the
 * functions, and from bytes that can be searched for.
 */
class FMapFacts
{
public:
	explicit FMapFacts(const std::filesystem::path& File)
		: Bytes(ToBytes(ReadText(File)))
		, Text(ReadText(File))
		, Header(QVFormats::ReadPackageHeader(Bytes))
	{
	}
	FMapFacts(const FMapFacts&) = delete; // the tables look into the bytes
	FMapFacts& operator=(const FMapFacts&) = delete;

	bool HasWorld() const { return Header && !ExportsOf("World").empty(); }
	/** A tag of the registry, as a string in the file with its length in front. */
	bool HasTag(const std::string& Tag) const
	{
		const std::string One("\x02\0\0\0"
							  "1\0",
			6);
		return Text.find(Tag + std::string(1, '\0') + One) != std::string::npos;
	}
	std::size_t Count(std::string_view Class) const { return Header ? ExportsOf(Class).size() : 0; }

	/** All that lies in the level and is no part of its making. */
	std::size_t CountActors() const
	{
		static const std::set<std::string> NoActors = {"Model", "Polys", "LevelScriptBlueprint", "ModelComponent",
			"ObjectRedirector", "RecastNavMeshDataChunk", "NavDataChunk", "CubeBuilder", "EditorActorFolders"};
		return static_cast<std::size_t>(std::count_if(Header->Exports.begin(), Header->Exports.end(),
			[this](const QVFormats::FPackageExport& Each)
			{ return InLevel(Each) && !NoActors.contains(ClassNameOf(Each)); }));
	}
	/** A file of one actor: something in it lies in the level of a map. A file that was left behind holds nothing. */
	bool HoldsActor() const
	{
		return std::any_of(Header->Exports.begin(), Header->Exports.end(),
			[this](const QVFormats::FPackageExport& Each)
			{
				return Each.Outer.IsImport() &&
					   Header->Names.Text(Header->Imports[Each.Outer.ToImport()].ObjectName) == "PersistentLevel";
			});
	}
	/** `Level Blueprint has executable code in function 'ReceiveBeginPlay' (22 bytes)` */
	std::multiset<std::string> ScriptViolations() const
	{
		std::multiset<std::string> Found;
		for (const std::size_t Index : ExportsOf("Function"))
		{
			const QVFormats::FPackageExport& Export = Header->Exports[Index];
			if (IsOfLevelScript(Export.Outer))
			{
				Found.insert(QVPrintf("Level Blueprint has executable code in function '%s' (%d bytes)",
					Header->Names.Text(Export.ObjectName), ScriptBytes(Export)));
			}
		}
		return Found;
	}
	std::vector<std::string> SoftPackages() const
	{
		std::vector<std::string> Packages;
		for (const QVFormats::FPackageSoftPath& Path : Header->SoftObjectPaths)
		{
			Packages.push_back(Header->Names.Text(Path.Package));
		}
		return Packages;
	}

private:
	const std::vector<std::byte> Bytes;
	const std::string Text;
	const QVFormats::TResult<QVFormats::FPackageHeader> Header;

	std::string ClassNameOf(const QVFormats::FPackageExport& Export) const
	{
		const QVFormats::FPackageIndex Class = Export.Class;
		return Class.IsImport()	  ? Header->Names.Text(Header->Imports[Class.ToImport()].ObjectName)
			   : Class.IsExport() ? Header->Names.Text(Header->Exports[Class.ToExport()].ObjectName)
								  : std::string();
	}
	std::vector<std::size_t> ExportsOf(std::string_view Class) const
	{
		std::vector<std::size_t> Found;
		for (std::size_t Index = 0; Index < Header->Exports.size(); ++Index)
		{
			if (ClassNameOf(Header->Exports[Index]) == Class)
			{
				Found.push_back(Index);
			}
		}
		return Found;
	}
	/** The class that an actor in the level is of, in the same file. */
	bool IsOfLevelScript(QVFormats::FPackageIndex Class) const
	{
		return Class.IsExport() &&
			   std::any_of(Header->Exports.begin(), Header->Exports.end(),
				   [&](const QVFormats::FPackageExport& Each)
				   { return Each.Class == Class && ClassNameOf(Each).ends_with("_C") && InLevel(Each); });
	}
	bool InLevel(const QVFormats::FPackageExport& Export) const
	{
		const std::vector<std::size_t> Levels = ExportsOf("Level");
		return Export.Outer.IsExport() && !Levels.empty() && Export.Outer.ToExport() == Levels[0];
	}
	std::int32_t I32At(std::size_t At) const
	{
		std::int32_t Value = 0;
		std::memcpy(&Value, Bytes.data() + At, sizeof(Value));
		return Value;
	}
	/**
	 * From behind: flags, event graph and offset are the last twelve bytes; the script before them ends in 0x53, and
	 * in front of it stands how long it is here, and before that how long it is in memory.
	 */
	std::int32_t ScriptBytes(const QVFormats::FPackageExport& Export) const
	{
		const std::size_t End = static_cast<std::size_t>(Export.SerialOffset + Export.SerialSize) - 12;
		const auto Longest = static_cast<std::int32_t>(Export.SerialSize) - 20;
		for (std::int32_t Size = 1; Size < Longest; ++Size)
		{
			const std::size_t Begin = End - static_cast<std::size_t>(Size);
			if (Bytes[End - 1] == std::byte{0x53} && I32At(Begin - 4) == Size && I32At(Begin - 8) > 0)
			{
				return I32At(Begin - 8);
			}
		}
		ADD_FAILURE() << "no script in " << Header->Names.Text(Export.ObjectName);
		return 0;
	}
};
} // namespace QVTest
