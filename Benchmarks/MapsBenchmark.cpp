// SPDX-License-Identifier: MIT
// `qvmap maps`, the whole program, in a project of 200 mods, against a program that does nothing and a bare walk over
// the same folders, side by side in one run. Usage: maps-benchmark [work folder] [rounds]. The work folder is removed
// afterwards.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <unistd.h>
#include <vector>

namespace
{
namespace fs = std::filesystem;

constexpr int Mods = 200;
constexpr int MapsEach = 3;
constexpr int AssetsEach = 40;

void Put(const fs::path& Path, const std::string& Text)
{
	fs::create_directories(Path.parent_path());
	std::ofstream(Path, std::ios::binary) << Text;
}

void MakeProject(const fs::path& Folder)
{
	Put(Folder / "MapWork.uproject", "{}");
	for (int Mod = 0; Mod < Mods; ++Mod)
	{
		const std::string Name = "Mod" + std::to_string(Mod);
		const fs::path Plugin = Folder / "Plugins" / Name;
		Put(Plugin / (Name + ".uplugin"), R"({"FileVersion": 3, "CanContainContent": true})");
		for (int Map = 0; Map < MapsEach; ++Map)
		{
			Put(Plugin / "Content/Maps" / ("Hall" + std::to_string(Map) + ".umap"), "x");
		}
		for (int Asset = 0; Asset < AssetsEach; ++Asset)
		{
			Put(Plugin / "Content/Props" / ("Rock" + std::to_string(Asset) + ".uasset"), "x");
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

void Print(const char* What, int Rounds, const std::function<void()>& Work)
{
	std::vector<double> Times;
	for (int Round = 0; Round < Rounds; ++Round)
	{
		const auto Begin = std::chrono::steady_clock::now();
		Work();
		Times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - Begin).count());
	}
	std::sort(Times.begin(), Times.end());
	std::printf("  %-28s best %6.1f ms, median %6.1f ms\n", What, Times.front(), Times[Times.size() / 2]);
}

void RunProgram(const std::string& Command)
{
	if (std::system(Command.c_str()) != 0)
	{
		std::fprintf(stderr, "failed: %s\n", Command.c_str());
		std::exit(1);
	}
}
} // namespace

int main(int Count, char** Arguments)
{
	const fs::path Folder = (Count > 1 ? fs::path(Arguments[1]) : fs::temp_directory_path()) /
							("MapsBenchmark-" + std::to_string(::getpid()));
	const int Rounds = Count > 2 ? std::atoi(Arguments[2]) : 20;
	MakeProject(Folder);
	const fs::path Qvmap = fs::canonical("/proc/self/exe").parent_path() / "qvmap";
	std::printf("%d mods, %zu files\n", Mods, Walk(Folder));
	Print("qvmap maps", Rounds,
		[&] { RunProgram("\"" + Qvmap.string() + "\" -q --project \"" + Folder.string() + "\" maps >/dev/null"); });
	Print("qvmap --version", Rounds, [&] { RunProgram("\"" + Qvmap.string() + "\" --version >/dev/null"); });
	Print("a bare walk", Rounds, [&] { Walk(Folder); });
	fs::remove_all(Folder);
	return 0;
}
