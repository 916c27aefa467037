// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Files.h"

#include "Standalone/Engine/EngineLog.h"
#include "Standalone/Engine/OsFile.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Engine/TextEncoding.h"
#include "Standalone/Formats/Base/Disk.h"
#include "Standalone/Formats/Base/Parallel.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <set>

namespace fs = std::filesystem;

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
/** True if there was no error; else says, in the log, what could not be done and why. */
bool Succeeded(const std::error_code& Error, std::string_view Path, std::string_view Action)
{
	if (Error)
	{
		LogEngine(EQVLogVerbosity::Warning, "%s could not be %s: %s", Path, Action, Error.message());
	}
	return !Error;
}

/** TBytes: a string, or a vector of bytes, whose memory is used again. */
template<class TBytes>
std::error_code ReadAll(const fs::path& Path, TBytes& OutBytes)
{
	errno = 0;
	std::ifstream File(FDisk::SystemPath(Path), std::ios::binary);
	std::error_code Unknown;
	const std::uint64_t Expected = FDisk::SizeOf(Path, Unknown);
	std::size_t Done = 0;
	do
	{
		constexpr std::size_t More = 64 * 1024; // a file may grow, and some tell no size
		OutBytes.resize(std::max(Done, Unknown ? 0 : static_cast<std::size_t>(Expected)) + More);
		File.read(
			reinterpret_cast<char*>(OutBytes.data() + Done), static_cast<std::streamsize>(OutBytes.size() - Done));
		Done += static_cast<std::size_t>(File.gcount());
	} while (File);
	OutBytes.resize(Done);
	return File.eof() ? std::error_code() : std::error_code(errno != 0 ? errno : EIO, std::generic_category());
}

/** A file that is not there is no trouble worth a line. */
template<class TBytes>
bool Load(std::string_view Path, TBytes& OutBytes)
{
	const bool bRead = FDisk::Exists(ToOsPath(Path)) && Succeeded(ReadAll(ToOsPath(Path), OutBytes), Path, "read");
	OutBytes.resize(bRead ? OutBytes.size() : 0);
	return bRead;
}

/** Body(Place, Folders) tells whether it succeeded. */
template<class FBody>
std::vector<bool> DoAll(std::size_t Count, const FBody& Body)
{
	FFolderFlushes Folders;
	std::vector<char> Done(Count); // of bool, neighbours could not be written at once
	ParallelFor(ThreadCount(FFolderFlushes::FilesAtOnce, Count), Count,
		[&](unsigned, std::size_t Place) { Done[Place] = Body(Place, Folders) ? 1 : 0; });
	fs::path Folder;
	const std::error_code Error = Folders.Flush(Folder);
	const bool bFlushed = Succeeded(Error, FromOsPath(Folder), "flushed");
	return bFlushed ? std::vector<bool>(Done.begin(), Done.end()) : std::vector<bool>(Count);
}

std::vector<bool> CopyAll(std::span<const FQVFileCopy> Copies, decltype(CopyFileOver)& CopyOne)
{
	return DoAll(Copies.size(),
		[Copies, &CopyOne](std::size_t Place, FFolderFlushes& Folders)
		{
			const FQVFileCopy& Each = Copies[Place];
			return Succeeded(
				CopyOne(ToOsPath(Each.To), ToOsPath(Each.From), &Folders), Each.From, "copied to " + Each.To);
		});
}

/** Missing is an error. */
std::error_code DeleteNoFolder(const fs::path& Path, bool bEvenReadOnly, FFolderFlushes* Later)
{
	return FDisk::IsFolder(Path) ? std::make_error_code(std::errc::is_a_directory)
								 : RemoveEntry(Path, bEvenReadOnly, Later);
}

std::vector<FDisk::FEntry> ListSorted(const fs::path& Folder)
{
	std::vector<FDisk::FEntry> Entries = FDisk::List(Folder);
	std::sort(Entries.begin(), Entries.end(),
		[](const FDisk::FEntry& A, const FDisk::FEntry& B) { return A.Path.native() < B.Path.native(); });
	return Entries;
}

struct FFileLock : IQVFileLock
{
	explicit FFileLock(std::unique_ptr<FOsFileLock> InLock)
		: Lock(std::move(InLock))
	{
	}

	const std::unique_ptr<FOsFileLock> Lock;
};

/** Walks a tree depth first, a folder before what it holds; remembers linked folders, so that a loop ends. */
class FTreeWalk
{
public:
	explicit FTreeWalk(const IQVFiles::FVisitor& InVisitor)
		: Visitor(InVisitor)
	{
	}

	bool Walk(const fs::path& Folder)
	{
		for (const FDisk::FEntry& Entry : ListSorted(Folder))
		{
			if (!Visitor(FromOsPath(Entry.Path), Entry.bIsFolder))
			{
				return false;
			}
			if (Entry.bIsFolder && IsFirstVisit(Entry.Path) && !Walk(Entry.Path))
			{
				return false;
			}
		}
		return true;
	}

private:
	const IQVFiles::FVisitor& Visitor;
	std::set<fs::path> LinkTargets;

	bool IsFirstVisit(const fs::path& Folder)
	{
		if (!FDisk::IsLink(Folder))
		{
			return true;
		}
		std::error_code Error;
		const fs::path Target = FDisk::RealPath(Folder, Error);
		const fs::path Parent = FDisk::RealPath(Folder.parent_path(), Error);
		const auto [Mismatch, Unused] = std::mismatch(Target.begin(), Target.end(), Parent.begin(), Parent.end());
		const bool bLeadsUpward = Mismatch == Target.end();
		return !Error && !bLeadsUpward && LinkTargets.insert(Target).second;
	}
};
} // namespace

bool FFiles::FileExists(std::string_view Path) const
{
	return FDisk::IsFile(ToOsPath(Path));
}

bool FFiles::DirectoryExists(std::string_view Path) const
{
	return FDisk::IsFolder(ToOsPath(Path));
}

std::int64_t FFiles::FileSize(std::string_view Path) const
{
	std::error_code Error;
	const std::uint64_t Size = FDisk::SizeOf(ToOsPath(Path), Error);
	return Error ? -1 : static_cast<std::int64_t>(Size);
}

FQVDateTime FFiles::GetTimeStamp(std::string_view Path) const
{
	std::error_code Error;
	const std::int64_t Nanoseconds = FDisk::TimeOf(ToOsPath(Path), Error);
	return Error ? FQVDateTime() : FQVDateTime::FromUnixSeconds(0, Nanoseconds);
}

void FFiles::IterateDirectory(std::string_view Path, const FVisitor& Visitor) const
{
	for (const FDisk::FEntry& Entry : ListSorted(ToOsPath(Path)))
	{
		if (!Visitor(FromOsPath(Entry.Path), Entry.bIsFolder))
		{
			return;
		}
	}
}

void FFiles::IterateDirectoryRecursively(std::string_view Path, const FVisitor& Visitor) const
{
	FTreeWalk(Visitor).Walk(ToOsPath(Path));
}

bool FFiles::CreateDirectoryTree(std::string_view Path)
{
	return Succeeded(MakeFolders(ToOsPath(Path)), Path, "created");
}

bool FFiles::DeleteDirectory(std::string_view Path)
{
	return Succeeded(RemoveTree(ToOsPath(Path)), Path, "deleted");
}

bool FFiles::DeleteFile(std::string_view Path, bool bEvenReadOnly)
{
	const std::error_code Error = DeleteNoFolder(ToOsPath(Path), bEvenReadOnly, nullptr);
	const bool bMissing = Error == std::errc::no_such_file_or_directory;
	return !bMissing && Succeeded(Error, Path, "deleted");
}

bool FFiles::Move(std::string_view To, std::string_view From)
{
	return Succeeded(MoveFileOver(ToOsPath(To), ToOsPath(From)), From, "renamed");
}

bool FFiles::Copy(std::string_view To, std::string_view From)
{
	return Succeeded(CopyFileOver(ToOsPath(To), ToOsPath(From)), From, std::string("copied to ").append(To));
}

std::vector<bool> FFiles::CopyFiles(std::span<const FQVFileCopy> Copies)
{
	return CopyAll(Copies, CopyFileOver);
}

std::vector<bool> FFiles::PutFilesBack(std::span<const FQVFileCopy> Copies)
{
	return CopyAll(Copies, LinkOrCopyFileOver);
}

std::vector<bool> FFiles::DeleteFiles(std::span<const std::string> Paths, bool bEvenReadOnly)
{
	return DoAll(Paths.size(),
		[Paths, bEvenReadOnly](std::size_t Place, FFolderFlushes& Folders)
		{
			const std::error_code Error = DeleteNoFolder(ToOsPath(Paths[Place]), bEvenReadOnly, &Folders);
			return Error == std::errc::no_such_file_or_directory || Succeeded(Error, Paths[Place], "deleted");
		});
}

void FFiles::LoadFiles(std::span<const std::string> Paths, const FReader& Reader) const
{
	const unsigned Threads = ThreadCount(0, Paths.size());
	std::vector<std::vector<std::byte>> Buffers(Threads);
	ParallelFor(Threads, Paths.size(),
		[&](unsigned Worker, std::size_t Place)
		{
			const bool bRead = LoadFileToArray(Buffers[Worker], Paths[Place]);
			Reader(Place, bRead ? std::optional<std::span<const std::byte>>(Buffers[Worker]) : std::nullopt);
		});
}

bool FFiles::LoadFileToString(std::string& OutText, std::string_view Path) const
{
	std::string Bytes;
	if (!Load(Path, Bytes))
	{
		return false;
	}
	OutText = DecodeText(Bytes);
	return true;
}

bool FFiles::LoadFileToArray(std::vector<std::byte>& OutBytes, std::string_view Path) const
{
	return Load(Path, OutBytes);
}

bool FFiles::SaveStringToFile(std::string_view Text, std::string_view Path)
{
	return Succeeded(ReplaceFile(ToOsPath(Path), EncodeText(Text)), Path, "written");
}

std::unique_ptr<IQVFileLock> FFiles::TryLock(std::string_view Path)
{
	std::error_code Error;
	std::unique_ptr<FOsFileLock> Lock = FOsFileLock::TryLock(ToOsPath(Path), Error);
	const bool bHeld = Error == std::errc::resource_unavailable_try_again;
	if (bHeld || !Succeeded(Error, Path, "locked"))
	{
		return nullptr;
	}
	return std::make_unique<FFileLock>(std::move(Lock));
}
} // namespace QVStandalone
