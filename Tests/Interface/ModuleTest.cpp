// SPDX-License-Identifier: MIT
#include "QVMapModule.h"

#include "Engine/QVModuleInterface.h"
#include "Interface/QVMapStyle.h"
#include "Tests/Interface/InterfaceTest.h"
#include "Tests/Support/ScriptedInterface.h"
#include "Workspace/QVMapConfig.h"

using namespace QVTest;

namespace
{
constexpr const char* Interrupted = "Saved/QVPak/Temp/ImportBackup/Cave/";

struct FModule : FInterfaceTest
{
	FScriptedInterface Interface;
	std::unique_ptr<IQVModuleInterface> Module{InitializeModule()};

	FModule() { Engine.Interfaces.Interface = &Interface; }

	/** The plugin itself stands in the project, with or without its icon. */
	void InstallToolkit(bool bIcon) const
	{
		Project.Write("Plugins/QVMap/QVMap.uplugin", R"({"FileVersion": 3, "CanContainContent": false})");
		if (bIcon)
		{
			Project.Write("Plugins/QVMap/Resources/T_QV.png", "a picture");
		}
	}
};

std::string Describe(const FQVMargin& Margin)
{
	return QVPrintf("(%g, %g, %g, %g)", Margin.Left, Margin.Top, Margin.Right, Margin.Bottom);
}

std::string Describe(const FQVColor& Color)
{
	return QVPrintf("(%g, %g, %g, %g)", Color[0], Color[1], Color[2], Color[3]);
}
} // namespace

TEST_F(FModule, StartsAndStopsAllInOrder)
{
	Project.AddMod("Cave", {});
	Project.Write("Plugins/Cave/Content/Hall.umap", "repointed");
	Project.Write(Interrupted + std::string("0000_Hall.umap"), "as it was");
	Project.Write(Interrupted + std::string("import.json"),
		R"({"schema_version": 1, "plugin": "Cave", "backups": [{"package": "/Cave/Hall", "original": ")" +
			Project.At("Plugins/Cave/Content/Hall.umap") + R"(", "backup": ")" +
			Project.At(Interrupted + std::string("0000_Hall.umap")) + R"("}], "imported": []})");
	Module->StartupModule();
	EXPECT_EQ(Project.Read("Plugins/Cave/Content/Hall.umap"), "as it was");
	EXPECT_EQ(Interface.TakeStory(), "style QVMapStyle\n"
									 "commands QVMap\n"
									 "load LevelEditor\n"
									 "menu LevelEditor.LevelEditorToolBar.User/QVMap/QVMapToolbar\n"
									 "window QVMapSetup\n"
									 "tab QVMapDiagnostics\n"
									 "tab QVMapWorkshop\n");
	const std::string Log = Logged();
	EXPECT_TRUE(Log.starts_with("QVMap v1.0.26 loaded\n")) << Log;
	EXPECT_NE(Log.find("Cave"), std::string::npos) << "what was put back is told: " << Log;
	EXPECT_EQ(GameThread.NumTickers(), 1U) << "the guard's";

	Module->ShutdownModule();
	EXPECT_EQ(Interface.TakeStory(), "no tab QVMapWorkshop\n"
									 "no tab QVMapDiagnostics\n"
									 "no tab QVMapSetup\n"
									 "no style QVMapStyle\n"
									 "no commands QVMap\n");
	Editor.Open("/QUARVEL/Templates/DefaultMapTemplate");
	Interface.MainFrameCreated.Broadcast();
	GameThread.Advance(10);
	EXPECT_EQ(GameThread.NumTickers(), 0U);
	EXPECT_TRUE(Dialogs.Shown.empty()) << "nobody listens any more";
}

TEST_F(FModule, StyleHasItsColoursAndTheIconThatIsThere)
{
	for (const bool bIcon : {false, true})
	{
		InstallToolkit(bIcon);
		Module->StartupModule();
		const FQVStyleSet& Style = FQVMapStyle::Get();
		EXPECT_EQ(&Style, Interface.Style.get());
		EXPECT_EQ(Style.Name, FQVMapStyle::GetStyleSetName());
		EXPECT_EQ(Style.ContentRoot, Project.At("Plugins/QVMap/Resources"));
		EXPECT_EQ(Style.Images.size(), bIcon ? 2U : 0U) << "a set that is made anew";
		for (const auto& [Name, Width] : {std::pair("QVMap.QVIcon", 40), std::pair("QVMap.QVIcon.Small", 20)})
		{
			const FQVImageBrush* Image = Style.FindImage(Name);
			ASSERT_EQ(Image != nullptr, bIcon) << Name;
			EXPECT_TRUE(!bIcon || (Image->Width == Width && Image->Height == Width / 2 &&
									  Image->File == Project.At("Plugins/QVMap/Resources/T_QV.png") &&
									  Describe(Image->Tint) == "(1, 1, 1, 1)"));
		}
		for (const auto& [Name, CopyOf, Padding] :
			{std::tuple("QVMap.RedButtonCenter", "Toolbar.BackplateCenter", "(1, 2, 2, 2)"),
				std::tuple("QVMap.RedButtonRightCombo", "Toolbar.BackplateRightCombo", "(7, 2, 6, 2)")})
		{
			const FQVToolbarStyle* Red = Style.FindToolbar(Name);
			ASSERT_NE(Red, nullptr) << Name;
			EXPECT_EQ(Red->CopyOf, CopyOf);
			EXPECT_EQ(Describe(Red->Normal) + Describe(Red->Hovered) + Describe(Red->Pressed),
				"(1, 0.02, 0.02, 1)(1, 1, 1, 1)(0.8, 0.8, 0.8, 1)");
			EXPECT_EQ(Describe(Red->Padding), Padding);
		}
		FQVMapStyle::Initialize();
		EXPECT_EQ(&FQVMapStyle::Get(), Interface.Style.get()) << "once";
		Module->ShutdownModule();
	}
}

TEST_F(FModule, StyleMustNotBeHeldByAnybodyWhenItGoes)
{
	Module->StartupModule();
	const std::shared_ptr<const FQVStyleSet> Held = Interface.Style;
	EXPECT_DEATH(FQVMapStyle::Shutdown(), "StyleInstance.IsUnique\\(\\)");
	Interface.Style = Held;
}

TEST_F(FModule, CommandsAndTabsHaveTheirTexts)
{
	Module->StartupModule();
	const FQVCommandContext& Context = Interface.Contexts.at(0);
	std::string Text = QVPrintf("%s, %s, %s\n", Context.Name, Context.Description.ToString(), Context.StyleSet);
	for (const FQVCommand& Each : Context.Commands)
	{
		Text += QVPrintf("%s: %s | %s\n", Each.Name, Say(Each.Label), Say(Each.Tooltip));
		EXPECT_EQ(Each.Label.GetNamespace(), "FQVMapModule");
	}
	EXPECT_EQ(Text, "QVMap, QVMap Plugin, QVMap\n"
					"BrandCommand: BrandCommand: QVMap | BrandCommand_ToolTip: QVMap - Quarvel Mapping Tools\n"
					"PlayCommand: PlayCommand: Play | PlayCommand_ToolTip: Pack current map's plugin and launch game\n"
					"PackageCommand: PackageCommand: Package | PackageCommand_ToolTip: Package PAK file (no launch)\n"
					"SettingsCommand: SettingsCommand: Settings | SettingsCommand_ToolTip: Configure QVMap export "
					"settings\n"
					"ToggleVerboseCommand: ToggleVerboseCommand: Verbose Logging | ToggleVerboseCommand_ToolTip: "
					"Toggle detailed packing logs\n"
					"WorkshopCommand: WorkshopCommand: Workshop | WorkshopCommand_ToolTip: Open Workshop upload "
					"panel\n");
	Context.Commands[2].Execute();
	EXPECT_EQ(Dialogs.Shown.size(), 1U) << "no map is open";
	Context.Commands[4].Execute();
	EXPECT_TRUE(FQVMapConfig::GetVerboseLogging());
	Interface.TakeStory();
	Context.Commands[5].Execute();
	EXPECT_EQ(Interface.TakeStory(), "show QVMapWorkshop\n");

	const FQVTab& Workshop = Interface.Tabs.at(2);
	EXPECT_EQ(Say(Workshop.DisplayName) + " | " + Say(Workshop.Tooltip) + " | " + Workshop.Icon,
		"TabTitle: Share Map | TabTooltip: Describe a map and publish it to the Steam Workshop | QVMap.QVIcon.Small");
	EXPECT_EQ(Workshop.DisplayName.GetNamespace(), "FQVMapWorkshopTab");
	Module->ShutdownModule();
}
