// SPDX-License-Identifier: MIT
#include "Tests/HandOff/FlowSupport.h"

#include "Standalone/Engine/OsPath.h"

#include <fstream>

namespace QVTest
{
namespace
{
/** The lines of the flow itself; those of what it calls are compared elsewhere. */
constexpr std::string_view FlowLines[] = {"Starting export", "Export cancelled", "Export failed", "Export successful",
	"Packing ", "Could not bring", "Preflight", "Pack cancelled", "Redirectors fixed", "Playability", "Pack blocked",
	"Level Blueprint stripped", "All issues", "Refusing to cook", "'", "Stopped after", "Using '", "Starting base",
	"Base release b", "Dependency analysis failed", "Will pack", "Pre-computed", "Analyzing dependencies on",
	"Imported ", "Restored Cave", "Launching ", "Steam URL", "Detected plugin"};

bool IsOfFlow(std::string_view Text)
{
	constexpr std::string_view Prefix = "QVMap: ";
	return Text.starts_with(Prefix) &&
		   std::any_of(std::begin(FlowLines), std::end(FlowLines),
			   [&](std::string_view Line) { return Text.substr(Prefix.size()).starts_with(Line); }) &&
		   !Text.starts_with("QVMap: Export complete");
}
} // namespace

FFlowTest::FFlowTest()
{
	Project.AddMod("Cave", {"Maps/Hall", "Maps/Attic"});
	Project.AddMod("Shaft", {"Maps/Top"});
	Project.AddBaseRelease();
	PutMap("/QUARVEL/Templates/DefaultMapTemplate");
	UseScriptedChildren();
	Children.Work = [this] { WorkAsChild(); };
	Engine.Interfaces.Dialogs = &Dialogs;
	Engine.Interfaces.Shell = &Shell;
	Engine.Interfaces.SlowTasks = &User;
	Dialogs.OnShown = [this](const std::string& Entry)
	{
		TakeLog();
		Transcript += Entry + "\n";
	};
}

void FFlowTest::WorkAsChild()
{
	const std::string& Command = Children.Commands.back();
	Children.Code = 0;
	if (Command.find("-createreleaseversion") != std::string::npos)
	{
		Children.Code = CookCode;
		Project.Write(FTestProject::DevelopmentRegistry, FTestProject::RegistryBytes(3));
	}
	else if (Command.find("-run=cook") != std::string::npos)
	{
		Children.Code = CookCode;
		for (const char* Mod : {"Cave", "Shaft"})
		{
			for (const std::string& File : Cooked)
			{
				if (Command.find(QVPrintf("/%s/", Mod)) != std::string::npos)
				{
					Project.Write(QVPrintf("Saved/Cooked/Windows/MapWork/Plugins/%s/Content/%s", Mod, File), "12345");
				}
			}
		}
	}
	else
	{
		const std::size_t Begin = Command.find('"') + 1;
		const std::string Pak = Command.substr(Begin, Command.find('"', Begin) - Begin);
		std::ofstream(QVStandalone::ToOsPath(Pak)) << "pak";
	}
}

void FFlowTest::PutHall(bool bPlayable, const std::vector<std::string>& Meshes)
{
	QVFormats::FLevelPackageSpec Spec;
	Spec.PackageName = "/Cave/Maps/Hall";
	Spec.Actors = {{"PlayerStart_0", "/Script/Engine.PlayerStart"},
		{"Start", "/Script/QUARVEL.MapCheckpointTrigger", false, false, "Type",
			bPlayable ? "ECheckpointType::Start" : "ECheckpointType::Classic"},
		{"End", "/Script/QUARVEL.MapEndTrigger"}};
	Spec.Meshes = Meshes;
	const std::vector<std::byte> Bytes = BuildLevelPackage(Spec);
	Project.Write(FileOf(Spec.PackageName, ".umap"), {reinterpret_cast<const char*>(Bytes.data()), Bytes.size()});
}

FQVPlayRequest FFlowTest::Request(const std::string& Mod, bool bLaunch)
{
	const std::string Map = Mod == "Cave" ? "Hall" : "Top";
	FQVPlayRequest Asked{Mod, Map, QVPrintf("/Game/%s/Maps/%s", Mod, Map), bLaunch, {}};
	Asked.OnComplete = [this, Mod](const FQVExportResult& Result)
	{ Completed.push_back(Mod + (Result.bSuccess ? " packed" : " failed")); };
	return Asked;
}

std::string FFlowTest::Run(const FQVPlayRequest& Asked)
{
	Scan();
	EXPECT_TRUE(Engine.OpenMap("/Cave/Maps/Hall"));
	Told();
	FQVMapPlaytest::RunExport(Asked);
	Engine.GetGameThread().RunUntilIdle();
	return Told();
}

void FFlowTest::TakeLog()
{
	for (const FLogLine& Line : Recording.Take())
	{
		if (Line.Category == FQVLog::Category && IsOfFlow(Line.Text))
		{
			const bool bPlain = Line.Verbosity == EQVLogVerbosity::Log;
			Transcript += (bPlain ? "" : std::string(FQVLog::Word(Line.Verbosity)) + ": ") + Line.Text + "\n";
		}
	}
}

std::string FFlowTest::Told()
{
	TakeLog();
	return Project.Mask(std::exchange(Transcript, {}));
}

std::string FFlowTest::Snapshot() const
{
	std::string Text;
	for (const std::string& File : Project.FilesIn("Plugins"))
	{
		Text += File + ":" + Project.Read("Plugins/" + File) + "\n";
	}
	return Text;
}
} // namespace QVTest
