// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Engine/Interrupt.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Engine/StandaloneEngine.h"
#include "Standalone/Formats/Package/SamplePackages.h"
#include "Tests/Support/RecordingLog.h"
#include "Tests/Support/TestProject.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace QVTest
{
using FTexts = std::vector<std::string>;

/** The engine over a project from one start to the next. */
struct FRegistrySession
{
	const FTestProject& Project;
	QVStandalone::FStandaloneEngine Engine{Project.ProjectFile(), Project.EngineDir()};
	QVStandalone::FAssetRegistry& Registry = Engine.GetAssetRegistry();

	explicit FRegistrySession(const FTestProject& InProject)
		: Project(InProject)
	{
		Registry.StartScan();
		Registry.FinishScan();
	}

	/** `/Cave/Maps/Hall.Hall World` */
	FTexts Assets(const std::string& Folder, const char* Class = "") const
	{
		std::vector<FQVAssetData> Found;
		Registry.GetAssets({Folder, FQVName(Class)}, Found);
		FTexts Texts;
		for (const FQVAssetData& Each : Found)
		{
			Texts.push_back(Each.GetObjectPath() + " " + std::string(Each.GetClassName()));
		}
		return Texts;
	}
	/** `hard game /Cave/M`, without code packages. */
	FTexts Dependencies(const char* Package, EQVDependencyQuery Query = EQVDependencyQuery::All) const
	{
		std::vector<FQVPackageDependency> Found;
		Registry.GetDependencies(FQVName(Package), Query, Found);
		FTexts Texts;
		for (const FQVPackageDependency& Each : Found)
		{
			if (!Each.Package.ToView().starts_with("/Script/"))
			{
				Texts.push_back(std::string(Each.bHard ? "hard " : "soft ") + (Each.bUsedInGame ? "game " : "editor ") +
								Each.Package.ToString());
			}
		}
		std::sort(Texts.begin(), Texts.end());
		return Texts;
	}
	FTexts Referencers(const char* Package) const
	{
		std::vector<FQVName> Found;
		Registry.GetReferencers(FQVName(Package), Found);
		FTexts Texts;
		for (const FQVName Each : Found)
		{
			Texts.push_back(Each.ToString());
		}
		return Texts;
	}
	/** `<Project>/Content/X.uasset is empty ...` */
	FTexts Unreadable() const
	{
		FTexts Texts;
		for (const QVStandalone::FUnreadablePackage& Each : Registry.GetUnreadable())
		{
			Texts.push_back(Project.Mask(Each.File + " " + Each.Reason));
		}
		return Texts;
	}
	std::int64_t Size(const char* Package) const { return Registry.GetPackageSize(FQVName(Package)).value_or(-1); }
};

struct FRegistryTest : testing::Test
{
	FTestProject Project;
	FRecordingLog Log;

	static std::string Text(const std::vector<std::byte>& Bytes)
	{
		return {reinterpret_cast<const char*>(Bytes.data()), Bytes.size()};
	}
	void PutWorld(std::string_view File, const QVFormats::FWorldPackageSpec& Spec) const
	{
		Project.Write(File, Text(QVFormats::BuildWorldPackage(Spec)));
	}
	void PutMesh(std::string_view File, const std::string& Package, std::size_t PayloadBytes = 10) const
	{
		Project.Write(
			File, Text(QVFormats::BuildAssetPackage({Package, "/Script/Engine.StaticMesh", {}, {}, PayloadBytes, 1})));
	}
	void PutPlugin(const std::string& Folder) const
	{
		const std::string Name = Folder.substr(Folder.rfind('/') + 1);
		Project.Write(Folder + "/" + Name + ".uplugin", R"({"CanContainContent": true})");
		Project.MakeFolder(Folder + "/Content");
	}
	std::filesystem::path OsPath(std::string_view Relative) const
	{
		return QVStandalone::ToOsPath(Project.At(Relative));
	}
	/** The standalone engine's lines of one kind since the last call, masked. */
	FTexts Logged(EQVLogVerbosity Verbosity)
	{
		FTexts Texts;
		for (const FLogLine& Line : Log.Take())
		{
			if (Line.Verbosity == Verbosity)
			{
				Texts.push_back(Project.Mask(Line.Text));
			}
		}
		return Texts;
	}
};
} // namespace QVTest
