// SPDX-License-Identifier: MIT
#include "Export/QVMapAssetImporter.h"

#include "Content/QVMapReferenceAudit.h"
#include "Core/QVPath.h"
#include "Engine/QVSlowTask.h"
#include "Export/QVMapImportPlan.h"
#include "Export/QVMapImportRestore.h"
#include "Export/QVMapImportScope.h"
#include "Standalone/Engine/OsPath.h"
#include "Tests/Support/ContentProject.h"
#include "Tests/Support/TestPrograms.h"

#include <filesystem>
#include <numeric>
#include <set>

namespace
{
/** Cave uses content of the project and of another plugin. */
struct FAssetImporter : QVTest::FContentTest
{
	void Begin(const QVTest::FReferences& OfHall)
	{
		Project.AddMod("Cave", {});
		Project.AddMod("Tools", {"Maps/Test"});
		PutMap("/Cave/Hall", OfHall);
	}

	/** Path and bytes of all that a user owns. */
	std::string Snapshot() const
	{
		std::string Text;
		for (const char* Root : {"Content", "Plugins"})
		{
			for (const std::string& File : Project.FilesIn(Root))
			{
				Text += File + ":" + Project.Read(File) + "\n";
			}
		}
		return Text;
	}

	/** Sorted; what leads to code is left out. */
	static std::string References(const char* Package)
	{
		std::vector<FQVPackageDependency> Found;
		FQVEngine::Get().AssetRegistry->GetDependencies(FQVName(Package), EQVDependencyQuery::All, Found);
		std::set<std::string> Lines;
		for (const FQVPackageDependency& Each : Found)
		{
			Lines.insert((Each.bHard ? "" : "soft ") + Each.Package.ToString() + "\n");
		}
		Lines.erase("/Script/Engine\n");
		return std::accumulate(Lines.begin(), Lines.end(), std::string());
	}

	/** Without what the audit says. */
	std::string LoggedByImport()
	{
		const std::string All = Logged();
		std::string Text;
		for (const std::string_view Line : FQVString::NonEmptyLines(All))
		{
			Text += Line.find("Reference audit for") == std::string_view::npos ? std::string(Line) + "\n" : "";
		}
		return Text;
	}
};
} // namespace

TEST_F(FAssetImporter, BringsInWhatTheMapNeedsAndPutsAllBack)
{
	Begin({"/Game/Rock", "soft /Tools/Moss", "/Engine/Grid", "/Cave/Own"});
	PutMesh("/Cave/Own", {"/Game/Rock"});
	PutMesh("/Game/Rock", {"/Game/Stein_Größe", "/QUARVEL/Gun"}, 5000);
	PutMesh("/Game/Stein_Größe", {"/Game/Rock", "soft /Game/Never"}); // they refer to one another
	PutMesh("/Tools/Moss");
	PutMesh("/Tools/Unused");
	Scan();
	Logged();
	const std::string Before = Snapshot();
	{
		const FQVImportScope Scope("Cave");
		const FQVImportResult& Result = Scope.GetResult();
		ASSERT_TRUE(Result.bSuccess) << Result.ErrorMessage;
		EXPECT_EQ(Result.Imported.size(), 3U);
		EXPECT_EQ(Result.Backups.size(), 2U);
		EXPECT_EQ(LoggedByImport(),
			"Warning: QVMap: /Game/Never is referenced but not on disk. Packing anyway: nothing "
			"reaches it through a hard "
			"runtime reference, so the cook would not have taken it.\n"
			"QVMap: Importing 3 external package(s) into Cave, repointing 2 package(s)\n"
			"QVMap: Imported 3 package(s) into Cave for this pack\n");
		EXPECT_EQ(References("/Cave/Hall"),
			"/Cave/Own\n/Cave/_QVImported/Game/Rock\n/Engine/Grid\nsoft /Cave/_QVImported/Tools/Moss\n");
		EXPECT_EQ(References("/Cave/_QVImported/Game/Rock"), "/Cave/_QVImported/Game/Stein_Größe\n/QUARVEL/Gun\n");
		EXPECT_EQ(References("/Cave/_QVImported/Game/Stein_Größe"), "/Cave/_QVImported/Game/Rock\nsoft /Game/Never\n");
		const FQVReferenceAudit Audit = FQVMapReferenceAudit::AuditReferences("Cave");
		ASSERT_EQ(Audit.UntrustedExternal.size(), 1U);
		EXPECT_EQ(Audit.UntrustedExternal[0].Package, FQVName("/Game/Never"));
	}
	EXPECT_EQ(LoggedByImport(), "QVMap: Restored Cave after packing (3 copy, 2 rewritten)\n");
	EXPECT_EQ(Snapshot(), Before);
	EXPECT_EQ(Project.FilesIn("Saved/QVPak/Temp"), std::vector<std::string>());
	EXPECT_EQ(References("/Cave/Hall"), "/Cave/Own\n/Engine/Grid\n/Game/Rock\nsoft /Tools/Moss\n");
}

TEST_F(FAssetImporter, NamesThatEndInANumberAreFoundInTheTableOfNames)
{
	Begin({"/Game/Rock_7", "/Game/Höhle_12", "soft /Game/Rock_8", "/Game/Rock_07"});
	for (const char* Package : {"/Game/Rock_7", "/Game/Rock_8", "/Game/Rock_07", "/Game/Höhle_12"})
	{
		PutMesh(Package);
	}
	Scan();
	const std::string Before = Snapshot();
	{
		const FQVImportScope Scope("Cave");
		EXPECT_TRUE(Scope.GetResult().bSuccess) << Scope.GetResult().ErrorMessage;
		EXPECT_EQ(Scope.GetResult().Imported.size(), 4U);
	}
	EXPECT_EQ(Snapshot(), Before);
}

TEST_F(FAssetImporter, ChangesNothingWhereThereIsNothingToDo)
{
	Begin({"/Engine/Grid", "/QUARVEL/Gun", "/Game/QUARVEL/Sky"});
	Scan();
	Logged();
	const FQVImportResult Result = FQVMapAssetImporter::BringInExternalAssets("Cave");
	EXPECT_TRUE(Result.bSuccess);
	EXPECT_TRUE(Result.Imported.empty() && Result.Backups.empty());
	EXPECT_EQ(LoggedByImport(), "");
	EXPECT_FALSE(Project.Exists("Saved/QVPak/Temp/ImportBackup/Cave"));
}

TEST_F(FAssetImporter, RefusesWhatTheCookWouldMissAndNamesTenAtMost)
{
	QVTest::FReferences Many;
	for (int Number = 0; Number < 12; ++Number)
	{
		Many.push_back(QVPrintf("/Game/Gone%02d", 11 - Number));
	}
	Begin({"/Game/Rock"});
	PutMesh("/Game/Rock", Many);
	Scan();
	Logged();
	const std::string Before = Snapshot();
	const FQVImportResult Result = FQVMapAssetImporter::BringInExternalAssets("Cave");
	EXPECT_FALSE(Result.bSuccess);
	EXPECT_EQ(Result.ErrorMessage,
		"12 asset(s) the map needs are neither on disk nor open in the editor, so there is nothing to pack for them. "
		"The "
		"map would load with them missing.\n\nCommon causes: content deleted or moved after it was placed in the map, "
		"or "
		"a material that samples a texture which was never imported.\n\nMissing (10 of 12):\n  /Game/Gone00\n  "
		"/Game/Gone01\n  /Game/Gone02\n  /Game/Gone03\n  /Game/Gone04\n  /Game/Gone05\n  /Game/Gone06\n  "
		"/Game/Gone07\n  /Game/Gone08\n  /Game/Gone09");
	EXPECT_EQ(LoggedByImport(), "Error: QVMap: 12 referenced package(s) are not on disk, refusing to pack Cave\n");
	EXPECT_EQ(Snapshot(), Before);
}

TEST_F(FAssetImporter, FollowsRedirectorsToWhatTheyMean)
{
	Begin({"/Game/OldRock", "/Game/Pile"});
	PutMesh("/Game/Stone");
	PutRedirector("/Game/MidRock", "/Game/Stone");
	PutRedirector("/Game/OldRock", "/Game/MidRock", "ObjectRedirector");
	PutMesh("/Game/Pile", {"/Game/OldRock"});
	Scan();
	const std::string Before = Snapshot();
	{
		const FQVImportScope Scope("Cave");
		ASSERT_TRUE(Scope.GetResult().bSuccess) << Scope.GetResult().ErrorMessage;
		const FQVReferenceAudit Audit = FQVMapReferenceAudit::AuditReferences("Cave");
		EXPECT_TRUE(Audit.UntrustedExternal.empty() && Audit.LeftoverRedirectors.empty());
	}
	EXPECT_EQ(Snapshot(), Before);

	PutMap("/Cave/Hall", {"/Game/MidRock"}); // nothing but a redirector leads out
	Scan();
	const FQVImportScope Scope("Cave");
	ASSERT_TRUE(Scope.GetResult().bSuccess) << Scope.GetResult().ErrorMessage;
	EXPECT_EQ(References("/Cave/Hall"), "/Cave/_QVImported/Game/Stone\n");
}

TEST_F(FAssetImporter, FollowsThroughOutsidePackagesIntoTheModAndOutAgain)
{
	Begin({"/Game/Rock"});
	PutMesh("/Game/Rock", {"/Cave/Deep"});
	PutMesh("/Cave/Deep", {"/Game/Moss"});
	PutMesh("/Game/Moss");
	Scan();
	const std::string Before = Snapshot();
	{
		const FQVImportScope Scope("Cave");
		ASSERT_TRUE(Scope.GetResult().bSuccess) << Scope.GetResult().ErrorMessage;
		EXPECT_EQ(References("/Cave/Deep"), "/Cave/_QVImported/Game/Moss\n");
	}
	EXPECT_EQ(Snapshot(), Before);
}

TEST_F(FAssetImporter, LevelsKeepTheirExtension)
{
	Begin({"/Game/Sub", "/Game/Rock"});
	PutMap("/Game/Sub", {"/Game/Rock"});
	PutMesh("/Game/Rock");
	Scan();
	std::string Before = Snapshot();
	{
		const FQVImportScope Scope("Cave");
		ASSERT_TRUE(Scope.GetResult().bSuccess) << Scope.GetResult().ErrorMessage;
		EXPECT_TRUE(Project.Exists(FileOf("/Cave/_QVImported/Game/Sub", ".umap")));
	}
	EXPECT_EQ(Snapshot(), Before);

	// a level in a file that says asset: saving it would make another file
	Project.Write(FileOf("/Cave/Odd"), Project.Read(FileOf("/Cave/Hall", ".umap")));
	Project.Write(FileOf("/Cave/Odd", ".umap.txt"), "");
	PutMap("/Cave/Hall", {"/Cave/Odd"});
	Scan();
	Before = Snapshot();
	const FQVImportResult Result = FQVMapAssetImporter::BringInExternalAssets("Cave");
	EXPECT_FALSE(Result.bSuccess);
	EXPECT_NE(Result.ErrorMessage.find("it does not have the extension of what it holds"), std::string::npos)
		<< Result.ErrorMessage;
	EXPECT_EQ(Snapshot(), Before);
}

namespace
{
/** A user who cancels when so many steps are done. */
struct FCancelling : IQVSlowTasks
{
	int Steps = 0;

	struct FTask : IQVSlowTask
	{
		int& Left;
		explicit FTask(int& InLeft)
			: Left(InLeft)
		{
		}
		bool ShouldCancel() const override { return Left-- <= 0; }
	};
	std::unique_ptr<IQVSlowTask> Begin(float, const FQVText&) override { return std::make_unique<FTask>(Steps); }
};
} // namespace

TEST_F(FAssetImporter, ModFolderMayBeALink)
{
	QV_SKIP_ON_WINDOWS("the standard library makes no links here");
	Begin({"/Game/Rock"});
	PutMesh("/Game/Rock");
	const std::filesystem::path Link = QVStandalone::ToOsPath(Project.At("Plugins/Cave"));
	const std::filesystem::path Elsewhere = QVStandalone::ToOsPath(Project.At("Saved/Shared"));
	std::filesystem::create_directories(Elsewhere);
	std::filesystem::rename(Link, Elsewhere / "Cave");
	std::filesystem::create_directory_symlink(Elsewhere / "Cave", Link);
	Scan();
	const std::string Before = Project.Read("Saved/Shared/Cave/Content/Hall.umap");
	{
		const FQVImportScope Scope("Cave");
		ASSERT_TRUE(Scope.GetResult().bSuccess) << Scope.GetResult().ErrorMessage;
		EXPECT_NE(Project.Read("Saved/Shared/Cave/Content/Hall.umap"), Before);
	}
	EXPECT_EQ(Project.Read("Saved/Shared/Cave/Content/Hall.umap"), Before);
	EXPECT_TRUE(std::filesystem::is_symlink(Link));
	EXPECT_EQ(Project.FilesIn("Saved/Shared/Cave/Content"), std::vector<std::string>{"Hall.umap"});
}

TEST_F(FAssetImporter, CancelledImportIsUndone)
{
	Begin({"/Game/Rock", "/Game/Moss"});
	PutMesh("/Game/Rock");
	PutMesh("/Game/Moss");
	Scan();
	const std::string Before = Snapshot();
	FCancelling Tasks;
	Engine.Interfaces.SlowTasks = &Tasks;
	for (const int Steps : {0, 1, 2})
	{
		Tasks.Steps = Steps;
		const FQVImportResult Result = FQVMapAssetImporter::BringInExternalAssets("Cave");
		EXPECT_EQ(Result.ErrorMessage, "Cancelled.");
		EXPECT_EQ(Snapshot(), Before);
		EXPECT_FALSE(Project.Exists("Saved/QVPak/Temp/ImportBackup/Cave"));
	}
	Engine.Interfaces.SlowTasks = nullptr;
}

TEST_F(FAssetImporter, ImportThatCannotBeUndoneSaysSoAndIsNotOverwritten)
{
	Begin({"/Game/Rock"});
	PutMesh("/Game/Rock");
	Scan();
	const std::string Before = Snapshot();
	int Saves = 0;
	Files.Refuse = [&Saves](std::string_view Operation, std::string_view Path)
	{
		Saves += Operation == "save" && Path.ends_with("import.json") ? 1 : 0;
		return Saves >= 2 && Operation == "copy" && Path.find("0000_") != std::string_view::npos;
	};
	{
		const FQVImportScope Scope("Cave");
		EXPECT_TRUE(Scope.GetResult().bSuccess);
	}
	EXPECT_NE(Complaints().find("FAILED to restore"), std::string::npos);
	const FQVImportResult Refused = FQVMapAssetImporter::BringInExternalAssets("Cave");
	EXPECT_NE(Refused.ErrorMessage.find("An earlier pack of 'Cave' did not finish"), std::string::npos)
		<< Refused.ErrorMessage;
	Files.Refuse = nullptr;
	std::vector<std::string> Recovered;
	EXPECT_TRUE(FQVMapImportRestore::RecoverInterruptedImport("Cave", Recovered));
	EXPECT_EQ(Snapshot(), Before);
}

TEST_F(FAssetImporter, EveryStepThatFailsLeavesTheProjectAsItWas)
{
	Begin({"/Game/Rock"});
	PutMesh("/Game/Rock");
	Scan();
	const std::string Before = Snapshot();
	const struct
	{
		const char* Operation;
		const char* Path;
		const char* Message;
	} Cases[] = {
		{"create", "ImportBackup/Cave",
			"Could not create the backup folder: <Project>/Saved/QVPak/Temp/ImportBackup/Cave"},
		{"copy", "Hall.umap",
			"Could not back up '<Project>/Plugins/Cave/Content/Hall.umap' before packing. Nothing was changed."},
		{"save", "import.json",
			"Could not write the import manifest to <Project>/Saved/QVPak/Temp/ImportBackup/Cave/import.json. Nothing "
			"was "
			"changed."},
		{"lock", "Cave.lock", "'Cave' is being packed by another run of QVMap."},
	};
	for (const auto& Case : Cases)
	{
		Files.Refuse = [&Case](std::string_view Operation, std::string_view Path)
		{ return Operation == Case.Operation && Path.ends_with(Case.Path); };
		const FQVImportResult Result = FQVMapAssetImporter::BringInExternalAssets("Cave");
		EXPECT_FALSE(Result.bSuccess);
		EXPECT_EQ(Project.Mask(Result.ErrorMessage).substr(0, std::string(Case.Message).size()), Case.Message);
		EXPECT_EQ(Snapshot(), Before);
		Files.Refuse = nullptr;
	}
}

TEST_F(FAssetImporter, ReadOnlyMapStopsThePackAndStaysReadOnly)
{
	Begin({"/Game/Rock"});
	PutMesh("/Game/Rock");
	Scan();
	const std::string Before = Snapshot();
	const std::filesystem::path Map = QVStandalone::ToOsPath(Project.At(FileOf("/Cave/Hall", ".umap")));
	std::filesystem::permissions(Map, std::filesystem::perms::owner_read);
	const auto ReadOnly = std::filesystem::status(Map).permissions();
	{
		const FQVImportScope Scope("Cave");
		EXPECT_EQ(Project.Mask(Scope.GetResult().ErrorMessage),
			"Could not save the map after bringing its content in (could not write "
			"<Project>/Plugins/Cave/Content/Hall.umap). Check that none of the files are read-only, then pack again.");
	}
	EXPECT_EQ(Snapshot(), Before);
	EXPECT_EQ(std::filesystem::status(Map).permissions(), ReadOnly);
	EXPECT_FALSE(Project.Exists("Saved/QVPak/Temp/ImportBackup/Cave"));
}

TEST_F(FAssetImporter, FileThatIsPutBackBehindItsBackStopsThePack)
{
	Begin({"/Game/Rock", "/Game/Moss"});
	PutMesh("/Game/Rock");
	PutMesh("/Game/Moss");
	Scan();
	const std::string Before = Snapshot();
	const std::string Map = FileOf("/Cave/Hall", ".umap");
	const std::string Old = Project.Read(Map);
	int Saves = 0;
	// the manifest's second write comes between saving and verifying
	Files.Refuse = [&](std::string_view Operation, std::string_view Path)
	{
		if (Operation == "save" && Path.ends_with("import.json") && ++Saves == 2)
		{
			Project.Write(Map, Old);
		}
		return false;
	};
	Logged();
	FQVImportResult Result = FQVMapAssetImporter::BringInExternalAssets("Cave");
	EXPECT_FALSE(Result.bSuccess);
	EXPECT_NE(Result.ErrorMessage.find("does not mention 2 of them:\n\n  /Cave/_QVImported/Game/"), std::string::npos)
		<< Result.ErrorMessage;
	EXPECT_NE(Complaints().find("Error: QVMap: Post-save verification failed for 2 package(s)\n"), std::string::npos);
	EXPECT_EQ(Snapshot(), Before);

	Result = {};
	Saves = 0;
	Files.Refuse = [&](std::string_view Operation, std::string_view Path)
	{
		if (Operation == "save" && Path.ends_with("import.json") && ++Saves == 2)
		{
			Project.Remove(FileOf("/Cave/_QVImported/Game/Moss"));
		}
		return false;
	};
	EXPECT_EQ(FQVMapAssetImporter::BringInExternalAssets("Cave").ErrorMessage,
		"1 asset(s) copied into the map's folder for packing have been deleted again before the cook could read "
		"them:\n\n"
		"  /Cave/_QVImported/Game/Moss\n\nSomething else is writing to this project while it packs.");
	EXPECT_EQ(Snapshot(), Before);
}

TEST_F(FAssetImporter, CopiesThatAnEarlierRunLeftAreKeptAsideNotLost)
{
	Begin({"/Game/Rock"});
	PutMesh("/Game/Rock");
	PutMesh("/Cave/_QVImported/Game/Rock", {"/Game/Rock"});
	const std::string Left = Project.Read(FileOf("/Cave/_QVImported/Game/Rock"));
	Scan();
	{
		const FQVImportScope Scope("Cave");
		ASSERT_TRUE(Scope.GetResult().bSuccess) << Scope.GetResult().ErrorMessage;
		EXPECT_EQ(Scope.GetResult().Backups.size(), 1U);
	}
	const std::vector<std::string> Kept = Project.FilesIn("Saved/QVPak/Replaced");
	ASSERT_EQ(Kept.size(), 1U);
	EXPECT_EQ(Project.Read("Saved/QVPak/Replaced/" + Kept[0]), Left);
}

TEST_F(FAssetImporter, PlanTellsTheSameAndTouchesNothing)
{
	Begin({"/Game/Rock", "soft /Game/Never"});
	PutMesh("/Game/Rock", {"/Game/Moss"});
	PutMesh("/Game/Moss");
	Scan();
	const std::string Before = Snapshot();
	const FQVImportPlan Plan = FQVImportPlan::Make("Cave", FQVImportPlan::EMemoryOnly::Leave);
	EXPECT_TRUE(Plan.bSuccess) << Plan.ErrorMessage;
	EXPECT_EQ(Plan.External.Num(), 2U);
	EXPECT_EQ(Plan.Repoint.Num(), 1U);
	EXPECT_EQ(Plan.Missing.Num(), 1U);
	EXPECT_EQ(Snapshot(), Before);
	EXPECT_FALSE(Project.Exists("Saved/QVPak/Temp"));
}
