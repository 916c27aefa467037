// SPDX-License-Identifier: MIT
#include "Standalone/Engine/LogFile.h"
#include "Standalone/Engine/Clock.h"
#include "Standalone/Engine/LocalTime.h"
#include "Tests/Standalone/TestFiles.h"

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <thread>

using namespace QVStandalone;

namespace
{
/** The stamps replaced, so that the rest can be compared. */
std::string WithoutTimes(std::string Log)
{
	constexpr std::string_view Shape = "[0000.00.00-00.00.00]";
	const auto Fits = [](char Expected, char Found)
	{ return Expected == '0' ? Found >= '0' && Found <= '9' : Found == Expected; };
	for (std::size_t At = Log.find('['); At != Log.npos; At = Log.find('[', At + 1))
	{
		if (std::equal(Shape.begin(), Shape.end(), Log.begin() + static_cast<std::ptrdiff_t>(At),
				Log.begin() + static_cast<std::ptrdiff_t>(std::min(At + Shape.size(), Log.size())), Fits))
		{
			Log.replace(At, Shape.size(), "[time]");
		}
	}
	return Log;
}
} // namespace

TEST(LogFile, WritesEachLineAtOnceToFileAndListener)
{
	const FTestFiles Files;
	QVTest::FRecordingLog Listener;
	FLogFile Log(&Listener);
	Log.Write("LogQVMap", EQVLogVerbosity::Log, "before there is a file");
	Log.SetPath(Files.OsPath("Saved/Logs/QVMap.log"));
	EXPECT_FALSE(Files.Has("Saved")) << "the file is made with the first line";
	Log.Write("LogQVMap", EQVLogVerbosity::Log, "plain");
	Log.Write("LogQVMap", EQVLogVerbosity::Warning, "Höhle\nsecond line");
	Log.Write("LogStandalone", EQVLogVerbosity::Error, "");
	Log.Write("LogQVMap", EQVLogVerbosity::Verbose, "detail");
	const std::string Text = "[time]LogQVMap: plain\n"
							 "[time]LogQVMap: Warning: Höhle\nsecond line\n"
							 "[time]LogStandalone: Error: \n"
							 "[time]LogQVMap: Verbose: detail\n";
	EXPECT_EQ(WithoutTimes(Files.Get("Saved/Logs/QVMap.log")), Text);
	EXPECT_EQ(Files.Logged(Listener),
		(FLines{"LogQVMap: Log: before there is a file", "LogQVMap: Log: plain",
			"LogQVMap: Warning: Höhle\nsecond line", "LogStandalone: Error: ", "LogQVMap: Verbose: detail"}));

	FLogFile Later;
	Later.SetPath(Files.OsPath("Saved/Logs/QVMap.log"));
	Later.Write("LogQVMap", EQVLogVerbosity::Log, "a later run");
	EXPECT_EQ(WithoutTimes(Files.Get("Saved/Logs/QVMap.log")), Text + "[time]LogQVMap: a later run\n");
}

TEST(LogFile, ALargeFileIsSetAside)
{
	const FTestFiles Files;
	constexpr std::size_t Limit = 8 * 1024 * 1024;
	Files.Put("QVMap.log", std::string(Limit, 'x'));
	Files.Put("QVMap-backup.log", "older still");
	FLogFile Log;
	Log.SetPath(Files.OsPath("QVMap.log"));
	Log.Write("LogQVMap", EQVLogVerbosity::Log, "still fits");
	EXPECT_EQ(Files.Get("QVMap-backup.log"), "older still");
	Log.SetPath(Files.OsPath("QVMap.log"));
	Log.Write("LogQVMap", EQVLogVerbosity::Log, "anew");
	EXPECT_EQ(WithoutTimes(Files.Get("QVMap.log")), "[time]LogQVMap: anew\n");
	EXPECT_TRUE(Files.Get("QVMap-backup.log").starts_with("xxxx"));
	EXPECT_EQ(Files.Below().size(), 2);
}

TEST(LogFile, WithoutAPlaceItComplainsOnceAndGoesOn)
{
	const FTestFiles Files;
	Files.Put("Saved", "a file where the folder should be");
	QVTest::FRecordingLog Listener;
	FLogFile Log(&Listener);
	Log.SetPath(Files.OsPath("Saved/Logs/QVMap.log"));
	Log.Write("LogQVMap", EQVLogVerbosity::Log, "one");
	Log.Write("LogQVMap", EQVLogVerbosity::Error, "two");
	EXPECT_EQ(Files.Logged(Listener), (FLines{"no log is kept: Saved/Logs/QVMap.log: Not a directory",
										  "LogQVMap: Log: one", "LogQVMap: Error: two"}));
	Log.SetPath(Files.OsPath("other/QVMap.log"));
	Log.Write("LogQVMap", EQVLogVerbosity::Log, "three");
	EXPECT_EQ(WithoutTimes(Files.Get("other/QVMap.log")), "[time]LogQVMap: three\n");
}

TEST(LogFile, LinesOfManyThreadsStayWhole)
{
	const FTestFiles Files;
	FLogFile Log;
	Log.SetPath(Files.OsPath("QVMap.log"));
	std::vector<std::thread> Threads;
	for (const char Letter : {'a', 'b', 'c', 'd'})
	{
		Threads.emplace_back(
			[&Log, Letter]
			{
				for (int Line = 0; Line < 100; ++Line)
				{
					Log.Write("LogQVMap", EQVLogVerbosity::Log, std::string(50, Letter));
				}
			});
	}
	for (std::thread& Thread : Threads)
	{
		Thread.join();
	}
	const std::string Text = WithoutTimes(Files.Get("QVMap.log"));
	std::map<std::string, int> Counts;
	for (const std::string_view Line : FQVString::NonEmptyLines(Text))
	{
		++Counts[std::string(Line)];
	}
	EXPECT_EQ(Counts.size(), 4);
	EXPECT_EQ(Counts["[time]LogQVMap: " + std::string(50, 'd')], 100);
}

TEST(Clock, TellsUtcAndLocalTime)
{
	FClock Clock;
	const auto Before = std::chrono::system_clock::now().time_since_epoch();
	const std::int64_t Utc = Clock.UtcNow().GetTicks() - FQVDateTime::UnixEpochTicks;
	const auto After = std::chrono::system_clock::now().time_since_epoch();
	EXPECT_GE(Utc, std::chrono::duration_cast<std::chrono::nanoseconds>(Before).count() / 100);
	EXPECT_LE(Utc, std::chrono::duration_cast<std::chrono::nanoseconds>(After).count() / 100);

	const char* Zone = std::getenv("TZ");
	const std::string Old = Zone != nullptr ? Zone : "";
	::setenv("TZ", "<+0530>-05:30", 1);
	::tzset();
	EXPECT_EQ(SecondsAheadOfUtc(0), 19'800);
	const std::int64_t Ahead = (Clock.Now().GetTicks() - Clock.UtcNow().GetTicks() + 5'000'000) / 10'000'000;
	::setenv("TZ", "EST5EDT,M3.2.0,M11.1.0", 1);
	::tzset();
	EXPECT_EQ(SecondsAheadOfUtc(1'795'280'709), -5 * 3600) << "winter";
	EXPECT_EQ(SecondsAheadOfUtc(1'783'000'000), -4 * 3600) << "summer";
	Zone != nullptr ? ::setenv("TZ", Old.c_str(), 1) : ::unsetenv("TZ");
	::tzset();
	EXPECT_EQ(Ahead, 19'800);

	std::set<std::string> Guids;
	for (int Index = 0; Index < 100; ++Index)
	{
		const FQVGuid Guid = Clock.NewGuid();
		Guids.insert(std::string(reinterpret_cast<const char*>(&Guid.Parts), sizeof(Guid.Parts)));
	}
	EXPECT_EQ(Guids.size(), 100);
}
