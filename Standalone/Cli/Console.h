// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVJson.h"
#include "Core/QVLog.h"

#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace QVCli
{
/** How much is told on standard error. */
enum class EChatter
{
	Quiet,
	Normal,
	/** All log lines. */
	Verbose
};

/**
 * The terminal: results on standard output, everything else on standard error. Progress is one line that is written
 * over on a terminal, and plain lines elsewhere. Any thread.
 *
 * A log line of verbosity Error is kept back until it is known how the work ended: a failure is told in one message
 * with its causes below, not in several that say the same.
 */
class FConsole : public IQVLogSink
{
public:
	FConsole();

	void SetChatter(EChatter InChatter) { Chatter = InChatter; }
	EChatter GetChatter() const { return Chatter; }

	/** The log's end of the console. */
	void Write(std::string_view Category, EQVLogVerbosity Verbosity, std::string_view Text) override;

	/** A line of the result. */
	void Result(std::string_view Line);
	/** A whole JSON document. */
	void Document(const FQVJson& Json);
	/** The document went where the user wanted it, by another way. */
	void MarkDocumentShown() { bDocumentShown = true; }
	/** After a failure that came before there was a result: whoever asked for JSON gets a document all the same. */
	void EnsureDocument();

	/** A line for the user that is no result; not said when quiet. */
	void Say(std::string_view Line);
	/** What has to be read, also when quiet. */
	void Tell(std::string_view Line);
	void Warn(std::string_view Text);
	/** The failure with its causes: what was kept back, and a tool's last lines. */
	void Fail(std::string_view Message, const std::vector<std::string>& ToolLines = {});
	/** The work succeeded: what was kept back is told all the same. */
	void Succeed();

	void Progress(std::string_view Stage, float Fraction, std::string_view Message);

private:
	std::mutex Lock;
	EChatter Chatter = EChatter::Normal;
	const bool bTerminal;
	bool bProgressShown = false;
	std::string LastStage;
	int LastTenth = -1;
	bool bDocumentShown = false;
	std::string FirstFailure;
	std::vector<std::string> KeptBack;
	std::set<std::string, std::less<>> Warned;

	void Line(std::string_view Text);
	void ClearProgress();
	void ShowBar(std::string_view Stage, float Fraction, std::string_view Message);
	void WarnOnce(std::string_view Text);
};
} // namespace QVCli
