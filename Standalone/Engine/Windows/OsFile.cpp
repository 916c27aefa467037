// SPDX-License-Identifier: MIT
#include "Standalone/Engine/OsFile.h"

#include "Standalone/Formats/Base/Disk.h"
#include "Standalone/Formats/Windows/Win32.h"

#include <array>
#include <atomic>
#include <functional>
#include <string>

namespace QVStandalone
{
using namespace QVFormats;
namespace fs = std::filesystem;

namespace
{
constexpr DWORD NotThere = INVALID_FILE_ATTRIBUTES;

DWORD MarksOf(const fs::path& Path)
{
	return ::GetFileAttributesW(WidePath(Path).c_str());
}

std::error_code Append(HANDLE File, std::uint64_t& Offset, std::string_view Bytes)
{
	const std::error_code Error =
		WriteFileAt(File, Offset, reinterpret_cast<const std::byte*>(Bytes.data()), Bytes.size());
	Offset += Bytes.size();
	return Error;
}

std::error_code AppendFile(HANDLE File, const fs::path& Source)
{
	constexpr std::size_t ChunkBytes = 256 * 1024;
	const auto Chunk = std::make_unique<std::array<std::byte, ChunkBytes>>();
	std::error_code Error;
	std::uint64_t Size = 0;
	const FWinHandle Opened = OpenForReading(Source, Size, Error);
	std::size_t Count = 0;
	for (std::uint64_t Offset = 0; !Error; Offset += Count)
	{
		Error = ReadFileAt(Opened.Get(), Offset, Chunk->data(), ChunkBytes, Count);
		if (Error || Count == 0)
		{
			break;
		}
		Error = WriteFileAt(File, Offset, Chunk->data(), Count);
	}
	return Error;
}

/** The file that a path leads to, also when it is not there yet. */
fs::path FollowLinks(const fs::path& Path)
{
	std::error_code Error;
	const fs::path Real = FDisk::IsLink(Path) ? FDisk::RealPath(Path, Error) : Path;
	return Error ? Path : Real;
}

fs::path TemporaryBeside(const fs::path& Target)
{
	static std::atomic<unsigned> Counter{0};
	std::string Suffix(1, '.');
	Suffix.append(std::to_string(::GetCurrentProcessId()))
		.append(1, '-')
		.append(std::to_string(Counter.fetch_add(1)))
		.append(".tmp");
	return fs::path(Target) += Suffix;
}

using FFill = std::function<std::error_code(HANDLE File)>;

/** A new file, on the disk. */
std::error_code MakeTemporary(const fs::path& Temporary, const FFill& Fill)
{
	const FWinHandle File(::CreateFileW(WidePath(Temporary).c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ,
		nullptr, CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr));
	if (!File.IsValid())
	{
		const std::error_code Error = LastWinError();
		const bool bFileOnTheWay = FDisk::IsFile(Temporary.parent_path());
		return bFileOnTheWay ? std::make_error_code(std::errc::not_a_directory) : Error;
	}
	const std::error_code Error = Fill(File.Get());
	return Error || ::FlushFileBuffers(File.Get()) ? Error : LastWinError();
}

std::error_code Replace(const fs::path& Target, bool bEvenReadOnly, FFolderFlushes* Later, const FFill& Fill)
{
	const fs::path Real = FollowLinks(Target);
	const DWORD Marks = MarksOf(Real);
	if (Marks != NotThere && (Marks & FILE_ATTRIBUTE_DIRECTORY) != 0)
	{
		return std::make_error_code(std::errc::is_a_directory);
	}
	if (!bEvenReadOnly && IsMarkedReadOnly(Real))
	{
		return std::make_error_code(std::errc::permission_denied);
	}
	const fs::path Temporary = TemporaryBeside(Real);
	std::error_code Error = MakeTemporary(Temporary, Fill);
	if (!Error && Marks != NotThere)
	{
		::SetFileAttributesW(WidePath(Temporary).c_str(), Marks);
	}
	Error = Error ? Error : RenameOver(Temporary, Real, bEvenReadOnly);
	if (Error)
	{
		ClearReadOnly(WidePath(Temporary));
		::DeleteFileW(WidePath(Temporary).c_str());
		return Error;
	}
	if (Later != nullptr)
	{
		Later->Add(Real);
	}
	return {};
}

std::error_code RemoveOne(const fs::path& Path)
{
	const std::wstring Name = WidePath(Path);
	const DWORD Marks = ::GetFileAttributesW(Name.c_str());
	const bool bFolder = Marks != NotThere && (Marks & FILE_ATTRIBUTE_DIRECTORY) != 0;
	const bool bRemoved = bFolder ? ::RemoveDirectoryW(Name.c_str()) : ::DeleteFileW(Name.c_str());
	return bRemoved ? std::error_code() : LastWinError();
}
} // namespace

bool IsMarkedReadOnly(const fs::path& Path)
{
	const DWORD Marks = MarksOf(FollowLinks(Path));
	return Marks != NotThere && (Marks & FILE_ATTRIBUTE_READONLY) != 0 && (Marks & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

std::error_code ReplaceFile(const fs::path& Target, std::string_view Bytes)
{
	return ReplaceFile(Target, std::span(&Bytes, 1));
}

std::error_code ReplaceFile(const fs::path& Target, std::span<const std::string_view> Parts, FFolderFlushes* Later)
{
	return Replace(Target, false, Later,
		[Parts](HANDLE File)
		{
			std::error_code Error;
			std::uint64_t Offset = 0;
			for (const std::string_view Part : Parts)
			{
				Error = Error ? Error : Append(File, Offset, Part);
			}
			return Error;
		});
}

std::error_code CopyFileOver(const fs::path& Target, const fs::path& Source, FFolderFlushes* Later)
{
	return Replace(Target, true, Later, [&Source](HANDLE File) { return AppendFile(File, Source); });
}

/** Its other name would keep the mark of a read-only file from being its own. */
std::error_code LinkOrCopyFileOver(const fs::path& Target, const fs::path& Source, FFolderFlushes* Later)
{
	return CopyFileOver(Target, Source, Later);
}

std::error_code MoveFileOver(const fs::path& Target, const fs::path& Source)
{
	return IsMarkedReadOnly(Source) ? std::make_error_code(std::errc::permission_denied)
									: RenameOver(Source, Target, false);
}

// Names need no flush of their own: files are renamed so that the call returns when that is on the disk, and the
// system keeps a journal of its folders.

void FFolderFlushes::Add(const fs::path& Entry)
{
	const std::lock_guard Held(Lock);
	Folders.insert(Entry.parent_path());
}

std::error_code FFolderFlushes::Flush(fs::path& /*OutFolder*/)
{
	const std::lock_guard Held(Lock);
	Folders.clear();
	return {};
}

std::error_code MakeFolders(const fs::path& Folder)
{
	std::error_code Error;
	FDisk::MakeFolders(Folder, Error);
	return Error;
}

std::error_code RemoveEntry(const fs::path& Path, bool bEvenReadOnly, FFolderFlushes* Later)
{
	if (bEvenReadOnly)
	{
		ClearReadOnly(WidePath(Path));
	}
	const std::error_code Error = RemoveOne(Path);
	if (!Error && Later != nullptr)
	{
		Later->Add(Path);
	}
	return Error;
}

std::error_code RemoveTree(const fs::path& Folder)
{
	if (MarksOf(Folder) == NotThere)
	{
		return {};
	}
	std::error_code Error;
	const bool bEnter = !FDisk::IsLink(Folder) && FDisk::IsFolder(Folder);
	for (const FDisk::FEntry& Entry : bEnter ? FDisk::List(Folder) : std::vector<FDisk::FEntry>())
	{
		Error = Error ? Error : RemoveTree(Entry.Path);
	}
	return Error ? Error : RemoveEntry(Folder, true);
}
} // namespace QVStandalone
