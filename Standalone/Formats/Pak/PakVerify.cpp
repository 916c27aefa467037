// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Pak/PakVerify.h"

#include "Standalone/Formats/Base/Parallel.h"
#include "Standalone/Formats/Base/Unicode.h"
#include "Standalone/Formats/Pak/PakPayload.h"

#include <algorithm>
#include <limits>
#include <tuple>

namespace QVFormats
{
namespace
{
/** Of a large file the blocks are inflated in portions, so that one file too keeps all cores busy. */
constexpr std::uint64_t LargeFileBytes = 4 * 1024 * 1024;
constexpr std::uint32_t PortionBlocks = 32;

/** A piece of the work: the hash of an entry, a portion of its blocks, or both for a small one. */
struct FTask
{
	std::uint32_t Entry = 0;
	std::uint32_t FirstBlock = 0;
	std::uint32_t EndBlock = 0;
	bool bHash = false;
};

struct FTaskFinding
{
	std::uint32_t Entry = 0;
	std::string Message;
};

struct FWorker
{
	FPakPayload Payload;
	FPakInflater Inflater;
	std::vector<FTaskFinding> Problems;
	std::uint64_t HashedBytes = 0;
	std::uint64_t InflatedBytes = 0;
};

void AddEntryTasks(std::vector<FTask>& Tasks, std::uint32_t Number, const FPakEntry& Entry, bool bInflate)
{
	const std::uint32_t Blocks = bInflate ? Entry.BlockCount : 0;
	if (Entry.Size < LargeFileBytes)
	{
		Tasks.push_back({Number, 0, Blocks, true});
		return;
	}
	Tasks.push_back({Number, 0, 0, true});
	for (std::uint32_t First = 0; First < Blocks; First += PortionBlocks)
	{
		Tasks.push_back({Number, First, std::min(First + PortionBlocks, Blocks), false});
	}
}

std::vector<FTask> MakeTasks(const FPakReader& Reader)
{
	std::vector<FTask> Tasks;
	for (std::size_t Number = 0; Number < Reader.Entries().size(); ++Number)
	{
		const FPakEntry& Entry = Reader.Entries()[Number];
		AddEntryTasks(Tasks, static_cast<std::uint32_t>(Number), Entry, WhyPakContentIsClosed(Reader, Entry).empty());
	}
	// The hash of a large file cannot be shared out: begun last, it would keep the others waiting.
	const auto IsLong = [&Reader](const FTask& Task)
	{ return Task.bHash && Reader.Entries()[Task.Entry].Size >= LargeFileBytes; };
	std::stable_partition(Tasks.begin(), Tasks.end(), IsLong);
	return Tasks;
}

void CheckBlocks(FWorker& Worker, const FTask& Task, const FPakEntry& Entry)
{
	for (std::uint32_t Block = Task.FirstBlock; Block < Task.EndBlock; ++Block)
	{
		const TResult<FBytes> Inflated = Worker.Inflater.Inflate(Entry, Worker.Payload, Block);
		if (!Inflated)
		{
			Worker.Problems.push_back({Task.Entry, Inflated.Error().Message});
			return;
		}
		Worker.InflatedBytes += Inflated->size();
	}
}

void RunTask(FWorker& Worker, const FTask& Task, const FPakReader& Reader)
{
	const FPakEntry& Entry = Reader.Entries()[Task.Entry];
	const FStatus Head = Worker.Payload.Read(Reader, Entry);
	if (!Head)
	{
		if (Task.bHash)
		{
			Worker.Problems.push_back({Task.Entry, Head.Error().Message});
		}
		return;
	}
	if (Task.bHash)
	{
		const FStatus Hash = Worker.Payload.CheckHash(FSha1::Of(Worker.Payload.Stored));
		Worker.HashedBytes += Entry.Size;
		if (!Hash)
		{
			Worker.Problems.push_back({Task.Entry, Hash.Error().Message});
			return;
		}
	}
	CheckBlocks(Worker, Task, Entry);
}

void GatherProblems(std::vector<FWorker>& Workers, const FPakReader& Reader, FPakVerifyReport& Report)
{
	std::vector<FTaskFinding> All;
	for (FWorker& Worker : Workers)
	{
		All.insert(All.end(), Worker.Problems.begin(), Worker.Problems.end());
		Report.HashedBytes += Worker.HashedBytes;
		Report.InflatedBytes += Worker.InflatedBytes;
	}
	std::sort(All.begin(), All.end(),
		[](const FTaskFinding& A, const FTaskFinding& B)
		{ return std::tie(A.Entry, A.Message) < std::tie(B.Entry, B.Message); });
	for (FTaskFinding& Finding : All)
	{
		Report.Problems.push_back({Reader.Entries()[Finding.Entry].Path(), std::move(Finding.Message)});
	}
}

void NoteClosedContents(const FPakReader& Reader, FPakVerifyReport& Report)
{
	for (const FPakEntry& Entry : Reader.Entries())
	{
		const std::string Reason = WhyPakContentIsClosed(Reader, Entry);
		if (!Reason.empty())
		{
			Report.Notes.push_back({Entry.Path(), "content not checked: " + Reason});
		}
	}
}

struct FHashedPath
{
	std::uint64_t Hash = 0;
	std::int32_t Place = 0;
};
constexpr std::size_t HashedPathBytes = 12;

bool ReadHashedPaths(FBytes Table, std::vector<FHashedPath>& Paths)
{
	FByteReader In(Table);
	Paths.resize(static_cast<std::size_t>(In.Count(HashedPathBytes)));
	for (FHashedPath& Path : Paths)
	{
		Path = {In.U64(), In.I32()};
	}
	std::erase_if(
		Paths, [](const FHashedPath& Path) { return Path.Place == std::numeric_limits<std::int32_t>::min(); });
	std::sort(Paths.begin(), Paths.end(), [](const FHashedPath& A, const FHashedPath& B) { return A.Hash < B.Hash; });
	return !In.Failed();
}

void CheckHashedPath(
	const std::vector<FHashedPath>& Paths, const FPakEntry& Entry, std::uint64_t Seed, FPakVerifyReport& Report)
{
	const std::uint64_t Hash = PakPathHash(Entry.Folder, Entry.Name, Seed);
	const auto Found = std::lower_bound(Paths.begin(), Paths.end(), Hash,
		[](const FHashedPath& Path, std::uint64_t Wanted) { return Path.Hash < Wanted; });
	if (Found != Paths.end() && Found->Hash == Hash && Found->Place == Entry.Place)
	{
		return;
	}
	const std::string Path = Entry.Path();
	if (!IsAscii(Path))
	{
		Report.Notes.push_back(
			{Path, "path hash not checked: how the engine makes letters outside ASCII small is not known"});
		return;
	}
	Report.Problems.push_back({Path, Found != Paths.end() && Found->Hash == Hash
										 ? "the path hash index leads to another entry"
										 : "the path hash index does not have it, so the game would not find it"});
}

void CheckPathHashes(const FPakReader& Reader, FPakVerifyReport& Report)
{
	if (Reader.Version() < EPakVersion::Fnv64BugFix || !Reader.IndexTables().bHasPathHashIndex)
	{
		Report.Notes.push_back({"", Reader.Version() == EPakVersion::PathHashIndex
										? "path hashes not checked: version 10 calculates them in another way"
										: "path hashes not checked: the pak has no path hash index"});
		return;
	}
	std::vector<FHashedPath> Paths;
	if (!ReadHashedPaths(Reader.IndexTables().PathHashIndex, Paths))
	{
		Report.Problems.push_back({"", "the path hash index counts more than it holds"});
		return;
	}
	if (Paths.size() != Reader.Entries().size())
	{
		Report.Problems.push_back({"", "the path hash index has " + std::to_string(Paths.size()) +
										   " files, the directory index " + std::to_string(Reader.Entries().size())});
	}
	for (const FPakEntry& Entry : Reader.Entries())
	{
		CheckHashedPath(Paths, Entry, Reader.IndexTables().PathHashSeed, Report);
	}
}
} // namespace

FPakVerifyReport VerifyPak(const FPakReader& Reader, unsigned Threads)
{
	const std::vector<FTask> Tasks = MakeTasks(Reader);
	std::vector<FWorker> Workers(ThreadCount(Threads, Tasks.size()));
	ParallelFor(static_cast<unsigned>(Workers.size()), Tasks.size(),
		[&](unsigned Worker, std::size_t Task) { RunTask(Workers[Worker], Tasks[Task], Reader); });
	FPakVerifyReport Report;
	Report.Files = Reader.Entries().size();
	GatherProblems(Workers, Reader, Report);
	NoteClosedContents(Reader, Report);
	CheckPathHashes(Reader, Report);
	return Report;
}
} // namespace QVFormats
