// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Engine/Processes.h"
#include "Tests/Standalone/TestFiles.h"

#include <gtest/gtest.h>

struct FChildEnd
{
	std::string Output;
	int Code = -1;

	/** The lines of the output that say so: "LogCook: Error:". */
	FLines Lines(std::string_view Beginning) const
	{
		FLines Found;
		for (const std::string_view Line : FQVString::NonEmptyLines(Output))
		{
			if (Line.starts_with(Beginning))
			{
				Found.emplace_back(Line);
			}
		}
		return Found;
	}
};

/** Watches a child as the toolkit does, and closes all. */
inline FChildEnd WatchChild(QVStandalone::FProcesses& Processes, FQVProcHandle Process, FQVPipe Pipe)
{
	FChildEnd End;
	while (Processes.IsProcRunning(Process))
	{
		End.Output += Processes.ReadPipe(Pipe);
		Processes.Sleep(0.001);
	}
	End.Output += Processes.ReadPipe(Pipe);
	EXPECT_TRUE(Processes.GetProcReturnCode(Process, End.Code));
	Processes.CloseProc(Process);
	Processes.ClosePipe(Pipe);
	return End;
}

/** Runs one of the bundled engine's programs; its output is masked. */
inline FChildEnd RunTool(const FTestFiles& Files, const std::string& Name, const std::string& Arguments)
{
	QVStandalone::FProcesses Processes;
	const FQVPipe Pipe = Processes.CreatePipe();
	const FQVProcHandle Process =
		Processes.CreateProc(QVMAP_TEST_BIN "/Engine/Binaries/Win64/" + Name, Arguments, Pipe);
	if (!Process.IsValid())
	{
		ADD_FAILURE() << Name << " did not start";
		return {};
	}
	FChildEnd End = WatchChild(Processes, Process, Pipe);
	End.Output = Files.Mask(End.Output);
	return End;
}
