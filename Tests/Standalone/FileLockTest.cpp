// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Files.h"
#include "Tests/Standalone/TestFiles.h"

#include <csignal>
#include <fcntl.h>
#include <functional>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

using QVStandalone::FFiles;
namespace fs = std::filesystem;

namespace
{
struct FileLock : testing::Test
{
	FTestFiles Disk;
	FFiles Files;
	QVTest::FRecordingLog Log;

	/** Another process that does this and ends with what comes of it. */
	static pid_t Start(const std::function<int()>& Work)
	{
		const pid_t Child = ::fork();
		if (Child == 0)
		{
			::_exit(Work());
		}
		return Child;
	}
	/** The exit code, or minus the signal. */
	static int End(pid_t Child)
	{
		int Status = 0;
		EXPECT_EQ(::waitpid(Child, &Status, 0), Child);
		return WIFEXITED(Status) ? WEXITSTATUS(Status) : -WTERMSIG(Status);
	}
};
} // namespace

TEST_F(FileLock, HasOneOwnerAndGoesWithIt)
{
	std::unique_ptr<IQVFileLock> Mine = Files.TryLock(Disk("a b.lock"));
	ASSERT_NE(Mine, nullptr);
	EXPECT_EQ(Files.TryLock(Disk("a b.lock")), nullptr) << "a second owner in this process";
	EXPECT_EQ(End(Start([&] { return FFiles().TryLock(Disk("a b.lock")) == nullptr ? 7 : 8; })), 7);
	EXPECT_TRUE(Disk.Has("a b.lock"));
	const std::unique_ptr<IQVFileLock> Other = Files.TryLock(Disk("other.lock"));
	EXPECT_NE(Other, nullptr);
	Mine.reset();
	EXPECT_EQ(Disk.Below(), FLines{"other.lock"});
	EXPECT_NE(Files.TryLock(Disk("a b.lock")), nullptr);
	EXPECT_EQ(Disk.Logged(Log), FLines());
}

TEST_F(FileLock, SaysWhyAFileCannotBeMade)
{
	fs::create_directories(Disk.OsPath("folder"));
	Disk.Put("target", "kept");
	fs::create_symlink("target", Disk.OsPath("link"));
	for (const char* Path : {"folder", "no folder/x.lock", "link"})
	{
		EXPECT_EQ(Files.TryLock(Disk(Path)), nullptr) << Path;
	}
	EXPECT_EQ(Disk.Logged(Log), (FLines{"folder could not be locked: Is a directory",
									"no folder/x.lock could not be locked: No such file or directory",
									"link could not be locked: Too many levels of symbolic links"}));
	EXPECT_EQ(Disk.Get("target"), "kept");
}

TEST_F(FileLock, ComesFreeWhenItsProcessIsKilled)
{
	int Pipe[2] = {};
	ASSERT_EQ(::pipe(Pipe), 0);
	const pid_t Child = Start(
		[&]
		{
			const std::unique_ptr<IQVFileLock> Lock = FFiles().TryLock(Disk("x.lock"));
			const char Word = Lock != nullptr ? 'y' : 'n';
			const bool bTold = ::write(Pipe[1], &Word, 1) == 1;
			::pause();
			return bTold ? 0 : 1;
		});
	char Word = 0;
	ASSERT_EQ(::read(Pipe[0], &Word, 1), 1);
	EXPECT_EQ(Word, 'y');
	EXPECT_EQ(Files.TryLock(Disk("x.lock")), nullptr);
	::kill(Child, SIGKILL);
	EXPECT_EQ(End(Child), -SIGKILL);
	EXPECT_TRUE(Disk.Has("x.lock")) << "nobody was left to delete it";
	EXPECT_NE(Files.TryLock(Disk("x.lock")), nullptr);
	EXPECT_EQ(Disk.Below(), FLines());
	::close(Pipe[0]);
	::close(Pipe[1]);
}

/** A file that is deleted when it is let go of: one who has opened it just before must not believe it is theirs. */
TEST_F(FileLock, NeverHasTwoOwnersHoweverTheyRace)
{
	constexpr int Processes = 4;
	constexpr int Turns = 300;
	const auto Work = [&]
	{
		int Owned = 0;
		while (Owned < Turns)
		{
			const std::unique_ptr<IQVFileLock> Lock = FFiles().TryLock(Disk("x.lock"));
			if (Lock == nullptr)
			{
				continue;
			}
			const int Inside = ::open(Disk.OsPath("inside").c_str(), O_CREAT | O_EXCL | O_CLOEXEC, 0600);
			if (Inside < 0)
			{
				return 9;
			}
			::close(Inside);
			::unlink(Disk.OsPath("inside").c_str());
			++Owned;
		}
		return 0;
	};
	std::vector<pid_t> Children;
	for (int Each = 0; Each < Processes; ++Each)
	{
		Children.push_back(Start(Work));
	}
	for (const pid_t Child : Children)
	{
		EXPECT_EQ(End(Child), 0) << "somebody else was inside";
	}
	EXPECT_EQ(Disk.Below(), FLines());
}
