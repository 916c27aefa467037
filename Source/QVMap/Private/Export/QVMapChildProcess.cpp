// SPDX-License-Identifier: MIT
#include "Export/QVMapChildProcess.h"

#include "Core/QVString.h"
#include "Engine/QVEngine.h"
#include "Engine/QVProcesses.h"

#include <algorithm>

namespace
{
constexpr double PollSeconds = 0.01;
constexpr float HighestFraction = 0.95f;

/** Counts the lines of a child's output and tells of each chunk. */
class FLineProgress
{
public:
	FLineProgress(std::string_view InStage, float InFractionPerLine, const FQVCookProgress& InProgress)
		: Stage(InStage)
		, FractionPerLine(InFractionPerLine)
		, Progress(InProgress)
	{
	}

	void Add(std::string_view Chunk)
	{
		const std::vector<std::string_view> New = FQVString::NonEmptyLines(Chunk);
		Lines += New.size();
		const float Fraction = std::clamp(static_cast<float>(Lines) * FractionPerLine, 0.0f, HighestFraction);
		Progress.Report(Stage, Fraction, New.empty() ? std::string_view() : New.back());
	}

private:
	std::string_view Stage;
	float FractionPerLine;
	const FQVCookProgress& Progress;
	std::size_t Lines = 0;
};
} // namespace

FQVChildRun FQVMapChildProcess::Run(std::string_view Program, std::string_view Arguments, std::string_view Stage,
	float FractionPerLine, const FQVCookProgress& Progress)
{
	FQVChildRun Result;
	IQVProcesses& Processes = *FQVEngine::Get().Processes;
	FQVPipe Pipe = Processes.CreatePipe();
	FQVProcHandle Child = Processes.CreateProc(Program, Arguments, Pipe);
	Result.bStarted = Child.IsValid();
	if (Result.bStarted)
	{
		FLineProgress Lines(Stage, FractionPerLine, Progress);
		while (Processes.IsProcRunning(Child))
		{
			const std::string Chunk = Processes.ReadPipe(Pipe);
			if (!Chunk.empty())
			{
				Result.Output += Chunk;
				Lines.Add(Chunk);
			}
			Processes.Sleep(PollSeconds);
		}
		Result.Output += Processes.ReadPipe(Pipe);
		Processes.GetProcReturnCode(Child, Result.ReturnCode);
		Processes.CloseProc(Child);
	}
	Processes.ClosePipe(Pipe);
	return Result;
}
