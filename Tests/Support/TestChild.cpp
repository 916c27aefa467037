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
//   remove PATH             a file or a folder
//   arguments PATH          our arguments into a file, one a line
//   list FOLDER|PATH        the files below the folder into a file, sorted, one a line
//   close-output
//   grandchild MILLISECONDS a process that holds the output open for so long after us
//   abort
//   signal NUMBER           to ourselves
//   exit CODE               0 at the script's end
//
// In paths and texts {arg:-create} is what follows "-create=" in our arguments, and {1} is the first argument.
#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace
{
namespace fs = std::filesystem;

constexpr int BadScript = 97;

std::vector<std::string> Arguments;

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
	WriteFile(Path, Text);
}

void PrintRaw(std::string_view Hex)
{
	for (std::size_t At = 0; At + 1 < Hex.size(); At += 2)
	{
		std::cout.put(static_cast<char>(std::stoi(std::string(Hex.substr(At, 2)), nullptr, 16)));
	}
}

void WaitFor(const fs::path& Path)
{
	for (int Round = 0; Round < 3000 && !fs::exists(Path); ++Round)
	{
		std::this_thread::sleep_for(std::chrono::milliseconds(10));
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

void StartGrandchild(int Milliseconds)
{
	if (::fork() == 0)
	{
		std::this_thread::sleep_for(std::chrono::milliseconds(Milliseconds));
		std::_Exit(0);
	}
}

void EndAs(std::string_view Verb, int Number)
{
	const rlimit NoCore{0, 0};
	::setrlimit(RLIMIT_CORE, &NoCore);
	if (Verb == "abort")
	{
		std::abort();
	}
	if (Verb == "signal")
	{
		std::raise(Number);
		std::this_thread::sleep_for(std::chrono::seconds(30));
	}
	std::_Exit(Number);
}

void DoFiles(std::string_view Verb, const std::string& Rest)
{
	const auto [First, Second] = SplitAtBar(Rest);
	if (Verb == "write")
	{
		WriteWithLineEnds(First, Second);
	}
	else if (Verb == "remove")
	{
		fs::remove_all(Rest);
	}
	else if (Verb == "list")
	{
		ListFiles(First, Second);
	}
	else if (Verb == "arguments")
	{
		std::string Text;
		for (const std::string& Argument : Arguments)
		{
			Text += Argument + "\n";
		}
		WriteFile(Rest, Text);
	}
	else
	{
		FailScript("no such command: " + std::string(Verb));
	}
}

void DoCommand(std::string_view Verb, const std::string& Rest)
{
	const int Number = std::atoi(Rest.c_str());
	if (Verb == "print")
	{
		std::cout << Rest << '\n';
	}
	else if (Verb == "lines")
	{
		for (int Line = 1; Line <= Number; ++Line)
		{
			std::cout << "line " << Line << '\n';
		}
	}
	else if (Verb == "raw")
	{
		PrintRaw(Rest);
	}
	else if (Verb == "sleep")
	{
		std::this_thread::sleep_for(std::chrono::milliseconds(Number));
	}
	else if (Verb == "wait")
	{
		WaitFor(Rest);
	}
	else if (Verb == "close-output")
	{
		::close(STDOUT_FILENO);
		::close(STDERR_FILENO);
	}
	else if (Verb == "grandchild")
	{
		StartGrandchild(Number);
	}
	else if (Verb == "exit" || Verb == "abort" || Verb == "signal")
	{
		EndAs(Verb, Number);
	}
	else
	{
		DoFiles(Verb, Rest);
	}
	std::cout.flush();
}
} // namespace

int main(int Count, char** Words)
{
	Arguments.assign(Words + 1, Words + Count);
	const std::string Path = Words[0] + std::string(".script");
	std::ifstream Script(Path);
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
