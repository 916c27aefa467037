// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Shell.h"

#include "Core/QVPath.h"
#include "Standalone/Engine/EngineLog.h"
#include "Standalone/Engine/Environment.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Engine/Posix/OsFolder.h"
#include "Standalone/Engine/Posix/Spawn.h"

#include <algorithm>
#include <cstring>
#include <sys/socket.h>
#include <sys/un.h>

namespace QVStandalone
{
namespace
{
constexpr const char* Opener = "xdg-open";

/** Numbers as Windows has them, which the toolkit compares with. */
constexpr int Accepted = 33;
constexpr int FileNotFound = 2;
constexpr int NoAssociation = 31;

bool StartOpener(pid_t& OutId, std::string_view UrlOrFile)
{
	FSpawnOptions Options;
	Options.bOwnSession = true;
	Options.bSearchPath = true;
	const int Error = Spawn(OutId, Opener, {std::string(UrlOrFile)}, Options);
	if (Error != 0)
	{
		LogEngine(EQVLogVerbosity::Warning, "%s could not be started: %s", Opener, ErrorText(Error));
	}
	return Error == 0;
}

/** The socket that stands for a pipe; empty when there is no place for one. */
std::string SocketOf(std::string_view PipeName)
{
	const std::string Folder = EnvironmentValue("XDG_RUNTIME_DIR");
	if (!FQVPath::IsAbsolute(Folder))
	{
		LogEngine(EQVLogVerbosity::Warning, "%s is not looked for: XDG_RUNTIME_DIR names no folder", PipeName);
		return {};
	}
	return FQVPath::Combine(Folder, FQVPath::GetCleanFilename(PipeName));
}

/** 0, or the error number. */
int Connect(int Socket, const std::string& Path)
{
	sockaddr_un Address = {};
	Address.sun_family = AF_UNIX;
	if (Path.size() >= sizeof(Address.sun_path))
	{
		return ENAMETOOLONG;
	}
	std::memcpy(Address.sun_path, Path.c_str(), Path.size());
	const auto* Any = reinterpret_cast<const sockaddr*>(&Address);
	return ::connect(Socket, Any, sizeof(Address)) == 0 ? 0 : errno;
}

bool IsNobodyThere(int Error)
{
	return Error == ENOENT || Error == ECONNREFUSED;
}

EQVPipeWrite SendWhole(int Socket, std::string_view Message, const std::string& Path)
{
	ssize_t Sent = -1;
	do
	{
		Sent = ::send(Socket, Message.data(), Message.size(), MSG_NOSIGNAL);
	} while (Sent < 0 && errno == EINTR);
	if (Sent < 0)
	{
		LogEngine(EQVLogVerbosity::Warning, "%s could not be written: %s", Path, ErrorText(errno));
		return EQVPipeWrite::Failed;
	}
	if (static_cast<std::size_t>(Sent) < Message.size())
	{
		LogEngine(EQVLogVerbosity::Warning, "%s took %d of %d bytes", Path, Sent, Message.size());
		return EQVPipeWrite::Failed;
	}
	return EQVPipeWrite::Written;
}
} // namespace

int FShell::Open(std::string_view UrlOrFile)
{
	pid_t Id = -1;
	if (!StartOpener(Id, UrlOrFile))
	{
		return FileNotFound;
	}
	std::future<int> End = ReapInBackground(Id);
	if (End.wait_for(OpenerPatience) != std::future_status::ready)
	{
		return Accepted;
	}
	const int Code = End.get();
	if (Code == 0)
	{
		return Accepted;
	}
	LogEngine(EQVLogVerbosity::Warning, "%s could not open %s: it ended with code %d", Opener, UrlOrFile, Code);
	return std::min(Code, NoAssociation);
}

void FShell::ExploreFolder(std::string_view Path)
{
	std::error_code Ignored;
	const bool bFolder = std::filesystem::is_directory(ToOsPath(Path), Ignored);
	Open(bFolder ? Path : FQVPath::GetPath(Path));
}

EQVPipeWrite FShell::WriteToPipe(std::string_view PipeName, std::string_view Message)
{
	const std::string Path = SocketOf(PipeName);
	if (Path.empty())
	{
		return EQVPipeWrite::NotOpened;
	}
	// a listener that does not take what comes must not hold the game thread up
	const FDescriptor Socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
	const int Error = Socket.IsValid() ? Connect(Socket.Get(), Path) : errno;
	if (Error == 0)
	{
		return SendWhole(Socket.Get(), Message, Path);
	}
	if (!IsNobodyThere(Error))
	{
		LogEngine(EQVLogVerbosity::Warning, "%s could not be opened: %s", Path, ErrorText(Error));
	}
	return EQVPipeWrite::NotOpened;
}
} // namespace QVStandalone
