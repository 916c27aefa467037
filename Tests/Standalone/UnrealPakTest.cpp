// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Pak/PakExtract.h"
#include "Tests/Standalone/ChildRun.h"
#include "Tests/Standalone/TestFiles.h"

using namespace QVFormats;
namespace fs = std::filesystem;

namespace
{
class UnrealPakStandIn : public testing::Test
{
protected:
	FTestFiles Files;
	const std::string Pak = Files("Saved/QVPak/My Cave_1.pak");

	void SetUp() override { fs::create_directories(Files.OsPath("Saved/QVPak")); }

	/** A line as the toolkit writes it. */
	std::string Line(const std::string& Source, const std::string& Destination) const
	{
		return "\"" + Files(Source) + "\" \"../../../Cave/Content/" + Destination + "\"";
	}

	FChildEnd Create(const std::string& List, const std::string& Target)
	{
		const std::string ResponseFile = Files.Put("Saved/QVPak/Temp/Cave_filelist.txt", List);
		return RunTool(Files, "UnrealPak.exe", "\"" + Target + "\" -create=\"" + ResponseFile + "\" -compress");
	}
};
} // namespace

TEST_F(UnrealPakStandIn, MakesAPakOfWhatTheToolkitLists)
{
	Files.Put("Cooked/Maps/Hall.umap", std::string(200'000, 'h'));
	Files.Put("Cooked/Maps/Hall.uexp", "small");
	Files.Put("Cooked/Props/Лампа.uasset", "");
	Files.Put("manifest.json", "{}");
	const FChildEnd End = Create(
		Line("Cooked/Maps/Hall.umap", "Maps/Hall.umap") + "\n" + Line("Cooked/Maps/Hall.uexp", "Maps/Hall.uexp") +
			"\n" + Line("Cooked/Props/Лампа.uasset", "Props/Lamp.uasset") + "\n" +
			Line("Cooked/Maps/Hall.uexp", "manifest.json") + "\n" + Line("manifest.json", "manifest.json"),
		Pak);
	ASSERT_EQ(End.Code, 0) << End.Output;
	EXPECT_EQ(End.Lines("").front(), "LogInit: Display: This is QVMap's stand-in for UnrealPak.");
	EXPECT_EQ(End.Lines("LogPakFile: Display: Added file"),
		(FLines{"LogPakFile: Display: Added file \"../../../Cave/Content/manifest.json\"",
			"LogPakFile: Display: Added file \"../../../Cave/Content/Maps/Hall.uexp\"",
			"LogPakFile: Display: Added file \"../../../Cave/Content/Maps/Hall.umap\"",
			"LogPakFile: Display: Added file \"../../../Cave/Content/Props/Lamp.uasset\""}));

	const auto Reader = FPakReader::Open(Files.OsPath("Saved/QVPak/My Cave_1.pak"));
	ASSERT_TRUE(Reader.IsOk()) << Reader.Error().Message;
	EXPECT_EQ(Reader->Version(), EPakVersion::Fnv64BugFix);
	EXPECT_EQ(Reader->MountPoint(), "../../../Cave/Content/");
	EXPECT_TRUE(VerifyPak(*Reader).IsSound());
	FLines Entries;
	for (const FPakEntry& Entry : Reader->Entries())
	{
		Entries.push_back(
			Entry.Path() + " " + std::to_string(Entry.UncompressedSize) + " " + std::string(Reader->MethodName(Entry)));
	}
	EXPECT_EQ(Entries, (FLines{"manifest.json 2 None", "Maps/Hall.uexp 5 None", "Maps/Hall.umap 200000 Zlib",
						   "Props/Lamp.uasset 0 None"}));
	EXPECT_TRUE(ExtractPak(*Reader, Files.OsPath("out")).Problems.empty());
	EXPECT_EQ(Files.Get("out/Cave/Content/manifest.json"), "{}") << "of a destination named twice the last stays";
	EXPECT_EQ(Files.Get("out/Cave/Content/Maps/Hall.umap"), std::string(200'000, 'h'));
}

TEST_F(UnrealPakStandIn, FailuresAreNamedAndLeaveNoPak)
{
	Files.Put("a.uasset", "a");
	const std::string List = "Saved/QVPak/Temp/Cave_filelist.txt";
	Files.Put("file", "");
	fs::create_directories(Files.OsPath("folder.pak"));
	const std::string Good = Line("a.uasset", "a.uasset");
	const struct
	{
		std::string List;
		std::string Target;
		std::string Error;
	} Cases[] = {
		{Good + "\n" + Line("gone.uasset", "b"), Pak, List + " names gone.uasset, which is not a file"},
		{Good + "\n" + Line("Saved", "b"), Pak, List + " names Saved, which is not a file"},
		{Good + "\n\"half", Pak, List + ", line 2: a quote is not closed"},
		{Good, Files("folder.pak"), "folder.pak could not be written: Is a directory"},
		{Good, Files("file/x.pak"), "file/x.pak could not be created: Not a directory"},
		{Good, Files("no folder/x.pak"), "no folder/x.pak could not be created: No such file or directory"},
	};
	for (const auto& Case : Cases)
	{
		const FChildEnd End = Create(Case.List, Case.Target);
		EXPECT_EQ(End.Code, 1) << Case.Error;
		EXPECT_EQ(End.Lines("LogPakFile: Error"), FLines{"LogPakFile: Error: " + Case.Error});
	}
	EXPECT_EQ(Files.Below(), (FLines{List, "a.uasset", "file"}));

	Files.Put("Saved/QVPak/My Cave_1.pak", "an older pak");
	EXPECT_EQ(Create(Cases[0].List, Pak).Code, 1);
	EXPECT_EQ(Files.Get("Saved/QVPak/My Cave_1.pak"), "an older pak");
	EXPECT_EQ(Files.Below("Saved/QVPak"), (FLines{"My Cave_1.pak", "Temp/Cave_filelist.txt"}));

	const FChildEnd Gone =
		RunTool(Files, "UnrealPak.exe", "\"" + Pak + "\" -create=\"" + Files("gone.txt") + "\" -compress");
	EXPECT_EQ(Gone.Code, 1);
	EXPECT_EQ(
		Gone.Lines("LogPakFile: Error"), FLines{"LogPakFile: Error: gone.txt is not there or cannot be read: expected "
												"a folder or a response file"});
	EXPECT_EQ(RunTool(Files, "UnrealPak.exe", "-compress").Lines("LogPakFile: Error"),
		FLines{"LogPakFile: Error: usage: UnrealPak <pak> -create=<response file> [-compress]"});
}

TEST_F(UnrealPakStandIn, AnEmptyListMakesAnEmptyPak)
{
	EXPECT_EQ(Create("", Pak).Code, 0);
	const auto Reader = FPakReader::Open(Files.OsPath("Saved/QVPak/My Cave_1.pak"));
	ASSERT_TRUE(Reader.IsOk()) << Reader.Error().Message;
	EXPECT_TRUE(VerifyPak(*Reader).IsSound());
	EXPECT_EQ(Reader->MountPoint(), "/");
	EXPECT_EQ(Reader->Entries().size(), 0);
}
