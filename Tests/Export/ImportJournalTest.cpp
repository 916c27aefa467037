// SPDX-License-Identifier: MIT
#include "Export/QVMapImportJournal.h"

#include "Core/QVPath.h"
#include "Export/QVMapImportRestore.h"
#include "Standalone/Engine/OsPath.h"
#include "Tests/Support/ContentProject.h"

#include <filesystem>
#include <set>

namespace
{
constexpr const char* Folder = "Saved/QVPak/Temp/ImportBackup/Cave";
constexpr const char* Hall = "Plugins/Cave/Content/Hall.umap";
constexpr const char* Copy = "Plugins/Cave/Content/_QVImported/Game/Rock.uasset";

/** A pack of Cave that was killed behind its last save: one map is repointed, one copy is there. */
struct FImportJournal : QVTest::FContentTest
{
	std::vector<std::string> Recovered;
	std::string Error;

	FImportJournal()
	{
		Project.AddMod("Cave", {});
		Begin();
	}

	void Begin() const
	{
		Project.Write(Hall, "repointed");
		Project.Write(Copy, "copy");
		Project.Write(BackupOf("0000_Hall.umap"), "as it was");
	}

	static std::string BackupOf(std::string_view Name) { return FQVPath::Combine(Folder, Name); }

	FQVImportResult Import() const
	{
		FQVImportResult Result;
		Result.Backups.push_back({FQVName("/Cave/Hall"), Project.At(Hall), Project.At(BackupOf("0000_Hall.umap")),
			FQVMapForeignFiles::StampOf(Project.At(Hall))});
		Result.Imported.push_back({FQVName("/Game/Rock"), FQVName("/Cave/_QVImported/Game/Rock"), Project.At(Copy),
			FQVMapForeignFiles::StampOf(Project.At(Copy))});
		return Result;
	}
	void Write() const
	{
		const FQVImportResult Result = Import();
		EXPECT_TRUE(FQVMapImportJournal::WriteImportManifest("Cave", Result));
		FQVMapImportJournal::WriteStamps("Cave", Result);
	}
	std::string Manifest() const
	{
		std::string Text;
		EXPECT_TRUE(Files.LoadFileToString(Text, Project.At(BackupOf("import.json"))));
		return Text;
	}
	void WriteManifest(std::string_view Text) const { Project.Write(BackupOf("import.json"), Text); }
	bool Recover()
	{
		Recovered.clear();
		return FQVMapImportRestore::RecoverInterruptedImports(Recovered);
	}
	void ExpectWhole()
	{
		EXPECT_EQ(Project.Read(Hall), "as it was");
		EXPECT_FALSE(Project.Exists(Copy));
		EXPECT_FALSE(Project.Exists(Folder));
	}
	void ExpectUntouched()
	{
		EXPECT_EQ(Project.Read(Hall), "repointed");
		EXPECT_TRUE(Project.Exists(Copy));
		EXPECT_TRUE(Project.Exists(BackupOf("0000_Hall.umap")));
	}
};
} // namespace

TEST_F(FImportJournal, ManifestIsWrittenToTheByteAndReadBack)
{
	Write();
	EXPECT_EQ(Project.Mask(Manifest()),
		"{\r\n"
		"\t\"schema_version\": 1,\r\n"
		"\t\"plugin\": \"Cave\",\r\n"
		"\t\"created\": \"" +
			Clock.UtcNow().ToIso8601() +
			"\",\r\n"
			"\t\"backups\": [\r\n"
			"\t\t{\r\n"
			"\t\t\t\"package\": \"/Cave/Hall\",\r\n"
			"\t\t\t\"original\": \"<Project>/Plugins/Cave/Content/Hall.umap\",\r\n"
			"\t\t\t\"backup\": \"<Project>/Saved/QVPak/Temp/ImportBackup/Cave/0000_Hall.umap\"\r\n"
			"\t\t}\r\n"
			"\t],\r\n"
			"\t\"imported\": [\r\n"
			"\t\t{\r\n"
			"\t\t\t\"source\": \"/Game/Rock\",\r\n"
			"\t\t\t\"imported\": \"/Cave/_QVImported/Game/Rock\",\r\n"
			"\t\t\t\"file\": \"<Project>/Plugins/Cave/Content/_QVImported/Game/Rock.uasset\"\r\n"
			"\t\t}\r\n"
			"\t]\r\n"
			"}");
	FQVImportResult Read;
	ASSERT_TRUE(FQVMapImportJournal::ReadImportManifest("Cave", Read));
	const FQVImportResult Written = Import();
	ASSERT_EQ(Read.Backups.size(), 1U);
	EXPECT_EQ(Read.Backups[0].Package, Written.Backups[0].Package);
	EXPECT_EQ(Read.Backups[0].Original, Written.Backups[0].Original);
	EXPECT_EQ(Read.Backups[0].Backup, Written.Backups[0].Backup);
	EXPECT_EQ(Read.Backups[0].Saved, Written.Backups[0].Saved);
	ASSERT_EQ(Read.Imported.size(), 1U);
	EXPECT_EQ(Read.Imported[0].Source, Written.Imported[0].Source);
	EXPECT_EQ(Read.Imported[0].File, Written.Imported[0].File);
}

TEST_F(FImportJournal, RecoveryPutsBackWhatAKilledRunLeftAndDoesSoOnce)
{
	Write();
	EXPECT_TRUE(Recover());
	ExpectWhole();
	EXPECT_EQ(Recovered, std::vector<std::string>{"Cave"});
	EXPECT_EQ(Complaints(),
		"Warning: QVMap: A previous pack of 'Cave' did not finish. Its original files have been put back.\n");
	EXPECT_FALSE(Project.Exists("Saved/QVPak/Replaced"));
	EXPECT_TRUE(Recover());
	EXPECT_TRUE(Recovered.empty());
	EXPECT_EQ(Complaints(), "");
}

TEST_F(FImportJournal, ManifestThatCannotBeReliedOnIsLeftAlone)
{
	const std::string Outside = Project.EngineDir() + "/Content/Grid.uasset";
	const std::string Backup = Project.At(BackupOf("0000_Hall.umap"));
	const auto Entry = [](const std::string& Original, const std::string& Kept)
	{
		return QVPrintf("{\"schema_version\":1,\"backups\":[{\"original\":\"%s\",\"backup\":\"%s\"}],\"imported\":[]}",
			Original, Kept);
	};
	const auto Copied = [](const std::string& File)
	{ return QVPrintf("{\"schema_version\":1,\"imported\":[{\"file\":\"%s\"}]}", File); };
	const struct
	{
		std::string Manifest;
		const char* Complaint;
	} Cases[] = {
		{"", "is unreadable"},
		{"{\"schema_version\":1,\"backups\":[", "is unreadable"},
		{"[1]", "is unreadable"},
		{"{}", "is schema 0, expected 1 - leaving it alone"},
		{"{\"schema_version\":2}", "is schema 2, expected 1 - leaving it alone"},
		{Entry(Outside, Backup), "names a path outside"},
		{Entry(Project.At("Plugins/../../Other.uasset"), Backup), "names a path outside"},
		{Entry("Hall.umap", Backup), "names a path outside"},
		{Entry(Project.ProjectDir(), Backup), "names a path outside"},
		{Entry(Project.At(Hall), Outside), "names a path outside"},
		{Entry(Project.At(Hall), Project.At("MapWork.uproject")), "names a path outside"},
		{Copied(Outside), "names a path outside"},
		{Copied(Project.At("Plugins/Cave/../../../x")), "names a path outside"},
	};
	for (const auto& Case : Cases)
	{
		WriteManifest(Case.Manifest);
		for (int Start = 0; Start < 2; ++Start) // it warns each time
		{
			EXPECT_TRUE(Recover());
			EXPECT_NE(Complaints().find(Case.Complaint), std::string::npos) << Case.Manifest;
		}
		EXPECT_TRUE(Recovered.empty());
		ExpectUntouched();
	}
	Project.Remove(BackupOf("import.json"));
	EXPECT_TRUE(Recover());
	EXPECT_EQ(Complaints(), "");
	ExpectUntouched();
}

TEST_F(FImportJournal, RecoveryMakesDoWithWhatAManifestHas)
{
	WriteManifest("{\"schema_version\":1,\"backups\":[7,\"x\",null],\"imported\":{}}");
	EXPECT_TRUE(Recover());
	EXPECT_EQ(Recovered.size(), 1U);
	EXPECT_EQ(Project.Read(Hall), "repointed");
	EXPECT_TRUE(Project.Exists(Copy)) << "it was not named";
}

TEST_F(FImportJournal, RecoveryPassesOverABackupThatIsGone)
{
	Write();
	Project.Remove(BackupOf("0000_Hall.umap"));
	Project.Remove(BackupOf("saved.json"));
	EXPECT_TRUE(Recover());
	EXPECT_EQ(Project.Read(Hall), "repointed");
	EXPECT_FALSE(Project.Exists(Folder));
}

TEST_F(FImportJournal, FailedRecoveryIsTakenUpAgain)
{
	const struct
	{
		const char* Operation;
		const char* Path;
		const char* Complaint;
	} Cases[] = {
		{"copy", "0000_", "Error: QVMap: Could not restore <Project>/Plugins/Cave/Content/Hall.umap from a previous"},
		{"delete", "_QVImported", "Error: QVMap: Could not delete a previous run's imported copy <Project>/Plugins/"},
	};
	for (const auto& Case : Cases)
	{
		Begin();
		Write();
		Files.Refuse = [&Case](std::string_view Operation, std::string_view Path)
		{ return Operation == Case.Operation && Path.find(Case.Path) != std::string_view::npos; };
		EXPECT_FALSE(Recover());
		EXPECT_TRUE(Project.Exists(BackupOf("import.json")));
		EXPECT_TRUE(Project.Exists(BackupOf("0000_Hall.umap")));
		EXPECT_NE(Complaints().find(Case.Complaint), std::string::npos);
		Files.Refuse = nullptr;
		EXPECT_TRUE(Recover());
		ExpectWhole();
	}
}

TEST_F(FImportJournal, NothingThatSomebodyElseWroteIsLost)
{
	Write();
	Project.Write(Hall, "saved in an editor since");
	EXPECT_TRUE(Recover());
	ExpectWhole();
	std::vector<std::string> Kept = Project.FilesIn("Saved/QVPak/Replaced");
	ASSERT_EQ(Kept.size(), 1U);
	EXPECT_EQ(FQVPath::GetCleanFilename(Kept[0]), "Hall.umap");
	EXPECT_NE(Complaints().find("may hold changes that are not from the pack. A copy is kept as "), std::string::npos);

	Begin();
	Write();
	Project.Write(Hall, "and once more, in the same second");
	Project.Write(Copy, "a copy that was edited");
	EXPECT_TRUE(Recover());
	ExpectWhole();
	Kept = Project.FilesIn("Saved/QVPak/Replaced");
	ASSERT_EQ(Kept.size(), 3U);
	std::set<std::string> Texts;
	for (const std::string& File : Kept)
	{
		Texts.insert(Project.Read("Saved/QVPak/Replaced/" + File));
	}
	EXPECT_EQ(Texts, (std::set<std::string>{
						 "a copy that was edited", "and once more, in the same second", "saved in an editor since"}));
}

TEST_F(FImportJournal, WorkAfterAHalfDoneRecoveryIsNotUndoneByTheNextOne)
{
	for (const bool bInPlace : {true, false})
	{
		Begin();
		Write();
		Files.Refuse = [](std::string_view Operation, std::string_view Path)
		{ return Operation == "delete" && Path.find("_QVImported") != std::string_view::npos; };
		EXPECT_FALSE(Recover());
		EXPECT_EQ(Project.Read(Hall), "as it was");
		Files.Refuse = nullptr;
		if (!bInPlace)
		{
			Project.Remove(Hall);
		}
		Project.Write(Hall, "worked on since");
		EXPECT_TRUE(Recover());
		const std::vector<std::string> Kept = Project.FilesIn("Saved/QVPak/Replaced");
		EXPECT_TRUE(Project.Read(Hall) == "worked on since" ||
					(Kept.size() == 1 && Project.Read("Saved/QVPak/Replaced/" + Kept[0]) == "worked on since"));
		EXPECT_FALSE(Project.Exists(Copy));
		EXPECT_FALSE(Project.Exists(Folder));
	}
}

TEST_F(FImportJournal, WhatCannotBeKeptIsNotReplaced)
{
	Write();
	Project.Write(Hall, "saved in an editor since");
	Project.Write("Saved/QVPak/Replaced", "in the way");
	EXPECT_FALSE(Recover());
	EXPECT_EQ(Project.Read(Hall), "saved in an editor since");
	EXPECT_TRUE(Project.Exists(BackupOf("0000_Hall.umap")));
	Project.Remove("Saved/QVPak/Replaced");
	EXPECT_TRUE(Recover());
	ExpectWhole();
}

TEST_F(FImportJournal, CopiesStayWhileAPackageWithoutItsBackupRefersToThem)
{
	Write();
	Project.Remove(BackupOf("0000_Hall.umap"));
	EXPECT_FALSE(Recover());
	EXPECT_TRUE(Project.Exists(Copy));
	EXPECT_TRUE(Project.Exists(BackupOf("import.json")));
	EXPECT_NE(Complaints().find("Could not restore"), std::string::npos);
}

TEST_F(FImportJournal, SavesThatWereCutOffLeaveNothing)
{
	Write();
	Project.Write("Plugins/Cave/Content/Hall.umap.4711-3.tmp", "half");
	Project.Write("Plugins/Cave/Content/_QVImported/Game/Moss.uasset.4711-4.tmp", "half");
	Project.Write("Plugins/Cave/Content/Other.umap.4711-3.tmp", "not ours");
	EXPECT_TRUE(Recover());
	ExpectWhole();
	EXPECT_EQ(
		Project.FilesIn("Plugins/Cave/Content"), (std::vector<std::string>{"Hall.umap", "Other.umap.4711-3.tmp"}));
	EXPECT_FALSE(Project.Exists("Plugins/Cave/Content/_QVImported"));
}

TEST_F(FImportJournal, ProjectThatWasMovedIsRecoveredWhereItIsNow)
{
	Write();
	const std::string Old = Project.ProjectDir();
	WriteManifest(FQVString::ReplaceAll(Manifest(), Old, "/mnt/Früher/MapWork"));
	EXPECT_TRUE(Recover());
	ExpectWhole();
}

TEST_F(FImportJournal, ModThatAnotherRunHasIsLeftAlone)
{
	Write();
	{
		const FQVMapPackLock Other("Cave");
		ASSERT_TRUE(Other.IsHeld());
		EXPECT_FALSE(FQVMapPackLock("cave2").IsHeld() && FQVMapPackLock("Cave").IsHeld());
		EXPECT_TRUE(Recover());
		ExpectUntouched();
	}
	EXPECT_TRUE(Recover());
	ExpectWhole();
}

TEST_F(FImportJournal, RestoreSaysWhatCouldNotBePutBackAndKeepsTheJournal)
{
	const FQVImportResult Result = Import();
	Write();
	Files.Refuse = [](std::string_view Operation, std::string_view Path)
	{ return Operation == "copy" && Path.ends_with("0000_Hall.umap"); };
	FQVMapImportRestore::RestoreAfterPacking("Cave", Result, Error);
	EXPECT_EQ(Project.Mask(Error),
		"'Cave' could not be put back automatically, so the imported copies have been left in place rather than "
		"deleted. The originals are in <Project>/Saved/QVPak/Temp/ImportBackup/Cave.");
	EXPECT_EQ(Complaints(), "Error: QVMap: FAILED to restore <Project>/Plugins/Cave/Content/Hall.umap from "
							"<Project>/Saved/QVPak/Temp/ImportBackup/Cave/0000_Hall.umap\n"
							"Error: QVMap: " +
								Project.Mask(Error) + "\n");
	ExpectUntouched();

	Files.Refuse = [](std::string_view Operation, std::string_view Path)
	{ return Operation == "delete" && Path.ends_with("Rock.uasset"); };
	FQVMapImportRestore::RestoreAfterPacking("Cave", Result, Error);
	EXPECT_EQ(Project.Mask(Error), "Some of 'Cave' could not be put back automatically. The originals are kept in "
								   "<Project>/Saved/QVPak/Temp/ImportBackup/Cave.");
	EXPECT_EQ(Project.Read(Hall), "as it was");
	EXPECT_TRUE(Project.Exists(BackupOf("import.json")));

	Files.Refuse = nullptr;
	FQVMapImportRestore::RestoreAfterPacking("Cave", Result, Error);
	EXPECT_EQ(Error, "");
	ExpectWhole();
	Logged();

	FQVMapImportRestore::RestoreAfterPacking("Cave", {}, Error);
	EXPECT_EQ(Logged(), "") << "nothing was imported";
}

TEST_F(FImportJournal, BackupThatIsMissingIsSaid)
{
	Project.Remove(BackupOf("0000_Hall.umap"));
	FQVMapImportRestore::RestoreAfterPacking("Cave", Import(), Error);
	EXPECT_NE(Complaints().find("Backup missing, cannot restore <Project>/Plugins/Cave/Content/Hall.umap"),
		std::string::npos);
	EXPECT_TRUE(Project.Exists(Copy));
}

TEST_F(FImportJournal, ReadOnlyOriginalIsRestoredAllTheSame)
{
	Write();
	std::filesystem::permissions(QVStandalone::ToOsPath(Project.At(Hall)), std::filesystem::perms::owner_read);
	EXPECT_TRUE(Recover());
	ExpectWhole();
}
