// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVText.h"
#include "Engine/QVNotification.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/** A question with buttons of its own. */
struct FQVCustomDialog
{
	FQVText Title;
	FQVText Body;
	/** At least one; the first is the one that Return presses. */
	std::vector<FQVText> Buttons;
	/** The button that closing the dialog stands for, and that nobody's answer is taken for. */
	std::size_t Cancel = 0;
	/** The button that goes on and changes nothing that the user made; none if there is no such button. */
	std::optional<std::size_t> GoOn;
};

/** What asks the user. Game thread. */
class IQVDialogs
{
public:
	virtual ~IQVDialogs() = default;

	/** A message with one button; returns when the user has seen it. Without a title the engine has one. */
	virtual void ShowMessage(const FQVText& Message, const FQVText& Title = {}) = 0;
	/** False for No, and when the dialog is closed. Without a title the engine has one. */
	virtual bool AskYesNo(const FQVText& Message, const FQVText& Title = {}) = 0;
	/** The place of the button that was pressed. */
	virtual std::size_t ShowCustomDialog(const FQVCustomDialog& Dialog) = 0;
	/** Never null. */
	virtual std::shared_ptr<IQVNotification> AddNotification(const FQVNotificationInfo& Info) = 0;

	/** A window is open that keeps the user from all others. */
	virtual bool IsModalWindowActive() const { return false; }
	/** Whether there is a desktop that could show a file dialog at all. */
	virtual bool HasDesktop() const = 0;
	/** One file to open; nothing when the user cancels. FileTypes as "Executable Files (*.exe)|*.exe". */
	virtual std::optional<std::string> OpenFileDialog(std::string_view Title, std::string_view FileTypes) = 0;
	/** Several files, in the order in which they were picked; none when the user cancels. By default one. */
	virtual std::vector<std::string> OpenFilesDialog(std::string_view Title, std::string_view FileTypes)
	{
		const std::optional<std::string> File = OpenFileDialog(Title, FileTypes);
		return File ? std::vector{*File} : std::vector<std::string>();
	}
};
