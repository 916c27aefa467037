// SPDX-License-Identifier: MIT
#include "Content/QVMapSecurityScanner.h"
#include "Engine/QVBlueprint.h"
#include "Standalone/Engine/Interrupt.h"
#include "Standalone/Engine/LevelScriptStrip.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Formats/Package/LevelPackages.h"
#include "Tests/Support/ContentProject.h"
#include "Tests/Support/TestPrograms.h"

using namespace QVTest;
using namespace QVFormats;
using namespace QVStandalone;
namespace fs = std::filesystem;

namespace
{
using FTexts = std::vector<std::string>;

constexpr const char* MapFile = "Plugins/Cave/Content/Maps/Hall.umap";
constexpr const char* Engine54 = "../UE 5.4/Engine/";
const std::string Copy = "Saved/QVPak/Backup/LevelBlueprint-2026.11.21-18.05.09/Plugins/Cave/Content/Maps/Hall.umap";

/** An engine with Python, and a mod whose map has code. What the editor may save instead lies in Editor/. */
struct FLevelScriptTest : FContentTest
{
	const FLevelPackageSpec Hall{.PackageName = "/Cave/Maps/Hall",
		.Actors = {{"Start_0", "/Script/Engine.PlayerStart"}, {"Light_0", "/Script/Engine.PointLight"}},
		.bScript = true,
		.Functions = {{"ExecuteUbergraph_Hall", 30}, {"ReceiveBeginPlay", 22}, {"Open Gate", 12}},
		.Graphs = {"EventGraph", "Open Gate"}};

	FLevelScriptTest()
	{
		Project.AddMod("Cave", {});
		Project.Write(InEngine("Plugins/Experimental/PythonScriptPlugin/PythonScriptPlugin.uplugin"), "{}");
		Put(MapFile, Hall);
		FLevelPackageSpec Other = Hall;
		Other.Functions = {{"ReceiveBeginPlay", 22}};
		Put("Editor/WithCode.umap", Other);
		Other.Functions = {};
		Put("Editor/Saved.umap", Other);
		Other.Actors.pop_back();
		Put("Editor/Darker.umap", Other);
	}
	~FLevelScriptTest() override { FInterrupt::Reset(); }

	static std::string InEngine(const std::string& Path) { return Engine54 + Path; }
	void Put(const std::string& Path, const FLevelPackageSpec& Spec)
	{
		const std::vector<std::byte> Bytes = BuildLevelPackage(Spec);
		Project.Write(Path, {reinterpret_cast<const char*>(Bytes.data()), Bytes.size()});
	}
	std::string CopyOver(const char* Saved) { return "copy " + Project.At(Saved) + "|" + Project.At(MapFile); }

	const IQVWorld& Open(const char* Map = "/Cave/Maps/Hall")
	{
		Scan();
		EXPECT_TRUE(Engine.OpenMap(Map));
		Recording.Take();
		return *Engine.Interfaces.Editor->GetOpenWorld();
	}
	IQVBlueprint* Blueprint(const IQVWorld& World, std::string* OutRefusal = nullptr)
	{
		FQVText Refusal;
		IQVBlueprint* Found = Engine.Interfaces.Editor->GetLevelScriptBlueprint(*World.GetPersistentLevel(), Refusal);
		if (OutRefusal != nullptr)
		{
			*OutRefusal = Project.Mask(Refusal.ToString());
		}
		return Found;
	}
	/** The functions of the open map's script. */
	static std::string Code(const IQVWorld& World)
	{
		std::vector<FQVFunction> Functions;
		World.GetPersistentLevel()->GetLevelScriptActor()->GetClass()->GetFunctions(Functions);
		std::string Text;
		for (const FQVFunction& Function : Functions)
		{
			Text += Function.Name + ";";
		}
		return Text;
	}
	/** The engine's own lines of that weight, without those of the child processes. */
	FTexts Said(EQVLogVerbosity Verbosity)
	{
		FTexts Lines;
		for (const FLogLine& Line : Recording.Take())
		{
			if (Line.Category == "LogStandalone" && Line.Verbosity == Verbosity)
			{
				Lines.push_back(Project.Mask(Line.Text));
			}
		}
		return Lines;
	}
	/** What comes of a strip that fails: the reason. */
	std::string Fail()
	{
		const IQVWorld& World = Open();
		const std::string Before = Project.Read(MapFile);
		EXPECT_FALSE(FQVMapSecurityScanner::StripLevelBlueprint(&World));
		EXPECT_EQ(Project.Read(MapFile), Before);
		EXPECT_EQ(Project.FilesIn("Saved/QVPak/Backup"), FTexts());
		EXPECT_FALSE(FQVMapSecurityScanner::ScanForMapEligibility("Cave", &World, {}).bIsMap);
		const FTexts Errors = Said(EQVLogVerbosity::Error);
		EXPECT_EQ(Errors.size(), 1U);
		constexpr std::string_view Head = "The Level Blueprint of /Cave/Maps/Hall keeps its code: ";
		EXPECT_TRUE(!Errors.empty() && Errors[0].starts_with(Head));
		return Errors.empty() ? std::string() : Errors[0].substr(Head.size());
	}
};
} // namespace

TEST_F(FLevelScriptTest, HasTheInstalledEngineTakeTheCodeOut)
{
	const std::string Before = Project.Read(MapFile);
	Project.ScriptEditorCmd({CopyOver("Editor/Saved.umap"), "arguments " + Project.At("arguments.txt")});
	const IQVWorld& World = Open();
	const IQVLevel& LevelBefore = *World.GetPersistentLevel();
	ASSERT_EQ(Code(World), "ExecuteUbergraph_Hall;ReceiveBeginPlay;Open Gate;");
	EXPECT_FALSE(FQVMapSecurityScanner::ScanForMapEligibility("Cave", &World, {}).bIsMap);
	Recording.Take();

	EXPECT_TRUE(FQVMapSecurityScanner::StripLevelBlueprint(&World));
	EXPECT_EQ(Said(EQVLogVerbosity::Log),
		(FTexts{"Unreal Editor is started to take the code out of the Level Blueprint of /Cave/Maps/Hall",
			"The Level Blueprint of /Cave/Maps/Hall has no code any more. To undo, copy <Project>/" + Copy +
				" to <Project>/" + MapFile}));
	EXPECT_EQ(Project.Read(MapFile), Project.Read("Editor/Saved.umap"));
	EXPECT_EQ(Project.Read(Copy), Before);
	EXPECT_EQ(Code(World), "");
	EXPECT_TRUE(FQVMapSecurityScanner::ScanForMapEligibility("Cave", &World, {}).bIsMap);
	EXPECT_NE(LevelBefore.GetLevelScriptActor(), nullptr);
	EXPECT_EQ(Project.Mask(Project.Read("arguments.txt")),
		"<Project>/MapWork.uproject\n-run=pythonscript\n"
		"-script=<Project>/Saved/QVPak/Temp/StripLevelBlueprint.py\n"
		"-unattended\n-nosplash\n-nullrhi\n-stdout\n-EnablePlugins=PythonScriptPlugin\n");
	const std::string Script = Project.Read("Saved/QVPak/Temp/StripLevelBlueprint.py");
	EXPECT_EQ(Script.substr(Script.find("if unreal.")),
		"if unreal.EditorLoadingAndSavingUtils.load_map(\"/Cave/Maps/Hall\") is None:\n"
		"    raise RuntimeError(\"the map could not be loaded\")\n"
		"blueprint = unreal.find_object(None, \"/Cave/Maps/Hall.Hall:PersistentLevel.Hall\")\n"
		"if blueprint is None:\n"
		"    raise RuntimeError(\"the map has no Level Blueprint\")\n"
		"take_out(\"EventGraph\")\n"
		"take_out(\"Open Gate\")\n"
		"unreal.BlueprintEditorLibrary.compile_blueprint(blueprint)\n"
		"if not unreal.EditorLoadingAndSavingUtils.save_packages([blueprint.get_outermost()], False):\n"
		"    raise RuntimeError(\"the map could not be saved\")\n");
}

TEST_F(FLevelScriptTest, PutsTheFileBackWhenItDidNotWork)
{
	const std::string File = Project.At(MapFile);
	const std::string Saved = CopyOver("Editor/Saved.umap");
	const std::string Tool = "<Engine>/Binaries/Win64/UnrealEditor-Cmd.exe ";
	const std::string Lines = "\nUnreal Editor's last lines:\n  ";
	const struct
	{
		FTexts Commands;
		std::string Reason;
		std::string Output;
	} Cases[] = {
		{{"print all is well"}, "Unreal Editor has saved nothing", Lines + "all is well"},
		{{Saved, "lines 12", "exit 3"}, Tool + "ended with code 3",
			Lines +
				"line 3\n  line 4\n  line 5\n  line 6\n  line 7\n  line 8\n  line 9\n  line 10\n  line 11\n  line 12"},
		{{Saved, "abort"}, Tool + "ended with code " + std::to_string(AbortCode), ""},
		{{"write " + File + "|no package"}, "what Unreal Editor has saved cannot be read: <Project>/", ""},
		{{"remove " + File}, "what Unreal Editor has saved cannot be read: <Project>/", ""},
		{{CopyOver("Editor/WithCode.umap")}, "what Unreal Editor has saved still has the function(s) ReceiveBeginPlay",
			""},
		{{CopyOver("Editor/Darker.umap")}, "what Unreal Editor has saved lost the actor(s) Light_0", ""},
	};
	for (const auto& Case : Cases)
	{
		Project.ScriptEditorCmd(Case.Commands);
		const std::string Reason = Fail();
		EXPECT_TRUE(Reason.starts_with(Case.Reason)) << Reason;
		EXPECT_TRUE(Reason.ends_with(". The map's file is as it was" + Case.Output)) << Reason;
	}
}

TEST_F(FLevelScriptTest, PutsTheFileBackAfterAnInterrupt)
{
	UseScriptedChildren();
	Children.Chunks = {"LogInit: one\n", "two\n"};
	Children.Work = [this]
	{
		Project.Write(MapFile, Project.Read("Editor/Saved.umap"));
		FInterrupt::Raise();
	};
	EXPECT_EQ(Fail(), "interrupted. The map's file is as it was\nUnreal Editor's last lines:\n  LogInit: one\n  two");
	FInterrupt::Reset();
	Children.Work = {};
	Children.Code.reset();
	EXPECT_EQ(Fail().find("<Engine>/Binaries/Win64/UnrealEditor-Cmd.exe ended with code -1"), 0U);
	Children.bStarts = false;
	EXPECT_EQ(Fail(), "<Engine>/Binaries/Win64/UnrealEditor-Cmd.exe could not be started. The map's file is as it was");
	EXPECT_EQ(Children.OpenHandles + Children.OpenPipes, 0);
	ASSERT_EQ(Children.Commands.size(), 3U);
	EXPECT_EQ(Project.Mask(Children.Commands[2]),
		"<Engine>/Binaries/Win64/UnrealEditor-Cmd.exe \"<Project>/MapWork.uproject\" -run=pythonscript "
		"-script=\"<Project>/Saved/QVPak/Temp/StripLevelBlueprint.py\" -unattended -nosplash -nullrhi -stdout "
		"-EnablePlugins=PythonScriptPlugin");
}

TEST_F(FLevelScriptTest, SaysWhereTheCopyIsIfTheFileCannotBePutBack)
{
	Project.ScriptEditorCmd({"remove " + Project.At(MapFile), "write " + Project.At(MapFile) + "/Blocked|here"});
	const std::string Before = Project.Read(MapFile);
	Open();
	FQVMapSecurityScanner::StripLevelBlueprint(Engine.Interfaces.Editor->GetOpenWorld());
	const FTexts Errors = Said(EQVLogVerbosity::Error);
	ASSERT_EQ(Errors.size(), 1U);
	EXPECT_TRUE(Errors[0].ends_with(std::string(". <Project>/") + MapFile +
									" could not be put back: Is a directory; as it was it lies at <Project>/" + Copy))
		<< Errors[0];
	EXPECT_EQ(Project.Read(Copy), Before);
}

TEST_F(FLevelScriptTest, RefusesWhatIsKnownBefore)
{
	const auto Refusal = [this](const char* Map)
	{
		std::string Text;
		EXPECT_EQ(Blueprint(Open(Map), &Text), nullptr);
		const std::string Head = "Unreal Editor cannot be made to take the code out of this Level Blueprint: ";
		const std::string Tail = std::string(". Open ") + Map +
								 " there, choose Blueprints > Open Level Blueprint, delete all nodes of every graph, "
								 "press Compile and save the map.";
		EXPECT_TRUE(Text.starts_with(Head) && Text.ends_with(Tail)) << Text;
		return Text.substr(Head.size(), Text.size() - Head.size() - Tail.size());
	};
	FLevelPackageSpec Spec = Hall;
	Spec.PackageName = "/Cave/Maps/Caller";
	Spec.Functions.push_back({"OnOpened__DelegateSignature", 5});
	Put("Plugins/Cave/Content/Maps/Caller.umap", Spec);
	EXPECT_EQ(
		Refusal("/Cave/Maps/Caller"), "its event dispatcher OnOpened is code, too, and can only be deleted by hand");
	Spec = Hall;
	Spec.PackageName = "/Cave/Maps/Bare";
	Spec.Graphs.clear();
	Put("Plugins/Cave/Content/Maps/Bare.umap", Spec);
	EXPECT_EQ(Refusal("/Cave/Maps/Bare"), "<Project>/Plugins/Cave/Content/Maps/Bare.umap holds none of its graphs");
	Spec = Hall;
	Spec.PackageName = "/Engine/Maps/Entry";
	Put(InEngine("Content/Maps/Entry.umap"), Spec);
	EXPECT_EQ(Refusal("/Engine/Maps/Entry"), "<Engine>/Content/Maps/Entry.umap lies outside the project");
	Project.Write("Plugins/Cave/Content/Maps/Bare.umap", Project.Read(MapFile));
	fs::permissions(ToOsPath(Project.At(MapFile)), fs::perms(0444));
	EXPECT_EQ(Refusal("/Cave/Maps/Hall"), std::string("<Project>/") + MapFile + " is marked read-only");
	fs::permissions(ToOsPath(Project.At(MapFile)), fs::perms::owner_all);
	Project.Remove(InEngine("Binaries/Win64/UnrealEditor-Cmd.exe"));
	EXPECT_EQ(Refusal("/Cave/Maps/Hall"), "<Engine>/Binaries/Win64/UnrealEditor-Cmd.exe is not there");
	const IQVWorld& World = Open();
	Project.Remove(MapFile);
	std::string Text;
	EXPECT_EQ(Blueprint(World, &Text), nullptr);
	EXPECT_NE(Text.find("Level Blueprint: <Project>/" + std::string(MapFile)), std::string::npos) << Text;
}

/** The script removes graphs, not nodes. */
TEST_F(FLevelScriptTest, TakesGraphsAsAWhole)
{
	UseScriptedChildren();
	IQVBlueprint* Found = Blueprint(Open());
	ASSERT_NE(Found, nullptr);
	std::vector<IQVGraph*> Events;
	std::vector<IQVGraph*> Functions;
	Found->GetEventGraphs(Events);
	Found->GetFunctionGraphs(Functions);
	ASSERT_EQ(Events.size() + 10 * Functions.size(), 11U);
	std::vector<FQVGraphNode*> Nodes;
	Events[0]->GetNodes(Nodes);
	ASSERT_EQ(Nodes.size(), 1U);
	Events[0]->RemoveNode(Nodes[0]);
	Events[0]->GetNodes(Nodes);
	EXPECT_TRUE(Nodes.empty());
	EXPECT_FALSE(Found->Compile());
	EXPECT_EQ(Said(EQVLogVerbosity::Error), FTexts{"The Level Blueprint of /Cave/Maps/Hall keeps its code: the graph "
												   "Open Gate has nodes left, and graphs only go as a whole"});
	EXPECT_EQ(Children.Commands, FTexts());
}

TEST_F(FLevelScriptTest, WritesNamesThatPythonTakesAsTheyAre)
{
	FLevelPackageSpec Spec = Hall;
	Spec.PackageName = "/Cave/Maps/Höhle";
	Put("Plugins/Cave/Content/Maps/Höhle.umap", Spec);
	const auto File = FLevelScriptFile::Read(Spec.PackageName, Project.At("Plugins/Cave/Content/Maps/Höhle.umap"));
	ASSERT_TRUE(File);
	const std::string Script = FLevelScriptStrip::MakeScript(*File, FTexts{"A\\\"), exit(\"\n"});
	EXPECT_NE(Script.find("load_map(\"/Cave/Maps/Höhle\")"), std::string::npos);
	EXPECT_NE(Script.find("\"/Cave/Maps/Höhle.Höhle:PersistentLevel.Höhle\""), std::string::npos);
	EXPECT_NE(Script.find("take_out(\"A\\\\\\\"), exit(\\\"\\n\")\n"), std::string::npos) << Script;
}
