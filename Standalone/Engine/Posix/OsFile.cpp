// SPDX-License-Identifier: MIT
#include "Standalone/Engine/OsFile.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace QVStandalone
{
namespace
{
constexpr mode_t AnyWriteBit = S_IWUSR | S_IWGRP | S_IWOTH;

std::error_code LastError()
{
	return {errno, std::generic_category()};
}

/** Judged by the mark on the file, not by who asks: root may write anything. */
bool IsMarkedReadOnly(const std::filesystem::path& Path)
{
	struct stat Info = {};
	return ::stat(Path.c_str(), &Info) == 0 && S_ISREG(Info.st_mode) && (Info.st_mode & AnyWriteBit) == 0;
}

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
	return ::fsync(File) == 0 ? std::error_code() : LastError();
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
	std::filesystem::path Temporary = Target;
	Temporary += "." + std::to_string(::getpid()) + "-" + std::to_string(Counter.fetch_add(1)) + ".tmp";
	return Temporary;
}
} // namespace

std::error_code ReplaceFile(const std::filesystem::path& Target, std::string_view Bytes)
{
	std::error_code Ignored;
	const std::filesystem::path Real = FollowLinks(Target);
	if (std::filesystem::is_directory(Real, Ignored))
	{
		return std::make_error_code(std::errc::is_a_directory);
	}
	if (IsMarkedReadOnly(Real))
	{
		return std::make_error_code(std::errc::permission_denied);
	}
	const std::filesystem::path Temporary = TemporaryBeside(Real);
	constexpr mode_t NewFile = S_IRUSR | S_IWUSR | S_IRGRP | S_IWGRP | S_IROTH | S_IWOTH;
	const int File = ::open(Temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, NewFile);
	if (File < 0)
	{
		return LastError();
	}
	struct stat Old = {};
	if (::stat(Real.c_str(), &Old) == 0)
	{
		::fchmod(File, Old.st_mode & 0777);
	}
	std::error_code Error = WriteAll(File, Bytes);
	if (::close(File) != 0 && !Error)
	{
		Error = LastError();
	}
	if (!Error && ::rename(Temporary.c_str(), Real.c_str()) != 0)
	{
		Error = LastError();
	}
	if (Error)
	{
		::unlink(Temporary.c_str());
	}
	return Error;
}

std::error_code MoveFileOver(const std::filesystem::path& Target, const std::filesystem::path& Source)
{
	if (IsMarkedReadOnly(Source))
	{
		return std::make_error_code(std::errc::permission_denied);
	}
	return ::rename(Source.c_str(), Target.c_str()) == 0 ? std::error_code() : LastError();
}
} // namespace QVStandalone
