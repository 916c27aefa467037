// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Files.h"
#include "Tests/Standalone/TestFiles.h"
#include "Tests/Support/TestPrograms.h"

#include <gtest/gtest.h>

using QVStandalone::FFiles;
namespace fs = std::filesystem;

TEST(FileBatches, ManyAtOnceAreDoneLikeEachAlone)
{
	const FTestFiles Disk;
	FFiles Real;
	QVTest::FRecordingLog Log;
	std::vector<FQVFileCopy> Copies;
	std::vector<std::string> Targets;
	for (int Number = 0; Number < 40; ++Number)
	{
		const std::string Name = "from" + std::to_string(Number);
		Targets.push_back(Disk(Number % 3 == 0 ? "a/" + Name : "b/" + Name));
		Copies.push_back({Targets.back(), Disk.Put(Name, std::string(static_cast<std::size_t>(Number) * 5000, 'x'))});
	}
	Disk.Put("a/from0", "old");
	fs::create_directory(Disk.OsPath("real"));
	QVTest::ShowFolder(Disk.OsPath("real"), Disk.OsPath("b"));
	Disk.Put("real/b", "old");
	fs::permissions(Disk.OsPath("a/from0"), fs::perms(0444));
	fs::remove(Disk.OsPath("from7"));
	Copies[9].To = Disk("no folder/from9");
	std::vector<bool> Expected(Copies.size(), true);
	Expected[7] = Expected[9] = false;
	EXPECT_EQ(Real.CopyFiles(Copies), Expected);
	FLines Lines = Disk.Logged(Log);
	std::sort(Lines.begin(), Lines.end());
	EXPECT_EQ(Lines, (FLines{"from7 could not be copied to b/from7: No such file or directory",
						 "from9 could not be copied to no folder/from9: No such file or directory"}));

	std::vector<std::string> Read(Targets.size(), "none");
	Real.LoadFiles(Targets,
		[&Read](std::size_t Place, std::optional<std::span<const std::byte>> Bytes)
		{
			if (Bytes)
			{
				Read[Place].assign(reinterpret_cast<const char*>(Bytes->data()), Bytes->size());
			}
		});
	for (std::size_t Place = 0; Place < Targets.size(); ++Place)
	{
		EXPECT_TRUE(Read[Place] == (Expected[Place] ? std::string(Place * 5000, 'x') : "none")) << Place;
	}
	Targets.push_back(Disk("real"));
	Expected.assign(Targets.size(), true); // from7 and from9 are not there
	Expected.back() = false;
	EXPECT_EQ(Real.DeleteFiles(Targets, true), Expected);
	EXPECT_EQ(Disk.Logged(Log), FLines{"real could not be deleted: Is a directory"});
	EXPECT_EQ(Disk.Below().size(), 39U + 1U) << "what they were copied from, and what was beside them";
	EXPECT_EQ(Disk.Get("real/b"), "old");
	EXPECT_EQ(Real.CopyFiles({}), std::vector<bool>());
}
