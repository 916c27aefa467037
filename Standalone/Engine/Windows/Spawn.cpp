// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Windows/Spawn.h"

#include "Standalone/Engine/OsPath.h"
#include "Standalone/Formats/Base/Disk.h"

#include <vector>

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
/** The handles that a child inherits, and no others: those of a child that starts at the same time, for one. */
class FInheritance
{
public:
	explicit FInheritance(std::vector<HANDLE> InHandles)
		: Handles(std::move(InHandles))
	{
		for (const HANDLE Each : Handles)
		{
			::SetHandleInformation(Each, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
		}
		SIZE_T Bytes = 0;
		::InitializeProcThreadAttributeList(nullptr, 1, 0, &Bytes);
		Memory.resize(Bytes);
		bValid = ::InitializeProcThreadAttributeList(List(), 1, 0, &Bytes) &&
				 ::UpdateProcThreadAttribute(List(), 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, Handles.data(),
					 Handles.size() * sizeof(HANDLE), nullptr, nullptr);
	}
	FInheritance(const FInheritance&) = delete;
	FInheritance& operator=(const FInheritance&) = delete;
	~FInheritance()
	{
		if (bValid)
		{
			::DeleteProcThreadAttributeList(List());
		}
		for (const HANDLE Each : Handles)
		{
			::SetHandleInformation(Each, HANDLE_FLAG_INHERIT, 0);
		}
	}

	LPPROC_THREAD_ATTRIBUTE_LIST List() { return reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(Memory.data()); }

private:
	std::vector<HANDLE> Handles; // the list refers to them
	std::vector<std::byte> Memory;
	bool bValid = false;
};

FWinHandle OpenNothing()
{
	return FWinHandle(::CreateFileW(
		L"NUL", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
}

std::error_code WhyNotStarted(const std::filesystem::path& Program)
{
	const std::error_code Error = LastWinError();
	return FDisk::IsFile(Program.parent_path()) ? std::make_error_code(std::errc::not_a_directory) : Error;
}
} // namespace

std::error_code Spawn(FSpawned& Out, std::string_view Program, std::string_view Arguments, const FSpawnOptions& Options)
{
	const std::filesystem::path File = ToOsPath(Program);
	const std::wstring FileName = WidePath(File);
	std::wstring Line = L"\"" + FileName + L"\" " + ToWide(Arguments);
	const std::wstring Folder = Options.WorkingFolder.empty() ? L"" : WidePath(ToOsPath(Options.WorkingFolder));
	const FWinHandle Nothing = OpenNothing();
	const HANDLE Output = Options.Output != nullptr ? Options.Output : Nothing.Get();
	std::vector<HANDLE> Inherited = {Nothing.Get()};
	if (Output != Nothing.Get())
	{
		Inherited.push_back(Output);
	}
	FInheritance Inheritance(std::move(Inherited));
	STARTUPINFOEXW Start = {};
	Start.StartupInfo.cb = sizeof(Start);
	Start.StartupInfo.dwFlags = STARTF_USESTDHANDLES;
	Start.StartupInfo.hStdInput = Nothing.Get();
	Start.StartupInfo.hStdOutput = Output;
	Start.StartupInfo.hStdError = Output;
	Start.lpAttributeList = Inheritance.List();
	const DWORD Kind = Options.bDetached ? DETACHED_PROCESS | CREATE_NEW_PROCESS_GROUP : CREATE_NO_WINDOW;
	PROCESS_INFORMATION Info = {};
	if (!::CreateProcessW(FileName.c_str(), Line.data(), nullptr, nullptr, TRUE,
			Kind | CREATE_SUSPENDED | CREATE_UNICODE_ENVIRONMENT | EXTENDED_STARTUPINFO_PRESENT, nullptr,
			Folder.empty() ? nullptr : Folder.c_str(), &Start.StartupInfo, &Info))
	{
		return WhyNotStarted(File);
	}
	Out.Process = FWinHandle(Info.hProcess);
	const FWinHandle Thread(Info.hThread);
	if (!Options.bDetached)
	{
		Out.Family = FWinHandle(::CreateJobObjectW(nullptr, nullptr));
		::AssignProcessToJobObject(Out.Family.Get(), Info.hProcess);
	}
	::ResumeThread(Thread.Get());
	return {};
}
} // namespace QVStandalone
