// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/LevelPackages.h"
#include "Tests/Cli/CliTest.h"

#include <nlohmann/json.hpp>

namespace QVTest
{
/** Packs of Cave's map Hall, each with something in its way. */
class FQuestionTest : public FScriptedToolsTest
{
protected:
	using FJson = nlohmann::json;
	static constexpr const char* HallFile = "Plugins/Cave/Content/Maps/Hall.umap";

	void PutHall(QVFormats::FLevelPackageSpec Level) const
	{
		Level.PackageName = "/Cave/Maps/Hall";
		WriteBytes(Folder / HallFile, QVFormats::BuildLevelPackage(Level));
	}
	/** With a Level Blueprint that has code. */
	static QVFormats::FLevelPackageSpec ScriptedHall(const std::vector<QVFormats::FActorSpec>& More = {})
	{
		QVFormats::FLevelPackageSpec Level{.PackageName = "/Cave/Maps/Hall", .Actors = QVFormats::PlayableActors()};
		Level.Actors.insert(Level.Actors.end(), More.begin(), More.end());
		Level.bScript = true;
		Level.Functions = {{"ReceiveBeginPlay", 22}};
		Level.Graphs = {"EventGraph"};
		return Level;
	}
	/** An editor that saves the map without its code, and cooks. */
	void ScriptStripAndCook(QVFormats::FLevelPackageSpec Level) const
	{
		Project.Write("../UE 5.4/Engine/Plugins/Experimental/PythonScriptPlugin/PythonScriptPlugin.uplugin", "{}");
		Level.Functions = {};
		WriteBytes(Folder / "stripped", QVFormats::BuildLevelPackage(Level));
		Project.ScriptEditorCmd({"copy " + Project.At("stripped") + "|" + Project.At(HallFile), CookHall});
	}
	/** A cook tool that can build a base release, too. */
	void ScriptReleaseAndCook() const
	{
		Project.Write("release", FTestProject::RegistryBytes(3));
		const std::string Registry = Project.At(FTestProject::DevelopmentRegistry);
		Project.ScriptEditorCmd(
			{"write " + Registry + "|", "copy " + Project.At("release") + "|" + Registry, CookHall});
	}
	void Prepare(const std::string& Key) const
	{
		ScriptReleaseAndCook();
		if (Key == "BaseReleaseMissingTitle")
		{
			Project.Remove("Releases");
		}
		else if (Key == "BaseReleaseStaleTitle")
		{
			Project.Write("Releases/1.0/QVMapToolchain.json", R"({"contentPlugins": {"QUARVEL": "1.3"}})");
		}
		else if (Key == "MapUnreadableTitle")
		{
			Put(HallFile, "no package");
			Put("Saved/QVPak/config.json", R"({"import_external_assets": false})"); // whose plan needs a map
		}
		else if (Key == "PreflightTitle")
		{
			PutHall({});
		}
		else if (Key == "UnsupportedContentTitle")
		{
			PutHall(ScriptedHall());
		}
		else
		{
			Project.ScriptEditorCmd({CookMapAlone});
		}
	}

	FProgramEnd Pack(const FWords& More = {}) const
	{
		FWords Words = {"-q", "pack", "Hall"};
		Words.insert(Words.end(), More.begin(), More.end());
		return Run(Words);
	}
	FProgramEnd PackAnswering(const FWords& Answers, FWords More = {}) const
	{
		for (const std::string& Answer : Answers)
		{
			More.insert(More.end(), {"--answer", Answer});
		}
		return Pack(More);
	}
	void ExpectStopped(const FProgramEnd& End, const std::string& Told) const
	{
		EXPECT_EQ(End.Code, 3);
		EXPECT_NE(End.Err.find(Told), std::string::npos) << End.Err;
	}
};
} // namespace QVTest
