// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Files.h"
#include "Tests/Standalone/TestFiles.h"
#include "Tests/Support/SmallDisk.h"

#include <chrono>
#include <gtest/gtest.h>
#include <sys/stat.h>

using QVStandalone::FFiles;
using QVTest::FSmallDisk;
namespace fs = std::filesystem;

namespace
{
struct Files : testing::Test
{
	FTestFiles Disk;
	FFiles Real;
	QVTest::FRecordingLog Log;

	void MarkReadOnly(const char* Path) const { fs::permissions(Disk.OsPath(Path), fs::perms(0444)); }
	bool Save(const char* Path, std::string_view Text) { return Real.SaveStringToFile(Text, Disk(Path)); }
	FLines Logged() { return Disk.Logged(Log); }

	/** The first entries of a walk; a folder ends in a slash. */
	FLines Walk(void (FFiles::*Iterate)(std::string_view, const IQVFiles::FVisitor&) const, const char* Folder,
		std::size_t Most)
	{
		FLines Seen;
		(Real.*Iterate)(Disk(Folder),
			[&](std::string_view Path, bool bIsDirectory)
			{
				Seen.push_back(Disk.Mask(Path) + (bIsDirectory ? "/" : ""));
				return Seen.size() < Most;
			});
		return Seen;
	}
};
} // namespace

TEST_F(Files, SavingReplacesAWholeFileAndLeavesNothingElse)
{
	const char* Name = "Пример 例 a.txt";
	EXPECT_TRUE(Save(Name, "first"));
	EXPECT_EQ(Disk.Get(Name), "first");
	fs::permissions(Disk.OsPath(Name), fs::perms(0662));
	EXPECT_TRUE(Save(Name, "Höhle"));
	EXPECT_EQ(Disk.Get(Name), std::string("\xFF\xFEH\0\xF6\0h\0l\0e\0", 12));
	EXPECT_EQ(fs::status(Disk.OsPath(Name)).permissions(), fs::perms(0662)) << "the mode of the old file is lost";
	std::string Text;
	EXPECT_TRUE(Real.LoadFileToString(Text, Disk(Name)));
	EXPECT_EQ(Text, "Höhle");
	EXPECT_EQ(Disk.Below(), FLines{Name});
}

TEST_F(Files, AFailedSaveKeepsTheOldFileAndTellsWhy)
{
	Disk.Put("old.json", "old");
	Disk.Put("locked.json", "locked");
	MarkReadOnly("locked.json");
	fs::create_directories(Disk.OsPath("folder.json"));
	fs::create_symlink("locked.json", Disk.OsPath("link to locked.json"));
	const std::string TooLong(5000, 'x');
	{
		const FSmallDisk SmallDisk(4096);
		EXPECT_FALSE(Save("old.json", TooLong));
		EXPECT_FALSE(Save("new.json", TooLong));
		EXPECT_TRUE(Save("fits.json", TooLong.substr(0, 4096)));
	}
	for (const char* Path :
		{"locked.json", "link to locked.json", "folder.json", "no folder/a.json", "old.json/a.json"})
	{
		EXPECT_FALSE(Save(Path, "x")) << Path;
	}
	EXPECT_EQ(Logged(), (FLines{
							"old.json could not be written: File too large",
							"new.json could not be written: File too large",
							"locked.json could not be written: Permission denied",
							"link to locked.json could not be written: Permission denied",
							"folder.json could not be written: Is a directory",
							"no folder/a.json could not be written: No such file or directory",
							"old.json/a.json could not be written: Not a directory",
						}));
	EXPECT_EQ(Disk.Get("old.json") + Disk.Get("locked.json"), "oldlocked");
	EXPECT_EQ(Disk.Below(), (FLines{"fits.json", "link to locked.json", "locked.json", "old.json"}));
}

TEST_F(Files, SavingFollowsALink)
{
	Disk.Put("real/a.txt", "old");
	fs::create_directories(Disk.OsPath("links"));
	fs::create_symlink("../real/a.txt", Disk.OsPath("links/there"));
	fs::create_symlink("../real/b.txt", Disk.OsPath("links/not yet"));
	fs::create_symlink("there", Disk.OsPath("links/twice"));
	for (const char* Link : {"links/there", "links/not yet", "links/twice"})
	{
		EXPECT_TRUE(Save(Link, Link));
		EXPECT_TRUE(fs::is_symlink(Disk.OsPath(Link))) << Link << " was replaced";
	}
	EXPECT_EQ(Disk.Get("real/a.txt"), "links/twice");
	EXPECT_EQ(Disk.Get("real/b.txt"), "links/not yet");
	EXPECT_EQ(Disk.Below(), (FLines{"links/not yet", "links/there", "links/twice", "real/a.txt", "real/b.txt"}));
}

TEST_F(Files, MoveReplacesAFileButNeverMovesAReadOnlyOne)
{
	const std::string To = Disk.Put("Cave.uplugin.disabled", "stale");
	EXPECT_TRUE(Real.Move(To, Disk.Put("Cave.uplugin", "new")));
	EXPECT_EQ(Disk.Get("Cave.uplugin.disabled"), "new");
	MarkReadOnly("Cave.uplugin.disabled");
	EXPECT_FALSE(Real.Move(Disk("Cave.uplugin"), To));
	EXPECT_FALSE(Real.Move(Disk("there"), Disk("gone")));
	EXPECT_EQ(Logged(), (FLines{"Cave.uplugin.disabled could not be renamed: Permission denied",
							"gone could not be renamed: No such file or directory"}));
	EXPECT_EQ(Disk.Below(), FLines{"Cave.uplugin.disabled"});
}

TEST_F(Files, ACopyReplacesAWholeFileEvenAReadOnlyOne)
{
	const std::string From = Disk.Put("from.bin", std::string("a\0b", 3) + std::string(700'000, 'x'));
	MarkReadOnly("from.bin");
	Disk.Put("locked.bin", "old");
	MarkReadOnly("locked.bin");
	Disk.Put("real/open.bin", "old and longer");
	fs::create_symlink("real/open.bin", Disk.OsPath("link.bin"));
	for (const char* To : {"new.bin", "locked.bin", "link.bin", "from.bin"})
	{
		EXPECT_TRUE(Real.Copy(Disk(To), From)) << To;
		EXPECT_TRUE(Disk.Get(To) == Disk.Get("from.bin")) << To;
		const bool bReadOnly = (fs::status(Disk.OsPath(To)).permissions() & fs::perms(0222)) == fs::perms::none;
		EXPECT_EQ(bReadOnly, std::string_view(To) == "locked.bin" || std::string_view(To) == "from.bin") << To;
	}
	EXPECT_TRUE(fs::is_symlink(Disk.OsPath("link.bin")));
	EXPECT_TRUE(Real.Copy(Disk("new.bin"), Disk.Put("empty.bin", "")));
	EXPECT_EQ(Disk.Get("new.bin"), "");
	EXPECT_EQ(Logged(), FLines());
	EXPECT_TRUE(Real.DeleteFile(Disk("locked.bin"), true));
	EXPECT_EQ(Disk.Below(), (FLines{"empty.bin", "from.bin", "link.bin", "new.bin", "real/open.bin"}));
}

TEST_F(Files, AFailedCopyLeavesAllAsItWas)
{
	const std::string From = Disk.Put("from.bin", std::string(5000, 'x'));
	const std::string Old = Disk.Put("old.bin", "old");
	fs::create_directories(Disk.OsPath("folder"));
	ASSERT_EQ(::mkfifo(Disk.OsPath("pipe").c_str(), 0600), 0);
	{
		const FSmallDisk SmallDisk(4096);
		EXPECT_FALSE(Real.Copy(Old, From));
		EXPECT_FALSE(Real.Copy(Disk("new.bin"), From));
	}
	for (const char* Source : {"gone.bin", "folder", "pipe"})
	{
		EXPECT_FALSE(Real.Copy(Old, Disk(Source))) << Source;
	}
	EXPECT_FALSE(Real.Copy(Disk("folder"), From));
	EXPECT_FALSE(Real.Copy(Disk("no folder/a.bin"), From));
	EXPECT_EQ(Logged(), (FLines{
							"from.bin could not be copied to old.bin: File too large",
							"from.bin could not be copied to new.bin: File too large",
							"gone.bin could not be copied to old.bin: No such file or directory",
							"folder could not be copied to old.bin: Is a directory",
							"pipe could not be copied to old.bin: Invalid argument",
							"from.bin could not be copied to folder: Is a directory",
							"from.bin could not be copied to no folder/a.bin: No such file or directory",
						}));
	EXPECT_EQ(Disk.Get("old.bin"), "old");
	EXPECT_EQ(Disk.Below(), (FLines{"from.bin", "old.bin", "pipe"}));
}

TEST_F(Files, LoadsBytesIntoMemoryThatIsUsedAgain)
{
	std::vector<std::byte> Bytes;
	const std::string Long(200'000, '\xFE');
	EXPECT_TRUE(Real.LoadFileToArray(Bytes, Disk.Put("long", Long)));
	EXPECT_EQ(std::string(reinterpret_cast<const char*>(Bytes.data()), Bytes.size()), Long);
	const std::byte* Memory = Bytes.data();
	EXPECT_TRUE(Real.LoadFileToArray(Bytes, Disk.Put("short", std::string("\0\r\n", 3))));
	EXPECT_EQ(Bytes, (std::vector{std::byte{0}, std::byte{13}, std::byte{10}}));
	EXPECT_EQ(Bytes.data(), Memory);
	EXPECT_FALSE(Real.LoadFileToArray(Bytes, Disk("gone")));
	EXPECT_EQ(Logged(), FLines());
	EXPECT_FALSE(Real.LoadFileToArray(Bytes, Disk("")));
	EXPECT_EQ(Logged(), FLines{" could not be read: Is a directory"});
}

TEST_F(Files, ListingEndsWhereLinksGoRound)
{
	for (const char* File : {"Tree/a b/one.txt", "Tree/Пещера/two.txt", "Elsewhere/three.txt"})
	{
		Disk.Put(File, "");
	}
	fs::create_directory_symlink("..", Disk.OsPath("Tree/a b/up"));
	fs::create_directory_symlink(".", Disk.OsPath("Tree/a b/self"));
	fs::create_directory_symlink("../Elsewhere", Disk.OsPath("Tree/first"));
	fs::create_directory_symlink("../Elsewhere", Disk.OsPath("Tree/second"));
	fs::create_directory_symlink("../Elsewhere", Disk.OsPath("Elsewhere/back"));
	fs::create_symlink("nowhere", Disk.OsPath("Tree/broken"));
	fs::create_symlink("loop", Disk.OsPath("Tree/loop"));
	EXPECT_EQ(Walk(&FFiles::IterateDirectoryRecursively, "Tree", 1000),
		(FLines{"Tree/a b/", "Tree/a b/one.txt", "Tree/a b/self/", "Tree/a b/up/", "Tree/broken", "Tree/first/",
			"Tree/first/back/", "Tree/first/three.txt", "Tree/loop", "Tree/second/", "Tree/Пещера/",
			"Tree/Пещера/two.txt"}));
	EXPECT_EQ(Walk(&FFiles::IterateDirectoryRecursively, "Tree", 2), (FLines{"Tree/a b/", "Tree/a b/one.txt"}));
	EXPECT_EQ(Walk(&FFiles::IterateDirectory, "Tree", 3), (FLines{"Tree/a b/", "Tree/broken", "Tree/first/"}));
	EXPECT_EQ(Walk(&FFiles::IterateDirectory, "gone", 9), FLines());
	EXPECT_EQ(Walk(&FFiles::IterateDirectoryRecursively, "Tree/a b/one.txt", 9), FLines());
}

TEST_F(Files, TellsWhatIsThereHowLargeAndHowOld)
{
	Disk.Put("five.bin", "12345");
	fs::create_directories(Disk.OsPath("folder"));
	const auto Day = std::chrono::sys_days(std::chrono::year(2026) / 11 / 21);
	const auto Moment = std::chrono::file_clock::from_sys(Day + std::chrono::milliseconds(61'234'567));
	fs::last_write_time(Disk.OsPath("five.bin"), Moment);
	EXPECT_TRUE(Real.FileExists(Disk("five.bin")) && !Real.DirectoryExists(Disk("five.bin")));
	EXPECT_TRUE(!Real.FileExists(Disk("folder")) && Real.DirectoryExists(Disk("folder")));
	EXPECT_TRUE(!Real.FileExists(Disk("gone")) && !Real.DirectoryExists(Disk("gone")));
	EXPECT_EQ(Real.FileSize(Disk("five.bin")), 5);
	EXPECT_EQ(Real.FileSize(Disk("folder")), -1);
	EXPECT_EQ(Real.FileSize(Disk("gone")), -1);
	EXPECT_EQ(Real.GetTimeStamp(Disk("five.bin")).ToIso8601(), "2026-11-21T17:00:34.567Z");
	EXPECT_EQ(Real.GetTimeStamp(Disk("gone")), FQVDateTime());
}

TEST_F(Files, MakesAndDeletesFoldersAndFiles)
{
	EXPECT_TRUE(Real.CreateDirectoryTree(Disk("a b/Пещера/洞")));
	EXPECT_TRUE(Real.CreateDirectoryTree(Disk("a b/Пещера/洞"))) << "it is there already";
	const std::string File = Disk.Put("a b/Пещера/洞/x.txt", "");
	Disk.Put("outside/kept.txt", "");
	fs::create_directory_symlink("../outside", Disk.OsPath("a b/link"));
	EXPECT_TRUE(Real.DeleteFile(File));
	EXPECT_FALSE(Real.DeleteFile(File)) << "it is gone already";
	EXPECT_EQ(Logged(), FLines());
	EXPECT_FALSE(Real.DeleteFile(Disk("a b/Пещера/洞"))) << "a folder is no file";
	EXPECT_FALSE(Real.CreateDirectoryTree(Disk("outside/kept.txt/below")));
	EXPECT_EQ(Logged(), (FLines{"a b/Пещера/洞 could not be deleted: Is a directory",
							"outside/kept.txt/below could not be created: Not a directory"}));
	EXPECT_TRUE(Real.DeleteDirectory(Disk("a b")));
	EXPECT_TRUE(Real.DeleteDirectory(Disk("a b"))) << "there is none to delete";
	EXPECT_FALSE(Disk.Has("a b"));
	EXPECT_TRUE(Disk.Has("outside/kept.txt")) << "a link was deleted with what it leads to";
}

TEST_F(Files, LoadingTellsAMissingFileFromAnUnreadableOne)
{
	fs::create_directories(Disk.OsPath("folder"));
	std::string Text = "untouched";
	EXPECT_FALSE(Real.LoadFileToString(Text, Disk("gone")));
	EXPECT_EQ(Logged(), FLines());
	EXPECT_FALSE(Real.LoadFileToString(Text, Disk("folder")));
	EXPECT_EQ(Logged(), FLines{"folder could not be read: Is a directory"});
	EXPECT_EQ(Text, "untouched");
	for (const std::string& Content : {std::string(), std::string(100'000, 'x')})
	{
		EXPECT_TRUE(Real.LoadFileToString(Text, Disk.Put("file", Content)));
		EXPECT_EQ(Text, Content);
	}
}
