// SPDX-License-Identifier: MIT
#include "Standalone/Cli/ConsoleDialogs.h"

#include "Core/QVString.h"
#include "Standalone/Cli/Terminal.h"
#include "Standalone/Engine/Interrupt.h"

namespace QVCli
{
namespace
{
class FConsoleNotification : public IQVNotification
{
public:
	FConsoleNotification(FConsole& InConsole)
		: Console(InConsole)
	{
	}
	void SetText(const FQVText& NewText) override { Text = NewText.ToString(); }
	void SetProgress(std::string_view Stage, float Fraction) override
	{
		constexpr std::string_view Prefix = "QVMap: ";
		const std::string_view Shown = Text;
		Console.Progress(Stage, Fraction, Shown.starts_with(Prefix) ? Shown.substr(Prefix.size()) : Shown);
	}
	// how the work ended is told in the end
	void SetCompletionState(EQVCompletionState) override {}
	void ExpireAndFadeout() override {}

private:
	FConsole& Console;
	std::string Text;
};

/** What a question is answered by. */
const std::string& KeyOf(const FQVCustomDialog& Dialog)
{
	return Dialog.Title.GetKey().empty() ? Dialog.Body.GetKey() : Dialog.Title.GetKey();
}

std::string ListChoices(const FQVCustomDialog& Dialog)
{
	std::vector<std::string> Keys;
	for (const FQVText& Button : Dialog.Buttons)
	{
		Keys.push_back(Button.GetKey());
	}
	return FQVString::Join(Keys, ", ");
}

/** By its key, or by its label or the only beginning of one; nothing if no button is meant. */
std::optional<std::size_t> FindButton(const FQVCustomDialog& Dialog, std::string_view Choice)
{
	std::vector<std::size_t> Begun;
	for (std::size_t Place = 0; Place < Dialog.Buttons.size(); ++Place)
	{
		const std::string Label = Dialog.Buttons[Place].ToString();
		if (FQVString::EqualsIgnoreCase(Dialog.Buttons[Place].GetKey(), Choice) ||
			FQVString::EqualsIgnoreCase(Label, Choice))
		{
			return Place;
		}
		if (!Choice.empty() && FQVString::StartsWithIgnoreCase(Label, Choice))
		{
			Begun.push_back(Place);
		}
	}
	return Begun.size() == 1 ? std::optional(Begun.front()) : std::nullopt;
}

/** By its number as it is listed, from 1, or as FindButton. */
std::optional<std::size_t> FindTyped(const FQVCustomDialog& Dialog, std::string_view Typed)
{
	for (std::size_t Place = 0; Place < Dialog.Buttons.size(); ++Place)
	{
		if (Typed == std::to_string(Place + 1))
		{
			return Place;
		}
	}
	return FindButton(Dialog, Typed);
}

std::string Describe(const FQVCustomDialog& Dialog)
{
	const std::string Title = Dialog.Title.ToString();
	std::string Text = "question: " + Title + (Title.empty() ? "" : "\n") + Dialog.Body.ToString();
	Text = FQVString::ReplaceAll(Text, "\n", "\n  ");
	return FQVString::ReplaceAll(Text, "\n  \n", "\n\n");
}

/** How to answer without being asked. */
std::string DescribeFlags(const FQVCustomDialog& Dialog)
{
	std::vector<std::string> Ways;
	for (std::size_t Place = 0; Place < Dialog.Buttons.size(); ++Place)
	{
		if (Place != Dialog.Cancel)
		{
			Ways.push_back(QVPrintf("--answer %s=%s", KeyOf(Dialog), Dialog.Buttons[Place].GetKey()));
		}
	}
	if (Dialog.GoOn)
	{
		Ways.emplace_back("--yes");
	}
	return FQVString::Join(Ways, ", or ");
}
} // namespace

void AddAnswers(CLI::App& Verb, FAnswers& Answers)
{
	Verb.add_option("--answer", Answers.Given,
			"Answers a question before it is asked, as it is told where nobody can be asked; may be repeated")
		->type_name("KEY=CHOICE")
		->take_all()
		->expected(1)
		->allow_extra_args(false)
		->check(
			[](const std::string& Word)
			{
				const std::size_t Equals = Word.find('=');
				return Equals != std::string::npos && Equals != 0
						   ? std::string()
						   : QVPrintf("'%s' is no KEY=CHOICE, such as PreflightTitle=PackAnyway", Word);
			});
	Verb.add_flag(
		"-y,--yes", Answers.bYes, "Goes on at every question; what would change a map of yours is still asked about");
}

void FConsoleDialogs::ShowMessage(const FQVText& Message, const FQVText&)
{
	StoppedAt.clear();
	Failure = Message.ToString();
	Session.TellFailure(Failure);
}

bool FConsoleDialogs::AskYesNo(const FQVText& Message, const FQVText& Title)
{
	FQVCustomDialog Dialog;
	Dialog.Title = Title;
	Dialog.Body = Message;
	Dialog.Buttons = {{"QVMap", "Yes", "Yes"}, {"QVMap", "No", "No"}};
	Dialog.Cancel = 1;
	Dialog.GoOn = 0;
	return ShowCustomDialog(Dialog) == Dialog.GoOn;
}

std::size_t FConsoleDialogs::ShowCustomDialog(const FQVCustomDialog& Dialog)
{
	if (Dialog.Buttons.size() == 1) // there is nothing to decide
	{
		ShowMessage(Dialog.Body, Dialog.Title);
		return Dialog.Cancel;
	}
	const std::size_t Pressed = Answer(Dialog);
	StoppedAt = Pressed == Dialog.GoOn ? std::string() : KeyOf(Dialog);
	return Pressed;
}

std::size_t FConsoleDialogs::Answer(const FQVCustomDialog& Dialog)
{
	FConsole& Console = Session.Console;
	if (QVStandalone::FInterrupt::IsRaised())
	{
		return Dialog.Cancel;
	}
	if (const std::optional<std::size_t> Given = FindGiven(Dialog))
	{
		const bool bByYes = Answers.bYes && Given == Dialog.GoOn;
		Console.Say(QVPrintf("%s\n  answer: %s (%s)", Describe(Dialog), Dialog.Buttons[*Given].ToString(),
			bByYes ? "--yes" : "--answer"));
		return *Given;
	}
	Console.Tell(Describe(Dialog));
	if (CanAsk())
	{
		return Prompt(Dialog);
	}
	Console.Tell(QVPrintf("  answer: %s, as there is nobody to ask\n  to answer otherwise: %s",
		Dialog.Buttons.at(Dialog.Cancel).ToString(), DescribeFlags(Dialog)));
	return Dialog.Cancel;
}

/** Nothing if it was not foreseen, also when the choice is none of the buttons, which is told. */
std::optional<std::size_t> FConsoleDialogs::FindGiven(const FQVCustomDialog& Dialog)
{
	for (const std::string& Word : Answers.Given)
	{
		const std::size_t Equals = Word.find('=');
		if (!FQVString::EqualsIgnoreCase(Word.substr(0, Equals), KeyOf(Dialog)))
		{
			continue;
		}
		const std::string Choice = Word.substr(Equals + 1);
		if (const std::optional<std::size_t> Button = FindButton(Dialog, Choice))
		{
			return Button;
		}
		Session.Console.Tell(Describe(Dialog));
		Session.Console.Fail(
			QVPrintf("'%s' does not answer %s, which takes %s", Choice, KeyOf(Dialog), ListChoices(Dialog)));
		return Dialog.Cancel;
	}
	return Answers.bYes ? Dialog.GoOn : std::nullopt;
}

std::size_t FConsoleDialogs::Prompt(const FQVCustomDialog& Dialog)
{
	for (std::size_t Place = 0; Place < Dialog.Buttons.size(); ++Place)
	{
		Session.Console.Tell(QVPrintf("  %d) %s", Place + 1, Dialog.Buttons[Place].ToString()));
	}
	for (;;)
	{
		const std::optional<std::string> Typed = AskLine(QVPrintf("  your choice [%d]: ", Dialog.Cancel + 1));
		if (!Typed || Typed->empty())
		{
			return Dialog.Cancel;
		}
		if (const std::optional<std::size_t> Button = FindTyped(Dialog, *Typed))
		{
			return *Button;
		}
		Session.Console.Tell(QVPrintf("  '%s' is none of them", *Typed));
	}
}

std::shared_ptr<IQVNotification> FConsoleDialogs::AddNotification(const FQVNotificationInfo&)
{
	StoppedAt.clear(); // work has begun: whatever was pressed, it led on
	return std::make_shared<FConsoleNotification>(Session.Console);
}
} // namespace QVCli
