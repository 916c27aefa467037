// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVString.h"
#include "Export/QVMapProgress.h"
#include "Standalone/Engine/StandaloneEngine.h"
#include "Tests/Support/FaultyFiles.h"
#include "Tests/Support/FixedClock.h"
#include "Tests/Support/RecordingLog.h"
#include "Tests/Support/ScriptedProcesses.h"
#include "Tests/Support/TestProject.h"

#include <gtest/gtest.h>

namespace QVTest
{
/** The toolkit over a project of its own: what a test changes in the project before it asks anything is found there. */
struct FToolkit
{
	FTestProject Project;
	FRecordingLog Recording;
	QVStandalone::FStandaloneEngine Engine{Project.ProjectFile(), Project.EngineDir()};
	FFixedClock Clock;
	FFaultyFiles Files{*Engine.Interfaces.Files};
	FScriptedProcesses Children;

	FToolkit()
	{
		Engine.Interfaces.Clock = &Clock;
		Engine.Interfaces.Files = &Files;
	}

	/** From now on no real child is started. */
	void UseScriptedChildren() { Engine.Interfaces.Processes = &Children; }

	/**
	 * The toolkit's lines since the last call, each with a line end, folders masked. A line that is not Log has its
	 * word in front: "Warning: ...". The engine's own lines are left out.
	 */
	std::string Logged(EQVLogVerbosity Least = EQVLogVerbosity::Verbose)
	{
		std::string Text;
		for (const FLogLine& Line : Recording.Take())
		{
			if (Line.Category == FQVLog::Category && Line.Verbosity <= Least)
			{
				const bool bPlain = Line.Verbosity == EQVLogVerbosity::Log;
				Text += bPlain ? "" : std::string(FQVLog::Word(Line.Verbosity)) + ": ";
				Text += Line.Text + "\n";
			}
		}
		return Project.Mask(Text);
	}
	/** Of these, the ones of Error and Warning. */
	std::string Complaints() { return Logged(EQVLogVerbosity::Warning); }
};

struct FToolkitTest : testing::Test, FToolkit
{
};

/** What a long operation told, as "cooking 0.95 the message". */
struct FProgressRecord
{
	std::vector<std::string> Reports;
	/** Called behind each, with the message. */
	std::function<void(std::string_view)> OnMessage;

	FQVCookProgress Bind()
	{
		return FQVCookProgress(
			[this](std::string_view Stage, float Fraction, std::string_view Message)
			{
				Reports.push_back(QVPrintf("%s %g %s", Stage, Fraction, Message));
				if (OnMessage)
				{
					OnMessage(Message);
				}
			});
	}
};
} // namespace QVTest
