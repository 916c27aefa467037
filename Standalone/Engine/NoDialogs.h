// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVDialogs.h"

namespace QVStandalone
{
/** There is no desktop and nobody to ask: messages go to the log, and questions are answered the safe way. */
class FNoDialogs : public IQVDialogs
{
public:
	void ShowMessage(const FQVText& Message, const FQVText& Title) override;
	bool AskYesNo(const FQVText& Message, const FQVText& Title) override;
	std::size_t ShowCustomDialog(const FQVCustomDialog& Dialog) override;
	/** A notification that nobody sees. */
	std::shared_ptr<IQVNotification> AddNotification(const FQVNotificationInfo& Info) override;
	bool HasDesktop() const override { return false; }
	std::optional<std::string> OpenFileDialog(std::string_view, std::string_view) override { return std::nullopt; }
};
} // namespace QVStandalone
