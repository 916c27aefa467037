// SPDX-License-Identifier: MIT
//
// Plays one of the engine's tools in tests: copied to the tool's place, it does what the file beside it says, named as
// the program with ".script" behind it. One command a line:
//
//   print TEXT              the text and a line end
//   lines N                 "line 1" to "line N"
//   raw HEX                 bytes, such as the first half of a letter
//   sleep MILLISECONDS
//   wait PATH               until the file is there; for half a minute at most
//   write PATH|TEXT         a file, its folders with it; \n in the text is a line end
//   copy PATH|PATH          a file over another
//   remove PATH             a file or a folder
//   arguments PATH          our arguments into a file, one a line
//   list FOLDER|PATH        the files below the folder into a file, sorted, one a line
//   listen PATH             at a socket that is made there
//   record PATH             one message that comes there, until the sender has closed, into a file
//   close-output
//   grandchild MILLISECONDS a process that holds the output open for so long after us
//   abort
//   signal NUMBER           to ourselves
//   exit CODE               0 at the script's end
//
// In paths and texts {arg:-create} is what follows "-create=" in our arguments, and {1} is the first argument.
#include "Tests/Support/TestChildSystem.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace
{
namespace fs = std::filesystem;

constexpr int BadScript = 97;

std::vector<std::string> Arguments;

fs::path PathOf(const std::string& Utf8)
{
	return std::u8string(Utf8.begin(), Utf8.end());
}

[[noreturn]] void FailScript(std::string_view Why)
{
	std::cout << "test child: " << Why << std::endl;
	std::_Exit(BadScript);
}

/** What a placeholder stands for; one that we do not know stands for itself. */
std::string ValueOf(const std::string& Placeholder)
{
	if (Placeholder.starts_with("arg:"))
	{
		const std::string Prefix = Placeholder.substr(4) + "=";
		const auto Found = std::find_if(Arguments.begin(), Arguments.end(),
			[&Prefix](const std::string& Argument) { return Argument.starts_with(Prefix); });
		if (Found == Arguments.end())
		{
			FailScript("no argument " + Prefix);
		}
		return Found->substr(Prefix.size());
	}
	const int Index = std::atoi(Placeholder.c_str());
	return Index > 0 && Index <= static_cast<int>(Arguments.size()) ? Arguments[Index - 1] : "{" + Placeholder + "}";
}

std::string Expand(std::string_view Text)
{
	std::string Result;
	while (!Text.empty())
	{
		const std::size_t Open = std::min(Text.find('{'), Text.size());
		const std::size_t Close = Text.find('}', Open);
		Result.append(Text.substr(0, Open));
		if (Close == std::string_view::npos)
		{
			return Result.append(Text.substr(Open));
		}
		Result.append(ValueOf(std::string(Text.substr(Open + 1, Close - Open - 1))));
		Text.remove_prefix(Close + 1);
	}
	return Result;
}

std::pair<std::string, std::string> SplitAtBar(const std::string& Rest)
{
	const std::size_t Bar = std::min(Rest.find('|'), Rest.size());
	return {Rest.substr(0, Bar), Rest.substr(std::min(Bar + 1, Rest.size()))};
}

void WriteFile(const fs::path& Path, std::string_view Bytes)
{
	std::error_code Ignored;
	fs::create_directories(Path.parent_path(), Ignored);
	std::ofstream File(Path, std::ios::binary);
	File << Bytes;
	if (!File.flush())
	{
		FailScript("cannot write " + Path.string());
	}
}

void WriteWithLineEnds(const std::string& Path, std::string Text)
{
	for (std::size_t At = Text.find("\\n"); At != std::string::npos; At = Text.find("\\n", At))
	{
		Text.replace(At, 2, "\n");
	}
	WriteFile(PathOf(Path), Text);
}

void PrintRaw(std::string_view Hex)
{
	for (std::size_t At = 0; At + 1 < Hex.size(); At += 2)
	{
		std::cout.put(static_cast<char>(std::stoi(std::string(Hex.substr(At, 2)), nullptr, 16)));
	}
}

void Sleep(int Milliseconds)
{
	std::this_thread::sleep_for(std::chrono::milliseconds(Milliseconds));
}

void WaitFor(const fs::path& Path)
{
	for (int Round = 0; Round < 3000 && !fs::exists(Path); ++Round)
	{
		Sleep(10);
	}
}

void ListFiles(const fs::path& Folder, const fs::path& Out)
{
	std::vector<std::string> Files;
	for (const fs::directory_entry& Entry : fs::recursive_directory_iterator(Folder))
	{
		if (Entry.is_regular_file())
		{
			Files.push_back(Entry.path().lexically_relative(Folder).generic_string());
		}
	}
	std::sort(Files.begin(), Files.end());
	std::string Text;
	for (const std::string& File : Files)
	{
		Text += File + "\n";
	}
	WriteFile(Out, Text);
}

/** In two steps: not every standard library replaces a file. */
void CopyOver(const fs::path& From, const fs::path& To)
{
	fs::remove(To);
	fs::copy_file(From, To);
}

void ListArguments(const fs::path& Out)
{
	std::string Text;
	for (const std::string& Argument : Arguments)
	{
		Text += Argument + "\n";
	}
	WriteFile(Out, Text);
}

void PrintLines(int Count)
{
	for (int Line = 1; Line <= Count; ++Line)
	{
		std::cout << "line " << Line << '\n';
	}
}

/** What stands behind the command; as one text, in two parts, as a number. */
struct FRest
{
	std::string Text;
	std::string First;
	std::string Second;
	int Number = 0;
};

struct FCommand
{
	std::string_view Verb;
	void (*Do)(const FRest& Rest);
};

constexpr FCommand Commands[] = {
	{"print", [](const FRest& Rest) { std::cout << Rest.Text << '\n'; }},
	{"lines", [](const FRest& Rest) { PrintLines(Rest.Number); }},
	{"raw", [](const FRest& Rest) { PrintRaw(Rest.Text); }},
	{"sleep", [](const FRest& Rest) { Sleep(Rest.Number); }},
	{"wait", [](const FRest& Rest) { WaitFor(PathOf(Rest.Text)); }},
	{"write", [](const FRest& Rest) { WriteWithLineEnds(Rest.First, Rest.Second); }},
	{"copy", [](const FRest& Rest) { CopyOver(PathOf(Rest.First), PathOf(Rest.Second)); }},
	{"remove", [](const FRest& Rest) { fs::remove_all(PathOf(Rest.Text)); }},
	{"arguments", [](const FRest& Rest) { ListArguments(PathOf(Rest.Text)); }},
	{"list", [](const FRest& Rest) { ListFiles(PathOf(Rest.First), PathOf(Rest.Second)); }},
	{"listen", [](const FRest& Rest) { QVTest::Listen(Rest.Text); }},
	{"record", [](const FRest& Rest) { WriteFile(PathOf(Rest.Text), QVTest::ReceiveMessage()); }},
	{"close-output", [](const FRest&) { QVTest::CloseOutput(); }},
	{"grandchild", [](const FRest& Rest) { QVTest::StartGrandchild(Rest.Number); }},
	{"abort", [](const FRest&) { QVTest::Abort(); }},
	{"signal", [](const FRest& Rest) { QVTest::RaiseSignal(Rest.Number); }},
	{"exit", [](const FRest& Rest) { std::_Exit(Rest.Number); }},
};

void DoCommand(std::string_view Verb, const std::string& Text)
{
	const auto* Command = std::find_if(
		std::begin(Commands), std::end(Commands), [Verb](const FCommand& Each) { return Each.Verb == Verb; });
	if (Command == std::end(Commands))
	{
		FailScript("no such command: " + std::string(Verb));
	}
	const auto [First, Second] = SplitAtBar(Text);
	Command->Do({Text, First, Second, std::atoi(Text.c_str())});
	std::cout.flush();
}
} // namespace

int main(int Count, char** Words)
{
	Arguments = QVTest::ProgramWords(Count, Words);
	const std::string Path = Arguments.front() + ".script";
	Arguments.erase(Arguments.begin());
	if (Arguments.size() == 2 && Arguments.front() == "--sleep")
	{
		Sleep(std::atoi(Arguments.back().c_str()));
		return 0;
	}
	std::ifstream Script(PathOf(Path));
	if (!Script)
	{
		FailScript("no script " + Path);
	}
	for (std::string Line; std::getline(Script, Line);)
	{
		const std::size_t Blank = std::min(Line.find(' '), Line.size());
		if (!Line.empty())
		{
			DoCommand(Line.substr(0, Blank), Expand(Line.substr(std::min(Blank + 1, Line.size()))));
		}
	}
	return 0;
}
