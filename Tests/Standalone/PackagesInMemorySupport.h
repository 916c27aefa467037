// SPDX-License-Identifier: MIT
#pragma once

#include "Tests/Formats/PackageEditSupport.h"
#include "Tests/Formats/TestContent.h"
#include "Tests/Support/ContentProject.h"

namespace QVTest
{
using FLines = std::vector<std::string>;

/** A mod Cave, and content of the game that is brought into it. */
struct FPackagesInMemoryTest : FContentTest
{
	IQVPackages& Packages = *Engine.Interfaces.Packages;
	IQVAssetRegistry& Registry = *Engine.Interfaces.AssetRegistry;
	std::vector<FQVName> Copies;
	std::vector<FQVAssetReplacement> Replacements;

	FPackagesInMemoryTest() { Project.AddMod("Cave", {}); }

	FQVAssetData AssetOf(const char* Package)
	{
		std::vector<FQVAssetData> Assets;
		Registry.GetAssetsByPackageName(FQVName(Package), Assets);
		return Assets.empty() ? FQVAssetData{FQVName(Package), FQVName("None here"), {}, {}} : Assets.back();
	}
	bool Duplicate(const char* From, const char* To)
	{
		Copies.emplace_back(To);
		Replacements.push_back({AssetOf(From), FQVName(To), {}});
		return Packages.CreatePackage(FQVName(To)) && Packages.DuplicateAsset(AssetOf(From), FQVName(To));
	}
	bool Save(const char* Package, const char* Extension = ".uasset")
	{
		return Packages.SavePackage(FQVName(Package), Project.At(FileOf(Package, Extension)),
				   std::string_view(Extension) == ".umap") == EQVSaveResult::Success;
	}
	std::string Dirty()
	{
		std::vector<FQVName> Names;
		Packages.GetDirtyPackages(Names);
		return Join(Names, " ");
	}
	/** `hard /Cave/Rock, soft /Game/Moss`, without code. */
	std::string Dependencies(const char* Package)
	{
		std::vector<FQVPackageDependency> Found;
		Registry.GetDependencies(FQVName(Package), EQVDependencyQuery::All, Found);
		FLines Texts;
		for (const FQVPackageDependency& Each : Found)
		{
			if (!Each.Package.ToView().starts_with("/Script/"))
			{
				Texts.push_back((Each.bHard ? "hard " : "soft ") + Each.Package.ToString());
			}
		}
		std::sort(Texts.begin(), Texts.end());
		return FQVString::Join(Texts, ", ");
	}
	/** The engine's complaints, masked: "Error: text". */
	FLines Said()
	{
		FLines Lines;
		for (const FLogLine& Line : Recording.Take())
		{
			if (Line.Verbosity <= EQVLogVerbosity::Warning)
			{
				Lines.push_back(std::string(FQVLog::Word(Line.Verbosity)) + ": " + Project.Mask(Line.Text));
			}
		}
		return Lines;
	}
	void PutBytes(const char* Package, const FFile& Bytes)
	{
		Project.Write(FileOf(Package), {reinterpret_cast<const char*>(Bytes.data()), Bytes.size()});
	}
	FFile Bytes(const std::string& File) const { return ToBytes(Project.Read(File)); }
};
} // namespace QVTest
