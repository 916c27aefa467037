// SPDX-License-Identifier: MIT
#include "Interface/QVMapTemplateGuard.h"

#include "Standalone/Engine/OsPath.h"
#include "Standalone/Engine/Project.h"
#include "Tests/Interface/InterfaceTest.h"
#include "Workspace/QVMapConfig.h"

using namespace QVTest;

namespace
{
constexpr const char* Template = "/QUARVEL/Templates/DefaultMapTemplate";
constexpr const char* Other = "/Quarvel/Templates/Other";

const std::string Title = "question TemplateWarningTitle/TemplateWarning: <This is not your map> ";
const std::string Opened = "You have opened a map that ships with QUARVEL:\n\n  ";
const std::string Saved = "You have just saved into the folder that ships with QUARVEL:\n\n  ";
const std::string Body =
	"\n\nIt belongs to the toolkit rather than to you:\n\n  - It cannot be packed or published. Anything you build in "
	"it counts as content from outside the map being packed.\n  - Its whole folder is replaced every time you update "
	"QUARVEL, so work saved here is lost at the next update.\n\nYour maps live in a folder of their own under "
	"Plugins/, which is what New Map creates for you.\n\n";
const std::string No = " [Yes|No] > No";
const std::string Yes = " [Yes|No] > Yes";

struct FWindowedDialogs : FScriptedDialogs
{
	bool bModal = false;
	bool IsModalWindowActive() const override { return bModal; }
};

struct FTemplateGuard : FInterfaceTest
{
	FWindowedDialogs Dialogs;
	FScriptedNewModView View;

	FTemplateGuard()
	{
		FQVMapConfig::SetMapTemplatePath("");
		Engine.Interfaces.Dialogs = &Dialogs;
	}
	~FTemplateGuard() override { FQVMapTemplateGuard::Unregister(); }

	/** Registered, and its first look is over. */
	void Start()
	{
		FQVMapTemplateGuard::Register();
		GameThread.Advance(2.5);
		Recording.Take();
	}
	void Save(const char* Package) { Engine.GetPackages().TellOfNew(FQVName(Package), Project.At("Saved/x.umap")); }
	std::vector<std::string> TakeShown() { return std::exchange(Dialogs.Shown, {}); }
	/** A map whose file is so many seconds old. */
	void AddMap(const char* Mod, const char* Map, int Age)
	{
		Project.AddMod(Mod, {Map});
		const auto File = QVStandalone::ToOsPath(Project.At(QVPrintf("Plugins/%s/Content/%s.umap", Mod, Map)));
		std::filesystem::last_write_time(
			File, std::filesystem::file_time_type::clock::now() - std::chrono::seconds(1000 + Age));
	}
	/** What the warning's Yes leads to. */
	std::string AnswerYes(double Seconds = 0.5)
	{
		Dialogs.Choices["TemplateWarningTitle"] = "Yes";
		Editor.TakeAsked();
		GameThread.Advance(Seconds);
		return Editor.TakeAsked();
	}
};
using FTexts = std::vector<std::string>;
} // namespace

TEST_F(FTemplateGuard, LooksAtTheMapThatTheEditorStartsWith)
{
	Editor.Open(Template);
	FQVMapTemplateGuard::Register();
	GameThread.Advance(2.9);
	EXPECT_EQ(TakeShown(), FTexts());
	GameThread.Advance(0.1);
	EXPECT_EQ(TakeShown(), (FTexts{Title + Opened + Template + Body + "Create a map of your own now?" + No}));
	EXPECT_NE(Logged().find("Warning: QVMap: Mapper is in the toolkit's own folder (/QUARVEL/Templates/"
							"DefaultMapTemplate), answered leave it\n"),
		std::string::npos);
	EXPECT_EQ(Editor.TakeAsked(), "");
	EXPECT_EQ(View.Shown, 0);
	EXPECT_EQ(GameThread.NumTickers(), 0U);
}

TEST_F(FTemplateGuard, IsNotThereWhereNobodyCouldBeAsked)
{
	Editor.SetUnattended(true);
	FQVMapTemplateGuard::Register();
	Editor.SetUnattended(false);
	struct FCommandlet : QVStandalone::FProject
	{
		using FProject::FProject;
		bool IsRunningCommandlet() const override { return true; }
	} Commandlet(Project.ProjectFile(), Project.EngineDir());
	Engine.Interfaces.Project = &Commandlet;
	FQVMapTemplateGuard::Register();
	Editor.Open(Template);
	Save(Template);
	GameThread.Advance(10);
	EXPECT_EQ(GameThread.NumTickers(), 0U);
	EXPECT_EQ(TakeShown(), FTexts());
}

TEST_F(FTemplateGuard, WarnsOnceForEachVisit)
{
	Start();
	const auto Visit = [this](const char* Package)
	{
		Editor.Open(Package);
		GameThread.Advance(0.5);
		return TakeShown().size();
	};
	EXPECT_EQ(Visit("/QUARVELous/Maps/Mine"), 0U);
	EXPECT_EQ(Visit(Template), 1U);
	EXPECT_EQ(Visit(Template), 0U);
	EXPECT_EQ(Visit("/quarvel/templates/DEFAULTMAPTEMPLATE"), 0U);
	EXPECT_EQ(Visit(Other), 1U) << "another one";
	EXPECT_EQ(Visit("/Cave/Maps/Hall"), 0U);
	EXPECT_EQ(Visit(Other), 1U) << "it was left in between";
	FQVMapTemplateGuard::Unregister();
	EXPECT_EQ(Visit(Template), 0U);
}

TEST_F(FTemplateGuard, WarnsOnceForEachPackageThatIsSaved)
{
	Start();
	const auto Warned = [this](const char* Package)
	{
		Save(Package);
		GameThread.Advance(0.5);
		return TakeShown();
	};
	EXPECT_EQ(Warned("/Game/Rock"), FTexts());
	Editor.bAutosaving = true;
	EXPECT_EQ(Warned(Template), FTexts());
	Editor.bAutosaving = false;
	const std::string End = Body + "Create a map of your own from it now?" + No;
	EXPECT_EQ(Warned(Template), (FTexts{Title + Saved + Template + End}));
	EXPECT_EQ(Warned("/quarvel/templates/DEFAULTMAPTEMPLATE"), FTexts());
	EXPECT_EQ(Warned(Other), (FTexts{Title + Saved + Other + End}));
}

TEST_F(FTemplateGuard, WaitsForOtherWindowsAndAsksOneThingAtATime)
{
	Start();
	Dialogs.bModal = true;
	Editor.Open(Template);
	Save(Other);
	GameThread.Advance(5);
	EXPECT_EQ(TakeShown(), FTexts());
	Dialogs.bModal = false;
	GameThread.Advance(5);
	EXPECT_EQ(TakeShown().size(), 1U) << "the second was dropped while the first was pending";
	EXPECT_EQ(GameThread.NumTickers(), 0U);

	Editor.Open(Other);
	FQVMapTemplateGuard::Unregister();
	GameThread.Advance(5);
	EXPECT_EQ(TakeShown(), FTexts()) << "a pending one goes with the guard";
	EXPECT_EQ(GameThread.NumTickers(), 0U);
}

TEST_F(FTemplateGuard, SwitchesToTheNewestMap)
{
	AddMap("Cave", "Maps/Hall", 50);
	AddMap("Harbor", "Maps/Pier", 10);
	AddMap("Harbor2", "Deep/Dock", 20);
	Start();
	Editor.Open(Template);
	EXPECT_EQ(AnswerYes(), "save prompt maps content declinable\nload /Harbor/Maps/Pier\n");
	EXPECT_EQ(TakeShown(), (FTexts{Title + Opened + Template + Body + "Open your map \"Pier\" instead?" + Yes}));
	EXPECT_TRUE(Logged().ends_with("answered move it out\nQVMap: Opening /Harbor/Maps/Pier from mod Harbor\n"
								   "QVMap: Left the template for /Harbor/Maps/Pier\n"));
	Editor.Open(Template);
	Editor.OnLevel = [](const std::string&) { return false; };
	AnswerYes();
	EXPECT_TRUE(Logged().ends_with("QVMap: Could not open /Harbor/Maps/Pier - still in the template\n"));
}

TEST_F(FTemplateGuard, OffersANewMapToWhoHasNone)
{
	Start();
	View.User = [](SQVMapNewModDialog& Dialog)
	{
		Dialog.SetName("Cave");
		Dialog.Create();
	};
	Editor.Open(Template);
	AnswerYes();
	EXPECT_TRUE(Logged().ends_with("QVMap: Left the template for a new map: /Cave/Maps/Cave\n"));
	EXPECT_EQ(Editor.World.Package, "/Cave/Maps/Cave");

	Project.Remove("Plugins/Cave");
	View.User = [](SQVMapNewModDialog& Dialog) { Dialog.Cancel(); };
	Editor.Open(Template);
	AnswerYes();
	EXPECT_TRUE(Logged().ends_with("answered move it out\n"));
	EXPECT_EQ(View.Shown, 2);
}

TEST_F(FTemplateGuard, MovesWhatWasSavedIntoAMapOfOnesOwn)
{
	Start();
	View.User = [](SQVMapNewModDialog& Dialog) { Dialog.Cancel(); };
	Save(Template);
	EXPECT_EQ(AnswerYes(), "") << "nothing is open";
	EXPECT_EQ(View.Shown, 0);

	Editor.Open(Template);
	GameThread.Advance(0.5);
	TakeShown();
	View.Shown = 0;
	Save(Other);
	AnswerYes();
	EXPECT_EQ(View.Shown, 1) << "without a map, a new one is offered";

	AddMap("Cave", "Maps/Hall", 0);
	Save("/QUARVEL/A");
	TakeShown();
	EXPECT_EQ(AnswerYes(), "save level as\n");
	EXPECT_EQ(TakeShown(),
		(FTexts{Title + Saved + "/QUARVEL/A" + Body + "Save what is open here into one of your own maps now?" + Yes}));
	EXPECT_TRUE(Logged().ends_with("QVMap: Save Level As cancelled - still in the template\n"));
	Editor.SaveAs = "D:/Cave/Content/Maps/New.umap";
	Save("/QUARVEL/B");
	AnswerYes();
	EXPECT_TRUE(Logged().ends_with("QVMap: Template contents saved out to D:/Cave/Content/Maps/New.umap\n"));
}

TEST_F(FTemplateGuard, DoesNotAnswerItself)
{
	AddMap("Cave", "Maps/Hall", 0);
	Start();
	Editor.OnLevel = [this](const std::string&)
	{
		Save(Other); // as whoever goes on saves what is dirty
		return true;
	};
	Editor.Open(Template);
	AnswerYes();
	TakeShown();
	GameThread.Advance(5);
	EXPECT_EQ(TakeShown(), FTexts());
	Dialogs.Choices.clear();
	Save(Other);
	GameThread.Advance(0.5);
	EXPECT_EQ(TakeShown().size(), 1U) << "and is watchful again";
}
