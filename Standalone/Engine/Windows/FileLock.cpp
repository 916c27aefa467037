// SPDX-License-Identifier: MIT
#include "Standalone/Engine/OsFile.h"
#include "Standalone/Formats/Base/Disk.h"
#include "Standalone/Formats/Windows/Win32.h"

namespace QVStandalone
{
using namespace QVFormats;

FOsFileLock::FOsFileLock(std::intptr_t InHandle, std::filesystem::path InPath)
	: Handle(InHandle)
	, Path(std::move(InPath))
{
}

std::unique_ptr<FOsFileLock> FOsFileLock::TryLock(const std::filesystem::path& Path, std::error_code& OutError)
{
	// shared with nobody, and gone with its handle, however that goes; a link there is not followed
	constexpr DWORD Flags = FILE_ATTRIBUTE_NORMAL | FILE_FLAG_DELETE_ON_CLOSE | FILE_FLAG_OPEN_REPARSE_POINT;
	FWinHandle File(::CreateFileW(
		WidePath(Path).c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, 0, nullptr, OPEN_ALWAYS, Flags, nullptr));
	const DWORD Code = File.IsValid() ? ERROR_SUCCESS : ::GetLastError();
	if (Code == ERROR_SUCCESS)
	{
		OutError.clear();
		return std::make_unique<FOsFileLock>(reinterpret_cast<std::intptr_t>(File.Release()), Path);
	}
	// a file that is on its way out denies access to all
	const bool bGoing = Code == ERROR_ACCESS_DENIED && !FDisk::Exists(Path) && FDisk::IsFolder(Path.parent_path());
	OutError = Code == ERROR_SHARING_VIOLATION || Code == ERROR_DELETE_PENDING || bGoing
				   ? std::make_error_code(std::errc::resource_unavailable_try_again)
			   : FDisk::IsFolder(Path) ? std::make_error_code(std::errc::is_a_directory)
									   : WinError(Code);
	return nullptr;
}

FOsFileLock::~FOsFileLock()
{
	::CloseHandle(reinterpret_cast<HANDLE>(Handle));
}
} // namespace QVStandalone
