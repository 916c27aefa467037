// SPDX-License-Identifier: MIT
#include "Standalone/Engine/GameThread.h"
#include "Tests/Support/TestPrograms.h"

#include <atomic>
#include <gtest/gtest.h>

using QVStandalone::FGameThread;

TEST(GameThread, PostedWorkRunsThereWhileTheOthersWait)
{
	FGameThread Thread;
	EXPECT_TRUE(Thread.IsInGameThread());
	bool bRan = false;
	Thread.RunOnGameThreadAndWait([&bRan] { bRan = true; });
	EXPECT_TRUE(bRan) << "on the game thread itself it runs at once";

	constexpr int Threads = 4;
	constexpr int Rounds = 100;
	int OnGameThread = 0; // touched by the game thread only
	std::atomic<int> Elsewhere{0};
	std::atomic<int> SeenDone{0};
	std::atomic<int> Ended{0};
	for (int Index = 0; Index < Threads; ++Index)
	{
		Thread.RunOnDedicatedThread(
			[&]
			{
				for (int Round = 0; Round < Rounds; ++Round)
				{
					Elsewhere += Thread.IsInGameThread() ? 0 : 1;
					int Mine = 0;
					Thread.RunOnGameThreadAndWait(
						[&]
						{
							OnGameThread += Thread.IsInGameThread() ? 1 : 0;
							Mine = 1;
						});
					SeenDone += Mine;
				}
				++Ended;
			});
	}
	Thread.RunUntil([&Ended] { return Ended == Threads; });
	EXPECT_EQ(OnGameThread, Threads * Rounds);
	EXPECT_EQ(Elsewhere, Threads * Rounds);
	EXPECT_EQ(SeenDone, Threads * Rounds);
}

TEST(GameThread, TickersTickUntilTheyGiveFalseAndMayAddOthers)
{
	FGameThread Thread;
	std::string Story;
	int Grandchildren = 0;
	const auto AddChild = [&](char Letter)
	{
		Thread.AddTicker(0.0,
			[&, Letter]
			{
				Story += Letter;
				Thread.AddTicker(0.0, [&Grandchildren] { return ++Grandchildren % 8 != 0; });
				return false;
			});
	};
	int Beats = 0;
	Thread.AddTicker(0.001,
		[&]
		{
			++Beats;
			if (Beats == 2)
			{
				AddChild('x');
				AddChild('y');
			}
			return Beats < 5;
		});
	Thread.AddTicker(1000.0,
		[&Story]
		{
			Story += "too early";
			return true;
		});
	Thread.RunUntil([&] { return Beats == 5 && Grandchildren >= 16; });
	int Others = 0;
	Thread.AddTicker(0.0, [&Others] { return ++Others < 3; });
	Thread.RunUntil([&Others] { return Others == 3; });
	EXPECT_EQ(Story, "xy");
	EXPECT_EQ(Beats, 5) << "a ticker that gave false goes on";
	EXPECT_EQ(Grandchildren, 16);
}

TEST(GameThread, ATickerMayPumpTheGameThreadItself)
{
	FGameThread Thread;
	std::string Story;
	bool bDone = false;
	Thread.AddTicker(0.0,
		[&]
		{
			Story += "(";
			Thread.RunDedicatedUntilDone([&] { Thread.RunOnGameThreadAndWait([&Story] { Story += "work"; }); });
			Story += ")";
			bDone = true;
			return false;
		});
	Thread.AddTicker(0.0, [] { return false; });
	Thread.RunUntil([&bDone] { return bDone; });
	EXPECT_EQ(Story, "(work)");
}

TEST(GameThread, DedicatedThreadsAreJoinedAndTheirPostsServed)
{
	QV_SKIP_ON_WINDOWS("what a thread keeps for itself goes later than the thread here");
	struct FGoodbye
	{
		std::atomic<bool>& bEnded;
		~FGoodbye()
		{
			std::this_thread::sleep_for(std::chrono::milliseconds(30));
			bEnded = true;
		}
	};
	std::atomic<bool> bEnded{false};
	bool bServed = false;
	{
		FGameThread Thread;
		Thread.RunOnDedicatedThread(
			[&]
			{
				thread_local FGoodbye Goodbye{bEnded}; // goes with the thread, after the work
				static_cast<void>(Goodbye);
				std::this_thread::sleep_for(std::chrono::milliseconds(30));
				Thread.RunOnGameThreadAndWait([&bServed] { bServed = true; });
			});
	}
	EXPECT_TRUE(bEnded) << "the thread was not waited for";
	EXPECT_TRUE(bServed);

	FGameThread Thread;
	bool bOnGameThread = true;
	Thread.RunDedicatedUntilDone([&] { bOnGameThread = Thread.IsInGameThread(); });
	EXPECT_FALSE(bOnGameThread);
}
