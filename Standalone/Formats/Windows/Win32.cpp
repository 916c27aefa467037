// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Windows/Win32.h"

#include <algorithm>
#include <iterator>

namespace QVFormats
{
namespace
{
/** From here on the prefix: a folder must leave room for a name of the old form, 8.3. */
constexpr std::size_t LongPath = 240;

struct FMeaning
{
	DWORD Code;
	std::errc Meaning;
};

constexpr FMeaning Meanings[] = {
	{ERROR_FILE_NOT_FOUND, std::errc::no_such_file_or_directory},
	{ERROR_PATH_NOT_FOUND, std::errc::no_such_file_or_directory},
	{ERROR_INVALID_DRIVE, std::errc::no_such_file_or_directory},
	{ERROR_BAD_NETPATH, std::errc::no_such_file_or_directory},
	{ERROR_BAD_NET_NAME, std::errc::no_such_file_or_directory},
	{ERROR_INVALID_NAME, std::errc::invalid_argument},
	{ERROR_BAD_PATHNAME, std::errc::invalid_argument},
	{ERROR_DIRECTORY, std::errc::not_a_directory},
	{ERROR_ACCESS_DENIED, std::errc::permission_denied},
	{ERROR_WRITE_PROTECT, std::errc::read_only_file_system},
	{ERROR_ALREADY_EXISTS, std::errc::file_exists},
	{ERROR_FILE_EXISTS, std::errc::file_exists},
	{ERROR_DIR_NOT_EMPTY, std::errc::directory_not_empty},
	{ERROR_DISK_FULL, std::errc::no_space_on_device},
	{ERROR_HANDLE_DISK_FULL, std::errc::no_space_on_device},
	{ERROR_NOT_SAME_DEVICE, std::errc::cross_device_link},
	{ERROR_FILENAME_EXCED_RANGE, std::errc::filename_too_long},
	{ERROR_NOT_ENOUGH_MEMORY, std::errc::not_enough_memory},
	{ERROR_OUTOFMEMORY, std::errc::not_enough_memory},
	{ERROR_TOO_MANY_OPEN_FILES, std::errc::too_many_files_open},
	{ERROR_BAD_EXE_FORMAT, std::errc::executable_format_error},
	{ERROR_BROKEN_PIPE, std::errc::broken_pipe},
	{ERROR_NO_DATA, std::errc::broken_pipe},
};

/** The system's words for what the table above does not know, without their full stop and line end. */
class FSystemWords : public std::error_category
{
public:
	const char* name() const noexcept override { return "windows"; }

	std::string message(int Code) const override
	{
		wchar_t Text[512] = {};
		const DWORD Length = ::FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
			static_cast<DWORD>(Code), 0, Text, static_cast<DWORD>(std::size(Text)), nullptr);
		std::string Message = FromWide(std::wstring_view(Text, Length));
		Message.erase(Message.find_last_not_of(" .\r\n") + 1);
		return Message.empty() ? "error " + std::to_string(Code) : Message;
	}
};

std::wstring FullPath(const std::filesystem::path& Path)
{
	std::wstring Name = Path.native();
	std::replace(Name.begin(), Name.end(), L'/', L'\\');
	std::wstring Full(MAX_PATH, L'\0');
	DWORD Length = ::GetFullPathNameW(Name.c_str(), static_cast<DWORD>(Full.size()), Full.data(), nullptr);
	if (Length > Full.size())
	{
		Full.resize(Length);
		Length = ::GetFullPathNameW(Name.c_str(), static_cast<DWORD>(Full.size()), Full.data(), nullptr);
	}
	Full.resize(Length);
	return Length > 0 ? Full : Name;
}

OVERLAPPED At(std::uint64_t Offset)
{
	OVERLAPPED Place = {};
	Place.Offset = static_cast<DWORD>(Offset);
	Place.OffsetHigh = static_cast<DWORD>(Offset >> 32);
	return Place;
}

DWORD OnePiece(std::size_t Count)
{
	constexpr std::size_t MostAtOnce = std::size_t{1} << 30;
	return static_cast<DWORD>(std::min(Count, MostAtOnce));
}

/** Somebody has the file open and lets nobody else at it, which renaming tells as a matter of rights. */
bool IsHeldBySomebody(const std::wstring& Path)
{
	const FWinHandle Probe(::CreateFileW(Path.c_str(), DELETE, ShareAll, nullptr, OPEN_EXISTING, 0, nullptr));
	return !Probe.IsValid() && ::GetLastError() == ERROR_SHARING_VIOLATION;
}

bool MayPassSoon(DWORD Code)
{
	return Code == ERROR_SHARING_VIOLATION || Code == ERROR_ACCESS_DENIED || Code == ERROR_USER_MAPPED_FILE;
}
} // namespace

std::wstring ToWide(std::string_view Utf8)
{
	const int Bytes = static_cast<int>(Utf8.size());
	const int Length = ::MultiByteToWideChar(CP_UTF8, 0, Utf8.data(), Bytes, nullptr, 0);
	std::wstring Wide(static_cast<std::size_t>(std::max(Length, 0)), L'\0');
	::MultiByteToWideChar(CP_UTF8, 0, Utf8.data(), Bytes, Wide.data(), Length);
	return Wide;
}

std::string FromWide(std::wstring_view Wide)
{
	const int Units = static_cast<int>(Wide.size());
	const int Length = ::WideCharToMultiByte(CP_UTF8, 0, Wide.data(), Units, nullptr, 0, nullptr, nullptr);
	std::string Utf8(static_cast<std::size_t>(std::max(Length, 0)), '\0');
	::WideCharToMultiByte(CP_UTF8, 0, Wide.data(), Units, Utf8.data(), Length, nullptr, nullptr);
	return Utf8;
}

std::wstring WidePath(const std::filesystem::path& Path)
{
	constexpr std::wstring_view Prefix = LR"(\\?\)";
	constexpr std::wstring_view NetworkPrefix = LR"(\\?\UNC)";
	if (Path.empty() || Path.native().starts_with(Prefix))
	{
		return Path.native();
	}
	const std::wstring Full = FullPath(Path);
	if (Full.size() < LongPath || Full.starts_with(LR"(\\.\)"))
	{
		return Full;
	}
	return Full.starts_with(LR"(\\)") ? std::wstring(NetworkPrefix).append(Full.substr(1))
									  : std::wstring(Prefix).append(Full);
}

std::error_code WinError(DWORD Code)
{
	static const FSystemWords Words;
	const auto* Found = std::find_if(
		std::begin(Meanings), std::end(Meanings), [Code](const FMeaning& Each) { return Each.Code == Code; });
	return Found != std::end(Meanings) ? std::make_error_code(Found->Meaning)
									   : std::error_code(static_cast<int>(Code), Words);
}

FWinHandle OpenExisting(const std::filesystem::path& Path, DWORD Access, DWORD Flags)
{
	return FWinHandle(::CreateFileW(WidePath(Path).c_str(), Access, ShareAll, nullptr, OPEN_EXISTING, Flags, nullptr));
}

FWinHandle OpenForReading(const std::filesystem::path& Path, std::uint64_t& OutSize, std::error_code& OutError)
{
	// a folder opens too, so that it is told from a file that one may not read
	FWinHandle File = OpenExisting(Path, GENERIC_READ, FILE_FLAG_BACKUP_SEMANTICS);
	BY_HANDLE_FILE_INFORMATION Info = {};
	if (!File.IsValid())
	{
		OutError = LastWinError();
	}
	else if (::GetFileType(File.Get()) != FILE_TYPE_DISK)
	{
		OutError = std::make_error_code(std::errc::invalid_argument);
	}
	else if (!::GetFileInformationByHandle(File.Get(), &Info))
	{
		OutError = LastWinError();
	}
	else
	{
		const bool bFolder = (Info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
		OutError = bFolder ? std::make_error_code(std::errc::is_a_directory) : std::error_code();
		OutSize = (static_cast<std::uint64_t>(Info.nFileSizeHigh) << 32) | Info.nFileSizeLow;
	}
	return OutError ? FWinHandle() : std::move(File);
}

std::error_code ReadFileAt(HANDLE File, std::uint64_t Offset, std::byte* Out, std::size_t Count, std::size_t& OutDone)
{
	for (OutDone = 0; OutDone < Count;)
	{
		OVERLAPPED Place = At(Offset + OutDone);
		DWORD Read = 0;
		if (!::ReadFile(File, Out + OutDone, OnePiece(Count - OutDone), &Read, &Place) &&
			::GetLastError() != ERROR_HANDLE_EOF)
		{
			return LastWinError();
		}
		if (Read == 0)
		{
			break;
		}
		OutDone += Read;
	}
	return {};
}

std::error_code WriteFileAt(HANDLE File, std::uint64_t Offset, const std::byte* Bytes, std::size_t Count)
{
	for (std::size_t Done = 0; Done < Count;)
	{
		OVERLAPPED Place = At(Offset + Done);
		DWORD Written = 0;
		if (!::WriteFile(File, Bytes + Done, OnePiece(Count - Done), &Written, &Place))
		{
			return LastWinError();
		}
		Done += Written;
	}
	return {};
}

void ClearReadOnly(const std::wstring& Path)
{
	const DWORD Marks = ::GetFileAttributesW(Path.c_str());
	if (Marks != INVALID_FILE_ATTRIBUTES && (Marks & FILE_ATTRIBUTE_READONLY) != 0)
	{
		::SetFileAttributesW(Path.c_str(), Marks & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY));
	}
}

std::error_code RenameOver(const std::filesystem::path& From, const std::filesystem::path& To, bool bEvenReadOnly)
{
	constexpr int Attempts = 5;
	constexpr DWORD PauseMilliseconds = 40;
	const std::wstring Source = WidePath(From);
	const std::wstring Target = WidePath(To);
	const DWORD OldMarks = ::GetFileAttributesW(Target.c_str());
	const bool bThere = OldMarks != INVALID_FILE_ATTRIBUTES;
	if (bThere && (OldMarks & FILE_ATTRIBUTE_DIRECTORY) != 0)
	{
		return std::make_error_code(std::errc::is_a_directory);
	}
	if (bThere && (OldMarks & FILE_ATTRIBUTE_READONLY) != 0)
	{
		if (!bEvenReadOnly)
		{
			return std::make_error_code(std::errc::permission_denied);
		}
		ClearReadOnly(Target);
	}
	// one step, unlike ReplaceFileW, between whose two a crash leaves no file at all
	constexpr DWORD How = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
	DWORD Code = ERROR_SUCCESS;
	for (int Attempt = 0; Attempt < Attempts; ++Attempt)
	{
		if (::MoveFileExW(Source.c_str(), Target.c_str(), How))
		{
			return {};
		}
		Code = ::GetLastError();
		if (!MayPassSoon(Code))
		{
			break;
		}
		::Sleep(PauseMilliseconds);
	}
	if (bThere)
	{
		::SetFileAttributesW(Target.c_str(), OldMarks);
	}
	const bool bHeld = Code == ERROR_ACCESS_DENIED && (IsHeldBySomebody(Target) || IsHeldBySomebody(Source));
	return WinError(bHeld ? ERROR_SHARING_VIOLATION : Code);
}
} // namespace QVFormats
