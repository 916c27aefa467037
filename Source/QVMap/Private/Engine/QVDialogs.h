// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVText.h"

#include <optional>
#include <string>
#include <string_view>

/** What asks the user. Game thread. */
class IQVDialogs
{
public:
	virtual ~IQVDialogs() = default;

	/** A message with one button; returns when the user has seen it. */
	virtual void ShowMessage(const FQVText& Message) = 0;
	/** Whether there is a desktop that could show a file dialog at all. */
	virtual bool HasDesktop() const = 0;
	/** One file to open; nothing when the user cancels. FileTypes as "Executable Files (*.exe)|*.exe". */
	virtual std::optional<std::string> OpenFileDialog(std::string_view Title, std::string_view FileTypes) = 0;
};
