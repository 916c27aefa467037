// SPDX-License-Identifier: MIT
#include "Core/QVName.h"
#include "Core/QVPrintf.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <barrier>
#include <thread>
#include <unordered_set>
#include <vector>

TEST(Name, IgnoresTheCaseOfLatinLettersOnlyAndPrintsItsFirstSpelling)
{
	const FQVName First("/Cave/Maps/NameTestHall");
	EXPECT_EQ(FQVName("/CAVE/maps/nametesthall"), First);
	EXPECT_EQ(FQVName("/CAVE/maps/nametesthall").ToString(), "/Cave/Maps/NameTestHall");
	EXPECT_NE(FQVName("/Cave/Maps/NameTestHall2"), First);
	EXPECT_NE(FQVName("Höhle"), FQVName("HÖHLE"));
	EXPECT_EQ(FQVName("Пещера").ToView(), "Пещера");
	EXPECT_EQ((std::unordered_set{First, FQVName("/cave/MAPS/NameTestHALL")}).size(), 1u);

	EXPECT_TRUE(FQVName().IsNone());
	EXPECT_EQ(FQVName(""), FQVName());
	EXPECT_EQ(FQVName().ToView(), "");
	EXPECT_NE(FQVName("None"), FQVName()) << "a name like any other";

	const std::string Long(200'000, 'x');
	EXPECT_EQ(FQVName(Long).ToView(), Long);
}

TEST(Name, SortsAlphabetically)
{
	std::vector<FQVName> Names;
	for (const char* Text : {"zeta9", "Alpha9", "beta9", "ALPHA8", "alpha", "é"})
	{
		Names.emplace_back(Text);
	}
	std::sort(Names.begin(), Names.end(), FQVName::LexicalLess);
	std::vector<std::string> Texts;
	for (const FQVName Name : Names)
	{
		Texts.push_back(Name.ToString());
	}
	EXPECT_EQ(Texts, (std::vector<std::string>{"alpha", "ALPHA8", "Alpha9", "beta9", "zeta9", "é"}));
}

TEST(Name, IsOneForAllThreads)
{
	constexpr int Threads = 4;
	constexpr int Count = 20'000; // more than one block of the table
	std::vector<std::vector<FQVName>> Made(Threads, std::vector<FQVName>(Count));
	std::barrier Start(Threads);
	std::vector<std::thread> Runners;
	for (int Thread = 0; Thread < Threads; ++Thread)
	{
		Runners.emplace_back(
			[&, Thread]
			{
				Start.arrive_and_wait();
				for (int Step = 0; Step < Count; ++Step)
				{
					const int Index = Thread % 2 == 0 ? Step : Count - 1 - Step;
					const FQVName Name(
						Thread < 2 ? QVPrintf("/Threads/Asset%d", Index) : QVPrintf("/THREADS/ASSET%d", Index));
					Made[Thread][Index] = Name;
					EXPECT_EQ(Name.ToView().size(), QVPrintf("/Threads/Asset%d", Index).size());
				}
			});
	}
	for (std::thread& Runner : Runners)
	{
		Runner.join();
	}
	std::unordered_set<FQVName> Different(Made[0].begin(), Made[0].end());
	EXPECT_EQ(Different.size(), static_cast<std::size_t>(Count));
	for (int Thread = 1; Thread < Threads; ++Thread)
	{
		EXPECT_EQ(Made[Thread], Made[0]) << Thread;
	}
}
