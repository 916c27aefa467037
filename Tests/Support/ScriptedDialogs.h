// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVPrintf.h"
#include "Engine/QVDialogs.h"

namespace QVTest
{
/** Answers as it was told and remembers how it was asked. */
class FScriptedDialogs : public IQVDialogs
{
public:
	bool bDesktop = true;
	std::optional<std::string> Answer;
	std::string Asked;

	void ShowMessage(const FQVText& Message) override { Asked = Message.ToString(); }
	bool HasDesktop() const override { return bDesktop; }
	std::optional<std::string> OpenFileDialog(std::string_view Title, std::string_view FileTypes) override
	{
		Asked = QVPrintf("%s, %s", Title, FileTypes);
		return Answer;
	}
};
} // namespace QVTest
