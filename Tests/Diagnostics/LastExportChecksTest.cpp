// SPDX-License-Identifier: MIT
#include "Diagnostics/QVMapLastExportChecks.h"

#include "Export/QVMapLastExport.h"
#include "Standalone/Engine/OsPath.h"
#include "Tests/Diagnostics/DiagnosticsTestSupport.h"

#include <filesystem>

namespace fs = std::filesystem;

namespace
{
struct FLastExportChecks : QVTest::FDiagnosticsTest
{
	FQVLastExportRecord Record;

	FLastExportChecks()
	{
		Record.PluginName = "Cave";
		Record.Timestamp = Clock.Now();
		Record.bSuccess = true;
		Record.PakPath = Project.At("Saved/QVPak/Output/Cave_1.pak");
		Record.LogPath = Project.At("Saved/QVPak/Logs/Cave.log");
		Record.MapsCooked = {"/Cave/Hall"};
		Record.FilesPacked = 12;
	}

	std::string Check(const char* Mod = "cave")
	{
		FQVDiagnosticOptions Options;
		Options.ModName = Mod;
		FQVDiagnosticFindings Findings;
		FQVMapLastExportChecks::CheckLastExport(Options, Findings);
		for (const FQVDiagnosticFinding& Each : Findings)
		{
			EXPECT_EQ(Each.Category, EQVDiagCategory::LastExport);
		}
		return Describe(Findings);
	}
	void Store() const { ASSERT_TRUE(FQVMapLastExport::WriteLastExportRecord(Record)); }
	/** A file of the project, so many seconds older than the other ones. */
	void Age(const char* File, int Seconds) const
	{
		const fs::path Path = QVStandalone::ToOsPath(Project.At(File));
		fs::last_write_time(Path, fs::last_write_time(Path) - std::chrono::seconds(Seconds));
	}
};
} // namespace

TEST_F(FLastExportChecks, ThePakAndItsAge)
{
	Store();
	Project.AddMod("Cave", {"Maps/Hall"});
	Project.Write("Saved/QVPak/Output/Cave_1.pak", std::string(2048, 'p'));
	Project.Write("Saved/QVPak/Logs/Cave.log", "done");
	Age("Plugins/Cave/Content/Maps/Hall.umap", 1000);
	const std::string Head = "Pass Export.Result\n"
							 "  ExportResultTitle: Last export succeeded\n"
							 "  ExportSucceeded: 'Cave' was exported Nov 21, 2026, 6:05:09 PM.\n"
							 "Pass Export.Pak\n"
							 "  ExportPakTitle: Pak still there\n"
							 "  ExportPakThere: <Project>/Saved/QVPak/Output/Cave_1.pak (2 KB)\n"
							 "  [OpenFolder: Open Folder] OpenFolder <Project>/Saved/QVPak/Output\n"
							 "Info Export.Content\n"
							 "  ExportContentTitle: What the pak holds\n";
	const std::string Plain = "  ExportContent: 12 file(s) of 1 map(s).\n";
	const std::string Log = "Pass Export.Log\n"
							"  ExportLogTitle: Export log still there\n"
							"  <Project>/Saved/QVPak/Logs/Cave.log\n"
							"  [OpenLog: Open Log] OpenFile <Project>/Saved/QVPak/Logs/Cave.log\n";
	EXPECT_EQ(Check(), Head + Plain +
						   "Pass Export.UpToDate\n"
						   "  ExportAgeTitle: Pak newer than the map\n"
						   "  ExportAgePass: No file of the map has changed since.\n" +
						   Log);
	EXPECT_EQ(Check(""), Check());
	Project.Write("Plugins/Cave/Content/Rock.uasset", "new");
	Age("Saved/QVPak/Output/Cave_1.pak", 500);
	Record.bFilterUnusedActive = true;
	Record.FilesSkipped = 3;
	Store();
	EXPECT_EQ(Check(), Head +
						   "  ExportContentFiltered: 12 file(s) of 1 map(s); 3 unused file(s) were left out.\n"
						   "Info Export.UpToDate\n"
						   "  ExportAgeTitle: Pak newer than the map\n"
						   "  ExportAgeChanged: 1 file(s) of the map have changed since, the last was Rock.uasset.\n"
						   "  ExportAgeRemedy: Export again to have the changes in the pak.\n" +
						   Log);
}

TEST_F(FLastExportChecks, WhatIsGone)
{
	Store();
	const std::string Text = Check();
	EXPECT_NE(Text.find("Info Export.Pak\n"
						"  ExportPakTitle: Pak still there\n"
						"  ExportPakGone: No longer there: <Project>/Saved/QVPak/Output/Cave_1.pak\n"
						"  ExportPakGoneRemedy: Export again to get a new one.\n"),
		std::string::npos)
		<< Text;
	EXPECT_TRUE(Text.ends_with("Info Export.Log\n"
							   "  ExportLogTitle: Export log still there\n"
							   "  ExportLogGone: No longer there: <Project>/Saved/QVPak/Logs/Cave.log\n"));
	EXPECT_EQ(Text.find("Export.UpToDate"), std::string::npos);
}

TEST_F(FLastExportChecks, AnExportThatFailed)
{
	Record.bSuccess = false;
	Record.FailedStage = "cooking";
	Record.ErrorMessage = "Cook failed with return code 3";
	Record.LogPath.clear();
	Store();
	EXPECT_EQ(Check(),
		"Info Export.Result\n"
		"  ExportResultTitle: Last export succeeded\n"
		"  ExportFailed: The export of 'Cave' Nov 21, 2026, 6:05:09 PM failed while cooking: Cook failed with return "
		"code 3\n"
		"  ExportFailedRemedy: Remove the reason and export again.\n"
		"Info Export.Log\n"
		"  ExportLogTitle: Export log still there\n"
		"  ExportLogNone: The export wrote no log.\n");
}

TEST_F(FLastExportChecks, NoRecordOfThisMap)
{
	const std::string Title = " Export.Record\n  ExportRecordTitle: Last export known\n";
	EXPECT_EQ(Check(), "Info" + Title + "  ExportNone: Nothing has been exported from this project yet.\n");
	Store();
	EXPECT_EQ(
		Check("Harbor"), "Info" + Title + "  ExportOther: The last export was of 'Cave', Nov 21, 2026, 6:05:09 PM.\n");
	Project.Write("Saved/QVPak/Logs/last_export.json", "{");
	EXPECT_EQ(
		Check(), "Info" + Title +
					 "  ExportUnreadable: The record could not be read: <Project>/Saved/QVPak/Logs/last_export.json\n"
					 "  ExportUnreadableRemedy: The next export writes a new one.\n"
					 "  [OpenRecord: Open Record] OpenFile <Project>/Saved/QVPak/Logs/last_export.json\n");
}
