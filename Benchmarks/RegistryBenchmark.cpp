// SPDX-License-Identifier: MIT
// The asset registry's scan against the bare work that it cannot do without, side by side in one run.
// Usage: registry-benchmark [work folder] [rounds]. The work folder is removed afterwards.
#include "Benchmarks/Timing.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Engine/PackageHeaderBytes.h"
#include "Standalone/Engine/StandaloneEngine.h"
#include "Standalone/Formats/Base/Parallel.h"
#include "Standalone/Formats/Package/SamplePackages.h"

#include <dirent.h>
#include <fcntl.h>
#include <random>
#include <sys/stat.h>

namespace
{
using namespace QVFormats;
using namespace QVStandalone;
using namespace QVBench;
namespace fs = std::filesystem;

// ---- Content ----

/** A hundred files in each folder, ten folders in each of those above. */
fs::path PlaceOf(std::size_t Number)
{
	return fs::path("F" + std::to_string(Number / 1000)) / ("G" + std::to_string(Number / 100 % 10));
}

std::string PackageOf(std::size_t Number)
{
	return "/Game/" + PlaceOf(Number).string() + "/Asset_of_the_level_" + std::to_string(Number);
}

/** Each package of the folder of real ones again and again. */
void CopyRealPackages(const fs::path& From, const fs::path& Content, std::size_t Count)
{
	std::vector<fs::path> Files;
	for (const fs::directory_entry& Entry : fs::recursive_directory_iterator(From))
	{
		const bool bPackage = Entry.path().extension() == ".uasset" || Entry.path().extension() == ".umap";
		if (bPackage && Entry.is_regular_file())
		{
			Files.push_back(Entry.path());
		}
	}
	if (Files.empty())
	{
		Fail("no packages below " + From.string());
	}
	for (std::size_t Number = 0; Number < Count; ++Number)
	{
		const fs::path& File = Files[Number % Files.size()];
		fs::create_directories(Content / PlaceOf(Number));
		fs::copy_file(File, Content / PlaceOf(Number) / ("Copy_" + std::to_string(Number) + File.extension().string()));
	}
}

/** Meshes, materials and maps of about ten references each. */
void MakePackages(const fs::path& Content, std::size_t Count)
{
	constexpr int References = 10;
	std::mt19937_64 Random(11);
	for (std::size_t Number = 0; Number < Count; ++Number)
	{
		FAssetPackageSpec Spec;
		Spec.PackageName = PackageOf(Number);
		Spec.ClassPath = Number % 2 == 0 ? "/Script/Engine.StaticMesh" : "/Script/Engine.Material";
		for (int Each = 0; Each < References; ++Each)
		{
			const std::string Target = PackageOf(Random() % Count);
			if (Each % 4 == 3)
			{
				Spec.SoftPackages.push_back(Target);
				continue;
			}
			Spec.HardReferences.push_back(
				{Target, "/Script/Engine", "StaticMesh", Target.substr(Target.rfind('/') + 1)});
		}
		Spec.PayloadBytes = 2000;
		WriteFile(Content / (PackageOf(Number).substr(6) + ".uasset"), BuildAssetPackage(Spec));
	}
}

// ---- The bare work ----

/** What is read of one file: offset and count. */
struct FFileReads
{
	std::string Path;
	std::vector<std::pair<std::uint64_t, std::size_t>> Reads;
};

std::vector<FFileReads> ListReads(const std::vector<std::string>& Files)
{
	std::vector<FFileReads> Reads(Files.size());
	FPackageHeaderReader Reader;
	for (std::size_t Number = 0; Number < Files.size(); ++Number)
	{
		const auto Header = Reader.Read(Files[Number]); // also of those that turn out to be no good
		Reads[Number] = {Files[Number], Reader.LastReads()};
	}
	return Reads;
}

/** Opens each file and reads the same bytes, on as many threads; the calls alone, with no class around them. */
void OpenAndRead(const std::vector<FFileReads>& Files)
{
	const unsigned Threads = ThreadCount(0, Files.size());
	static std::vector<std::vector<char>> Buffers(Threads); // large enough after the first round
	ParallelFor(Threads, Files.size(),
		[&](unsigned Worker, std::size_t Number)
		{
			const int File = ::open(Files[Number].Path.c_str(), O_RDONLY | O_CLOEXEC);
			std::vector<char>& Buffer = Buffers[Worker];
			for (const auto& [Offset, Count] : Files[Number].Reads)
			{
				Buffer.resize(std::max(Buffer.size(), Count));
				if (::pread(File, Buffer.data(), Count, static_cast<off_t>(Offset)) != static_cast<ssize_t>(Count))
				{
					Fail("cannot read " + Files[Number].Path);
				}
			}
			::close(File);
		});
}

/** Sizes and times of all files below a folder, on one thread. */
std::size_t WalkBare(const std::string& Folder, std::int64_t& Sum, std::vector<std::string>* OutFolders)
{
	std::size_t Count = 0;
	DIR* Stream = ::opendir(Folder.c_str());
	while (const dirent* Entry = Stream != nullptr ? ::readdir(Stream) : nullptr)
	{
		const std::string_view Name = Entry->d_name;
		struct stat Info = {};
		if (Entry->d_type == DT_DIR && Name != "." && Name != "..")
		{
			const std::string Inner = Folder + "/" + std::string(Name);
			OutFolders != nullptr ? OutFolders->push_back(Inner)
								  : static_cast<void>(Count += WalkBare(Inner, Sum, nullptr));
		}
		else if (Entry->d_type == DT_REG && ::fstatat(::dirfd(Stream), Entry->d_name, &Info, 0) == 0)
		{
			Sum += Info.st_size + Info.st_mtim.tv_nsec;
			++Count;
		}
	}
	::closedir(Stream);
	return Count;
}

/** The same on all threads: each takes one folder of the first level after the other. */
std::size_t WalkBareParallel(const std::string& Folder)
{
	std::vector<std::string> Folders;
	std::int64_t Sum = 0;
	std::atomic<std::size_t> Count{WalkBare(Folder, Sum, &Folders)};
	ParallelFor(ThreadCount(0, Folders.size()), Folders.size(),
		[&](unsigned, std::size_t Number)
		{
			std::int64_t Own = 0;
			Count += WalkBare(Folders[Number], Own, nullptr);
		});
	return Count;
}

// ---- The comparisons ----

struct FBenchProject
{
	fs::path Folder;

	explicit FBenchProject(const fs::path& Work, const char* Name)
		: Folder(Work / Name)
	{
		fs::create_directories(Content());
		fs::create_directories(Folder / "Engine/Content");
		std::ofstream(Folder / "Bench.uproject") << "{}";
	}
	~FBenchProject() { fs::remove_all(Folder); }

	fs::path Content() const { return Folder / "Content"; }
	fs::path Cache() const { return Folder / FAssetRegistry::CacheFile; }
	std::string File() const { return FromOsPath(Folder / "Bench.uproject"); }
	std::string Engine() const { return FromOsPath(Folder / "Engine"); }

	/** Until the result can be asked; then Then, and last, where there is a cache to be written, its end. */
	void Scan(const std::function<void(FAssetRegistry&)>& Then = {}) const
	{
		FStandaloneEngine Running(File(), Engine());
		Running.GetAssetRegistry().StartScan();
		Running.GetAssetRegistry().FinishScan();
		if (Then)
		{
			Then(Running.GetAssetRegistry());
		}
	}
};

/** Has the system forget all files' content, not their names; false where only root may. */
bool DropPageCache()
{
	::sync();
	std::ofstream File("/proc/sys/vm/drop_caches");
	File << "1";
	return static_cast<bool>(File.flush());
}

void ScanAgainstReading(const FBenchProject& Project, int Rounds)
{
	std::vector<std::string> Paths;
	Project.Scan(
		[&Paths](const FAssetRegistry& Registry)
		{
			const FPackageGraph& Graph = Registry.GetGraph();
			for (std::uint32_t Row = 0; Row < Graph.Num(); ++Row)
			{
				Paths.push_back(Registry.GetPackageFile(Graph.NameAt(Row)));
			}
			std::printf("  %u packages, %zu references, %zu unreadable; graph %.1f MB\n", Graph.Num(),
				Graph.NumReferences(), Registry.GetUnreadable().size(), static_cast<double>(Graph.BytesUsed()) / 1e6);
		});
	const std::vector<FFileReads> Reads = ListReads(Paths);
	FTime Answered;
	const std::vector<std::function<void()>> Works = {[&] { OpenAndRead(Reads); },
		[&]
		{
			const auto Begin = std::chrono::steady_clock::now();
			Project.Scan(
				[&](const FAssetRegistry&)
				{
					const double Wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - Begin).count();
					Answered.Wall = std::min(Answered.Wall, Wall);
				});
		}};
	const auto ForgetCache = [&Project] { fs::remove(Project.Cache()); };
	const std::vector<FTime> Warm = BestOf(Rounds, Works, ForgetCache);
	PrintTime("first scan, files in memory, cache written", Warm[1]);
	std::printf("  %-44s %9.4f s   ratio %.3f\n", "until it can be asked", Answered.Wall, Answered.Wall / Warm[0].Wall);
	PrintRatio("open and read the same bytes", Warm[1], Warm[0]);
	if (!DropPageCache())
	{
		std::printf("  files on disk: not measured, only root may empty the page cache\n");
		return;
	}
	Answered = {};
	const std::vector<FTime> Cold = BestOf(std::max(1, Rounds / 2), Works,
		[&]
		{
			ForgetCache();
			DropPageCache();
		});
	PrintTime("first scan, files on disk, cache written", Cold[1]);
	std::printf("  %-44s %9.4f s   ratio %.3f\n", "until it can be asked", Answered.Wall, Answered.Wall / Cold[0].Wall);
	PrintRatio("open and read the same bytes", Cold[1], Cold[0]);
}

void SecondStartAgainstWalking(const FBenchProject& Project, int Rounds)
{
	const std::string Content = FromOsPath(Project.Content());
	std::int64_t Sum = 0;
	std::size_t Count = 0;
	Project.Scan(); // leaves its cache
	const std::vector<FTime> Best = BestOf(2 * Rounds,
		{[&] { Count = WalkBare(Content, Sum, nullptr); }, [&] { Count = WalkBareParallel(Content); },
			[&] { Project.Scan(); }},
		[] {});
	std::printf("  walks over %zu files; the cache has %.1f MB\n", Count,
		static_cast<double>(fs::file_size(Project.Cache())) / 1e6);
	PrintTime("second start", Best[2]);
	PrintRatio("walk with sizes and times", Best[2], Best[0]);
	PrintRatio("the same on all cores", Best[2], Best[1]);
}

void Compare(const FBenchProject& Project, int Rounds)
{
	ScanAgainstReading(Project, Rounds);
	SecondStartAgainstWalking(Project, Rounds);
}

void RealPackages(const fs::path& Work, int Rounds)
{
	constexpr std::size_t Count = 20'000;
	const char* Real = std::getenv("QVMAP_TEST_CONTENT");
	std::printf("%zu copies of real packages\n", Count);
	if (Real == nullptr)
	{
		std::printf("  skipped: QVMAP_TEST_CONTENT does not name a folder of real packages\n");
		return;
	}
	const FBenchProject Project(Work, "Real");
	CopyRealPackages(Real, Project.Content(), Count);
	Compare(Project, Rounds);
}

void MadePackages(const fs::path& Work, int Rounds)
{
	constexpr std::size_t Count = 100'000;
	std::printf("%zu made packages\n", Count);
	const FBenchProject Project(Work, "Made");
	MakePackages(Project.Content(), Count);
	Compare(Project, Rounds);
}
} // namespace

int main(int Count, char** Words)
{
	const FArguments Arguments("RegistryBenchmark", Count, Words, 4);
	std::printf("%u cores; the best of %d rounds\n", ThreadCount(0, 1000000), Arguments.Rounds);
	RealPackages(Arguments.Folder, Arguments.Rounds);
	MadePackages(Arguments.Folder, Arguments.Rounds);
	return 0;
}
