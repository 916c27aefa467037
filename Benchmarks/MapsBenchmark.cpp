// SPDX-License-Identifier: MIT
// `qvmap maps`, the whole program, in a project of 200 mods, against a program that does nothing and a bare walk over
// the same folders, side by side in one run. Usage: maps-benchmark [work folder] [rounds]. The work folder is removed
// afterwards.
#include "Benchmarks/Timing.h"

namespace
{
using namespace QVBench;
namespace fs = std::filesystem;

constexpr int Mods = 200;
constexpr int MapsEach = 3;
constexpr int AssetsEach = 40;

void MakeProject(const fs::path& Folder)
{
	WriteFile(Folder / "MapWork.uproject", "{}");
	for (int Mod = 0; Mod < Mods; ++Mod)
	{
		const std::string Name = "Mod" + std::to_string(Mod);
		const fs::path Plugin = Folder / "Plugins" / Name;
		WriteFile(Plugin / (Name + ".uplugin"), R"({"FileVersion": 3, "CanContainContent": true})");
		for (int Map = 0; Map < MapsEach; ++Map)
		{
			WriteFile(Plugin / "Content/Maps" / ("Hall" + std::to_string(Map) + ".umap"), "x");
		}
		for (int Asset = 0; Asset < AssetsEach; ++Asset)
		{
			WriteFile(Plugin / "Content/Props" / ("Rock" + std::to_string(Asset) + ".uasset"), "x");
		}
	}
}

std::size_t Walk(const fs::path& Folder)
{
	std::size_t Files = 0;
	for (const fs::directory_entry& Entry : fs::recursive_directory_iterator(Folder))
	{
		Files += Entry.is_regular_file() ? 1 : 0;
	}
	return Files;
}

void Print(const char* What, int Rounds, const FWork& Work)
{
	std::vector<double> Times;
	for (int Round = 0; Round < Rounds; ++Round)
	{
		Times.push_back(1000 * TimeOf(Work).Wall);
	}
	std::sort(Times.begin(), Times.end());
	std::printf("  %-28s best %6.1f ms, median %6.1f ms\n", What, Times.front(), Times[Times.size() / 2]);
}

void RunProgram(const std::string& Command)
{
	if (std::system(Command.c_str()) != 0)
	{
		Fail("failed: " + Command);
	}
}
} // namespace

int main(int Count, char** Words)
{
	const FArguments Arguments("MapsBenchmark", Count, Words, 20);
	const fs::path& Folder = Arguments.Folder;
	const int Rounds = Arguments.Rounds;
	MakeProject(Folder);
	const fs::path Qvmap = fs::canonical("/proc/self/exe").parent_path() / "qvmap";
	std::printf("%d mods, %zu files\n", Mods, Walk(Folder));
	Print("qvmap maps", Rounds,
		[&] { RunProgram("\"" + Qvmap.string() + "\" -q --project \"" + Folder.string() + "\" maps >/dev/null"); });
	Print("qvmap --version", Rounds, [&] { RunProgram("\"" + Qvmap.string() + "\" --version >/dev/null"); });
	Print("a bare walk", Rounds, [&] { Walk(Folder); });
	return 0;
}
