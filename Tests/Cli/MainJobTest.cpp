// SPDX-License-Identifier: MIT
#include "Tests/Cli/CliTest.h"

#include "Core/QVPrintf.h"
#include "Core/QVText.h"
#include "Standalone/Engine/OsPath.h"

#include <nlohmann/json.hpp>

using namespace QVTest;
namespace fs = std::filesystem;

namespace
{
constexpr std::string_view StandInNote =
	"note: made with the bundled stand-in tools: content is laid out, not converted, and the game will not load it. "
	"Name an installed engine with --engine.\n";

class FMainJob : public FCliTest
{
protected:
	const fs::path Cooked = "Plugins/Harbor/Saved/Cooked/Windows/SampleMaps/Plugins/Harbor/Content";

	static std::string Number(std::uintmax_t Value) { return FQVText::AsNumber(static_cast<std::int64_t>(Value)); }

	/** What must be in Harbor's pak, by its name there. */
	FTree HarborFiles() const
	{
		FTree Files = ReadFiles(Folder / Cooked);
		Files["manifest.json"] = Get("Saved/QVPak/Temp/Harbor_manifest.json");
		return Files;
	}
};
} // namespace

TEST_F(FMainJob, SampleMapsReleasePackAndBack)
{
	Expect({"sample", "Пример 1"}, 0, "project  <T>/Пример 1/SampleMaps.uproject\n",
		"  next: cd \"<T>/Пример 1\", then qvmap maps, qvmap base-release build, qvmap pack Docks\n");
	Folder /= fs::path(u8"Пример 1");
	Expect({"maps"}, 0,
		"Cave  (1 map)\n  /Cave/Maps/Hall\nHarbor  (2 maps)\n  /Harbor/Maps/Docks\n  /Harbor/Maps/Pier\n", "");

	Expect({"base-release", "status"}, 1, "",
		"error: No base release found at <T>/Пример 1/Releases/1.0.\n  fix: qvmap base-release build\n");
	const FProgramEnd Unanswered = Run({"pack", "Docks"});
	EXPECT_EQ(Unanswered.Code, 3);
	EXPECT_EQ(WithoutProgress(Unanswered.Err),
		"question: Base Release Required\n  The base release (Releases/1.0) hasn't been built yet.\n\n"
		"  It has to be built once before any map can be packed. This cooks the base game and can take a while, but it "
		"only needs to happen once.\n\n  Build it now?\n"
		"  answer: No, as there is nobody to ask\n"
		"  to answer otherwise: --answer BaseReleaseMissingTitle=Yes, or --yes\n");
	Expect({"base-release", "build"}, 0, "base release  <T>/Пример 1/Releases/1.0\n",
		"[cooking 0%] Building base release...\n[cooking 100%] Base release built\n" + std::string(StandInNote));
	const std::string Registry = "Releases/1.0/Windows/Metadata/DevelopmentAssetRegistry.bin";
	Expect({"base-release", "status"}, 0,
		"base release  <T>/Пример 1/Releases/1.0\npackages      5\nregistry      <T>/Пример 1/" + Registry + ", " +
			Number(fs::file_size(Folder / Registry)) + " bytes, <Date> UTC\n",
		"");
	Expect({"maps"}, 0,
		"Cave  (1 map)\n  /Cave/Maps/Hall\nHarbor  (2 maps)\n  /Harbor/Maps/Docks\n  /Harbor/Maps/Pier\n", "");

	const FProgramEnd Packed = Run({"pack", "Docks"});
	ASSERT_EQ(Paks().size(), 1);
	const fs::path Pak = Paks().front();
	const FTree Files = HarborFiles();
	EXPECT_EQ(Files.size(), 12) << "one prop is used by no map";
	EXPECT_EQ(Packed.Code, 0);
	EXPECT_EQ(
		Packed.Out, QVPrintf("pak  <T>/Пример 1/Saved/QVPak/Output/Harbor_<Id>.pak\n     12 file(s) packed, %.2f MB.\n"
							 "log  <T>/Пример 1/Saved/QVPak/Logs/Harbor_<Time>.log\n",
						static_cast<double>(fs::file_size(Pak)) / 1'048'576));
	EXPECT_EQ(WithoutProgress(Packed.Err), StandInNote);

	std::string Listed;
	std::uintmax_t Bytes = 0;
	std::uintmax_t Stored = 0;
	std::uintmax_t Inflated = 0;
	const auto Json =
		nlohmann::json::parse(Run({"pak", "list", QVStandalone::FromOsPath(Pak), "--format", "json"}).Out);
	for (const auto& File : Json["files"])
	{
		const std::string Name = File["path"];
		const std::uintmax_t Size = Files.at(Name).size();
		const std::string Text = Number(Size);
		Listed += std::string(14 - Text.size(), ' ') + Text + "  " + Name + "\n";
		Bytes += Size;
		Stored += File["stored_bytes"].get<std::uintmax_t>();
		Inflated += File["compression"] == "Zlib" ? Size : 0;
	}
	Expect({"pak", "list", QVStandalone::FromOsPath(Pak)}, 0,
		QVPrintf("%s12 files, %s bytes, %s stored; version 11, mounted at ../../../Harbor/Content/\n", Listed,
			Number(Bytes), Number(Stored)),
		"");
	Expect({"pak", "verify", QVStandalone::FromOsPath(Pak)}, 0,
		QVPrintf(
			"<T>/Пример 1/Saved/QVPak/Output/Harbor_<Id>.pak: 12 files, %s bytes hashed, %s bytes inflated: sound\n",
			Number(Stored), Number(Inflated)),
		"");
	Expect({"pak", "extract", QVStandalone::FromOsPath(Pak), "aus gepackt"}, 0,
		QVPrintf("12 files, %s bytes into aus gepackt\n", Number(Bytes)), "");
	ExpectSameFiles(Files, ReadFiles(Folder / "aus gepackt/Harbor/Content"));

	EXPECT_EQ(Run({"pack", "Docks"}).Code, 0);
	ASSERT_EQ(Paks().size(), 1) << "the new pak takes the place of the old one";
	EXPECT_NE(Paks().front(), Pak);
	EXPECT_FALSE(fs::exists(Pak));
}

TEST_F(FMainJob, JsonIsOneDocumentWhateverTheExitCode)
{
	EnterSample();
	const std::string Release = R"("folder": "<T>/Пример 1/Releases/1.0")";
	Expect({"base-release", "status", "--format", "json"}, 1,
		"{\n\t\"schema_version\": 1,\n\t" + Release +
			",\n\t\"exists\": false,\n\t\"usable\": false,\n\t\"up_to_date\": false,\n\t\"registry\": \"\",\n\t"
			"\"registry_bytes\": 0,\n\t\"packages\": 0,\n\t\"problem\": \"No base release found at <T>/Пример "
			"1/Releases/1.0.\"\n}\n",
		"error: No base release found at <T>/Пример 1/Releases/1.0.\n  fix: qvmap base-release build\n");
	Expect({"--engine", "nowhere", "base-release", "build", "--format", "json"}, 1,
		"{\n\t\"schema_version\": 1,\n\t\"error\": \"--engine names <T>/Пример 1/nowhere, which is not a folder: give "
		"the "
		"engine's folder, the one that holds Binaries/Win64\"\n}\n",
		"error: --engine names <T>/Пример 1/nowhere, which is not a folder: give the engine's folder, the one that "
		"holds "
		"Binaries/Win64\n");
	Expect({"-q", "base-release", "build", "--format", "json"}, 0,
		"{\n\t\"schema_version\": 1,\n\t" + Release + "\n}\n", "");
	EXPECT_EQ(nlohmann::ordered_json::parse(Run({"maps", "--format", "json"}).Out).dump(),
		R"({"schema_version":1,"project":"<T>/Пример 1/SampleMaps.uproject","mods":[)"
		R"({"name":"Cave","folder":"<T>/Пример 1/Plugins/Cave","maps":[)"
		R"({"name":"Hall","file":"<T>/Пример 1/Plugins/Cave/Content/Maps/Hall.umap",)"
		R"("game_path":"/Game/Cave/Maps/Hall","package":"/Cave/Maps/Hall"}]},)"
		R"({"name":"Harbor","folder":"<T>/Пример 1/Plugins/Harbor","maps":[)"
		R"({"name":"Docks","file":"<T>/Пример 1/Plugins/Harbor/Content/Maps/Docks.umap",)"
		R"("game_path":"/Game/Harbor/Maps/Docks","package":"/Harbor/Maps/Docks"},)"
		R"({"name":"Pier","file":"<T>/Пример 1/Plugins/Harbor/Content/Maps/Pier.umap",)"
		R"("game_path":"/Game/Harbor/Maps/Pier","package":"/Harbor/Maps/Pier"}]}]})");
	const FProgramEnd Packed = Run({"-q", "pack", "/game/harbor/maps/pier", "--format", "json"});
	EXPECT_EQ(Packed.Err, "");
	nlohmann::ordered_json Result = nlohmann::ordered_json::parse(Packed.Out);
	EXPECT_EQ(Result["pak_bytes"], fs::file_size(Paks().at(0)));
	Result.erase("pak_bytes");
	EXPECT_EQ(Result.dump(),
		R"({"schema_version":1,"mod":"Harbor","map":"/Harbor/Maps/Pier","success":true,"stopped_at":"","failed_stage":"","error":"",)"
		R"("pak":"<T>/Пример 1/Saved/QVPak/Output/Harbor_<Id>.pak","files":12,"map_files":2,"payload_files":7,)"
		R"("shader_archives":1,"filter_unused_active":false,"files_skipped":0,"unpackable_files":[],)"
		R"("log":"<T>/Пример 1/Saved/QVPak/Logs/Harbor_<Time>.log","project_put_back":true,"game":""})");
	const auto Manifest = nlohmann::json::parse(Get("Saved/QVPak/Temp/Harbor_manifest.json"));
	EXPECT_EQ(Manifest["StartMap"], "/Game/Harbor/Maps/Pier");

	const std::string Pak = QVStandalone::FromOsPath(Paks().at(0));
	EXPECT_EQ(nlohmann::json::parse(Run({"pak", "list", Pak, "--format", "json"}).Out)["files"].size(), 12);
	EXPECT_EQ(nlohmann::json::parse(Run({"pak", "verify", Pak, "--format", "json"}).Out)["sound"], true);
	const FProgramEnd Failed = Run({"pack", "Nowhere", "--format", "json"});
	EXPECT_EQ(Failed.Code, 1);
	EXPECT_EQ(nlohmann::ordered_json::parse(Failed.Out).dump(),
		R"({"schema_version":1,"error":"there is no mod or map 'Nowhere': see qvmap maps"})");
}

TEST_F(FMainJob, HowMuchIsToldIsForTheUserToSay)
{
	EnterSample();
	Expect({"-q", "base-release", "build"}, 0, "base release  <T>/Пример 1/Releases/1.0\n", "");
	const FProgramEnd Quiet = Run({"-q", "pack", "docks"});
	EXPECT_EQ(Quiet.Err, "");
	EXPECT_TRUE(Quiet.Out.starts_with("pak  <T>/Пример 1/Saved/QVPak/Output/Harbor_<Id>.pak\n")) << Quiet.Out;

	const FProgramEnd Verbose = Run({"-v", "maps"});
	EXPECT_TRUE(Verbose.Out.starts_with("Cave  (1 map)\n"));
#ifdef _WIN32
	const std::string Record = R"(HKEY_LOCAL_MACHINE\SOFTWARE\EpicGames\Unreal Engine)";
#else
	const std::string Record = "<T>/home/.config/Epic/UnrealEngine/Install.ini";
#endif
	const std::string Searched = "engine: EngineAssociation \"5.4\" in " + Record + ": not listed there\n";
	const std::string Taken = "engine: bundled engine: taken: <Bin>/Engine\n"
							  "LogQVMap: Log: QVMap: ScanMods found 3 plugin directories in <T>/Пример 1/Plugins\n";
	EXPECT_TRUE(Verbose.Err.starts_with(Searched)) << Verbose.Err;
	EXPECT_NE(Verbose.Err.find(Taken, Searched.size()), std::string::npos) << Verbose.Err;
	EXPECT_NE(Get("Saved/Logs/QVMap.log").find("LogQVMap: QVMap: Export complete: "), std::string::npos);
}

TEST_F(FMainJob, ASampleOverwritesNothing)
{
	EnterSample();
	Put("Notes.txt", "mine");
	const FTree Before = ReadFiles(Temp.Path());
	const struct
	{
		FWords Words;
		const char* Error;
	} Cases[] = {
		{{"sample", "."}, "error: <T>/Пример 1 is not empty: name a new folder, so that nothing is overwritten\n"},
		{{"sample", "Notes.txt"}, "error: <T>/Пример 1/Notes.txt is a file: name a new folder\n"},
		{{"sample", "Notes.txt/below"},
			"error: <T>/Пример 1/Notes.txt/below/SampleMaps.uproject could not be written: Not a directory\n"},
	};
	for (const auto& Case : Cases)
	{
		Expect(Case.Words, 1, "", Case.Error);
	}
	ExpectSameFiles(Before, ReadFiles(Temp.Path()));
}
