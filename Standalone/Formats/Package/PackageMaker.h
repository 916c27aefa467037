// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/ImportList.h"
#include "Standalone/Formats/Package/LevelPackages.h"
#include "Standalone/Formats/Package/ObjectWriter.h"

namespace QVFormats
{
/** A package in the making and its imports. */
class FPackageMaker
{
protected:
	static constexpr std::uint32_t AssetFlags = 0xB; // public, standalone, transactional
	static constexpr std::uint32_t InnerFlags = 0x8; // transactional

	FPackageSpec Package;
	FImportList Imports{Package};

	explicit FPackageMaker(const std::string& PackageName)
	{
		Package.PackageName = PackageName;
		Package.DataNames = {"None"};
	}

	/** `Hall` of `/Cave/Maps/Hall`. */
	static std::string LastPart(const std::string& Path) { return Path.substr(Path.rfind('/') + 1); }

	FPackageIndex Add(FPackageIndex Class, FPackageIndex Outer, const std::string& Name)
	{
		FExportSpec Export;
		Export.Class = Class;
		Export.Outer = Outer;
		Export.ObjectName = Name;
		Export.ObjectFlags = InnerFlags;
		Package.Exports.push_back(std::move(Export));
		return FPackageIndex::Export(Package.Exports.size() - 1);
	}
	FExportSpec& At(FPackageIndex Index) { return Package.Exports[Index.ToExport()]; }

	void MakeAsset(FPackageIndex Index, const std::string& ObjectPath, const std::string& ClassPath)
	{
		At(Index).ObjectFlags = AssetFlags;
		At(Index).bAsset = true;
		Package.Assets.push_back({ObjectPath, ClassPath, {}});
	}
	template<class TWrite>
	void Write(FPackageIndex Index, TWrite WriteRest)
	{
		FObjectWriter Writer(Package);
		WriteRest(Writer);
		At(Index).Data = Writer.Out.Release();
	}
	void WriteActor(FPackageIndex Index, const FActorSpec& Actor)
	{
		At(Index).bEditorOnly = Actor.bEditorOnly;
		Write(Index,
			[&](FObjectWriter& To)
			{
				To.Bool("bIsEditorOnlyActor", Actor.bMarkedEditorOnly);
				To.Enum(Actor.EnumProperty, Actor.EnumValue);
				To.EndProperties(At(Index));
				To.Out.I32(0); // every actor of the engine's own files ends with it
			});
	}
	/** What a class has behind its children. */
	void EndClass(FObjectWriter& To)
	{
		To.Out.Zeros(3 * sizeof(std::int32_t)); // properties, script
		To.Indices({});							// function map
		To.Out.Zeros(2 * sizeof(std::int32_t)); // flags, within
		To.Name("None");						// configuration
		To.Out.Zeros(3 * sizeof(std::int32_t)); // made by, interfaces, bool
		To.Name("None");
		To.Out.Zeros(2 * sizeof(std::int32_t)); // cooked, default object
	}
};
} // namespace QVFormats
