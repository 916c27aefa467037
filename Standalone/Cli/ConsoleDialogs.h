// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVDialogs.h"
#include "Standalone/Cli/Session.h"

#include <string>
#include <vector>

namespace QVCli
{
/** What the user has said to questions before they are asked. */
struct FAnswers
{
	/** Each as "Key=Choice": the key of a dialog's title, and the key or the label of one of its buttons. */
	std::vector<std::string> Given;
	/** Goes on at every question, but never lets anything be changed that the user made. */
	bool bYes = false;
};

/** `--answer` and `--yes`, for a verb that asks. */
void AddAnswers(CLI::App& Verb, FAnswers& Answers);

/**
 * Dialogs on the terminal: messages are failures, questions are asked where there is somebody to ask. Elsewhere they
 * are answered by what the user has said before, or else the safe way, and how to answer is told.
 */
class FConsoleDialogs : public IQVDialogs
{
public:
	FConsoleDialogs(FSession& InSession, const FAnswers& InAnswers)
		: Session(InSession)
		, Answers(InAnswers)
	{
	}

	/** The question, by what answers it, at which the work was stopped; empty if it was not. */
	const std::string& GetStoppedAt() const { return StoppedAt; }
	/** The newest failure that was told; empty if there was none. */
	const std::string& GetFailure() const { return Failure; }

	void ShowMessage(const FQVText& Message, const FQVText& Title) override;
	bool AskYesNo(const FQVText& Message, const FQVText& Title) override;
	std::size_t ShowCustomDialog(const FQVCustomDialog& Dialog) override;
	/** The console's progress. */
	std::shared_ptr<IQVNotification> AddNotification(const FQVNotificationInfo& Info) override;
	bool HasDesktop() const override { return false; }
	std::optional<std::string> OpenFileDialog(std::string_view, std::string_view) override { return std::nullopt; }

private:
	FSession& Session;
	const FAnswers& Answers;
	std::string StoppedAt;
	std::string Failure;

	std::size_t Answer(const FQVCustomDialog& Dialog);
	std::optional<std::size_t> FindGiven(const FQVCustomDialog& Dialog);
	std::size_t Prompt(const FQVCustomDialog& Dialog);
};
} // namespace QVCli
