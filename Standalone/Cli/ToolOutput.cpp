// SPDX-License-Identifier: MIT
#include "Standalone/Cli/ToolOutput.h"

#include "Core/QVString.h"

namespace QVCli
{
namespace
{
constexpr std::size_t TailBytes = 8192;
constexpr std::size_t MostLines = 10;
} // namespace

std::vector<std::string> FToolOutput::LastLines() const
{
	const std::vector<std::string_view> Lines = FQVString::NonEmptyLines(Tail);
	const std::size_t First = Lines.size() > MostLines ? Lines.size() - MostLines : 0;
	return {Lines.begin() + static_cast<std::ptrdiff_t>(First), Lines.end()};
}

FQVProcHandle FToolOutput::CreateProc(std::string_view Program, std::string_view Arguments, const FQVPipe& Output)
{
	Tail.clear();
	Code = 0;
	return Inner.CreateProc(Program, Arguments, Output);
}

FQVProcHandle FToolOutput::CreateDetachedProc(
	std::string_view Program, std::string_view Arguments, std::string_view WorkingDirectory)
{
	FQVProcHandle Process = Inner.CreateDetachedProc(Program, Arguments, WorkingDirectory);
	if (Process.IsValid())
	{
		Detached = Program;
	}
	return Process;
}

bool FToolOutput::GetProcReturnCode(FQVProcHandle& Process, int& OutCode)
{
	const bool bEnded = Inner.GetProcReturnCode(Process, OutCode);
	Code = bEnded ? OutCode : Code;
	return bEnded;
}

std::string FToolOutput::ReadPipe(FQVPipe& Pipe)
{
	std::string Text = Inner.ReadPipe(Pipe);
	Tail += Text;
	if (Tail.size() > 2 * TailBytes)
	{
		Tail.erase(0, Tail.find('\n', Tail.size() - TailBytes));
	}
	return Text;
}
} // namespace QVCli
