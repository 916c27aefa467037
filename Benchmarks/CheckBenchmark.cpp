// SPDX-License-Identifier: MIT
// The diagnostics of a map in a project of 20,000 packages against what they cannot do without, and levels of growing
// size, side by side in one run. Usage: check-benchmark [work folder] [rounds]. The work folder is removed afterwards.
#include "Benchmarks/CheckProject.h"
#include "Diagnostics/QVMapDiagnostics.h"
#include "Engine/QVEditor.h"
#include "Standalone/Engine/OpenPackage.h"
#include "Standalone/Engine/PackageCache.h"
#include "Standalone/Formats/Base/Parallel.h"

namespace
{
using namespace QVBench;
using namespace QVFormats;
using namespace QVStandalone;
namespace fs = std::filesystem;

/** The file with its tables, and the level in it. */
std::size_t ReadLevel(const FBenchProject& Project)
{
	const auto Opened = Need(OpenPackage(Map, FromOsPath(Project.FileOf(Map, ".umap"))));
	return Need(ReadMapWorld(Opened->Header, Opened->Bytes)).Actors.size();
}

FQVDiagnosticReport Diagnose(FStandaloneEngine& Engine)
{
	Need(Engine.OpenMap(Map));
	FQVDiagnosticOptions Options = FQVDiagnosticOptions::Everything();
	Options.ModName = "Cave";
	return FQVMapDiagnostics::RunDiagnostics(Options);
}

void RunGroup(bool FQVDiagnosticOptions::*Group)
{
	FQVDiagnosticOptions Options;
	Options.ModName = "Cave";
	Options.bUseEditorWorld = true;
	Options.*Group = true;
	FQVMapDiagnostics::RunDiagnostics(Options);
}

void Scan(FStandaloneEngine& Engine)
{
	Engine.GetAssetRegistry().TrustLastScan();
	Engine.GetAssetRegistry().StartScan();
	Engine.GetAssetRegistry().FinishScan();
}

/** What the first check of all leaves behind: the registry's cache, the output folder, the settings. */
void WarmUp(FStandaloneEngine& Engine)
{
	Scan(Engine);
	const FQVDiagnosticReport Report = Diagnose(Engine);
	std::size_t Rows = 0;
	for (const FQVDiagnosticFinding& Finding : Report.Findings)
	{
		Rows += 1 + Finding.Children.size();
	}
	std::printf("%zu packages, %zu references; a map of %zu actors; %zu findings with their children\n",
		Engine.GetAssetRegistry().GetPackageCount(), Engine.GetAssetRegistry().GetGraph().NumReferences(), Actors,
		Rows);
}

/** What the check stands on, and the check, each with an engine of its own. */
std::vector<FWork> WholeWorks(const FBenchProject& Project)
{
	return {[&Project]
		{
			Need(LoadPackageCache(Project.Cache()));
			ReadLevel(Project);
		},
		[&Project]
		{
			Scan(*Project.NewEngine());
			ReadLevel(Project);
		},
		[&Project]
		{
			const auto Engine = Project.NewEngine();
			Scan(*Engine);
			Diagnose(*Engine);
		}};
}

void CheckAgainstReading(const fs::path& Folder, int Rounds)
{
	const FBenchProject Project = MakeProject(Folder);
	WarmUp(*Project.NewEngine());
	// the release's registry is counted anew in each round, as in a process of its own
	const FWork Touch = [&] { fs::last_write_time(Project.Release(), fs::file_time_type::clock::now()); };
	const std::vector<FTime> Whole = BestOf(Rounds, WholeWorks(Project), Touch);
	const auto Engine = Project.NewEngine();
	Scan(*Engine);
	const std::vector<FTime> Parts = BestOf(Rounds,
		{[&] { Diagnose(*Engine); }, [&] { Need(Engine->OpenMap(Map)); },
			[] { RunGroup(&FQVDiagnosticOptions::bEnvironment); }, [] { RunGroup(&FQVDiagnosticOptions::bContent); },
			[] { RunGroup(&FQVDiagnosticOptions::bReferences); }, [] { RunGroup(&FQVDiagnosticOptions::bLastExport); }},
		Touch);
	PrintTime("check: second start, map, all groups", Whole[2]);
	PrintRatio("second start, file and tables of the level", Whole[2], Whole[1]);
	PrintTime("map and all groups alone", Parts[0]);
	PrintRatio("load the cache alone, read the level", Parts[0], Whole[0]);
	const char* Names[] = {"of it: the map", "environment", "content", "references", "last export"};
	for (std::size_t Part = 1; Part < Parts.size(); ++Part)
	{
		PrintTime(Names[Part - 1], Parts[Part]);
	}
}

void PrintPerActor(const char* What, std::size_t Count, const FTime& Time, double& First)
{
	const double Nanoseconds = 1e9 * Time.Cpu / static_cast<double>(Count);
	First = First > 0 ? First : Nanoseconds;
	std::printf("  %-28s %7zu actors  %7.1f ns each (cpu)   ratio to the smallest %.2f\n", What, Count, Nanoseconds,
		Nanoseconds / First);
}

/** Time for each actor, which should not depend on their number. */
void LevelsOfGrowingSize(const fs::path& Folder, int Rounds)
{
	const FBenchProject Project{Folder};
	PutPlugins(Project);
	PutBlueprints(Project);
	double FirstRead = 0;
	double FirstOpened = 0;
	for (const std::size_t Count : {12'500U, 25'000U, 50'000U, 100'000U})
	{
		const std::vector<std::byte> Bytes = BuildLevelPackage(LevelOf(Count));
		WriteFile(Project.FileOf(Map, ".umap"), Bytes);
		const auto Engine = Project.NewEngine();
		Scan(*Engine);
		const std::vector<FTime> Best = BestOf(
			Rounds, {[&] { Need(ReadMapWorld(Need(ReadPackageHeader(Bytes, {.bRegistrySection = false})), Bytes)); },
						[&] { Need(Engine->OpenMap(Map)); }});
		PrintPerActor("tables and level", Count, Best[0], FirstRead);
		PrintPerActor("opened as a world", Count, Best[1], FirstOpened);
	}
}
} // namespace

int main(int Count, char** Words)
{
	const FArguments Arguments("CheckBenchmark", Count, Words, 10);
	std::printf("%u cores; the best of %d rounds\n", ThreadCount(0, 1000000), Arguments.Rounds);
	CheckAgainstReading(Arguments.Folder / "Check", Arguments.Rounds);
	LevelsOfGrowingSize(Arguments.Folder / "Levels", Arguments.Rounds);
	return 0;
}
