// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace QVTest
{
/** What a program is started with. */
struct FProgramStart
{
	std::filesystem::path File;
	std::vector<std::string> Words;
	std::filesystem::path Folder;
	/** Added to our own environment, in which nothing tells of an engine. */
	std::map<std::string, std::string> Environment;
	/** No file may grow beyond it, as on a disk that is full. */
	std::optional<std::uint64_t> MostFileBytes;
	/** Not 0: input, output and errors are a terminal of so many columns. */
	unsigned short TerminalColumns = 0;
};

struct FProgramEnd
{
	/** The signal's number with a minus, if one ended it. */
	int Code = 0;
	/** On a terminal all that was written to it, with its own line ends. */
	std::string Out;
	std::string Err;
	/** Every process that it started has ended too. */
	bool bNothingLeft = false;
};

/** A running program, as a user starts one. Killed with its object, if it still runs. */
class FProgram
{
public:
	explicit FProgram(const FProgramStart& Start);
	~FProgram();
	FProgram(const FProgram&) = delete;
	FProgram& operator=(const FProgram&) = delete;

	/** Needs a console on Windows, where any is what Ctrl-Break is. */
	static bool CanSignal();
	void Signal(int Number) const;
	/** The program alone, with no time to tidy up; its code is Killed then. */
	void Kill() const;
	static constexpr int Killed = -9;
	/** Until the text has come once more on its terminal; false after two minutes, or if it ends without. */
	bool AwaitOnTerminal(std::string_view Text);
	/** As a user types at its terminal: "\n" is Return, "\x04" the end of the input. */
	void Type(std::string_view Keys) const;
	/** Until it ends; after two minutes it is killed. */
	FProgramEnd Wait();

private:
#ifdef _WIN32
	struct FRunning;
	std::unique_ptr<FRunning> Running;
#else
	pid_t Id = -1;
	int Out = -1;
	int Err = -1;
	/** The other end is held by the program and by all that it starts. */
	int Lifeline = -1;
	/** What has come on the terminal, and how much of it was waited for. */
	std::string Seen;
	std::size_t Awaited = 0;

	void RunChild(const FProgramStart& Start, int OutEnd, int ErrEnd) const;
#endif
};
} // namespace QVTest
