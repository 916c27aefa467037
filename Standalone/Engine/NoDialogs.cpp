// SPDX-License-Identifier: MIT
#include "Standalone/Engine/NoDialogs.h"

#include "Standalone/Engine/EngineLog.h"

namespace QVStandalone
{
namespace
{
struct FUnseen : IQVNotification
{
	void SetText(const FQVText&) override {}
	void SetCompletionState(EQVCompletionState) override {}
	void ExpireAndFadeout() override {}
};
} // namespace

void FNoDialogs::ShowMessage(const FQVText& Message, const FQVText&)
{
	LogEngine(EQVLogVerbosity::Warning, "%s", Message.ToString());
}

bool FNoDialogs::AskYesNo(const FQVText& Message, const FQVText&)
{
	LogEngine(EQVLogVerbosity::Warning, "%s", Message.ToString());
	return false;
}

std::size_t FNoDialogs::ShowCustomDialog(const FQVCustomDialog& Dialog)
{
	LogEngine(EQVLogVerbosity::Warning, "%s", Dialog.Body.ToString());
	return Dialog.Cancel;
}

std::shared_ptr<IQVNotification> FNoDialogs::AddNotification(const FQVNotificationInfo&)
{
	return std::make_shared<FUnseen>();
}
} // namespace QVStandalone
