// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Shell.h"

#include "Core/QVPath.h"
#include "Standalone/Engine/EngineLog.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Formats/Base/Disk.h"
#include "Standalone/Formats/Windows/Win32.h"

#include <algorithm>
#include <objbase.h>
#include <shellapi.h>
#include <shlobj.h>

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
/** Some of what the shell starts needs this on the calling thread. */
class FComponents
{
public:
	FComponents()
		: bOurs(SUCCEEDED(::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE)))
	{
	}
	FComponents(const FComponents&) = delete;
	FComponents& operator=(const FComponents&) = delete;
	~FComponents()
	{
		if (bOurs)
		{
			::CoUninitialize();
		}
	}

private:
	const bool bOurs;
};

int Execute(const wchar_t* Verb, const std::wstring& What)
{
	const FComponents Components;
	const HINSTANCE Result = ::ShellExecuteW(nullptr, Verb, What.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
	return static_cast<int>(reinterpret_cast<std::intptr_t>(Result));
}

/** Its folder in Explorer, the file marked in it. */
bool SelectFile(const std::wstring& File)
{
	const FComponents Components;
	ITEMIDLIST* const Item = ::ILCreateFromPathW(File.c_str());
	const bool bShown = Item != nullptr && SUCCEEDED(::SHOpenFolderAndSelectItems(Item, 0, nullptr, 0));
	::ILFree(Item);
	return bShown;
}

/** Without the prefix of long paths, which the shell does not know. */
std::wstring ShellPath(std::string_view Path)
{
	std::wstring Name = ToWide(Path);
	std::replace(Name.begin(), Name.end(), L'/', L'\\');
	return Name;
}

bool IsNobodyThere(DWORD Code)
{
	return Code == ERROR_FILE_NOT_FOUND || Code == ERROR_PIPE_BUSY;
}
} // namespace

int FShell::Open(std::string_view UrlOrFile)
{
	constexpr int LastError = 32;
	const int Result = Execute(L"open", ToWide(UrlOrFile));
	if (Result <= LastError)
	{
		LogEngine(EQVLogVerbosity::Warning, "%s could not be opened: error %d of the shell", UrlOrFile, Result);
	}
	return Result;
}

void FShell::ExploreFolder(std::string_view Path)
{
	const bool bFolder = FDisk::IsFolder(ToOsPath(Path));
	if (bFolder || !FDisk::Exists(ToOsPath(Path)) || !SelectFile(ShellPath(Path)))
	{
		Execute(L"explore", ShellPath(bFolder ? Path : FQVPath::GetPath(Path)));
	}
}

EQVPipeWrite FShell::WriteToPipe(std::string_view PipeName, std::string_view Message)
{
	const FWinHandle Pipe(
		::CreateFileW(ToWide(PipeName).c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
	if (!Pipe.IsValid())
	{
		const DWORD Code = ::GetLastError();
		if (!IsNobodyThere(Code))
		{
			LogEngine(EQVLogVerbosity::Warning, "%s could not be opened: %s", PipeName, WinError(Code).message());
		}
		return EQVPipeWrite::NotOpened;
	}
	DWORD Written = 0;
	if (!::WriteFile(Pipe.Get(), Message.data(), static_cast<DWORD>(Message.size()), &Written, nullptr))
	{
		LogEngine(EQVLogVerbosity::Warning, "%s could not be written: %s", PipeName, LastWinError().message());
		return EQVPipeWrite::Failed;
	}
	if (Written < Message.size())
	{
		LogEngine(EQVLogVerbosity::Warning, "%s took %d of %d bytes", PipeName, Written, Message.size());
		return EQVPipeWrite::Failed;
	}
	return EQVPipeWrite::Written;
}
} // namespace QVStandalone
