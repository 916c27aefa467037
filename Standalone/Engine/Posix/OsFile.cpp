// SPDX-License-Identifier: MIT
#include "Standalone/Engine/OsFile.h"

#include "Standalone/Engine/Posix/OsFolder.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <functional>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace QVStandalone
{
namespace
{
constexpr mode_t AnyWriteBit = S_IWUSR | S_IWGRP | S_IWOTH;

std::error_code WriteAll(int File, std::string_view Bytes)
{
	while (!Bytes.empty())
	{
		const ssize_t Written = ::write(File, Bytes.data(), Bytes.size());
		if (Written < 0 && errno != EINTR)
		{
			return LastError();
		}
		Bytes.remove_prefix(Written > 0 ? static_cast<std::size_t>(Written) : 0);
	}
	return {};
}

/** What is left of a source, by way of our memory. */
std::error_code AppendThroughMemory(int File, int Source)
{
	constexpr std::size_t ChunkBytes = 256 * 1024;
	const auto Chunk = std::make_unique<std::array<char, ChunkBytes>>();
	while (true)
	{
		const ssize_t Count = ::read(Source, Chunk->data(), Chunk->size());
		if (Count == 0)
		{
			return {};
		}
		const std::error_code Error = Count > 0 ? WriteAll(File, {Chunk->data(), static_cast<std::size_t>(Count)})
									  : errno == EINTR ? std::error_code()
													   : LastError();
		if (Error)
		{
			return Error;
		}
	}
}

/** What is left of a source. Where the system cannot copy from file to file itself, we do. */
std::error_code AppendRest(int File, int Source)
{
	constexpr std::size_t ChunkBytes = std::size_t{1} << 30;
	while (true)
	{
		const ssize_t Count = ::copy_file_range(Source, nullptr, File, nullptr, ChunkBytes, 0);
		if (Count == 0)
		{
			return AppendThroughMemory(File, Source); // some disks say so of files that are not at their end
		}
		if (Count < 0 && errno != EINTR)
		{
			const bool bCannot =
				errno == EXDEV || errno == EINVAL || errno == EOPNOTSUPP || errno == ENOSYS || errno == EPERM;
			return bCannot ? AppendThroughMemory(File, Source) : LastError();
		}
	}
}

std::error_code AppendFile(int File, const std::filesystem::path& Source)
{
	const FDescriptor Opened(::open(Source.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)); // a pipe would wait
	struct stat Info = {};
	if (!Opened.IsValid() || ::fstat(Opened.Get(), &Info) != 0)
	{
		return LastError();
	}
	if (!S_ISREG(Info.st_mode))
	{
		return std::make_error_code(S_ISDIR(Info.st_mode) ? std::errc::is_a_directory : std::errc::invalid_argument);
	}
	return AppendRest(File, Opened.Get());
}

/** The file that a path leads to, also when it is not there yet. */
std::filesystem::path FollowLinks(std::filesystem::path Path)
{
	constexpr int MostLinks = 40;
	std::error_code Error;
	for (int Links = 0; Links < MostLinks && std::filesystem::is_symlink(Path, Error); ++Links)
	{
		Path = Path.parent_path() / std::filesystem::read_symlink(Path, Error);
	}
	return Path;
}

std::filesystem::path TemporaryBeside(const std::filesystem::path& Target)
{
	static std::atomic<unsigned> Counter{0};
	std::string Suffix(1, '.');
	Suffix.append(std::to_string(::getpid()))
		.append(1, '-')
		.append(std::to_string(Counter.fetch_add(1)))
		.append(".tmp");
	return std::filesystem::path(Target) += Suffix;
}

/** Makes the file that is to take the place of another one. */
using FMake = std::function<std::error_code(const std::filesystem::path& Temporary, const std::filesystem::path& Real)>;
using FFill = std::function<std::error_code(int File)>;

/** No error if there is no such file, or on a disk that has no marks. */
std::error_code TakeMarksOf(const std::filesystem::path& Real, int File)
{
	struct stat Old = {};
	if (::stat(Real.c_str(), &Old) != 0)
	{
		return errno == ENOENT ? std::error_code() : LastError();
	}
	const bool bTaken = ::fchmod(File, Old.st_mode & 0777) == 0 || errno == EPERM || errno == EOPNOTSUPP;
	return bTaken ? std::error_code() : LastError();
}

/** A new file with the marks of the one whose place it will take, on the disk. */
std::error_code MakeTemporary(
	const std::filesystem::path& Temporary, const std::filesystem::path& Real, const FFill& Fill)
{
	constexpr mode_t NewFile = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
	FDescriptor File(::open(Temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, NewFile));
	if (!File.IsValid())
	{
		return LastError();
	}
	std::error_code Error = TakeMarksOf(Real, File.Get());
	Error = Error ? Error : Fill(File.Get());
	if (!Error && ::fsync(File.Get()) != 0)
	{
		Error = LastError();
	}
	const std::error_code Closing = File.Close();
	return Error ? Error : Closing;
}

/** The same without a byte written: another name for Source, whose own bytes are on the disk. */
std::error_code LinkTemporary(
	const std::filesystem::path& Temporary, const std::filesystem::path& Real, const std::filesystem::path& Source)
{
	const FDescriptor File(::open(Source.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW));
	struct stat New = {};
	struct stat Old = {};
	if (!File.IsValid() || ::fstat(File.Get(), &New) != 0 || ::stat(Real.c_str(), &Old) != 0)
	{
		return LastError();
	}
	const bool bSameOwner = New.st_uid == Old.st_uid && New.st_gid == Old.st_gid;
	if (!S_ISREG(New.st_mode) || New.st_nlink != 1 || !bSameOwner)
	{
		return std::make_error_code(std::errc::operation_not_permitted);
	}
	const bool bMarked = (New.st_mode & 0777) == (Old.st_mode & 0777) || ::fchmod(File.Get(), Old.st_mode & 0777) == 0;
	// it counts as written now, like a copy: an older time could be taken for that of what was here before
	const bool bReady = bMarked && ::fsync(File.Get()) == 0 && ::futimens(File.Get(), nullptr) == 0;
	return bReady && ::link(Source.c_str(), Temporary.c_str()) == 0 ? std::error_code() : LastError();
}

std::error_code ReplaceBy(
	const std::filesystem::path& Target, bool bEvenReadOnly, FFolderFlushes* Later, const FMake& Make)
{
	std::error_code Ignored;
	const std::filesystem::path Real = FollowLinks(Target);
	if (std::filesystem::is_directory(Real, Ignored))
	{
		return std::make_error_code(std::errc::is_a_directory);
	}
	if (!bEvenReadOnly && IsMarkedReadOnly(Real))
	{
		return std::make_error_code(std::errc::permission_denied);
	}
	const std::filesystem::path Temporary = TemporaryBeside(Real);
	std::error_code Error = Make(Temporary, Real);
	if (!Error && ::rename(Temporary.c_str(), Real.c_str()) != 0)
	{
		Error = LastError();
	}
	if (Error)
	{
		::unlink(Temporary.c_str());
		return Error;
	}
	return FlushFolderOf(Real, Later);
}

std::error_code Replace(
	const std::filesystem::path& Target, bool bEvenReadOnly, FFolderFlushes* Later, const FFill& Fill)
{
	const auto Make = [&Fill](const std::filesystem::path& Temporary, const std::filesystem::path& Real)
	{ return MakeTemporary(Temporary, Real, Fill); };
	return ReplaceBy(Target, bEvenReadOnly, Later, Make);
}
} // namespace

bool IsMarkedReadOnly(const std::filesystem::path& Path)
{
	struct stat Info = {};
	return ::stat(Path.c_str(), &Info) == 0 && S_ISREG(Info.st_mode) && (Info.st_mode & AnyWriteBit) == 0;
}

std::error_code ReplaceFile(const std::filesystem::path& Target, std::string_view Bytes)
{
	return ReplaceFile(Target, std::span(&Bytes, 1));
}

std::error_code ReplaceFile(
	const std::filesystem::path& Target, std::span<const std::string_view> Parts, FFolderFlushes* Later)
{
	return Replace(Target, false, Later,
		[Parts](int File)
		{
			std::error_code Error;
			for (const std::string_view Part : Parts)
			{
				Error = Error ? Error : WriteAll(File, Part);
			}
			return Error;
		});
}

std::error_code CopyFileOver(
	const std::filesystem::path& Target, const std::filesystem::path& Source, FFolderFlushes* Later)
{
	return Replace(Target, true, Later, [&Source](int File) { return AppendFile(File, Source); });
}

std::error_code LinkOrCopyFileOver(
	const std::filesystem::path& Target, const std::filesystem::path& Source, FFolderFlushes* Later)
{
	const auto Link = [&Source](const std::filesystem::path& Temporary, const std::filesystem::path& Real)
	{ return LinkTemporary(Temporary, Real, Source); };
	return ReplaceBy(Target, true, Later, Link) ? CopyFileOver(Target, Source, Later) : std::error_code();
}

std::error_code MoveFileOver(const std::filesystem::path& Target, const std::filesystem::path& Source)
{
	if (IsMarkedReadOnly(Source))
	{
		return std::make_error_code(std::errc::permission_denied);
	}
	if (::rename(Source.c_str(), Target.c_str()) != 0)
	{
		return LastError();
	}
	// the new name first: between the two a power cut may leave both, never none
	const std::error_code Error = FlushFolderOf(Target);
	return Error || Source.parent_path() == Target.parent_path() ? Error : FlushFolderOf(Source);
}
} // namespace QVStandalone
