// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVPrintf.h"
#include "Core/QVString.h"
#include "Engine/QVDialogs.h"

#include <functional>
#include <map>

namespace QVTest
{
/** Answers as it was told and remembers how it was asked. */
class FScriptedDialogs : public IQVDialogs
{
public:
	bool bDesktop = true;
	/** Of a file dialog. */
	std::optional<std::string> Answer;
	/** Of one for several files. */
	std::vector<std::string> Answers;
	/** The newest message or file dialog. */
	std::string Asked;

	/** By the key of a question's title, or of its body where it has none: "Yes", or the key of a button. Anything else
	 * is taken as closing the dialog. */
	std::map<std::string, std::string> Choices;
	/** All that was shown, one entry each: "message", "question" or "note", its keys, its text, the answer. */
	std::vector<std::string> Shown;
	/** Called with each new entry, while a message or question is open. */
	std::function<void(const std::string&)> OnShown;

	void ShowMessage(const FQVText& Message, const FQVText& Title) override
	{
		Asked = Message.ToString();
		Note(QVPrintf("message %s: %s%s", Keys(Message, Title), Heading(Title), Asked));
	}
	bool AskYesNo(const FQVText& Message, const FQVText& Title) override
	{
		const std::string Choice = Choose(Message, Title);
		Note(QVPrintf("question %s: %s%s [Yes|No] > %s", Keys(Message, Title), Heading(Title), Message.ToString(),
			Choice == "Yes" ? "Yes" : "No"));
		return Choice == "Yes";
	}
	std::size_t ShowCustomDialog(const FQVCustomDialog& Dialog) override
	{
		const std::string Choice = Choose(Dialog.Body, Dialog.Title);
		std::size_t Pressed = Dialog.Cancel;
		std::vector<std::string> Labels;
		for (std::size_t Place = 0; Place < Dialog.Buttons.size(); ++Place)
		{
			Labels.push_back(Dialog.Buttons[Place].ToString());
			Pressed = Dialog.Buttons[Place].GetKey() == Choice ? Place : Pressed;
		}
		Note(QVPrintf("question %s: %s%s [%s] > %s", Keys(Dialog.Body, Dialog.Title), Heading(Dialog.Title),
			Dialog.Body.ToString(), FQVString::Join(Labels, "|"), Labels.at(Pressed)));
		return Pressed;
	}
	std::shared_ptr<IQVNotification> AddNotification(const FQVNotificationInfo& Info) override
	{
		return std::make_shared<FNotification>(*this, Info);
	}
	bool HasDesktop() const override { return bDesktop; }
	std::optional<std::string> OpenFileDialog(std::string_view Title, std::string_view FileTypes) override
	{
		Asked = QVPrintf("%s, %s", Title, FileTypes);
		return Answer;
	}
	std::vector<std::string> OpenFilesDialog(std::string_view Title, std::string_view FileTypes) override
	{
		Asked = QVPrintf("%s, %s, several", Title, FileTypes);
		return Answers;
	}

private:
	/** Told when it comes and when it goes; what it says in between goes with the time. */
	class FNotification : public IQVNotification
	{
	public:
		FNotification(FScriptedDialogs& InOwner, const FQVNotificationInfo& Info)
			: Owner(InOwner)
			, Text(Info.Text)
			, State(Info.CompletionState)
			, FadeOutDuration(Info.FadeOutDuration)
		{
			Owner.Note(
				Describe() + QVPrintf(" (%s, %s)", Info.Image, Info.bFireAndForget ? "goes by itself" : "stays"));
		}
		void SetText(const FQVText& NewText) override { Text = NewText; }
		void SetCompletionState(EQVCompletionState NewState) override { State = NewState; }
		void ExpireAndFadeout() override { Owner.Note(Describe() + QVPrintf(" (fades in %g s)", FadeOutDuration)); }

	private:
		FScriptedDialogs& Owner;
		FQVText Text;
		EQVCompletionState State;
		const double FadeOutDuration;

		std::string Describe() const
		{
			constexpr const char* Words[] = {"", "pending ", "success ", "fail "};
			return QVPrintf("%snote %s: %s", Words[static_cast<std::size_t>(State)], Text.GetKey(), Text.ToString());
		}
	};

	static std::string Keys(const FQVText& Message, const FQVText& Title)
	{
		return Title.GetKey().empty() ? Message.GetKey() : Title.GetKey() + "/" + Message.GetKey();
	}
	static std::string Heading(const FQVText& Title)
	{
		return Title.GetSource().empty() ? std::string() : "<" + Title.ToString() + "> ";
	}
	std::string Choose(const FQVText& Message, const FQVText& Title) const
	{
		const auto Found = Choices.find(Title.GetKey().empty() ? Message.GetKey() : Title.GetKey());
		return Found == Choices.end() ? std::string() : Found->second;
	}
	void Note(std::string Entry)
	{
		Shown.push_back(std::move(Entry));
		if (OnShown)
		{
			OnShown(std::string(Shown.back()));
		}
	}
};
} // namespace QVTest
