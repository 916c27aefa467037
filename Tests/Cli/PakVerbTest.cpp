// SPDX-License-Identifier: MIT
#include "Tests/Cli/CliTest.h"
#include "Tests/Support/TestPrograms.h"

#include "Core/QVString.h"

#include <algorithm>
#include <nlohmann/json.hpp>

using namespace QVTest;
namespace fs = std::filesystem;

namespace
{
class FPakVerb : public FCliTest
{
protected:
	void SetUp() override
	{
		WriteBytes(
			Folder / "good.pak", FPakForge().Add("Maps/", "Hall.umap", "a hall").Add("", "manifest.json", "{}").Make());
	}
};
} // namespace

TEST_F(FPakVerb, ABadPakIsNamedAndNothingIsExtracted)
{
	const std::string Good = Get("good.pak");
	Put("empty.pak", "");
	Put("cut.pak", Good.substr(0, Good.size() - 1));
	Put("half.pak", Good.substr(0, Good.size() / 2));
	Put("text.pak", "not a pak at all");
	std::string Index = Good;
	Index[Index.rfind("Cave")] = 'W';
	Put("index.pak", Index);
	fs::create_directory(Folder / "folder.pak");
	const std::string NoMark =
		" is not a pak file: its end does not hold the mark 0x5A6F12E1 where a footer of version 8 to 12 has it\n";
	const std::pair<std::string, std::string> Cases[] = {
		{"missing.pak", " could not be opened: No such file or directory\n"},
		{"empty.pak", " is empty; a pak has a footer of 221 bytes\n"},
		{"cut.pak", NoMark},
		{"half.pak", NoMark},
		{"text.pak", " is too small for a pak: 16 bytes, and the footer alone has 221\n"},
		{"folder.pak", " is not a file\n"},
		{"index.pak", ": the index is damaged: its hash is <Hash>, and <Hash> was expected\n"},
	};
	const FTree Before = ReadFiles(Folder);
	for (const auto& [Pak, Error] : Cases)
	{
		for (const FWords& Words : {FWords{"list", Pak}, FWords{"verify", Pak}, FWords{"extract", Pak, "out"}})
		{
			FWords All = Words;
			All.insert(All.begin(), "pak");
			ExpectFailure(All, "error: " + Pak + Error);
		}
		const FProgramEnd Json = Run({"pak", "verify", Pak, "--format", "json"});
		EXPECT_EQ(nlohmann::json::parse(Json.Out)["error"].get<std::string>() + "\n", Pak + Error);
	}
	ExpectFailure({"pak", "extract", "good.pak", "text.pak"}, "error: text.pak is a file: name a folder\n");
	ExpectSameFiles(Before, ReadFiles(Folder));
}

TEST_F(FPakVerb, ADamagedFileIsTheOnlyOneMissing)
{
	std::string Bytes = Get("good.pak");
	Bytes[Bytes.find("a hall")] = 'A';
	Put("bad.pak", Bytes);
	const std::string Damage = "Maps/Hall.umap: the content is damaged: its hash is <Hash>, and <Hash> was expected\n";
	Expect({"pak", "verify", "bad.pak"}, 1,
		"damaged: " + Damage + "bad.pak: 2 files, 8 bytes hashed, 0 bytes inflated: DAMAGED\n", "");
	Expect({"pak", "extract", "bad.pak", "out"}, 1, "1 file, 2 bytes into out\n",
		"error: bad.pak: 1 of 2 files could not be extracted\n  " + Damage);
	ExpectSameFiles({{"Cave/Content/manifest.json", "{}"}}, ReadFiles(Folder / "out"));

	const auto Json = nlohmann::json::parse(Run({"pak", "verify", "bad.pak", "--format", "json"}).Out);
	EXPECT_EQ(Json["sound"], false);
	EXPECT_EQ(Json["problems"][0]["path"], "Maps/Hall.umap");
	Expect({"pak", "list", "bad.pak"}, 0,
		"             2  manifest.json\n             6  Maps/Hall.umap\n"
		"2 files, 8 bytes, 8 stored; version 11, mounted at ../../../Cave/Content/\n",
		"");
}

TEST_F(FPakVerb, NamesThatClimbOutAreNotWritten)
{
	FPakForge Forge;
	Forge.MountPoint = "../../../";
	Forge.Add("../../", "up.txt", "x").Add("in/../../", "up too.txt", "x").Add("/abs/", "root.txt", "x");
	Forge.Add("C:/", "drive.txt", "x").Add("..\\", "backslash.txt", "x").Add("in/", "side.txt", "good");
	WriteBytes(Folder / "a/b/climbs.pak", Forge.Make());
	Folder /= "a/b";
	const FProgramEnd End = Run({"pak", "extract", "climbs.pak", "out"});
	EXPECT_EQ(End.Code, 1);
	EXPECT_TRUE(End.Err.starts_with("error: climbs.pak: 5 of 6 files could not be extracted\n")) << End.Err;
	EXPECT_EQ(std::count(End.Err.begin(), End.Err.end(), '\n'), 6) << End.Err;
	const FTree All = ReadFiles(Temp.Path());
	EXPECT_EQ(All.size(), 3);
	EXPECT_EQ(All.at("a/b/out/in/side.txt"), "good");
	EXPECT_FALSE(fs::exists("/abs"));

	QV_SKIP_ON_WINDOWS("the standard library makes no links here");
	fs::create_directories(Folder / "out3");
	fs::create_directory_symlink(Temp.Path(), Folder / "out3/in");
	EXPECT_EQ(Run({"pak", "extract", "climbs.pak", "out3"}).Code, 1);
	EXPECT_EQ(ReadFiles(Temp.Path()).size(), 3) << "nor through a link that lies in the folder";
}

TEST_F(FPakVerb, CreateMakesAWholePakOrNone)
{
	Put("src/Maps/Hall.umap", std::string(100'000, 'h'));
	Put("src/läuft 鍾.txt", "x");
	fs::create_directory(Folder / "empty");
	const std::string Here = FQVString::ReplaceAll(Folder.string(), "\\", "/");
	Put("missing.txt", "\"" + Here + "/src/Maps/Hall.umap\" \"../../../a\"\n\"" + Here + "/gone\" \"../../../b\"\n");
	Put("quote.txt", "\"" + Here + "/src/Maps/Hall.umap\" \"../../../a");
	Put("old.pak", "old");
	const FTree Before = ReadFiles(Folder);
	const struct
	{
		FWords Words;
		const char* Error;
	} Cases[] = {
		{{"old.pak", "missing.txt"}, "missing.txt names <T>/gone, which is not a file"},
		{{"old.pak", "quote.txt"}, "quote.txt, line 1: a quote is not closed"},
		{{"old.pak", "empty"}, "empty holds no files: there is nothing to pack"},
		{{"old.pak", "nothing"}, "nothing is not there or cannot be read: expected a folder or a response file"},
		{{"nowhere/new.pak", "src"}, "nowhere/new.pak could not be created: No such file or directory"},
		{{"new.pak", "src", "--mount", "../../../../x"},
			"src/Maps/Hall.umap: destination \"../../../../x/Maps/Hall.umap\" climbs out of its root; \"../../../\" at "
			"its beginning is the most that is allowed"},
	};
	for (const auto& Case : Cases)
	{
		FWords Words = Case.Words;
		Words.insert(Words.begin(), {"pak", "create"});
		ExpectFailure(Words, std::string("error: ") + Case.Error + "\n");
	}
	ExpectSameFiles(Before, ReadFiles(Folder));

	const FProgramEnd Made =
		Run({"-q", "pak", "create", "old.pak", "src", "--mount", "../../../Cave/Content/", "--compress"});
	EXPECT_EQ(Made.Code, 0);
	EXPECT_EQ(Made.Err, "");
	EXPECT_TRUE(Made.Out.starts_with("old.pak: 2 files, 100,001 bytes in, ")) << Made.Out;
	EXPECT_EQ(Run({"pak", "verify", "old.pak"}).Code, 0);
	EXPECT_EQ(Run({"pak", "extract", "old.pak", "back"}).Code, 0);
	ExpectSameFiles(ReadFiles(Folder / "src"), ReadFiles(Folder / "back/Cave/Content"));
}

TEST_F(FPakVerb, AFullDiskLeavesWholeFilesOrNone)
{
	QV_SKIP_ON_WINDOWS("no full disk is played here");
	Put("src/Maps/Hall.umap", std::string(100'000, 'h'));
	Put("src/läuft 鍾.txt", "x");
	Put("old.pak", "old");
	const FTree Before = ReadFiles(Folder);
	MostFileBytes = 50'000;
	ExpectFailure({"pak", "create", "old.pak", "src"}, "error: old.pak could not be written: File too large\n");
	ExpectSameFiles(Before, ReadFiles(Folder));
	MostFileBytes.reset();
	ASSERT_EQ(Run({"pak", "create", "old.pak", "src", "--mount", "../../../Cave/Content/"}).Code, 0);

	MostFileBytes = 50'000;
	const FProgramEnd Full = Run({"pak", "extract", "old.pak", "full"});
	EXPECT_EQ(Full.Code, 1);
	EXPECT_EQ(Full.Err, "error: old.pak: 1 of 2 files could not be extracted\n  Maps/Hall.umap: "
						"full/Cave/Content/Maps/Hall.umap could not be written: File too large\n");
	ExpectSameFiles({{"Cave/Content/läuft 鍾.txt", "x"}}, ReadFiles(Folder / "full"));
}
