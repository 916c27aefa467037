// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Files.h"
#include "Standalone/Engine/PackageFileWalk.h"
#include "Standalone/Formats/Windows/Win32.h"
#include "Tests/Standalone/TestFiles.h"

#include <gtest/gtest.h>

using QVStandalone::FFiles;
using namespace QVFormats;

namespace
{
struct Files : testing::Test
{
	FTestFiles Disk;
	FFiles Real;
	QVTest::FRecordingLog Log;

	void MarkReadOnly(const char* Path) const
	{
		::SetFileAttributesW(WidePath(Disk.OsPath(Path)).c_str(), FILE_ATTRIBUTE_READONLY);
	}
	bool IsReadOnly(const char* Path) const
	{
		return (::GetFileAttributesW(WidePath(Disk.OsPath(Path)).c_str()) & FILE_ATTRIBUTE_READONLY) != 0;
	}
	/** Open as a game opens its paks: others may read, nothing else. */
	FWinHandle Hold(const char* Path) const
	{
		return FWinHandle(::CreateFileW(
			WidePath(Disk.OsPath(Path)).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
	}
	FLines Logged() { return Disk.Logged(Log); }
	static std::string InUse() { return WinError(ERROR_SHARING_VIOLATION).message(); }
};
} // namespace

TEST_F(Files, SavingReplacesAWholeFileAndLeavesNothingElse)
{
	const char* Name = "Пример 例 a.txt";
	for (const char* Text : {"first", "Höhle", ""})
	{
		EXPECT_TRUE(Real.SaveStringToFile(Text, Disk(Name)));
		std::string Read;
		EXPECT_TRUE(Real.LoadFileToString(Read, Disk(Name)));
		EXPECT_EQ(Read, Text);
	}
	EXPECT_EQ(Disk.Below(), FLines{Name});
	EXPECT_EQ(Logged(), FLines());
}

TEST_F(Files, AFailedSaveKeepsTheOldFileAndTellsWhy)
{
	Disk.Put("old.json", "old");
	Disk.Put("locked.json", "locked");
	Disk.Put("held.json", "held");
	MarkReadOnly("locked.json");
	std::filesystem::create_directories(Disk.OsPath("folder.json"));
	const FWinHandle Held = Hold("held.json");
	for (const char* Path : {"locked.json", "held.json", "folder.json", "no folder/a.json", "old.json/a.json"})
	{
		EXPECT_FALSE(Real.SaveStringToFile("x", Disk(Path))) << Path;
	}
	EXPECT_EQ(Logged(), (FLines{
							"locked.json could not be written: Permission denied",
							"held.json could not be written: " + InUse(),
							"folder.json could not be written: Is a directory",
							"no folder/a.json could not be written: No such file or directory",
							"old.json/a.json could not be written: Not a directory",
						}));
	EXPECT_EQ(Disk.Get("old.json") + Disk.Get("locked.json") + Disk.Get("held.json"), "oldlockedheld");
	EXPECT_EQ(Disk.Below(), (FLines{"held.json", "locked.json", "old.json"}));
}

TEST_F(Files, TheReadOnlyMarkKeepsAFileUnlessItIsToGoEvenSo)
{
	const std::string From = Disk.Put("Cave.uplugin", "new");
	Disk.Put("locked.bin", "old");
	MarkReadOnly("locked.bin");
	EXPECT_FALSE(Real.Move(Disk("locked.bin"), From));
	EXPECT_FALSE(Real.Move(Disk("moved.bin"), Disk("locked.bin")));
	EXPECT_FALSE(Real.DeleteFile(Disk("locked.bin")));
	EXPECT_EQ(Logged(), (FLines{"Cave.uplugin could not be renamed: Permission denied",
							"locked.bin could not be renamed: Permission denied",
							"locked.bin could not be deleted: Permission denied"}));
	EXPECT_TRUE(Real.Copy(Disk("locked.bin"), From));
	EXPECT_EQ(Disk.Get("locked.bin"), "new");
	EXPECT_TRUE(IsReadOnly("locked.bin"));
	EXPECT_TRUE(Real.DeleteFile(Disk("locked.bin"), true));
	Disk.Put("tree/a/locked.bin", "");
	MarkReadOnly("tree/a/locked.bin");
	EXPECT_TRUE(Real.DeleteDirectory(Disk("tree")));
	EXPECT_EQ(Disk.Below(), FLines{"Cave.uplugin"});
	EXPECT_EQ(Logged(), FLines());
}

TEST_F(Files, APakThatTheGameHasOpenIsReadButStays)
{
	Disk.Put("Cave.pak", "pak");
	Disk.Put("new.pak", "new");
	const FWinHandle Game = Hold("Cave.pak");
	std::vector<std::byte> Bytes;
	EXPECT_TRUE(Real.LoadFileToArray(Bytes, Disk("Cave.pak")));
	EXPECT_FALSE(Real.DeleteFile(Disk("Cave.pak")));
	EXPECT_FALSE(Real.Move(Disk("Cave.pak"), Disk("new.pak")));
	EXPECT_EQ(
		Logged(), (FLines{"Cave.pak could not be deleted: " + InUse(), "new.pak could not be renamed: " + InUse()}));
	EXPECT_EQ(Disk.Get("Cave.pak"), "pak");
}

TEST_F(Files, APathOfThreeHundredLettersIsLikeAnyOther)
{
	std::string Folder;
	while (Disk(Folder).size() < 300)
	{
		Folder += "eine sehr tiefe Höhle/";
	}
	const std::string File = Disk(Folder + "Hall.umap");
	ASSERT_TRUE(Real.CreateDirectoryTree(Disk(Folder)));
	EXPECT_TRUE(Real.SaveStringToFile("text", File));
	EXPECT_TRUE(Real.SaveStringToFile("text again", File));
	EXPECT_TRUE(Real.FileExists(File) && Real.DirectoryExists(Disk(Folder)));
	EXPECT_EQ(Real.FileSize(File), 10);
	EXPECT_GT(Real.GetTimeStamp(File).GetTicks(), 0);
	EXPECT_TRUE(Real.Copy(File + ".copy", File));
	EXPECT_TRUE(Real.Move(File + ".moved", File + ".copy"));
	std::string Text;
	EXPECT_TRUE(Real.LoadFileToString(Text, File + ".moved"));
	EXPECT_EQ(Text, "text again");
	EXPECT_NE(Real.TryLock(File + ".lock"), nullptr);
	FLines Seen;
	Real.IterateDirectoryRecursively(Disk(""),
		[&](std::string_view Path, bool bFolder)
		{
			if (!bFolder)
			{
				Seen.push_back(std::string(Path));
			}
			return true;
		});
	EXPECT_EQ(Seen, (FLines{File, File + ".moved"}));
	const auto Walk = QVStandalone::WalkPackageFiles({{"/Game/", Disk("")}}, [] { return false; });
	ASSERT_EQ(Walk.Files.size(), 1);
	EXPECT_EQ(Walk.PathOf(Walk.Files[0]), File);
	EXPECT_EQ(Walk.Files[0].File.Size, 10);
	EXPECT_TRUE(Real.DeleteDirectory(Disk(Folder.substr(0, Folder.find('/')))));
	EXPECT_EQ(Disk.Below(), FLines());
	EXPECT_EQ(Logged(), FLines());
}

TEST_F(Files, EitherSlashEitherCaseAndAnyLettersNameTheSameFile)
{
	const std::string File = Disk.Put("Zoë 東京/Maps/Hall.umap", "x");
	std::string Swapped = File;
	Swapped[0] = static_cast<char>(Swapped[0] ^ 0x20); // the drive's letter
	ASSERT_EQ(File[1], ':');
	std::string Backslashes = FQVString::ReplaceAll(File, "/", "\\");
	for (const std::string& Name : {Swapped, Backslashes, FQVString::ReplaceAll(File, "Maps/Hall", "mAPS/hALL")})
	{
		EXPECT_TRUE(Real.FileExists(Name)) << Name;
		EXPECT_EQ(Real.FileSize(Name), 1) << Name;
	}
}

TEST_F(Files, ALockHasOneOwnerAndItsFileGoesWithIt)
{
	std::unique_ptr<IQVFileLock> Mine = Real.TryLock(Disk("a b.lock"));
	ASSERT_NE(Mine, nullptr);
	EXPECT_EQ(Real.TryLock(Disk("a b.lock")), nullptr);
	EXPECT_EQ(Logged(), FLines());
	Mine.reset();
	EXPECT_EQ(Disk.Below(), FLines());
	EXPECT_NE(Real.TryLock(Disk("a b.lock")), nullptr);
	std::filesystem::create_directories(Disk.OsPath("folder"));
	EXPECT_EQ(Real.TryLock(Disk("folder")), nullptr);
	EXPECT_EQ(Real.TryLock(Disk("no folder/x.lock")), nullptr);
	EXPECT_EQ(Logged(), (FLines{"folder could not be locked: Is a directory",
							"no folder/x.lock could not be locked: No such file or directory"}));
}
