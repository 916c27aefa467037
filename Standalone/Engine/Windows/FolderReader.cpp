// SPDX-License-Identifier: MIT
#include "Standalone/Engine/FolderReader.h"

#include "Standalone/Engine/OsPath.h"
#include "Standalone/Formats/Base/Disk.h"
#include "Standalone/Formats/Windows/Win32.h"

namespace QVStandalone
{
using namespace QVFormats;

struct FFolderReader::FState
{
	explicit FState(std::filesystem::path InFolder)
		: Folder(std::move(InFolder))
	{
	}

	const std::filesystem::path Folder;
	HANDLE Search = INVALID_HANDLE_VALUE;
	WIN32_FIND_DATAW Found = {};
	bool bWaiting = false; // the first entry comes with the search
	std::string Name;
};

namespace
{
constexpr std::int64_t TicksFrom1601To1970 = 116'444'736'000'000'000;

std::int64_t TimeOf(const FILETIME& Time)
{
	const auto Ticks = (static_cast<std::int64_t>(Time.dwHighDateTime) << 32) | Time.dwLowDateTime;
	return (Ticks - TicksFrom1601To1970) * 100;
}

bool IsLink(const WIN32_FIND_DATAW& Found)
{
	return (Found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
		   (Found.dwReserved0 == IO_REPARSE_TAG_SYMLINK || Found.dwReserved0 == IO_REPARSE_TAG_MOUNT_POINT);
}
} // namespace

FFolderReader::FFolderReader(const std::string& Path)
	: State(new FState(ToOsPath(Path)))
{
	State->Search = ::FindFirstFileExW(WidePath(State->Folder / "*").c_str(), FindExInfoBasic, &State->Found,
		FindExSearchNameMatch, nullptr, FIND_FIRST_EX_LARGE_FETCH);
	bOpen = State->Search != INVALID_HANDLE_VALUE;
	State->bWaiting = bOpen;
	if (!bOpen)
	{
		const DWORD Code = ::GetLastError();
		bMissing = Code == ERROR_FILE_NOT_FOUND || (Code == ERROR_PATH_NOT_FOUND && !FDisk::IsFile(State->Folder));
		Reason = bMissing ? std::string() : WinError(Code).message();
	}
}

FFolderReader::~FFolderReader()
{
	if (bOpen)
	{
		::FindClose(State->Search);
	}
	delete State;
}

bool FFolderReader::Identify(FIdentity& Out)
{
	const FWinHandle Folder = OpenExisting(State->Folder, FILE_READ_ATTRIBUTES, FILE_FLAG_BACKUP_SEMANTICS);
	BY_HANDLE_FILE_INFORMATION Info = {};
	if (!Folder.IsValid() || !::GetFileInformationByHandle(Folder.Get(), &Info))
	{
		Reason = LastWinError().message();
		return false;
	}
	Out = {Info.dwVolumeSerialNumber, (static_cast<std::uint64_t>(Info.nFileIndexHigh) << 32) | Info.nFileIndexLow};
	return true;
}

bool FFolderReader::Next()
{
	while (State->bWaiting || ::FindNextFileW(State->Search, &State->Found))
	{
		State->bWaiting = false;
		State->Name = FromWide(State->Found.cFileName);
		EntryName = State->Name;
		EntryKind = IsLink(State->Found)											  ? EKind::Unknown
					: (State->Found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? EKind::Folder
																					  : EKind::File;
		if (EntryName != "." && EntryName != "..")
		{
			return true;
		}
	}
	const DWORD Code = ::GetLastError();
	Reason = Code == ERROR_NO_MORE_FILES ? std::string() : WinError(Code).message();
	return false;
}

FFolderReader::FDetails FFolderReader::Examine() const
{
	if (EntryKind != EKind::Unknown)
	{
		const WIN32_FIND_DATAW& Found = State->Found;
		const auto Size = (static_cast<std::int64_t>(Found.nFileSizeHigh) << 32) | Found.nFileSizeLow;
		return {EntryKind, Size, TimeOf(Found.ftLastWriteTime), {}};
	}
	const std::filesystem::path Path = State->Folder / State->Found.cFileName;
	const FWinHandle Entry = OpenExisting(Path, FILE_READ_ATTRIBUTES, FILE_FLAG_BACKUP_SEMANTICS);
	BY_HANDLE_FILE_INFORMATION Info = {};
	if (!Entry.IsValid() || !::GetFileInformationByHandle(Entry.Get(), &Info))
	{
		return {EKind::Problem, 0, 0, "cannot be examined: " + LastWinError().message()};
	}
	const bool bFolder = (Info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
	const auto Size = (static_cast<std::int64_t>(Info.nFileSizeHigh) << 32) | Info.nFileSizeLow;
	return {bFolder ? EKind::LinkToFolder : EKind::File, bFolder ? 0 : Size, TimeOf(Info.ftLastWriteTime), {}};
}
} // namespace QVStandalone
