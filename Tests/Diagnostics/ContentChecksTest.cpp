// SPDX-License-Identifier: MIT
#include "Diagnostics/QVMapContentChecks.h"

#include "Engine/QVClasses.h"
#include "Tests/Diagnostics/DiagnosticsTestSupport.h"

namespace
{
struct FContentChecks : QVTest::FDiagnosticsTest
{
	QVTest::FBareWorld World;

	FQVDiagnosticFindings Check(const char* Mod, const IQVWorld* InWorld = nullptr)
	{
		FQVDiagnosticOptions Options;
		Options.ModName = Mod;
		Options.World = InWorld;
		FQVDiagnosticFindings Findings;
		FQVMapContentChecks::CheckMapContent(Options, Findings);
		for (const FQVDiagnosticFinding& Each : Findings)
		{
			EXPECT_EQ(Each.Category, EQVDiagCategory::ModContent);
		}
		return Findings;
	}
	std::string CheckOne(const char* Mod, std::string_view Id, const IQVWorld* InWorld = nullptr)
	{
		return Describe(Check(Mod, InWorld), Id);
	}
};

constexpr const char* Resolvable = " Content.CookPathResolves\n  ContentCookPathTitle: Maps resolvable for cooking\n";
} // namespace

TEST_F(FContentChecks, WholeReportOfAMapThatIsNotOpen)
{
	Project.AddMod("Cave", {"Maps/Hall", "Gate"});
	Scan();
	EXPECT_EQ(Describe(Check("Cave")),
		"Pass Content.PluginName\n"
		"  ContentNameTitle: Map name valid\n"
		"  Cave\n"
		"Pass Content.CanContainContent\n"
		"  ContentMountTitle: Map folder set up correctly\n"
		"  /Cave/\n"
		"Pass Content.WorldPartition\n"
		"  ContentWPTitle: No World Partition maps\n"
		"  ContentWPPass: 2 map(s) checked.\n"
		"Info Content.PathConsistency\n"
		"  ContentPathsTitle: Map paths\n"
		"  ContentPathsDetail: Cook path, manifest path and pak mount point for each map.\n"
		"    Info Gate\n"
		"      Gate\n"
		"      ContentPathRow: cook: /Cave/Gate\nmanifest: /Game/Cave/Gate\nmounts at: /Cave/Gate\n"
		"    Info Hall\n"
		"      Hall\n"
		"      ContentPathRow: cook: /Cave/Maps/Hall\nmanifest: /Game/Cave/Maps/Hall\nmounts at: /Cave/Hall\n"
		"Pass Content.CookPathResolves\n"
		"  ContentCookPathTitle: Maps resolvable for cooking\n"
		"  ContentCookPathPass: 2 map(s) resolve.\n"
		"Pass Content.Security\n"
		"  ContentSecurityTitle: Content allowed in a packed map\n"
		"  ContentSecurityPass: No disallowed assets, actors or level script found.\n");
}

TEST_F(FContentChecks, WithoutAMapThereIsOneRow)
{
	EXPECT_EQ(Describe(Check("", &World)), "Warning Content.MapInPlugin\n"
										   "  ContentNoModTitle: Map selected\n"
										   "  ContentNoModDetail: No map is selected and none is open.\n"
										   "  ContentNoModRemedy: Pick a map above, or open one.\n");
}

TEST_F(FContentChecks, NamesAndPluginsThatCannotBe)
{
	Project.Write("Plugins/Shut/Shut.uplugin", R"({"FileVersion": 3})");
	Project.Write("Plugins/Aside/Aside.uplugin.disabled", R"({"FileVersion": 3, "CanContainContent": true})");
	Scan();
	EXPECT_EQ(CheckOne("My Map", "Content.PluginName"),
		"Error Content.PluginName\n"
		"  ContentNameTitle: Map name valid\n"
		"  Plugin name 'My Map' contains invalid character ' '. Allowed: letters, numbers, underscore, hyphen.\n"
		"  ContentNameRemedy: Rename the plugin folder and its .uplugin to a valid name.\n");
	const std::string Title = "Error Content.CanContainContent\n  ContentMountTitle: Map folder set up correctly\n";
	EXPECT_EQ(CheckOne("Aside", "Content.CanContainContent"),
		Title +
			"  ContentNotMounted: The editor has not loaded a plugin called 'Aside'.\n"
			"  ContentNotMountedRemedy: Its .uplugin may be missing, disabled, or renamed to .uplugin.disabled by an "
			"interrupted base release build. Restart the editor after fixing it.\n");
	EXPECT_EQ(CheckOne("Shut", "Content.CanContainContent"),
		Title +
			"  ContentCannotContain: 'Shut' has CanContainContent set to false, so its assets never mount.\n"
			"  ContentCannotContainRemedy: Set \"CanContainContent\": true in the .uplugin and restart the editor.\n");
	const FQVDiagnosticFindings Findings = Check("Aside");
	EXPECT_EQ(Describe(Findings, "Content.PathConsistency"), "");
	EXPECT_EQ(Describe(Findings, "Content.CookPathResolves"),
		std::string("Error") + Resolvable +
			"  ContentNoMaps: No .umap files found in Plugins/Aside/Content/.\n"
			"  ContentNoMapsRemedy: There is nothing to pack until a map is saved in this folder.\n");
	EXPECT_EQ(Findings.size(), 5U);
}

TEST_F(FContentChecks, HowTheOpenMapIsSaved)
{
	Project.AddMod("Cave", {"Maps/Hall"});
	Scan();
	const std::string Title = " Content.MapSaved\n  ContentSavedTitle: Open map saved\n";
	EXPECT_EQ(CheckOne("Cave", "Content.MapSaved", &World), "Pass" + Title + "  /Cave/Maps/Hall\n");
	World.bDirty = true;
	EXPECT_EQ(CheckOne("Cave", "Content.MapSaved", &World),
		"Warning" + Title +
			"  ContentDirty: '/Cave/Maps/Hall' has unsaved changes.\n"
			"  ContentDirtyRemedy: The cook reads from disk, so unsaved edits will not be in the pak.\n"
			"  [SaveNow: Save] Custom\n");
	const std::function<bool()> Save = Find(Check("Cave", &World), "Content.MapSaved").ActionCallback;
	EXPECT_TRUE(Save());
	Editor.bSaves = false;
	EXPECT_FALSE(Save());
	EXPECT_EQ(Editor.Saved, 2);
	World.Path = "/Temp/Untitled_1.Untitled";
	EXPECT_EQ(CheckOne("Cave", "Content.MapSaved", &World),
		"Error" + Title +
			"  ContentNeverSaved: The open map has never been saved.\n"
			"  ContentNeverSavedRemedy: Save it into Plugins/Cave/Content/ - only files on disk get cooked.\n");
	World.Path.clear();
	EXPECT_EQ(CheckOne("Cave", "Content.MapSaved", &World), "");
}

TEST_F(FContentChecks, MapThatIsGoneSinceItWasScanned)
{
	Project.AddMod("Cave", {"Maps/Hall", "Gate"});
	Project.Write("Plugins/Cave/Content/Odd.Name.umap", Project.Read("Plugins/Cave/Content/Gate.umap"));
	Scan();
	std::string Row = CheckOne("Cave", "Content.CookPathResolves");
	EXPECT_TRUE(Row.starts_with(std::string("Pass") + Resolvable)) << Row;
	struct FNoPackages : QVStandalone::FPackages
	{
		using FPackages::FPackages;
		bool TryConvertLongPackageNameToFilename(std::string_view, std::string&, std::string_view) const override
		{
			return false;
		}
		FQVLoadedAsset LoadAsset(const FQVAssetData&) const override { return {}; }
	} None({}, {}, Engine.GetPlugins());
	Engine.Interfaces.Packages = &None;
	Row = CheckOne("Cave", "Content.CookPathResolves");
	EXPECT_TRUE(Row.starts_with(std::string("Error") + Resolvable +
								"  ContentCookPathFail: Could not resolve: Gate "
								"(tried /Cave/Gate"))
		<< Row;
	EXPECT_NE(Row.find("); Hall (tried /Cave/Maps/Hall"), std::string::npos) << Row;
	EXPECT_TRUE(Row.ends_with("  ContentCookPathRemedy: The export will refuse to run. The map may have been moved or "
							  "deleted since it was scanned.\n"));
	EXPECT_EQ(Find(Check("Cave"), "Content.PathConsistency").Children[0].Detail.ToString(),
		"cook: \nmanifest: /Game/Cave/Gate\nmounts at: /Cave/Gate");
}

TEST_F(FContentChecks, LevelsThatTheGameCannotLoad)
{
	Project.AddMod("Cave", {"Maps/Vault", "Maps/Yard", "Maps/Zoo"});
	Scan();
	QVTest::FTaggedRegistry Registry(Engine.GetAssetRegistry());
	Registry.Tags = {"Vault LevelIsPartitioned", "Zoo LevelIsPartitioned", "Vault LevelIsUsingExternalActors",
		"Yard LevelIsUsingExternalActors"};
	Engine.Interfaces.AssetRegistry = &Registry;
	FQVDiagnosticFindings Findings = Check("Cave");
	EXPECT_EQ(Describe(Findings, "Content.WorldPartition"),
		"Error Content.WorldPartition\n"
		"  ContentWPTitle: No World Partition maps\n"
		"  ContentWPFail: World Partition map(s): Vault, Zoo\n"
		"  ContentWPRemedy: PakLoader cannot load World Partition maps. Recreate these as standard levels.\n");
	EXPECT_EQ(Describe(Findings, "Content.ExternalActors"),
		"Warning Content.ExternalActors\n"
		"  ContentOFPATitle: No external actors\n"
		"  ContentOFPAFail: Map(s) using One File Per Actor: Vault, Yard\n"
		"  ContentOFPARemedy: External actors live under __ExternalActors__ and do not survive the pak mount. Turn off "
		"One File Per Actor for these levels.\n");
	Registry.Tags = {};
	Findings = Check("Cave");
	EXPECT_EQ(Find(Findings, "Content.WorldPartition").Severity, EQVDiagSeverity::Pass);
	EXPECT_EQ(Describe(Findings, "Content.ExternalActors"), "");
}

TEST_F(FContentChecks, ViolationsAreChildren)
{
	Project.AddMod("Cave", {"Maps/Hall"});
	PutRedirector("/Cave/Old", "/Cave/New");
	PutRedirector("/Cave/Older", "/Cave/New");
	Scan();
	EXPECT_EQ(CheckOne("Cave", "Content.Security"),
		"Error Content.Security\n"
		"  ContentSecurityTitle: Content allowed in a packed map\n"
		"  ContentSecurityFail: 2 unsupported item(s) in this map.\n"
		"  ContentSecurityRemedy: Packing is blocked until these are removed. The game refuses to load a map "
		"containing them.\n"
		"    Error Content.Security.Unsupported Asset\n"
		"      Unsupported Asset\n"
		"      /Cave/Old.Old  (/Script/CoreUObject.ObjectRedirector)\n"
		"    Error Content.Security.Unsupported Asset\n"
		"      Unsupported Asset\n"
		"      /Cave/Older.Older  (/Script/CoreUObject.ObjectRedirector)\n");
}

TEST_F(FContentChecks, SublevelsThatAreNotLoadedAndClassesThatAreNotThere)
{
	Project.AddMod("Cave", {"Maps/Hall"});
	Scan();
	World.Streaming = {{"/Cave/Maps/Lights", false}, {"/Cave/Maps/Sound", true}, {"/Cave/Maps/Far", false}};
	struct FNoClasses : IQVClasses
	{
		const IQVClass* FindClass(std::string_view) override { return nullptr; }
		const IQVClass* LoadClass(std::string_view) override { return nullptr; }
	} None;
	Engine.Interfaces.Classes = &None;
	const FQVDiagnosticFindings Findings = Check("Cave", &World);
	EXPECT_EQ(Describe(Findings, "Content.RequiredActorsSublevels"),
		"Info Content.RequiredActorsSublevels\n"
		"  RequiredSublevelsTitle: Sublevels not counted\n"
		"  RequiredSublevelsDetail: Not loaded: /Cave/Maps/Lights, /Cave/Maps/Far\n"
		"  RequiredSublevelsRemedy: The rows above only counted actors in loaded levels. Load these and refresh before "
		"trusting them.\n");
	EXPECT_EQ(Describe(Findings, "Content.RequiredActorsUnresolved"),
		"Info Content.RequiredActorsUnresolved\n"
		"  RequiredUnresolvedTitle: Some map checks did not run\n"
		"  RequiredUnresolvedDetail: Not present in this editor: /Script/QUARVEL.MapCheckpointTrigger, "
		"/Script/QUARVEL.MapCheckpointTrigger, /Script/Engine.PlayerStart, /Script/QUARVEL.MapEndTrigger\n"
		"  RequiredUnresolvedRemedy: Your QUARVEL plugin is older than these checks. Update it, or these conditions go "
		"unchecked.\n");
}

TEST_F(FContentChecks, LevelBlueprintCanBeFixedFromTheDialog)
{
	struct FScriptClass : IQVClass
	{
		std::string GetName() const override { return "Hall_C"; }
		std::string GetPackageName() const override { return "/Cave/Maps/Hall"; }
		bool IsChildOf(std::string_view) const override { return true; }
		void GetFunctions(std::vector<FQVFunction>& Out) const override { Out = {{"Open", 24}, {"Idle", 0}}; }
		bool HasEnumProperty(std::string_view, std::string_view) const override { return false; }
	};
	struct FScriptActor : IQVActor
	{
		FScriptClass Class;
		std::string GetName() const override { return "Hall_C_1"; }
		const IQVClass* GetClass() const override { return &Class; }
		bool IsTransient() const override { return false; }
		bool IsEditorOnly() const override { return false; }
		std::optional<bool> IsEnumPropertySetTo(std::string_view, std::string_view) const override { return {}; }
	};
	struct FScriptLevel : IQVLevel
	{
		FScriptActor Script;
		void GetActors(std::vector<const IQVActor*>& Out) const override { Out = {&Script}; }
		const IQVActor* GetLevelScriptActor() const override { return &Script; }
	};
	struct FScriptWorld : QVTest::FBareWorld
	{
		FScriptLevel Level;
		const IQVLevel* GetPersistentLevel() const override { return &Level; }
	} Scripted;
	Project.AddMod("Cave", {"Maps/Hall"});
	Scan();
	const FQVDiagnosticFindings Findings = Check("Cave", &Scripted);
	const FQVDiagnosticFinding& Security = Find(Findings, "Content.Security");
	ASSERT_EQ(Security.Children.size(), 1U);
	EXPECT_EQ(Describe(Security.Children[0]),
		"Error Content.Security.Level Blueprint\n"
		"  Level Blueprint\n"
		"  Level Blueprint has executable code in function 'Open' (24 bytes)\n"
		"  SecurityAutoFixable: This one can be fixed automatically from the Play or Package dialog.\n");
}
