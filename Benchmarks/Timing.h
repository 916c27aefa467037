// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/Result.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <span>
#include <string>
#include <unistd.h>
#include <vector>

/** What the benchmarks share: works are taken side by side in one run, and the best of several rounds counts. */
namespace QVBench
{
using FWork = std::function<void()>;

[[noreturn]] inline void Fail(const std::string& Message)
{
	std::fprintf(stderr, "%s\n", Message.c_str());
	std::exit(1);
}

template<class T>
T Need(QVFormats::TResult<T> Result)
{
	if (!Result)
	{
		Fail(Result.Error().Message);
	}
	return std::move(*Result);
}

/** In seconds. */
struct FTime
{
	double Wall = 1e9;
	/** Of all threads: hardly disturbed by what else runs on the machine. */
	double Cpu = 1e9;
};

inline FTime TimeOf(const FWork& Work)
{
	const auto Begin = std::chrono::steady_clock::now();
	const std::clock_t CpuBegin = std::clock();
	Work();
	return {std::chrono::duration<double>(std::chrono::steady_clock::now() - Begin).count(),
		static_cast<double>(std::clock() - CpuBegin) / CLOCKS_PER_SEC};
}

/** Runs all of them in turn, several rounds, and keeps the best times of each. Prepare comes before each, not timed. */
inline std::vector<FTime> BestOf(
	int Rounds, const std::vector<FWork>& Works, const FWork& Prepare = [] {})
{
	std::vector<FTime> Best(Works.size());
	for (int Round = 0; Round < Rounds; ++Round)
	{
		for (std::size_t Index = 0; Index < Works.size(); ++Index)
		{
			Prepare();
			const FTime Time = TimeOf(Works[Index]);
			Best[Index] = {std::min(Best[Index].Wall, Time.Wall), std::min(Best[Index].Cpu, Time.Cpu)};
		}
	}
	return Best;
}

inline void PrintTime(const char* What, const FTime& Time)
{
	std::printf("  %-44s %9.4f s  (cpu %9.4f s)\n", What, Time.Wall, Time.Cpu);
}

/** What was measured, over this bare work. */
inline void PrintRatio(const char* What, const FTime& Measured, const FTime& Bare)
{
	std::printf("  %-44s %9.4f s  (cpu %9.4f s)   ratio %.3f (cpu %.3f)\n", What, Bare.Wall, Bare.Cpu,
		Measured.Wall / Bare.Wall, Measured.Cpu / Bare.Cpu);
}

/** Its folders with it. */
inline void WriteFile(const std::filesystem::path& Path, std::span<const std::byte> Bytes)
{
	std::filesystem::create_directories(Path.parent_path());
	std::ofstream File(Path, std::ios::binary);
	File.write(reinterpret_cast<const char*>(Bytes.data()), static_cast<std::streamsize>(Bytes.size()));
	if (!File.flush())
	{
		Fail("cannot write " + Path.string());
	}
}

inline void WriteFile(const std::filesystem::path& Path, std::string_view Text)
{
	WriteFile(Path, std::as_bytes(std::span(Text)));
}

/** `<program> [work folder] [rounds]`: a folder of this run alone, below the one that is given, removed at the end. */
class FArguments
{
public:
	FArguments(const char* Name, int Count, char** Words, int DefaultRounds)
		: Rounds(Count > 2 ? std::atoi(Words[2]) : DefaultRounds)
		, Folder((Count > 1 ? std::filesystem::path(Words[1]) : std::filesystem::temp_directory_path()) /
				 (std::string(Name) + "-" + std::to_string(::getpid())))
	{
		std::filesystem::create_directories(Folder);
		std::setvbuf(stdout, nullptr, _IOLBF, 0);
	}
	FArguments(const FArguments&) = delete;
	FArguments& operator=(const FArguments&) = delete;
	~FArguments() { std::filesystem::remove_all(Folder); }

	const int Rounds;
	const std::filesystem::path Folder;
};
} // namespace QVBench
