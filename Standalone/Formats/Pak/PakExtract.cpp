// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Pak/PakExtract.h"

#include "Standalone/Formats/Base/Disk.h"
#include "Standalone/Formats/Base/OutputFile.h"
#include "Standalone/Formats/Base/Parallel.h"
#include "Standalone/Formats/Base/PathText.h"
#include "Standalone/Formats/Pak/PakPaths.h"
#include "Standalone/Formats/Pak/PakPayload.h"

#include <algorithm>
#include <mutex>
#include <set>

namespace QVFormats
{
namespace
{
namespace fs = std::filesystem;

/** Plain content goes to disk in pieces, so that each is hashed while it is at hand. */
constexpr std::size_t PieceBytes = 256 * 1024;

/** Below the target folder; with its mount point. */
std::string RelativePath(const FPakReader& Reader, const FPakEntry& Entry)
{
	std::string Path(PakMountFolder(Reader.MountPoint()));
	if (!Path.empty() && Path.back() != '/')
	{
		Path.push_back('/');
	}
	return Path.append(Entry.Folder).append(Entry.Name);
}

/** Makes folders below a target, each once, and never through a link. */
class FFolderMaker
{
public:
	explicit FFolderMaker(fs::path InTarget)
		: Target(std::move(InTarget))
	{
	}

	FStatus Make(const fs::path& Relative);

private:
	FStatus MakeTarget();
	FStatus MakeOne(const fs::path& Folder);

	fs::path Target;
	std::mutex Mutex;
	std::set<fs::path> Made;
};

FStatus FFolderMaker::Make(const fs::path& Relative)
{
	const std::lock_guard Lock(Mutex);
	if (Made.contains(Relative))
	{
		return Success();
	}
	FStatus Status = MakeTarget();
	fs::path Folder = Target;
	for (const fs::path& Segment : Relative)
	{
		if (!Status)
		{
			return Status;
		}
		Folder /= Segment;
		Status = MakeOne(Folder);
	}
	if (Status)
	{
		Made.insert(Relative);
	}
	return Status;
}

FStatus FFolderMaker::MakeTarget()
{
	std::error_code Code;
	FDisk::MakeFolders(Target, Code);
	return FDisk::IsFolder(Target) ? Success()
								   : FError{"folder " + PathText(Target) + " could not be made: " + Code.message()};
}

FStatus FFolderMaker::MakeOne(const fs::path& Folder)
{
	std::error_code Code;
	FDisk::MakeFolder(Folder, Code);
	const bool bLink = FDisk::IsLink(Folder);
	if (!bLink && FDisk::IsFolder(Folder))
	{
		return Success();
	}
	return FError{bLink ? PathText(Folder) + " is a link, which is not followed; remove it or choose another folder"
						: "folder " + PathText(Folder) + " could not be made: " +
							  (!FDisk::Exists(Folder) ? Code.message() : "a file of that name is in the way")};
}

struct FExtractWorker
{
	FPakPayload Payload;
	FPakInflater Inflater;
};

/** Hashes what is stored and writes what it stands for, piece by piece. */
class FEntryWriter
{
public:
	FEntryWriter(FExtractWorker& InWorker, const FPakEntry& InEntry, FOutputFile& InOut)
		: Worker(InWorker)
		, Entry(InEntry)
		, Out(InOut)
	{
	}

	FStatus Run()
	{
		FStatus Written = Entry.Method == 0 ? WritePlain() : WriteBlocks();
		if (!Written)
		{
			return Written;
		}
		const FStatus Hash = Worker.Payload.CheckHash(Sha1.Finish());
		return Hash ? Out.Commit(Entry.UncompressedSize) : Hash;
	}

private:
	FStatus WritePlain()
	{
		const FBytes Stored = Worker.Payload.Stored;
		for (std::size_t Begin = 0; Begin < Stored.size(); Begin += PieceBytes)
		{
			const FBytes Piece = Stored.subspan(Begin, std::min(PieceBytes, Stored.size() - Begin));
			Sha1.Update(Piece);
			if (FStatus Status = Out.WriteAt(Begin, Piece); !Status)
			{
				return Status;
			}
		}
		return Success();
	}

	FStatus WriteBlocks()
	{
		std::uint64_t Position = 0;
		for (std::size_t Block = 0; Block < Entry.BlockCount; ++Block)
		{
			Sha1.Update(Worker.Payload.Block(Block));
			const TResult<FBytes> Inflated = Worker.Inflater.Inflate(Entry, Worker.Payload, Block);
			if (!Inflated)
			{
				return Inflated.Error();
			}
			if (FStatus Status = Out.WriteAt(Position, *Inflated); !Status)
			{
				return Status;
			}
			Position += Inflated->size();
		}
		return Success();
	}

	FExtractWorker& Worker;
	const FPakEntry& Entry;
	FOutputFile& Out;
	FSha1 Sha1;
};

FStatus Extract(const FPakReader& Reader, const FPakEntry& Entry, const fs::path& Target, FFolderMaker& Folders,
	FExtractWorker& Worker)
{
	const std::string Relative = RelativePath(Reader, Entry);
	const std::string_view Unsafe = WhyUnsafeBelowFolder(Relative);
	if (!Unsafe.empty())
	{
		return FError{"its name is refused: " + std::string(Unsafe)};
	}
	const std::string Closed = WhyPakContentIsClosed(Reader, Entry);
	if (!Closed.empty())
	{
		return FError{"it cannot be extracted: it is " + Closed};
	}
	if (FStatus Head = Worker.Payload.Read(Reader, Entry); !Head)
	{
		return Head;
	}
	const fs::path RelativeFile = PathFromUtf8(Relative);
	if (FStatus Made = Folders.Make(RelativeFile.parent_path()); !Made)
	{
		return Made;
	}
	TResult<FOutputFile> Out = FOutputFile::Create(Target / RelativeFile);
	return Out ? FEntryWriter(Worker, Entry, *Out).Run() : FStatus(Out.Error());
}
} // namespace

fs::path PakExtractedPath(const FPakReader& Reader, const FPakEntry& Entry, const fs::path& Folder)
{
	return Folder / PathFromUtf8(RelativePath(Reader, Entry));
}

FStatus ExtractPakEntry(const FPakReader& Reader, const FPakEntry& Entry, const fs::path& Folder)
{
	FFolderMaker Folders(Folder);
	FExtractWorker Worker;
	FStatus Status = Extract(Reader, Entry, Folder, Folders, Worker);
	return Status ? Status : FError{"\"" + Entry.Path() + "\" of " + Reader.Name() + ": " + Status.Error().Message};
}

FPakExtractReport ExtractPak(const FPakReader& Reader, const fs::path& Folder, unsigned Threads)
{
	const std::vector<FPakEntry>& Entries = Reader.Entries();
	FFolderMaker Folders(Folder);
	std::vector<FExtractWorker> Workers(ThreadCount(Threads, Entries.size()));
	std::vector<std::string> Failures(Entries.size());
	ParallelFor(static_cast<unsigned>(Workers.size()), Entries.size(),
		[&](unsigned Worker, std::size_t Number)
		{
			const FStatus Status = Extract(Reader, Entries[Number], Folder, Folders, Workers[Worker]);
			Failures[Number] = Status ? std::string() : Status.Error().Message;
		});
	FPakExtractReport Report;
	for (std::size_t Number = 0; Number < Entries.size(); ++Number)
	{
		if (!Failures[Number].empty())
		{
			Report.Problems.push_back({Entries[Number].Path(), std::move(Failures[Number])});
			continue;
		}
		++Report.Files;
		Report.Bytes += Entries[Number].UncompressedSize;
	}
	return Report;
}
} // namespace QVFormats
