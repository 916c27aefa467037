// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVDialogs.h"
#include "Engine/QVEditor.h"
#include "Standalone/Engine/EngineLog.h"

namespace QVStandalone
{
/** There is no editor: nothing compiles in the background. */
class FEditor : public IQVEditor
{
public:
	void FinishAllCompilation() override {}
};

/** There is no desktop either: no file dialog can be shown, and a message goes to the log. */
class FNoDialogs : public IQVDialogs
{
public:
	void ShowMessage(const FQVText& Message) override { LogEngine(EQVLogVerbosity::Warning, "%s", Message.ToString()); }
	bool HasDesktop() const override { return false; }
	std::optional<std::string> OpenFileDialog(std::string_view, std::string_view) override { return std::nullopt; }
};
} // namespace QVStandalone
