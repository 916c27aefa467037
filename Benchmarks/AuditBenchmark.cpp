// SPDX-License-Identifier: MIT
// The audit and the analysis of a mod's references over a made-up graph of a million packages and ten million
// references, against a bare breadth-first walk over flat integer arrays of the same graph, side by side in one run.
// Usage: audit-benchmark [work folder] [rounds] [packages]. The work folder is removed afterwards.
#include "Benchmarks/Timing.h"
#include "Content/QVMapDependencyAnalyzer.h"
#include "Content/QVMapReferenceAudit.h"
#include "Core/QVLog.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Engine/PackageGraphBuilder.h"
#include "Standalone/Engine/StandaloneEngine.h"

#include <malloc.h>
#include <random>

namespace
{
using namespace QVStandalone;
using namespace QVBench;
namespace fs = std::filesystem;

constexpr std::uint32_t ReferencesEach = 10;

/** One of so many packages lies outside the mod. */
constexpr std::uint32_t OutsideEvery = 100;

struct FFlatGraph
{
	std::vector<std::uint32_t> Starts;
	std::vector<std::uint32_t> Targets;
};

/** Most references stay near, as they do in a project's folders; a fifth lead anywhere. */
FFlatGraph MakeFlatGraph(std::uint32_t Packages)
{
	std::mt19937_64 Random(5);
	FFlatGraph Graph;
	Graph.Starts.push_back(0);
	for (std::uint32_t Package = 0; Package < Packages; ++Package)
	{
		for (std::uint32_t Reference = 0; Reference < ReferencesEach; ++Reference)
		{
			const std::uint64_t Draw = Random();
			const std::uint64_t Near = Package + Packages + Draw / 8 % 2001 - 1000;
			Graph.Targets.push_back(static_cast<std::uint32_t>((Draw % 5 == 0 ? Draw / 8 : Near) % Packages));
		}
		Graph.Starts.push_back(static_cast<std::uint32_t>(Graph.Targets.size()));
	}
	return Graph;
}

bool IsOutside(std::uint32_t Package)
{
	return Package % OutsideEvery == OutsideEvery - 1;
}

FQVName NameOf(std::uint32_t Package)
{
	const char* Format = IsOutside(Package) ? "/Game/Folder%03u/Asset_%07u" : "/Cave/Folder%03u/Asset_%07u";
	char Text[64];
	std::snprintf(Text, sizeof(Text), Format, Package / 1000, Package);
	return FQVName(Text);
}

FPackageGraph MakePackageGraph(const FFlatGraph& Flat)
{
	const auto Packages = static_cast<std::uint32_t>(Flat.Starts.size() - 1);
	const FQVName World(FQVAssetData::WorldClass);
	const FQVName Mesh("/Script/Engine.StaticMesh");
	FPackageGraphBuilder Builder;
	Builder.Reserve(Packages, Packages, Flat.Targets.size());
	for (std::uint32_t Package = 0; Package < Packages; ++Package)
	{
		const FQVName Name = NameOf(Package);
		Builder.AddPackage(Name, {1000, 1, false});
		Builder.AddAsset({Name, Package == 0 ? World : Mesh, {}});
		for (std::uint32_t At = Flat.Starts[Package]; At < Flat.Starts[Package + 1]; ++At)
		{
			Builder.AddReference({NameOf(Flat.Targets[At]), At % 4 != 0, true});
		}
	}
	return Builder.Build();
}

/** The packages reached from the first one. Outside ends the walk where the audit ends it too. */
std::size_t WalkFlat(const FFlatGraph& Graph, bool bBeyondTheMod)
{
	std::vector<char> Seen(Graph.Starts.size() - 1);
	std::vector<std::uint32_t> Queue = {0};
	Seen[0] = 1;
	for (std::size_t Place = 0; Place < Queue.size(); ++Place)
	{
		const std::uint32_t Package = Queue[Place];
		if (!bBeyondTheMod && IsOutside(Package))
		{
			continue;
		}
		for (std::uint32_t At = Graph.Starts[Package]; At < Graph.Starts[Package + 1]; ++At)
		{
			const std::uint32_t Target = Graph.Targets[At];
			if (Seen[Target] == 0)
			{
				Seen[Target] = 1;
				Queue.push_back(Target);
			}
		}
	}
	return Queue.size();
}

/** Holds what it was given, whatever the disk says. */
class FMadeUpRegistry : public FAssetRegistry
{
public:
	using FAssetRegistry::FAssetRegistry;
	void ScanPathsSynchronous(std::string_view) override {}
};

std::size_t HeapBytes()
{
	const struct mallinfo2 Info = ::mallinfo2();
	return Info.uordblks + Info.hblkhd;
}

void Compare(
	const char* Title, int Rounds, const std::function<std::size_t()>& Bare, const std::function<std::size_t()>& Ours)
{
	std::size_t BareCount = 0;
	std::size_t OurCount = 0;
	const std::vector<FTime> Best = BestOf(Rounds, {[&] { BareCount = Bare(); }, [&] { OurCount = Ours(); }});
	std::printf("%s: %.3f s for %zu packages; bare walk %.3f s for %zu; ratio %.2f\n", Title, Best[1].Wall, OurCount,
		Best[0].Wall, BareCount, Best[1].Wall / Best[0].Wall);
}

void Run(const fs::path& Folder, std::uint32_t Packages, int Rounds)
{
	fs::create_directories(Folder / "Plugins/Cave/Content");
	WriteFile(Folder / "MapWork.uproject", "{}");
	const FFlatGraph Flat = MakeFlatGraph(Packages);
	for (std::uint32_t Package = 0; Package < Packages; ++Package)
	{
		NameOf(Package); // in the order of the scan, as their files come
	}
	FPackageGraph Graph;
	const double Seconds = TimeOf([&] { Graph = MakePackageGraph(Flat); }).Wall;
	const std::size_t Budget = std::size_t{100} * Graph.Num() + std::size_t{12} * Graph.NumReferences();
	std::printf("%u packages, %zu references: built in %.2f s, %.1f MB; 100 bytes a package and 12 a reference would "
				"be %.1f MB\n",
		Graph.Num(), Graph.NumReferences(), Seconds, static_cast<double>(Graph.BytesUsed()) / 1e6,
		static_cast<double>(Budget) / 1e6);

	FStandaloneEngine Engine(FromOsPath(Folder / "MapWork.uproject"), FromOsPath(Folder / "Engine"));
	FMadeUpRegistry Registry(FromOsPath(Folder), Engine.GetPackages(), Engine.GetGameThread());
	Registry.UseGraph(std::move(Graph));
	Engine.Interfaces.AssetRegistry = &Registry;
	const std::size_t Before = HeapBytes();
	const FQVReferenceAudit Kept = FQVMapReferenceAudit::AuditReferences("Cave");
	std::printf("an audit's result takes %.1f MB\n", static_cast<double>(HeapBytes() - Before) / 1e6);
	Compare(
		"audit", Rounds, [&] { return WalkFlat(Flat, false); },
		[]
		{
			const FQVReferenceAudit Audit = FQVMapReferenceAudit::AuditReferences("Cave");
			return Audit.InternalPackages.Num() + Audit.UntrustedExternal.size();
		});
	Compare(
		"analysis", Rounds, [&] { return WalkFlat(Flat, true); },
		[] { return FQVMapDependencyAnalyzer::AnalyzeDependencies("Cave").UsedPackages.Num(); });
}
} // namespace

int main(int Count, char** Words)
{
	const FArguments Arguments("AuditBenchmark", Count, Words, 5);
	Run(Arguments.Folder, Count > 3 ? static_cast<std::uint32_t>(std::atoi(Words[3])) : 1'000'000, Arguments.Rounds);
	return 0;
}
