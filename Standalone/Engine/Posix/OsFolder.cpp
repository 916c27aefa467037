// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Posix/OsFolder.h"

#include <fcntl.h>
#include <vector>

namespace QVStandalone
{
namespace fs = std::filesystem;

namespace
{
std::error_code FlushFolder(const fs::path& Folder)
{
	const FDescriptor Opened(::open(Folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
	if (!Opened.IsValid())
	{
		return LastError();
	}
	if (::fsync(Opened.Get()) == 0)
	{
		return {};
	}
	const bool bDiskCannot = errno == EINVAL || errno == EROFS || errno == EOPNOTSUPP;
	return bDiskCannot ? std::error_code() : LastError();
}

fs::path FolderOf(const fs::path& Entry)
{
	return Entry.has_parent_path() ? Entry.parent_path() : fs::path(".");
}
} // namespace

std::error_code FlushFolderOf(const fs::path& Entry, FFolderFlushes* Later)
{
	if (Later == nullptr)
	{
		return FlushFolder(FolderOf(Entry));
	}
	Later->Add(Entry);
	return {};
}

void FFolderFlushes::Add(const fs::path& Entry)
{
	const std::lock_guard Held(Lock);
	Folders.insert(FolderOf(Entry));
}

std::error_code FFolderFlushes::Flush(fs::path& OutFolder)
{
	const std::lock_guard Held(Lock);
	std::error_code Error;
	for (; !Error && !Folders.empty(); Folders.erase(Folders.begin()))
	{
		OutFolder = *Folders.begin();
		Error = FlushFolder(OutFolder);
	}
	return Error;
}

std::error_code MakeFolders(const fs::path& Folder)
{
	std::error_code Error;
	std::vector<fs::path> Missing;
	// "a/b/" is "a/b"
	for (fs::path Each = Folder.has_filename() ? Folder : Folder.parent_path(); !fs::exists(Each, Error);
		 Each = Each.parent_path())
	{
		if (Error || !Each.has_relative_path())
		{
			break;
		}
		Missing.push_back(Each);
	}
	for (; !Error && !Missing.empty(); Missing.pop_back())
	{
		fs::create_directory(Missing.back(), Error);
		Error = Error ? Error : FlushFolderOf(Missing.back());
	}
	if (!Error && !fs::is_directory(Folder, Error))
	{
		return Error ? Error : std::make_error_code(std::errc::not_a_directory);
	}
	return Error;
}

std::error_code RemoveEntry(const fs::path& Path, bool /*bEvenReadOnly*/, FFolderFlushes* Later)
{
	std::error_code Error;
	const bool bRemoved = fs::remove(Path, Error);
	if (!Error && !bRemoved)
	{
		return std::make_error_code(std::errc::no_such_file_or_directory);
	}
	return Error ? Error : FlushFolderOf(Path, Later);
}

std::error_code RemoveTree(const fs::path& Folder)
{
	const fs::path Named = Folder.has_filename() ? Folder : Folder.parent_path();
	std::error_code Error;
	const bool bRemoved = fs::remove_all(Named, Error) > 0;
	return Error || !bRemoved ? Error : FlushFolderOf(Named);
}
} // namespace QVStandalone
