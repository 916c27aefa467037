// SPDX-License-Identifier: MIT
#include "Export/QVMapLastExport.h"
#include "Export/QVMapManifest.h"
#include "Tests/Support/ToolkitTest.h"

using namespace QVTest;
using FManifestTest = FToolkitTest;
using FLastExportTest = FToolkitTest;

namespace
{
constexpr std::string_view ManifestFile = "Saved/QVPak/Temp/Cave_manifest.json";
constexpr std::string_view RecordFile = "Saved/QVPak/Logs/last_export.json";

std::vector<FQVMapInfo> TwoMaps()
{
	return {{"Attic", "Attic.umap", "Maps/Attic.umap", "/Game/Cave/Maps/Attic", "/Cave/Maps/Attic"},
		{"Hall", "Hall.umap", "Maps/Hall.umap", "/Game/Cave/Maps/Hall", "/Game/Maps/Hall"}};
}

FQVLastExportRecord FullRecord()
{
	FQVLastExportRecord Record;
	Record.SchemaVersion = 77; // the file says 1 whatever stands here
	Record.PluginName = "Cave";
	Record.Version = 3;
	Record.Timestamp = FFixedClock().Now();
	Record.bSuccess = true;
	Record.FailedStage = "packing";
	Record.ErrorMessage = "a\nb";
	Record.PakPath = "/p/Cave_1.pak";
	Record.PakSizeBytes = 5'000'000'001;
	Record.LogPath = "/l.log";
	Record.CookedDir = "/c";
	Record.MapsCooked = {"/Cave/A", "/Cave/B"};
	Record.MapsManifest = {"/Game/Cave/A"};
	Record.bFilterUnusedActive = true;
	Record.FilesPacked = 4;
	Record.FilesSkipped = 5;
	Record.Analysis = {6, 7, 8, 9, 10, 11, 12, 13'000'000'000, {"Content/x"}};
	return Record;
}

const std::string FullText =
	"{\r\n\t\"schema_version\": 1,\r\n\t\"plugin_name\": \"Cave\",\r\n\t\"version\": 3,\r\n\t\"timestamp\": "
	"\"2026-11-21T18:05:09.123Z\",\r\n\t\"success\": true,\r\n\t\"failed_stage\": \"packing\",\r\n\t\"error_message\": "
	"\"a\\nb\",\r\n\t\"pak_path\": \"/p/Cave_1.pak\",\r\n\t\"pak_size_bytes\": 5000000001,\r\n\t\"log_path\": "
	"\"/l.log\",\r\n\t\"cooked_dir\": \"/c\",\r\n\t\"maps_cooked\": "
	"[\r\n\t\t\"/Cave/A\",\r\n\t\t\"/Cave/B\"\r\n\t],\r\n"
	"\t\"maps_manifest\": [\r\n\t\t\"/Game/Cave/A\"\r\n\t],\r\n\t\"filter_unused_active\": "
	"true,\r\n\t\"files_packed\": "
	"4,\r\n\t\"files_skipped\": 5,\r\n\t\"plugin_files\": 6,\r\n\t\"base_game_files\": 7,\r\n\t\"engine_files\": "
	"8,\r\n\t\"other_files\": 9,\r\n\t\"plugin_bytes\": 10,\r\n\t\"base_game_bytes\": 11,\r\n\t\"engine_bytes\": "
	"12,\r\n\t\"other_bytes\": 13000000000,\r\n\t\"base_game_sample\": [\r\n\t\t\"Content/x\"\r\n\t]\r\n}";

const std::string EmptyText =
	"{\r\n\t\"schema_version\": 1,\r\n\t\"plugin_name\": \"\",\r\n\t\"version\": 0,\r\n\t\"timestamp\": "
	"\"0001-01-01T00:00:00.000Z\",\r\n\t\"success\": false,\r\n\t\"failed_stage\": \"\",\r\n\t\"error_message\": "
	"\"\",\r\n\t\"pak_path\": \"\",\r\n\t\"pak_size_bytes\": 0,\r\n\t\"log_path\": \"\",\r\n\t\"cooked_dir\": \"\",\r\n"
	"\t\"maps_cooked\": [],\r\n\t\"maps_manifest\": [],\r\n\t\"filter_unused_active\": false,\r\n\t\"files_packed\": "
	"0,\r\n\t\"files_skipped\": 0,\r\n\t\"plugin_files\": 0,\r\n\t\"base_game_files\": 0,\r\n\t\"engine_files\": "
	"0,\r\n\t\"other_files\": 0,\r\n\t\"plugin_bytes\": 0,\r\n\t\"base_game_bytes\": 0,\r\n\t\"engine_bytes\": "
	"0,\r\n\t\"other_bytes\": 0,\r\n\t\"base_game_sample\": []\r\n}";
} // namespace

TEST_F(FManifestTest, IsWrittenByteForByte)
{
	Project.Write("Cave.uplugin", R"({"Description": "Dark \"and\" deep", "CreatedBy": "Zoe", "Author": "nobody"})");
	std::string Path;
	EXPECT_TRUE(FQVMapManifest::GenerateManifest(
		"Cave", TwoMaps(), 1, Project.At("Cave.uplugin"), Path, "/Game/Cave/Maps/Gone"));
	EXPECT_EQ(Path, Project.At(ManifestFile));
	EXPECT_EQ(Project.Read(ManifestFile),
		"{\r\n\t\"ModName\": \"Cave\",\r\n\t\"Version\": 1,\r\n\t\"Author\": \"Zoe\",\r\n\t\"Description\": \"Dark "
		"\\\"and\\\" deep\",\r\n\t\"Maps\": [\r\n\t\t{\r\n\t\t\t\"DisplayName\": \"Attic\",\r\n\t\t\t\"AssetPath\": "
		"\"/Game/Cave/Maps/Attic\"\r\n\t\t},\r\n\t\t{\r\n\t\t\t\"DisplayName\": \"Hall\",\r\n\t\t\t\"AssetPath\": "
		"\"/Game/Cave/Maps/Hall\"\r\n\t\t}\r\n\t],\r\n\t\"StartMap\": \"/Game/Cave/Maps/Gone\"\r\n}");
	EXPECT_EQ(Logged(), "QVMap DEBUG: Manifest entry - Map=Attic, AssetPath=/Game/Cave/Maps/Attic\n"
						"QVMap DEBUG: Manifest entry - Map=Hall, AssetPath=/Game/Cave/Maps/Hall\n"
						"QVMap: Manifest StartMap: /Game/Cave/Maps/Gone\n"
						"QVMap: Manifest generated: <Project>/Saved/QVPak/Temp/Cave_manifest.json (2 maps)\n");
}

TEST_F(FManifestTest, TakesFromTheDescriptorWhatIsThere)
{
	const struct
	{
		const char* Descriptor; // null: there is none
		const char* Keys;
	} Cases[] = {
		{nullptr, ""},
		{"{\"CreatedBy\": ", ""},
		{"[1]", ""},
		{"{}", ""},
		{R"({"CreatedBy": "", "Description": ""})", ""},
		{R"({"createdby": "x", "CreatedBy": "Z"})", "\t\"Author\": \"Z\",\r\n"},
		{R"({"CreatedBy": ["Z"], "Description": "d"})", "\t\"Description\": \"d\",\r\n"},
		{"\xEF\xBB\xBF{\"CreatedBy\": \"Z\"}", "\t\"Author\": \"Z\",\r\n"},
	};
	for (const auto& Case : Cases)
	{
		Project.Remove("Cave.uplugin");
		if (Case.Descriptor != nullptr)
		{
			Project.Write("Cave.uplugin", Case.Descriptor);
		}
		std::string Path;
		EXPECT_TRUE(FQVMapManifest::GenerateManifest("Cave", {}, 2, Project.At("Cave.uplugin"), Path, ""));
		EXPECT_EQ(Project.Read(ManifestFile),
			std::string("{\r\n\t\"ModName\": \"Cave\",\r\n\t\"Version\": 2,\r\n") + Case.Keys + "\t\"Maps\": []\r\n}");
		EXPECT_EQ(Complaints(), "");
	}
}

TEST_F(FManifestTest, AFailedWriteLeavesTheEarlierFile)
{
	Project.Write(ManifestFile, "earlier");
	Files.Refuse = [](std::string_view Operation, std::string_view) { return Operation == "save"; };
	std::string Path = "untouched";
	EXPECT_FALSE(FQVMapManifest::GenerateManifest("Cave", TwoMaps(), 1, "", Path, ""));
	EXPECT_EQ(Path, "untouched");
	EXPECT_EQ(Project.Read(ManifestFile), "earlier");
	EXPECT_EQ(
		Complaints(), "Error: QVMap: Failed to write manifest to: <Project>/Saved/QVPak/Temp/Cave_manifest.json\n");
}

TEST_F(FLastExportTest, IsWrittenByteForByteAndReadBack)
{
	EXPECT_EQ(FQVMapLastExport::GetLastExportRecordPath(), Project.At(RecordFile));
	for (const auto& [Record, Text] : {std::pair(FullRecord(), FullText), std::pair(FQVLastExportRecord(), EmptyText)})
	{
		EXPECT_TRUE(FQVMapLastExport::WriteLastExportRecord(Record));
		EXPECT_EQ(Project.Read(RecordFile), Text);
		FQVLastExportRecord Back = FullRecord();
		EXPECT_TRUE(FQVMapLastExport::ReadLastExportRecord(Back));
		EXPECT_EQ(Back.SchemaVersion, 1);
		Project.Remove(RecordFile);
		EXPECT_TRUE(FQVMapLastExport::WriteLastExportRecord(Back));
		EXPECT_EQ(Project.Read(RecordFile), Text);
	}
	Project.Remove("Saved/QVPak/Logs");
	Project.Write("Saved/QVPak/Logs", "a file in the folder's place");
	EXPECT_FALSE(FQVMapLastExport::WriteLastExportRecord(FullRecord()));
	EXPECT_EQ(Logged(), "");
}

TEST_F(FLastExportTest, ReadsOnlyItsOwnSchemaAndToleratesEachField)
{
	FQVLastExportRecord Record = FullRecord();
	EXPECT_FALSE(FQVMapLastExport::ReadLastExportRecord(Record)) << "no file";
	for (const char* Text : {"", "{", "[1]", "{}", R"({"schema_version": 2})", R"({"schema_version": "1"})",
			 R"({"schema_version": 1.5})", R"({"schema_version": null})", R"({"pak_path": "x"})"})
	{
		Project.Write(RecordFile, Text);
		EXPECT_FALSE(FQVMapLastExport::ReadLastExportRecord(Record)) << Text;
	}
	EXPECT_EQ(Record.PluginName, "Cave") << "untouched";

	// all fields of another type, or out of range, or absent
	Project.Write(RecordFile,
		R"({"schema_version": 1, "plugin_name": 5, "version": "3", "timestamp": "soon", "success": "true",)"
		R"( "maps_cooked": "x", "maps_manifest": {}, "pak_size_bytes": 1e300, "files_packed": -1e300, "log_path": null})");
	EXPECT_TRUE(FQVMapLastExport::ReadLastExportRecord(Record));
	EXPECT_TRUE(FQVMapLastExport::WriteLastExportRecord(Record));
	EXPECT_EQ(Project.Read(RecordFile), EmptyText);

	Project.Write(RecordFile, R"({"version": 9, "maps_cooked": ["a", 1, "b"], "schema_version": 1.0})");
	EXPECT_TRUE(FQVMapLastExport::ReadLastExportRecord(Record));
	EXPECT_EQ(Record.Version, 9);
	EXPECT_EQ(Record.MapsCooked, (std::vector<std::string>{"a", "b"}));
}
