// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/PathText.h"
#include "Tests/Formats/PakTestSupport.h"
#include "Tests/Support/TestPrograms.h"

#include <gtest/gtest.h>

namespace QVTest
{
using namespace QVFormats;
namespace fs = std::filesystem;

namespace
{
using FTree = std::map<std::string, FContent>;

/** A pak that holds one good file beside the bad ones. */
FPakExtractReport ExtractBeside(const FPakForge& Forge, const fs::path& Folder)
{
	const FContent Pak = Forge.Make();
	const TResult<FPakReader> Reader = Parse(Pak);
	EXPECT_TRUE(Reader) << Reader.Error().Message;
	return ExtractPak(*Reader, Folder);
}
} // namespace

TEST(PakExtract, PutsFilesBelowTheMountPointsFolder)
{
	const std::pair<const char*, const char*> Cases[] = {
		{"../../../Cave/Content/", "Cave/Content/Maps/A"},
		{"../mount/point/", "mount/point/Maps/A"},
		{"/", "Maps/A"},
		{"", "Maps/A"},
		{"/Cave", "Cave/Maps/A"},
	};
	for (const auto& [MountPoint, Place] : Cases)
	{
		FTempFolder Temp;
		FPakForge Forge = FPakForge().Add("Maps/", "A", "abc").Add("", "Empty", "");
		Forge.MountPoint = MountPoint;
		const FContent Pak = Forge.Make();
		const TResult<FPakReader> Reader = Parse(Pak);
		const fs::path Folder = Temp.Path() / "To";
		const FPakEntry& Entry = *Reader->Find("Maps/A");
		ASSERT_TRUE(ExtractPakEntry(*Reader, Entry, Folder));
		EXPECT_EQ(ReadTree(Folder), (FTree{{Place, BytesOf("abc")}}));
		EXPECT_EQ(PakExtractedPath(*Reader, Entry, Folder), Folder / Place);
		const FPakExtractReport Report = ExtractPak(*Reader, Folder);
		EXPECT_EQ(Texts(Report.Problems), std::vector<std::string>());
		EXPECT_EQ(Report.Files, 2U);
		EXPECT_EQ(Report.Bytes, 3U);
		EXPECT_EQ(ReadTree(Folder).size(), 2U);
	}
}

TEST(PakExtract, NeverLeavesItsFolder)
{
	const std::string Left = "its name is refused: it leaves its folder by \".\" or \"..\"";
	const struct
	{
		std::string MountPoint;
		std::string Folder;
		std::string Name;
		std::string Message;
	} Cases[] = {
		{"../../../", "../", "Out", Left},
		{"../../../", "A/../../", "Out", Left},
		{"../../../", "", "../Out", Left},
		{"../../../", "./", "Out", Left},
		{"../../../", "/tmp/", "Out", "its name is refused: it is absolute"},
		{"../../../", "A//", "Out", "its name is refused: it has an empty folder name"},
		{"../../../", "", "..\\Out", "its name is refused: it holds a backslash"},
		{"../../../", "C:/", "Out", "its name is refused: it holds a colon or a control character"},
		{"../../../", "", std::string("A\0B", 3), "its name is refused: it holds a colon or a control character"},
		{"../../../", "Folder/", "", "its name is refused: it names a folder"},
		{"../../../Cave/../../", "", "Out", Left},
	};
	for (const auto& Case : Cases)
	{
		FTempFolder Temp;
		FPakForge Forge = FPakForge().Add(Case.Folder, Case.Name, "bad");
		Forge.MountPoint = Case.MountPoint;
		const FPakExtractReport Report = ExtractBeside(Forge, Temp.Path() / "To");
		ASSERT_EQ(Report.Problems.size(), 1U) << Case.Folder << Case.Name;
		EXPECT_EQ(Report.Problems[0].Message, Case.Message);
		EXPECT_EQ(ReadTree(Temp.Path()), FTree());
	}
}

TEST(PakExtract, FollowsNoLinks)
{
	QV_SKIP_ON_WINDOWS("the standard library makes no links here");
	FTempFolder Temp;
	const fs::path Outside = Temp.Path() / "Outside";
	const fs::path Folder = Temp.Path() / "To";
	WriteBytes(Outside / "File", BytesOf("mine"));
	fs::create_directories(Folder);
	fs::create_directory_symlink(Outside, Folder / "Link");
	fs::create_symlink(Outside / "File", Folder / "FileLink");
	FPakForge Forge =
		FPakForge().Add("Link/", "File", "bad").Add("Link/Deeper/", "File", "bad").Add("", "FileLink", "new");
	Forge.MountPoint = "../../../";
	const std::string Reason =
		PathText(Folder / "Link") + " is a link, which is not followed; remove it or choose another folder";
	EXPECT_EQ(Texts(ExtractBeside(Forge, Folder).Problems),
		(std::vector<std::string>{"Link/Deeper/File: " + Reason, "Link/File: " + Reason}));
	EXPECT_EQ(ReadTree(Outside), (FTree{{"File", BytesOf("mine")}}));
	EXPECT_FALSE(fs::is_symlink(Folder / "FileLink"));
	EXPECT_EQ(ReadBytes(Folder / "FileLink"), BytesOf("new"));
}

TEST(PakExtract, WritesAFileWholeOrNotAtAll)
{
	FTempFolder Temp;
	FPakForge Forge = FPakForge()
						  .Add("", "Good", "good")
						  .AddZlib("", "Inflates", FContent(3000))
						  .AddZlib("", "Oodle", FContent(3000))
						  .AddZlib("", "Torn", FContent(3000))
						  .Add("", "Secret", "x")
						  .Add("", "Taken", "x")
						  .Add("Way/", "Blocked", "x");
	Forge.MountPoint = "/";
	Forge.Files[2].Method = 2;
	Forge.Files[3].Stored.back() ^= std::byte{1};
	Forge.Files[4].bEncrypted = true;
	FContent Pak = Forge.Make();
	Pak[53 + 3] = std::byte{'!'};
	WriteBytes(Temp.Path() / "Good", BytesOf("older"));
	WriteBytes(Temp.Path() / "Way", BytesOf("a file"));
	fs::create_directories(Temp.Path() / "Taken");
	const TResult<FPakReader> Reader = Parse(Pak);
	std::vector<std::string> Problems = Texts(ExtractPak(*Reader, Temp.Path()).Problems);
	ASSERT_EQ(Problems.size(), 6U);
	EXPECT_EQ(Problems[0].substr(0, 42), "Good: the content is damaged: its hash is ");
	Problems.erase(Problems.begin());
	EXPECT_EQ(Problems, (std::vector<std::string>{"Oodle: it cannot be extracted: it is compressed with Oodle",
							"Secret: it cannot be extracted: it is encrypted",
							"Taken: " + PathText(Temp.Path() / "Taken") + " could not be written: Is a directory",
							"Torn: block 1 of 1 does not inflate to its 3000 bytes",
							"Way/Blocked: folder " + PathText(Temp.Path() / "Way") +
								" could not be made: a file of that name is in the way"}));
	EXPECT_EQ(ReadTree(Temp.Path()),
		(FTree{{"Good", BytesOf("older")}, {"Inflates", FContent(3000)}, {"Way", BytesOf("a file")}}));
	const FStatus Status = ExtractPakEntry(*Reader, *Reader->Find("Oodle"), Temp.Path());
	EXPECT_EQ(Status.Error().Message, "\"Oodle\" of Test.pak: it cannot be extracted: it is compressed with Oodle");
}
} // namespace QVTest
