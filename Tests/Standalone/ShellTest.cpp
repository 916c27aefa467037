// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Shell.h"

#include "Standalone/Engine/Interrupt.h"
#include "Standalone/Engine/Processes.h"
#include "Tests/Standalone/TestFiles.h"
#include "Tests/Support/ScopedEnvironment.h"

#include <csignal>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace QVStandalone;
using QVTest::FScopedEnvironment;
namespace fs = std::filesystem;

namespace
{
constexpr std::string_view PipeName = R"(\\.\pipe\Test pipe)";

struct Shell : testing::Test
{
	FTestFiles Files;
	QVTest::FRecordingLog Log;
	FShell Desktop{std::chrono::minutes(1)};
	const FScopedEnvironment RuntimeVariable{"XDG_RUNTIME_DIR", Files("run")};
	const FScopedEnvironment PathVariable{"PATH", Files("bin")};

	Shell() { fs::create_directories(Files.OsPath("run")); }

	std::string PutScript(std::string_view Name, std::string_view Commands) const
	{
		std::string Program = Files.Put(Name, std::string("#!/bin/sh\n").append(Commands));
		fs::permissions(Files.OsPath(Name), fs::perms::owner_all);
		return Program;
	}

	bool Eventually(const std::function<bool()>& bDone) const
	{
		for (int Round = 0; Round < 3000 && !bDone(); ++Round)
		{
			FProcesses().Sleep(0.01);
		}
		return bDone();
	}

	/** Whole: files appear before they are filled. */
	bool Appears(std::string_view File) const
	{
		return Eventually([&] { return Files.Get(File).ends_with("end\n"); });
	}

	static bool HasNoChildren() { return ::waitpid(-1, nullptr, WNOHANG) == -1 && errno == ECHILD; }
};

/** A socket at the place of the pipe. */
class FListener
{
public:
	FListener(const std::string& Path, int Type)
		: Socket(::socket(AF_UNIX, Type | SOCK_CLOEXEC, 0))
	{
		sockaddr_un Address = {};
		Address.sun_family = AF_UNIX;
		Path.copy(Address.sun_path, sizeof(Address.sun_path) - 1);
		EXPECT_EQ(::bind(Socket, reinterpret_cast<const sockaddr*>(&Address), sizeof(Address)), 0);
		if (Type == SOCK_STREAM)
		{
			EXPECT_EQ(::listen(Socket, 0), 0);
		}
	}
	FListener(const FListener&) = delete;
	FListener& operator=(const FListener&) = delete;
	~FListener() { ::close(Socket); }

	/** All of the next message; waits for its sender to close. */
	std::string Receive() const
	{
		const int Sender = ::accept(Socket, nullptr, nullptr);
		std::string Message;
		char Buffer[100];
		for (ssize_t Count = 0; (Count = ::read(Sender, Buffer, sizeof(Buffer))) > 0;)
		{
			Message.append(Buffer, static_cast<std::size_t>(Count));
		}
		::close(Sender);
		return Message;
	}

private:
	int Socket;
};
} // namespace

TEST_F(Shell, OpensByTheDesktopsOpenerAndTellsItsRefusal)
{
	const std::string Url = "quarvel://x?a=$(touch out)&b='c d'\"%20 -console";
	const struct
	{
		const char* Script;
		int Result;
		FLines Log;
	} Cases[] = {
		{"exit 0\n", 33, {}},
		{"exit 3\n", 3, {"xdg-open could not open " + Url + ": it ended with code 3"}},
		{"exit 200\n", 31, {"xdg-open could not open " + Url + ": it ended with code 200"}},
		{"kill -9 $$\n", 31, {"xdg-open could not open " + Url + ": it ended with code 137"}},
	};
	for (const auto& Case : Cases)
	{
		PutScript("bin/xdg-open", QVPrintf("printf '%%s|' $# \"$@\" >\"$0.seen\"\n%s", Case.Script));
		EXPECT_EQ(Desktop.Open(Url), Case.Result) << Case.Script;
		EXPECT_EQ(Files.Get("bin/xdg-open.seen"), "1|" + Url + "|");
		EXPECT_EQ(Files.Logged(Log), Case.Log);
	}
	fs::remove(Files.OsPath("bin/xdg-open"));
	EXPECT_EQ(Desktop.Open(Url), 2);
	EXPECT_EQ(Files.Logged(Log), FLines{"xdg-open could not be started: No such file or directory"});
	EXPECT_TRUE(HasNoChildren());
}

TEST_F(Shell, AnOpenerThatGoesOnHasAccepted)
{
	PutScript("bin/xdg-open", "echo $$ >\"$0.id\"\necho end >>\"$0.id\"\nexec /bin/sleep 300\n");
	EXPECT_EQ(FShell(std::chrono::milliseconds(1)).Open("steam://x"), 33);
	ASSERT_TRUE(Appears("bin/xdg-open.id"));
	EXPECT_EQ(::kill(std::atoi(Files.Get("bin/xdg-open.id").c_str()), SIGKILL), 0);
	EXPECT_TRUE(Eventually(HasNoChildren)) << "a zombie stays";
	EXPECT_EQ(Files.Logged(Log), FLines());
}

TEST_F(Shell, ShowsAFolderOrTheOneOfAFile)
{
	PutScript("bin/xdg-open", "printf '%s\\n' \"$@\" >>\"$0.seen\"\n");
	Files.Put("Höhle 1/a.pak", "");
	for (const char* Path : {"Höhle 1", "Höhle 1/a.pak", "Höhle 1/gone.pak"})
	{
		Desktop.ExploreFolder(Files(Path));
	}
	const std::string Folder = Files("Höhle 1") + "\n";
	EXPECT_EQ(Files.Get("bin/xdg-open.seen"), Folder + Folder + Folder);
}

TEST_F(Shell, AMessageReachesThePipeAsItIs)
{
	const FListener Game(Files("run/Test pipe"), SOCK_STREAM);
	for (const std::string Message : {"quarvel://x?pak=Höhle 洞", "second", "with\nline end\n"})
	{
		EXPECT_EQ(Desktop.WriteToPipe(PipeName, Message), EQVPipeWrite::Written);
		EXPECT_EQ(Game.Receive(), Message);
	}
	EXPECT_EQ(Files.Logged(Log), FLines());
}

TEST_F(Shell, APipeWithoutAListenerIsNotOpened)
{
	const auto IsNotOpened = [this] { return Desktop.WriteToPipe(PipeName, "x") == EQVPipeWrite::NotOpened; };
	EXPECT_TRUE(IsNotOpened()) << "no socket";
	{
		const FListener Ended(Files("run/Test pipe"), SOCK_STREAM);
	}
	EXPECT_TRUE(IsNotOpened()) << "left over by a game that ended";
	fs::remove(Files.OsPath("run/Test pipe"));
	Files.Put("run/Test pipe", "a plain file");
	EXPECT_TRUE(IsNotOpened());
	EXPECT_EQ(Files.Get("run/Test pipe"), "a plain file");
	EXPECT_EQ(Files.Logged(Log), FLines()) << "that no game runs is nothing to warn of";

	fs::remove(Files.OsPath("run/Test pipe"));
	const FListener Wrong(Files("run/Test pipe"), SOCK_DGRAM);
	EXPECT_TRUE(IsNotOpened());
	const FScopedEnvironment Long("XDG_RUNTIME_DIR", Files(std::string(100, 'x')));
	EXPECT_TRUE(IsNotOpened());
	const std::string LongPath = std::string(100, 'x') + "/Test pipe";
	for (const std::optional<std::string>& Folder : {std::optional<std::string>(), {""}, {"run"}})
	{
		const FScopedEnvironment None("XDG_RUNTIME_DIR", Folder);
		EXPECT_TRUE(IsNotOpened());
	}
	const std::string NoFolder = R"(\\.\pipe\Test pipe is not looked for: XDG_RUNTIME_DIR names no folder)";
	EXPECT_EQ(
		Files.Logged(Log), (FLines{"run/Test pipe could not be opened: Protocol wrong type for socket",
							   LongPath + " could not be opened: File name too long", NoFolder, NoFolder, NoFolder}));
}

TEST_F(Shell, ABusyGameIsNotWaitedFor)
{
	const FListener Busy(Files("run/Test pipe"), SOCK_STREAM);
	EXPECT_EQ(Desktop.WriteToPipe(PipeName, std::string(std::size_t{64} << 20, 'x')), EQVPipeWrite::Failed);
	const FLines Partly = Files.Logged(Log);
	ASSERT_EQ(Partly.size(), 1);
	EXPECT_TRUE(Partly[0].starts_with("run/Test pipe took ") && Partly[0].ends_with(" of 67108864 bytes")) << Partly[0];
	EQVPipeWrite Last = EQVPipeWrite::Written;
	for (int Round = 0; Round < 10 && Last == EQVPipeWrite::Written; ++Round)
	{
		Last = Desktop.WriteToPipe(PipeName, "x");
	}
	EXPECT_EQ(Last, EQVPipeWrite::NotOpened);
	EXPECT_EQ(Files.Logged(Log), FLines{"run/Test pipe could not be opened: Resource temporarily unavailable"});
}

TEST_F(Shell, ADetachedProgramIsOnItsOwn)
{
	FProcesses Processes;
	const std::string Program =
		PutScript("The Game/game.exe", "read -r Id Name State Parent Group Session Rest </proc/$$/stat\n"
									   "exec 3>seen\n"
									   "echo loud; echo louder >&2\n"
									   "[ $Session = $$ ] && echo own session >&3\n"
									   "pwd -P >&3\nprintf '%s\\n' \"$@\" >&3\necho end >&3\n");
	FQVProcHandle Game = Processes.CreateDetachedProc(Program, R"(-pak="a b" -log)", Files("The Game"));
	ASSERT_TRUE(Game.IsValid());
	Processes.CloseProc(Game);
	ASSERT_TRUE(Appears("The Game/seen"));
	EXPECT_EQ(Files.Get("The Game/seen"), "own session\n" + Files("The Game") + "\n-pak=a b\n-log\nend\n");
	EXPECT_TRUE(Eventually(HasNoChildren)) << "a zombie stays";

	Files.Put("windows.exe", "MZ");
	fs::permissions(Files.OsPath("windows.exe"), fs::perms::owner_all);
	EXPECT_FALSE(Processes.CreateDetachedProc(Files("windows.exe"), "", "").IsValid());
	EXPECT_FALSE(Processes.CreateDetachedProc(Program, "", Files("gone")).IsValid());
	FInterrupt::Raise();
	EXPECT_FALSE(Processes.CreateDetachedProc(Program, "", "").IsValid());
	FInterrupt::Reset();
	EXPECT_EQ(Files.Logged(Log), (FLines{"windows.exe could not be started: Exec format error",
									 "The Game/game.exe could not be started: No such file or directory",
									 "The Game/game.exe was not started: interrupted"}));
}
