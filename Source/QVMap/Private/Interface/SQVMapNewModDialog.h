// SPDX-License-Identifier: MIT
#pragma once

#include "Interface/QVMapModWizard.h"

#include <cstdint>
#include <vector>

class SQVMapNewModDialog;

/** What stands in the window. */
enum class EQVNewModItem : std::uint8_t
{
	/** Wraps at IntroWrapWidth. */
	Intro,
	NameLabel,
	/** One line; the text is its hint. */
	NameBox,
	/** In ErrorColor; not there while GetError is empty. */
	ErrorLine,
	AuthorLabel,
	/** One line. */
	AuthorBox,
	DescriptionLabel,
	/** Several lines. */
	DescriptionBox,
	Separator,
	/** GetPreview. */
	Preview,
	/** The two buttons stand side by side. */
	CreateButton,
	CancelButton
};

struct FQVNewModItem
{
	EQVNewModItem Item = EQVNewModItem::Separator;
	FQVText Text;
};

/** What draws the window. */
class IQVNewModDialogView
{
public:
	virtual ~IQVNewModDialogView() = default;

	/** Shows the window, modal; returns when it has been closed in any way. */
	virtual void ShowModal(SQVMapNewModDialog& Dialog) = 0;
	/** The error line, the preview or the create button's state is another one now. */
	virtual void OnChanged() = 0;
	/** The window goes. */
	virtual void Close() = 0;
};

/** The "New Map" window without its drawing. Game thread. */
class SQVMapNewModDialog
{
public:
	static constexpr std::string_view TextNamespace = "SQVMapNewModDialog";
	static constexpr int IntroWrapWidth = 460;
	/** Red, green, blue, alpha. */
	static constexpr float ErrorColor[] = {1.0F, 0.35F, 0.35F, 1.0F};

	/** The window that ShowDialog shows; null: there is none. It outlives its use. For the program that we run in. */
	static void SetView(IQVNewModDialogView* View);
	/**
	 * Shows the window and makes the map; a failure is told in a message. False, and OutResult untouched, if the user
	 * has closed the window without the create button.
	 */
	static bool ShowDialog(FQVCreateModResult& OutResult);

	explicit SQVMapNewModDialog(IQVNewModDialogView& InView);

	static FQVText GetTitle();
	/** From top to bottom. */
	static std::vector<FQVNewModItem> GetItems();

	// What the user types.
	void SetName(std::string_view Text);
	void SetAuthor(std::string_view Text) { Author = Text; }
	void SetDescription(std::string_view Text) { Description = Text; }

	const std::string& GetAuthor() const { return Author; }
	/** Why the name cannot be taken; empty also while there is none. */
	const FQVText& GetError() const { return Error; }
	FQVText GetPreview() const;
	bool CanCreate() const { return bNameValid; }

	// What the user presses.
	void Create();
	void Cancel() { View.Close(); }

private:
	IQVNewModDialogView& View;
	/** Trimmed. */
	std::string Name;
	std::string Author;
	std::string Description;
	FQVText Error;
	bool bNameValid = false;
	bool bConfirmed = false;

	FQVCreateModRequest MakeRequest() const;
};
