// SPDX-License-Identifier: MIT
#include "Export/QVMapPacker.h"
#include "Standalone/Engine/OsPath.h"
#include "Tests/Support/TestPrograms.h"
#include "Tests/Support/ToolkitTest.h"

using namespace QVTest;

namespace
{
const std::string Border = "QVMap: ================================================\n";
constexpr std::string_view ResponseFile = "Saved/QVPak/Temp/Cave_filelist.txt";

class FPackTest : public FToolkitTest
{
protected:
	FQVNameSet Used;
	FProgressRecord Progress;

	FPackTest() { UseScriptedChildren(); }

	void WriteCookedFiles()
	{
		for (const char* File :
			{"Content/Meshes/Wall.uasset", "Deep/hall.umap", "Maps/Attic.UMAP", "Maps/Hall.umap", "Maps/HALL.uexp",
				"Meshes/Rock.uasset", "Meshes/Rock.uexp", "ShaderArchive-Cave-SM6.ushaderbytecode", "manifest.json"})
		{
			Project.Write(std::string("Cooked/") + File, "12345");
		}
	}
	FQVPakResult Pack(const std::string& Pak = "New/Folder/Cave_1.pak")
	{
		return FQVMapPacker::CreatePak(
			"Cave", Project.At("Cooked"), Project.At("m.json"), Project.At(Pak), Used, Progress.Bind());
	}
	std::string ResponseText()
	{
		std::string Text;
		Files.LoadFileToString(Text, Project.At(ResponseFile));
		return Project.Mask(Text);
	}
	/** The log from the line on that tells what is in the pak. */
	std::string LoggedFrom(std::string_view Start)
	{
		const std::string Text = Logged();
		return Text.substr(std::min(Text.find(Start), Text.size()));
	}
};
} // namespace

TEST_F(FPackTest, ListsEveryFileAndTheManifestLast)
{
	WriteCookedFiles();
	FQVPakResult Result;
	EXPECT_EQ(FQVMapPacker::GenerateResponseFile("Cave", Project.At("Cooked"), "C:\\x y\\m.json", Used, Result),
		Project.At(ResponseFile));
	const std::vector<std::string> Lines = {
		R"("<Project>/Cooked/Content/Meshes/Wall.uasset" "../../../Cave/Content/Meshes/Wall.uasset")",
		R"("<Project>/Cooked/Deep/hall.umap" "../../../Cave/Content/Deep/hall.umap")",
		R"("<Project>/Cooked/Maps/Attic.UMAP" "../../../Cave/Content/Maps/Attic.UMAP")",
		R"("<Project>/Cooked/Maps/HALL.uexp" "../../../Cave/Content/Maps/HALL.uexp")",
		R"("<Project>/Cooked/Maps/Hall.umap" "../../../Cave/Content/Maps/Hall.umap")",
		R"("<Project>/Cooked/Meshes/Rock.uasset" "../../../Cave/Content/Meshes/Rock.uasset")",
		R"("<Project>/Cooked/Meshes/Rock.uexp" "../../../Cave/Content/Meshes/Rock.uexp")",
		R"("<Project>/Cooked/ShaderArchive-Cave-SM6.ushaderbytecode" )"
		R"("../../../Cave/Content/ShaderArchive-Cave-SM6.ushaderbytecode")",
		R"("<Project>/Cooked/manifest.json" "../../../Cave/Content/manifest.json")",
		R"("C:/x y/m.json" "../../../Cave/Content/manifest.json")",
	};
	EXPECT_EQ(ResponseText(), FQVString::Join(Lines, "\n"));
	EXPECT_EQ((std::vector{Result.FilesPacked, Result.FilesSkipped, Result.MapFiles, Result.PayloadFiles,
				  Result.ShaderArchives}),
		(std::vector{10, 0, 2, 5, 1}));
	EXPECT_FALSE(Result.bFilterUnusedActive);
	std::string Entries;
	for (std::size_t Index = 0; Index < Lines.size(); ++Index)
	{
		Entries += QVPrintf("QVMap DEBUG:   [%d] %s\n", Index, Lines[Index]);
	}
	EXPECT_EQ(LoggedFrom("QVMap: Pak contents"),
		"QVMap: Pak contents: 2 map(s), 5 payload file(s), 1 shader archive(s)\n"
		"QVMap DEBUG: Manifest entry: Source=C:/x y/m.json Dest=../../../Cave/Content/manifest.json\n" +
			Border +
			"QVMap: PACKING SUMMARY (No Filtering)\nQVMap:   Assets packed: 9\nQVMap:   Total in pak: 10 files\n" +
			Border +
			"QVMap DEBUG: Response file generated with 10 entries: <Project>/Saved/QVPak/Temp/Cave_filelist.txt\n"
			"QVMap DEBUG: First 10 response file entries:\n" +
			Entries);

	// an eleventh is not shown, unless logging is verbose
	Project.Write("Cooked/z.bin", "");
	FQVMapPacker::GenerateResponseFile("Cave", Project.At("Cooked"), Project.At("m.json"), Used, Result = {});
	const std::string Manifest = "\"<Project>/m.json\" \"../../../Cave/Content/manifest.json\"\n";
	const std::string Tenth = "QVMap DEBUG:   [9] \"<Project>/Cooked/z.bin\" \"../../../Cave/Content/z.bin\"\n";
	EXPECT_EQ(LoggedFrom("QVMap DEBUG:   [9]"),
		Tenth + "QVMap DEBUG:   ... and 1 more entries (enable verbose logging to see all)\n");
	Project.Write("Saved/QVPak/config.json", "{\"verbose_logging\": true}");
	FQVMapPacker::GenerateResponseFile("Cave", Project.At("Cooked"), Project.At("m.json"), Used, Result = {});
	const std::string Verbose =
		LoggedFrom("QVMap DEBUG: ALL response file entries (verbose mode):\nQVMap DEBUG:   [0] ");
	EXPECT_TRUE(Verbose.ends_with(Tenth + "QVMap DEBUG:   [10] " + Manifest)) << Verbose;
}

TEST_F(FPackTest, FiltersOnlyWhenAskedToAndWhenItKnowsWhatIsUsed)
{
	WriteCookedFiles();
	Project.Write("Cooked/Meshes/Rock.ubulk", "");
	Project.Write("Saved/QVPak/config.json", "{\"filter_unused_assets\": true}");
	FQVPakResult Result;
	const auto Generate = [&]
	{ FQVMapPacker::GenerateResponseFile("Cave", Project.At("Cooked"), Project.At("m.json"), Used, Result = {}); };

	Generate();
	EXPECT_TRUE(Logged().starts_with(
		"Warning: QVMap: Filter requested but no used packages computed (will include all)\n" + Border));
	EXPECT_FALSE(Result.bFilterUnusedActive);
	EXPECT_EQ(Result.FilesPacked, 11);

	Used = {FQVName("/Cave/Maps/Hall"), FQVName("/Cave/MESHES/Wall"), FQVName("/Engine/x")};
	Generate();
	const std::string Text = Logged();
	EXPECT_TRUE(Text.starts_with("QVMap: Filtering enabled, 3 used packages, Plugin=Cave\n" + Border)) << Text;
	EXPECT_TRUE(Result.bFilterUnusedActive);
	EXPECT_EQ((std::vector{Result.FilesPacked, Result.FilesSkipped, Result.MapFiles, Result.PayloadFiles}),
		(std::vector{6, 5, 1, 3}));
	EXPECT_NE(Text.find(Border +
						"QVMap: PACKING SUMMARY (Filtering Enabled)\nQVMap:   Packages whitelisted: 3\nQVMap:   Assets "
						"kept: 4\nQVMap:   Sidecars included: 1\nQVMap:   Assets skipped: 5\nQVMap:   Total in pak: 6 "
						"files\nQVMap:   Reduction: 55.6% files skipped\n" +
						Border),
		Text.npos)
		<< Text;
	for (const char* Gone : {"Deep/hall", "Attic", "Rock"})
	{
		EXPECT_EQ(ResponseText().find(Gone), std::string::npos) << Gone;
	}

	Project.Remove("Cooked");
	Project.Write("Cooked/Maps/Hall.uexp", "");
	Generate();
	EXPECT_EQ(Logged().find("Reduction"), std::string::npos) << "nothing was skipped";
	Project.Remove("Cooked");
	Generate();
	EXPECT_EQ(ResponseText(), "\"<Project>/m.json\" \"../../../Cave/Content/manifest.json\"");
	EXPECT_EQ(Result.MapFiles + Result.PayloadFiles + Result.ShaderArchives, 0);
}

TEST_F(FPackTest, RunsTheToolAndMeasuresThePak)
{
	WriteCookedFiles();
	Children.Work = [this] { Project.Write("New/Folder/Cave_1.pak", std::string(1234, 'p')); };
	std::string Block;
	for (int Line = 0; Line < 1899; ++Line)
	{
		Block += "x\n";
	}
	Children.Chunks = {"first\n", Block, "2001\n", "at the end\n"};
	const FQVPakResult Result = Pack();
	EXPECT_TRUE(Result.bSuccess);
	EXPECT_EQ(Result.PakPath, Project.At("New/Folder/Cave_1.pak"));
	EXPECT_EQ(Result.PakSizeBytes, 1234);
	EXPECT_EQ(Result.Output, "first\n" + Block + "2001\nat the end\n");
	EXPECT_EQ(Result.Analysis.BaseGameFiles, 1);
	EXPECT_EQ(Progress.Reports, (std::vector<std::string>{"packing 0 Starting PAK creation...", "packing 0.0005 first",
									"packing 0.95 x", "packing 0.95 2001", "packing 1 PAK created (1234 bytes)"}));
	const std::string Command = "<Engine>/Binaries/Win64/UnrealPak.exe \"<Project>/New/Folder/Cave_1.pak\" "
								"-create=\"<Project>/Saved/QVPak/Temp/Cave_filelist.txt\" -compress";
	ASSERT_EQ(Children.Commands.size(), 1u);
	EXPECT_EQ(Project.Mask(Children.Commands[0]), Command);
	EXPECT_EQ(LoggedFrom("QVMap: Starting pak"), "QVMap: Starting pak: " + Command +
													 "\nQVMap: PAK created: <Project>/New/Folder/Cave_1.pak (1234 "
													 "bytes)\n");
	EXPECT_TRUE(Project.Exists(ResponseFile));
}

TEST_F(FPackTest, EachFailureHasItsMessage)
{
	WriteCookedFiles();
	const std::string Tool = Project.EngineDir() + "/Binaries/Win64/UnrealPak.exe";
	const std::string NoFile = "PAK creation completed but file not found: <Project>/New/Folder/Cave_1.pak";
	const struct
	{
		const char* What;
		bool bStarts;
		std::optional<int> Code;
		std::string Error;
	} Cases[] = {
		{"no start", false, 0, "Failed to launch UnrealPak.exe"},
		{"a bad code", true, 3, "UnrealPak failed with return code 3"},
		{"no code", true, {}, "UnrealPak failed with return code -1"},
		{"no file", true, 0, NoFile},
	};
	Children.Chunks = {"a", "b"};
	for (const auto& Case : Cases)
	{
		SCOPED_TRACE(Case.What);
		Children.bStarts = Case.bStarts;
		Children.Code = Case.Code;
		const FQVPakResult Result = Pack();
		EXPECT_FALSE(Result.bSuccess);
		EXPECT_EQ(Project.Mask(Result.ErrorMessage), Case.Error);
		EXPECT_EQ(Result.Output, Case.bStarts ? "ab" : "");
		EXPECT_EQ(Result.PakPath, "");
		EXPECT_EQ(
			(std::vector{Result.FilesPacked, Result.MapFiles, Result.Analysis.OtherFiles}), (std::vector{10, 2, 8}));
		EXPECT_TRUE(Logged().ends_with("Error: QVMap: " + Case.Error + "\n"));
		EXPECT_EQ(Children.OpenPipes + Children.OpenHandles, 0);
	}
	Children.Commands.clear();
	Files.Refuse = [](std::string_view Operation, std::string_view) { return Operation == "save"; };
	EXPECT_EQ(Pack().ErrorMessage, "Failed to generate response file");
	EXPECT_TRUE(Complaints().ends_with(
		"Error: QVMap: Failed to write response file: <Project>/Saved/QVPak/Temp/Cave_filelist.txt\n"));
	std::filesystem::remove(QVStandalone::ToOsPath(Tool));
	EXPECT_EQ(Project.Mask(Pack().ErrorMessage), "UnrealPak.exe not found: <Engine>/Binaries/Win64/UnrealPak.exe");
	EXPECT_EQ(Logged(), "Error: QVMap: UnrealPak.exe not found: <Engine>/Binaries/Win64/UnrealPak.exe\n");
	EXPECT_TRUE(Children.Commands.empty());
}

/** Not scripted: a program that runs. */
using FRealPackTest = FToolkitTest;

TEST_F(FRealPackTest, JudgesTheToolByItsReturnCodeAndByThePak)
{
	const std::string NoFile = "PAK creation completed but file not found: <Project>/Out/Cave_1.pak";
	const struct
	{
		std::vector<std::string> Script;
		std::string Error;
		const char* Output;
	} Cases[] = {
		{{"print {arg:-create}", "write {1}|pak"}, "", "<Project>/Saved/QVPak/Temp/Cave_filelist.txt\n"},
		{{"write {1}|pak"}, "", ""},
		{{"raw c3b6e282", "write {1}|pak"}, "", "ö\uFFFD\uFFFD"},
		{{}, NoFile, ""},
		{{"print oh", "write {1}|half", "exit 3"}, "UnrealPak failed with return code 3", "oh\n"},
		{{"abort"}, "UnrealPak failed with return code " + std::to_string(AbortCode), ""},
		{{"write {1}/a folder|"}, NoFile, ""},
	};
	for (const auto& Case : Cases)
	{
		Project.Remove("Out");
		Project.ScriptUnrealPak(Case.Script);
		const FQVPakResult Result = FQVMapPacker::CreatePak(
			"Cave", Project.At("Cooked"), Project.At("m.json"), Project.At("Out/Cave_1.pak"), {}, {});
		EXPECT_EQ(Project.Mask(Result.ErrorMessage), Case.Error);
		EXPECT_EQ(Result.bSuccess, Case.Error.empty());
		EXPECT_EQ(Project.Mask(Result.Output), Case.Output);
		EXPECT_EQ(Result.PakSizeBytes, Case.Error.empty() ? 3 : 0);
	}
}
