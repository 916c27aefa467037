// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Shell.h"

#include "Standalone/Formats/Windows/Win32.h"
#include "Tests/Standalone/TestFiles.h"
#include "Tests/Support/RecordingLog.h"
#include "Tests/Support/TestPrograms.h"

#include <gtest/gtest.h>

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

/** A scheme of addresses that a program of ours opens, for the user who runs the tests. */
class FOwnScheme
{
public:
	explicit FOwnScheme(const std::string& Program)
	{
		Set("", "URL Protocol", "");
		Set("\\shell\\open\\command", "", "\"" + Program + "\" \"%1\"");
	}
	FOwnScheme(const FOwnScheme&) = delete;
	FOwnScheme& operator=(const FOwnScheme&) = delete;
	~FOwnScheme()
	{
		::RegDeleteTreeW(HKEY_CURRENT_USER, ToWide(OfUser + Name).c_str());
		::RegDeleteTreeW(HKEY_CLASSES_ROOT, ToWide(Name).c_str());
	}

	const std::string Name = "qvmap-test-" + std::to_string(::GetCurrentProcessId());

private:
	const std::string OfUser = "Software\\Classes\\";

	void Set(const std::string& Below, const std::string& Value, const std::string& Text) const
	{
		EXPECT_EQ(Write(HKEY_CURRENT_USER, OfUser + Name + Below, Value, ToWide(Text)), ERROR_SUCCESS);
		Write(HKEY_CLASSES_ROOT, Name + Below, Value, ToWide(Text)); // if we may: Wine's shell looks there only
	}
	static LSTATUS Write(HKEY Root, const std::string& Key, const std::string& Value, const std::wstring& Text)
	{
		return ::RegSetKeyValueW(Root, ToWide(Key).c_str(), ToWide(Value).c_str(), REG_SZ, Text.c_str(),
			static_cast<DWORD>((Text.size() + 1) * sizeof(wchar_t)));
	}
};

TEST_F(Shell, AnAddressGoesToTheProgramOfItsScheme)
{
	const std::string Program = Files("desk.exe");
	QVTest::PlaceTestChild(Files.OsPath("desk.exe"));
	Files.Put("desk.exe.script", "arguments " + Files("seen") + "\nwrite " + Files("done") + "|");
	const FOwnScheme Scheme(FQVString::ReplaceAll(Program, "/", "\\"));
	const std::string Url = Scheme.Name + "://loadmap?pak=C:/H%C3%B6hle%201/Cave.pak&map=Hall -console";
	EXPECT_GT(Desktop.Open(Url), 32);
	for (int Round = 0; Round < 3000 && !Files.Has("done"); ++Round)
	{
		std::this_thread::sleep_for(std::chrono::milliseconds(10));
	}
	EXPECT_EQ(Files.Get("seen"), Url + "\n");
	EXPECT_EQ(Files.Logged(Log), FLines());
}
