// SPDX-License-Identifier: MIT
#include "Content/QVMapSecurityScanner.h"

#include "Engine/QVBlueprint.h"
#include "Standalone/Formats/Package/LevelPackages.h"
#include "Tests/Support/ContentProject.h"
#include "Tests/Support/ScriptedWorld.h"

using namespace QVTest;
using namespace QVFormats;

namespace
{
const std::string Start = "QVMap Security: Scanning plugin 'Cave' for map eligibility...\n";
const std::string Pass = "QVMap Security: PASS -- plugin qualifies as a MAP\n";
const std::string NoPartition = "QVMap Security: World Partition check -- not present (OK)\n";
const std::string Clean = "QVMap Security: No Level Blueprint present (clean)\n";

std::string Checked(int Assets, bool bFilter = false)
{
	return QVPrintf("QVMap Security: Asset class check -- %d assets in /Cave (dependency filter %s)\n", Assets,
		bFilter ? "ON" : "OFF");
}
std::string Audited(int Trusted, int Of)
{
	return QVPrintf("QVMap Security: Actor audit for Cave -- %d/%d trusted\n", Trusted, Of);
}
std::string Fail(int Count)
{
	return QVPrintf("Warning: QVMap Security: FAIL -- %d violation(s), classified as MOD\n", Count);
}

struct FSecurityTest : FContentTest
{
	FScriptedWorld World;

	FSecurityTest() { Project.AddMod("Cave", {}); }

	void PutAsset(const std::string& Package, const std::string& ClassPath)
	{
		FAssetPackageSpec Spec;
		Spec.PackageName = Package;
		Spec.ClassPath = ClassPath;
		Put(FileOf(Package), BuildAssetPackage(Spec));
	}
	void PutLevel(const FLevelPackageSpec& Spec) { Put(FileOf(Spec.PackageName, ".umap"), BuildLevelPackage(Spec)); }
	void Put(const std::string& Path, const std::vector<std::byte>& Bytes)
	{
		Project.Write(Path, {reinterpret_cast<const char*>(Bytes.data()), Bytes.size()});
	}

	/** Violations, one to a line: "category: detail", with "!" behind one that can be fixed. */
	std::string Scan(const IQVWorld* Of, const FQVNameSet& Used = {})
	{
		Recording.Take();
		const FQVSecurityScanResult Result = FQVMapSecurityScanner::ScanForMapEligibility("Cave", Of, Used);
		EXPECT_EQ(Result.bIsMap, Result.Violations.empty());
		std::string Text;
		for (const FQVSecurityViolation& Each : Result.Violations)
		{
			Text += Each.Category + ": " + Each.Detail + (Each.bAutoFixable ? " !" : "") + "\n";
		}
		return Text;
	}
	void ScanFiles() { FContentTest::Scan(); }
};

/** An editor whose level blueprint notes what is done to it. */
struct FStrippingEditor : QVStandalone::FEditor, IQVBlueprint, IQVGraph
{
	std::string Story;
	bool bHasBlueprint = true;
	bool bCompiles = true;
	std::string Refusal;

	IQVBlueprint* GetLevelScriptBlueprint(const IQVLevel&, FQVText& OutRefusal) override
	{
		OutRefusal = Refusal.empty() ? FQVText() : FQVText::FromString(Refusal);
		return bHasBlueprint && Refusal.empty() ? this : nullptr;
	}
	void BeginTransaction(const FQVText& Title) override
	{
		Story += "begin " + Title.GetNamespace() + "/" + Title.GetKey() + " " + Title.ToString() + "; ";
	}
	void EndTransaction() override { Story += "end"; }
	void GetEventGraphs(std::vector<IQVGraph*>& Out) override { Out = {nullptr, this}; }
	void GetFunctionGraphs(std::vector<IQVGraph*>& Out) override { Out = {this}; }
	bool Compile() override
	{
		Story += "compile; ";
		return bCompiles;
	}
	void MarkPackageDirty() override { Story += "dirty; "; }
	/** Of blueprint and graph alike. */
	void Modify() override { Story += "modify; "; }
	void GetNodes(std::vector<FQVGraphNode*>& Out) const override { Out = {Node(8), Node(16)}; }
	void RemoveNode(FQVGraphNode* Removed) override
	{
		Story += QVPrintf("remove %d; ", reinterpret_cast<std::uintptr_t>(Removed));
	}
	static FQVGraphNode* Node(std::uintptr_t Number) { return reinterpret_cast<FQVGraphNode*>(Number); }
};
} // namespace

TEST_F(FSecurityTest, JudgesAssetsByTheirClass)
{
	PutMap("/Cave/Maps/Hall");
	PutAsset("/Cave/Rock", "/SCRIPT/Engine.staticmesh");
	PutAsset("/Cave/BP_Gate", "/Script/Engine.Blueprint");
	PutAsset("/Cave/Data", "/Cave/BP_Data.BP_Data_C");
	PutAsset("/Cavern/Other", "/Script/Engine.Blueprint");
	ScanFiles();
	EXPECT_EQ(Scan(nullptr), "Unsupported Asset: /Cave/BP_Gate.BP_Gate  (/Script/Engine.Blueprint)\n"
							 "Unsupported Asset: /Cave/Data.Data  (/Cave/BP_Data.BP_Data_C)\n");
	EXPECT_EQ(Logged(),
		Start + Checked(4) +
			"Warning: QVMap Security: Disallowed asset class '/Script/Engine.Blueprint' at /Cave/BP_Gate.BP_Gate\n"
			"Warning: QVMap Security: Disallowed asset class '/Cave/BP_Data.BP_Data_C' at /Cave/Data.Data\n" +
			Fail(2));
	EXPECT_EQ(Scan(nullptr, {FQVName("/cave/ROCK"), FQVName("/Cave/Maps/Hall")}), "");
	EXPECT_EQ(Logged(), Start + Checked(4, true) +
							"Verbose: QVMap Security: Skipping unreferenced asset /Cave/BP_Gate.BP_Gate\n" +
							"Verbose: QVMap Security: Skipping unreferenced asset /Cave/Data.Data\n" + Pass);
}

TEST_F(FSecurityTest, PassesOverTheClassOfALevelBlueprint)
{
	PutLevel({.PackageName = "/Cave/Maps/Hall", .bScript = true});
	PutAsset("/Cave/Loose", "/Script/Engine.BlueprintGeneratedClass");
	ScanFiles();
	const std::string Refused = "Unsupported Asset: /Cave/Loose.Loose  (/Script/Engine.BlueprintGeneratedClass)\n";
	EXPECT_EQ(Scan(nullptr), Refused);
	EXPECT_EQ(Logged(EQVLogVerbosity::Log),
		Start + Checked(3) +
			"Warning: QVMap Security: Disallowed asset class '/Script/Engine.BlueprintGeneratedClass' at "
			"/Cave/Loose.Loose\n"
			"QVMap Security: Skipping Level Blueprint class: /Cave/Maps/Hall.Hall_C (validated in Phase 3b)\n" +
			Fail(1));
	EXPECT_EQ(Scan(nullptr, {FQVName("/Cave/Loose")}), Refused);
	const std::string Lines = Logged();
	EXPECT_NE(Lines.find("Skipping unreferenced asset /Cave/Maps/Hall.Hall_C"), std::string::npos) << Lines;
	EXPECT_EQ(Lines.find("Phase 3b"), std::string::npos) << Lines;
}

TEST_F(FSecurityTest, RefusesAnyByteOfLevelScript)
{
	FScriptedClass& Script = World.AddClass("/Cave/Maps/Hall", "Hall_C");
	Script.Parents = {"/Script/Engine.LevelScriptActor"};
	Script.Functions = {{"Idle", 0}};
	World.Level.ScriptActor = &World.Add("Hall_C_1", &Script);
	EXPECT_EQ(Scan(&World), "");
	EXPECT_EQ(Logged(), Start + Checked(0) + Audited(0, 0) + NoPartition + Pass);
	Script.Functions = {{"Tick", 1}, {"Idle", 0}, {"Begin", 22}};
	EXPECT_EQ(Scan(&World), "Level Blueprint: Level Blueprint has executable code in function 'Tick' (1 bytes) !\n"
							"Level Blueprint: Level Blueprint has executable code in function 'Begin' (22 bytes) !\n");
	EXPECT_EQ(Logged(), Start + Checked(0) + "Warning: QVMap Security: Level Blueprint bytecode in 'Tick' (1 bytes)\n" +
							"Warning: QVMap Security: Level Blueprint bytecode in 'Begin' (22 bytes)\n" +
							Audited(0, 0) + NoPartition + Fail(2));
}

TEST_F(FSecurityTest, AuditsTheActorsOfThePersistentLevel)
{
	const IQVClass* Mesh = &World.AddClass("/Script/Engine", "StaticMeshActor");
	const IQVClass* Own = &World.AddClass("/game/Props", "BP_Prop_C");
	const IQVClass* Gate = &World.AddClass("/Cave/BP_Gate", "BP_Gate_C");
	World.Level.Actors = {nullptr};
	World.Add("Wall", Mesh);
	World.Add("Prop", Own);
	World.Add("Ghost", Gate).bTransient = true;
	World.Add("Note", Gate).bEditorOnly = true;
	World.Add("Gate_3", Gate);
	World.Add("Lost", nullptr);
	World.Add("Homeless", &World.AddClass("", "Gone_C"));
	World.bWorldPartition = true;
	EXPECT_EQ(Scan(&World),
		"Untrusted Actor: Actor 'Gate_3' uses class 'BP_Gate_C' from untrusted package '/Cave/BP_Gate'\n"
		"World Partition: World Partition maps are not supported for PAK loading. Use a standard sub-level or "
		"single-level "
		"map.\n");
	EXPECT_EQ(Logged(),
		Start + Checked(0) + Clean +
			"Warning: QVMap Security: Untrusted actor 'Gate_3' (class BP_Gate_C, package /Cave/BP_Gate)\n" +
			Audited(2, 5) +
			"Warning: QVMap Security: World Partition detected -- PakLoader v1 does not support WP maps\n" + Fail(2));
	World.bHasLevel = false;
	World.bWorldPartition = false;
	EXPECT_EQ(Scan(&World), "");
	EXPECT_EQ(Logged(), Start + Checked(0) + NoPartition + Pass);
}

TEST_F(FSecurityTest, JudgesAMapFromItsFile)
{
	PutLevel({.PackageName = "/Cave/Maps/Hall",
		.Actors = {{"Gate_0", "/Cave/BP_Gate.BP_Gate_C"}, {"Start_0", "/Script/Engine.PlayerStart"},
			{"Group_0", "/Script/Engine.GroupActor", true}},
		.bScript = true,
		.Functions = {{"Begin", 22}},
		.bPartitioned = true});
	ScanFiles();
	ASSERT_TRUE(Engine.OpenMap("/Cave/Maps/Hall"));
	EXPECT_EQ(Scan(Engine.Interfaces.Editor->GetOpenWorld()),
		"Level Blueprint: Level Blueprint has executable code in function 'Begin' (22 bytes) !\n"
		"Untrusted Actor: Actor 'Gate_0' uses class 'BP_Gate_C' from untrusted package '/Cave/BP_Gate'\n"
		"World Partition: World Partition maps are not supported for PAK loading. Use a standard sub-level or "
		"single-level "
		"map.\n");
	EXPECT_NE(Logged().find(Audited(2, 3)), std::string::npos);
	EXPECT_FALSE(FQVMapSecurityScanner::StripLevelBlueprint(Engine.Interfaces.Editor->GetOpenWorld()));
	EXPECT_TRUE(Logged().starts_with("Error: QVMap Security: Only Unreal Editor can take the code out"));
}

TEST_F(FSecurityTest, StripsALevelBlueprintInOneStep)
{
	FStrippingEditor Editor;
	Engine.Interfaces.Editor = &Editor;
	EXPECT_TRUE(FQVMapSecurityScanner::StripLevelBlueprint(&World));
	EXPECT_EQ(Editor.Story,
		"begin QVMap/StripLevelBP Strip Level Blueprint Code; modify; modify; remove 8; remove 16; modify; remove 8; "
		"remove 16; compile; dirty; end");
	EXPECT_EQ(Logged(), "QVMap Security: Level Blueprint code stripped successfully (Ctrl+Z to undo)\n");
	Editor.bCompiles = false;
	EXPECT_FALSE(FQVMapSecurityScanner::StripLevelBlueprint(&World));
	EXPECT_EQ(Logged(), "Error: QVMap Security: The Level Blueprint keeps its code\n");
	Editor.Story.clear();
	Editor.Refusal = "not here";
	EXPECT_FALSE(FQVMapSecurityScanner::StripLevelBlueprint(&World));
	Editor.Refusal.clear();
	Editor.bHasBlueprint = false;
	EXPECT_TRUE(FQVMapSecurityScanner::StripLevelBlueprint(&World));
	World.bHasLevel = false;
	EXPECT_FALSE(FQVMapSecurityScanner::StripLevelBlueprint(&World));
	EXPECT_FALSE(FQVMapSecurityScanner::StripLevelBlueprint(nullptr));
	EXPECT_EQ(Editor.Story, "");
	EXPECT_EQ(Logged(), "Error: QVMap Security: not here\nQVMap Security: No Level Blueprint to strip\nError: QVMap "
						"Security: No persistent "
						"level\nError: QVMap Security: StripLevelBlueprint called with null world\n");
}

TEST(SecurityLists, HoldWhatEveryGameHas)
{
	static constexpr const char* Allowed[] = {"/Script/Engine.Texture", "/Script/Engine.Texture2D",
		"/Script/Engine.TextureCube", "/Script/Engine.TextureRenderTarget2D", "/Script/Engine.Texture2DArray",
		"/Script/Engine.VolumeTexture", "/Script/Engine.TextureLightProfile", "/Script/Engine.TextureCubeArray",
		"/Script/Engine.TextureRenderTargetCube", "/Script/Engine.StaticMesh", "/Script/Engine.SkeletalMesh",
		"/Script/Engine.Skeleton", "/Script/Engine.PhysicsAsset", "/Script/Engine.AnimSequence",
		"/Script/Engine.Material", "/Script/Engine.MaterialInstance", "/Script/Engine.MaterialInstanceConstant",
		"/Script/Engine.MaterialFunction", "/Script/Engine.MaterialParameterCollection",
		"/Script/PhysicsCore.PhysicalMaterial", "/Script/Engine.MaterialFunctionInstance",
		"/Script/Engine.MaterialFunctionMaterialLayer", "/Script/Engine.MaterialFunctionMaterialLayerInstance",
		"/Script/Engine.SubsurfaceProfile", "/Script/Engine.PhysicalMaterialMask", "/Script/Engine.SoundWave",
		"/Script/Engine.SoundCue", "/Script/Engine.SoundAttenuation", "/Script/Engine.SoundConcurrency",
		"/Script/Engine.ReverbEffect", "/Script/Niagara.NiagaraSystem", "/Script/Niagara.NiagaraEmitter",
		"/Script/MetasoundEngine.MetaSoundSource", "/Script/MetasoundEngine.MetaSoundPatch", "/Script/Engine.DataTable",
		"/Script/Engine.CurveTable", "/Script/Engine.CurveFloat", "/Script/Engine.CurveVector",
		"/Script/Engine.CurveLinearColor", "/Script/Engine.CurveLinearColorAtlas", "/Script/Engine.Font",
		"/Script/Engine.FontFace", "/Script/Foliage.FoliageType_InstancedStaticMesh",
		"/Script/Landscape.LandscapeLayerInfoObject", "/Script/Landscape.LandscapeGrassType", "/Script/Engine.World",
		"/Script/Engine.Level", "/Script/Engine.MapBuildDataRegistry"};
	const FQVNameSet& Classes = FQVMapSecurityScanner::GetAllowedAssetClasses();
	ASSERT_EQ(Classes.Num(), std::size(Allowed));
	// in this order, too
	EXPECT_TRUE(std::equal(Classes.begin(), Classes.end(), std::begin(Allowed),
		[](FQVName Class, const char* Path) { return Class == FQVName(Path); }));
	for (const char* Refused : {"/Script/Engine.Blueprint", "/Script/Engine.BlueprintGeneratedClass",
			 "/Script/Engine.DataAsset", "/Script/UMG.WidgetBlueprint", "/Script/CoreUObject.ObjectRedirector"})
	{
		EXPECT_FALSE(Classes.Contains(FQVName(Refused))) << Refused;
	}
	const std::pair<const char*, bool> Paths[] = {{"/Script/Engine", true}, {"/engine/Basic", true},
		{"/Niagara/X", true}, {"/game/quarvel/X", true}, {"/QUARVEL/Maps/X", true}, {"/Game/Props", false},
		{"/QUARVEL", false}, {"/Cave/Script/X", false}, {"/Game/QUARVELX/Y", false}};
	for (const auto& [Path, bTrusted] : Paths)
	{
		EXPECT_EQ(FQVMapSecurityScanner::IsTrustedPackagePath(Path), bTrusted) << Path;
	}
}
