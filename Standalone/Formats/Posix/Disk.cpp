// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/Disk.h"

#include <chrono>

namespace QVFormats
{
namespace fs = std::filesystem;

fs::path FDisk::SystemPath(const fs::path& Path)
{
	return Path;
}

bool FDisk::Exists(const fs::path& Path)
{
	std::error_code Error;
	return fs::exists(Path, Error);
}

bool FDisk::IsFile(const fs::path& Path)
{
	std::error_code Error;
	return fs::is_regular_file(Path, Error);
}

bool FDisk::IsFolder(const fs::path& Path)
{
	std::error_code Error;
	return fs::is_directory(Path, Error);
}

bool FDisk::IsLink(const fs::path& Path)
{
	std::error_code Error;
	return fs::is_symlink(Path, Error);
}

std::uint64_t FDisk::SizeOf(const fs::path& Path, std::error_code& OutError)
{
	return fs::file_size(Path, OutError);
}

std::int64_t FDisk::TimeOf(const fs::path& Path, std::error_code& OutError)
{
	const fs::file_time_type Time = fs::last_write_time(Path, OutError);
	const auto SinceEpoch = std::chrono::file_clock::to_sys(Time).time_since_epoch();
	return std::chrono::duration_cast<std::chrono::nanoseconds>(SinceEpoch).count();
}

fs::path FDisk::Spelled(const fs::path& /*Folder*/, const fs::path& Below)
{
	return Below;
}

fs::path FDisk::RealPath(const fs::path& Path, std::error_code& OutError)
{
	return fs::canonical(Path, OutError);
}

std::vector<FDisk::FEntry> FDisk::List(const fs::path& Folder)
{
	std::vector<FEntry> Entries;
	std::error_code Error;
	for (fs::directory_iterator Each(Folder, Error), End; !Error && Each != End; Each.increment(Error))
	{
		std::error_code Ignored;
		Entries.push_back({Each->path(), Each->is_directory(Ignored)});
	}
	return Entries;
}

bool FDisk::MakeFolder(const fs::path& Folder, std::error_code& OutError)
{
	return fs::create_directory(Folder, OutError);
}

bool FDisk::MakeFolders(const fs::path& Folder, std::error_code& OutError)
{
	return fs::create_directories(Folder, OutError);
}

void FDisk::Rename(const fs::path& From, const fs::path& To, std::error_code& OutError)
{
	fs::rename(From, To, OutError);
}
} // namespace QVFormats
