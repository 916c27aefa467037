// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Files.h"
#include "Tests/Standalone/TestFiles.h"
#include "Tests/Support/TestPrograms.h"

#include <gtest/gtest.h>

using QVStandalone::FFiles;
namespace fs = std::filesystem;

namespace
{
using FCopyMany = std::vector<bool> (FFiles::*)(std::span<const FQVFileCopy>);

struct FCopyBatches : testing::TestWithParam<FCopyMany>
{
};
} // namespace

INSTANTIATE_TEST_SUITE_P(FileBatches, FCopyBatches, testing::Values(&FFiles::CopyFiles, &FFiles::PutFilesBack));

TEST_P(FCopyBatches, ManyAtOnceAreDoneLikeEachAlone)
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
	EXPECT_EQ((Real.*GetParam())(Copies), Expected);
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
	EXPECT_EQ((Real.*GetParam())({}), std::vector<bool>());
}

TEST(FileBatches, WhatIsPutBackGetsAnotherNameWhereNobodyCouldTell)
{
	const FTestFiles Disk;
	FFiles Real;
	const struct
	{
		const char* From;
		const char* To;
		/** How many names what stands at To has then. */
		unsigned Names;
	} Cases[] = {
		{"plain", "content/plain", 2},
		{"read-only", "content/read-only", 2},
		{"by way of a link", "content/link", 2},
		{"was deleted", "content/was deleted", 1},
		{"has two names", "content/has two names", 1},
		{"is a link", "content/is a link", 1},
	};
	for (const auto& [From, To, Names] : Cases)
	{
		Disk.Put(From, std::string("bytes of ") + From);
		Disk.Put(To, "changed");
		fs::permissions(Disk.OsPath(To), fs::perms(0640));
		fs::last_write_time(Disk.OsPath(From), fs::file_time_type::clock::now() - std::chrono::hours(1));
	}
	fs::permissions(Disk.OsPath("content/read-only"), fs::perms(0444));
	fs::rename(Disk.OsPath("content/link"), Disk.OsPath("target"));
	fs::create_symlink("../target", Disk.OsPath("content/link"));
	fs::remove(Disk.OsPath("content/was deleted"));
	fs::create_hard_link(Disk.OsPath("has two names"), Disk.OsPath("second name"));
	fs::rename(Disk.OsPath("is a link"), Disk.OsPath("elsewhere"));
	fs::create_symlink("elsewhere", Disk.OsPath("is a link"));
	const FLines Before = Disk.Below();

	const auto Start = fs::file_time_type::clock::now() - std::chrono::minutes(1);
	// once more: what has been put back already is copied over itself
	for (const bool bAgain : {false, true})
	{
		for (const auto& [From, To, Names] : Cases)
		{
			const FQVFileCopy Copy{Disk(To), Disk(From)};
			EXPECT_EQ(Real.PutFilesBack({&Copy, 1}), std::vector<bool>{true}) << To;
			EXPECT_EQ(Disk.Get(To), std::string("bytes of ") + From);
			EXPECT_EQ(Disk.Get(From), std::string("bytes of ") + From);
			EXPECT_TRUE(bAgain || fs::hard_link_count(Disk.OsPath(To)) == Names) << To;
			EXPECT_GT(fs::last_write_time(Disk.OsPath(To)), Start) << To;
		}
	}
	EXPECT_EQ(fs::status(Disk.OsPath("content/plain")).permissions(), fs::perms(0640));
	EXPECT_EQ(fs::status(Disk.OsPath("content/read-only")).permissions(), fs::perms(0444));
	EXPECT_TRUE(fs::is_symlink(Disk.OsPath("content/link")));
	FLines Expected = Before;
	Expected.insert(std::lower_bound(Expected.begin(), Expected.end(), "content/was deleted"), "content/was deleted");
	EXPECT_EQ(Disk.Below(), Expected) << "nothing is left beside them";
}
