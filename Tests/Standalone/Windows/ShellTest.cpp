// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Shell.h"

#include "HandOff/QVMapPlaytest.h"
#include "Standalone/Formats/Windows/Win32.h"
#include "Tests/Standalone/TestFiles.h"
#include "Tests/Support/ToolkitTest.h"

#include <future>
#include <thread>

using namespace QVStandalone;
using namespace QVFormats;

namespace
{
const std::string PipeName = R"(\\.\pipe\QVMap test )" + std::to_string(::GetCurrentProcessId());

/** The game's end of a pipe, which takes one sender at a time. */
class FGamePipe
{
public:
	explicit FGamePipe(const std::string& Name = PipeName)
		: Pipe(::CreateNamedPipeW(ToWide(Name).c_str(), PIPE_ACCESS_INBOUND,
			  PIPE_TYPE_BYTE | PIPE_READMODE_BYTE | PIPE_WAIT, 1, 65536, 65536, 0, nullptr))
	{
		EXPECT_TRUE(Pipe.IsValid()) << LastWinError().message();
	}

	bool Connect() const
	{
		// the last one: somebody came and went already, what was said is there
		return ::ConnectNamedPipe(Pipe.Get(), nullptr) || ::GetLastError() == ERROR_PIPE_CONNECTED ||
			   ::GetLastError() == ERROR_NO_DATA;
	}
	/** All of the next message; waits for its sender to close. */
	std::string Receive() const
	{
		EXPECT_TRUE(Connect()) << LastWinError().message();
		std::string Message;
		char Buffer[100];
		for (DWORD Count = 0; ::ReadFile(Pipe.Get(), Buffer, sizeof(Buffer), &Count, nullptr) && Count > 0;)
		{
			Message.append(Buffer, Count);
		}
		::DisconnectNamedPipe(Pipe.Get());
		return Message;
	}
	void Close() { Pipe.Close(); }

private:
	FWinHandle Pipe;
};

struct Shell : testing::Test
{
	FTestFiles Files;
	QVTest::FRecordingLog Log;
	FShell Desktop;
};
} // namespace

TEST_F(Shell, AMessageReachesThePipeAsItIs)
{
	const FGamePipe Game;
	for (const std::string Message : {"quarvel://x?pak=Höhle 洞", "second", "with\nline end\n"})
	{
		std::future<std::string> Received = std::async(std::launch::async, [&Game] { return Game.Receive(); });
		EQVPipeWrite Written = EQVPipeWrite::NotOpened;
		for (int Round = 0; Round < 3000 && Written == EQVPipeWrite::NotOpened; ++Round)
		{
			Written = Desktop.WriteToPipe(PipeName, Message); // until the game listens again
			std::this_thread::sleep_for(std::chrono::milliseconds(Written == EQVPipeWrite::NotOpened ? 10 : 0));
		}
		EXPECT_EQ(Written, EQVPipeWrite::Written);
		EXPECT_EQ(Received.get(), Message);
	}
	EXPECT_EQ(Files.Logged(Log), FLines());
}

TEST_F(Shell, WithoutAGameOrWithABusyOneThePipeIsNotOpened)
{
	EXPECT_EQ(Desktop.WriteToPipe(PipeName, "x"), EQVPipeWrite::NotOpened) << "no game";
	const FGamePipe Game;
	const FWinHandle Other(
		::CreateFileW(ToWide(PipeName).c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
	ASSERT_TRUE(Other.IsValid());
	EXPECT_EQ(Desktop.WriteToPipe(PipeName, "x"), EQVPipeWrite::NotOpened) << "somebody else talks to it";
	EXPECT_EQ(Files.Logged(Log), FLines()) << "that no game runs is nothing to warn of";
	std::filesystem::create_directories(Files.OsPath("folder"));
	EXPECT_EQ(Desktop.WriteToPipe(Files("folder"), "x"), EQVPipeWrite::NotOpened);
	EXPECT_EQ(Files.Logged(Log), FLines{"folder could not be opened: Permission denied"});
}

TEST_F(Shell, AGameThatGoesInTheMiddleIsAFailure)
{
	FGamePipe Game;
	const std::string Long(std::size_t{8} << 20, 'x'); // more than the pipe holds
	std::thread Leaving(
		[&Game]
		{
			Game.Connect();
			Game.Close();
		});
	EQVPipeWrite Written = EQVPipeWrite::NotOpened;
	for (int Round = 0; Round < 3000 && Written == EQVPipeWrite::NotOpened; ++Round)
	{
		Written = Desktop.WriteToPipe(PipeName, Long);
	}
	Leaving.join();
	EXPECT_EQ(Written, EQVPipeWrite::Failed);
	const FLines Lines = Files.Logged(Log);
	ASSERT_EQ(Lines.size(), 1);
	EXPECT_TRUE(Lines[0].starts_with(PipeName + " could not be written: ")) << Lines[0];
}

TEST_F(Shell, WhatTheDesktopCannotOpenIsTold)
{
	EXPECT_EQ(Desktop.Open(Files("gone.txt")), 2);
	EXPECT_EQ(Files.Logged(Log), FLines{"gone.txt could not be opened: error 2 of the shell"});
	EXPECT_LE(Desktop.Open("no-such-scheme-of-ours://x"), 32);
}

struct GameLaunch : QVTest::FToolkitTest
{
};

TEST_F(GameLaunch, ARunningGameGetsEachRequestByItsPipe)
{
	const FGamePipe Game(R"(\\.\pipe\QUARVEL_PakLoader)");
	std::future<std::string> Received = std::async(std::launch::async, [&Game] { return Game.Receive(); });
	FQVMapPlaytest::LaunchGameWithPak("Cave", R"(C:\Höhle 1\Cave.pak)", "Hall", "/Game/Cave/Maps/Hall");
	EXPECT_EQ(Received.get(), "quarvel://loadmap?pak=C:/H%C3%B6hle%201/Cave.pak&map=Hall&mapname=/Game/Cave/Maps/Hall");
	EXPECT_EQ(Logged(), "QVMap: Sent to running game via named pipe\n");
}
