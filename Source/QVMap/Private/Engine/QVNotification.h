// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVText.h"

#include <cstdint>
#include <string>
#include <string_view>

/** The picture beside a notification's text. */
enum class EQVCompletionState : std::uint8_t
{
	None,
	/** At work. */
	Pending,
	Success,
	Fail
};

struct FQVNotificationInfo
{
	FQVText Text;
	/** Name of an image in the toolkit's style. */
	std::string Image;
	EQVCompletionState CompletionState = EQVCompletionState::None;
	/** It goes by itself after a while; otherwise it stays until ExpireAndFadeout. */
	bool bFireAndForget = true;
	/** In seconds. */
	double FadeOutDuration = 1.0;
};

/** A small note at the edge of the screen that is there. Game thread. */
class IQVNotification
{
public:
	virtual ~IQVNotification() = default;

	virtual void SetText(const FQVText& Text) = 0;
	/** How far the work is: a word for its stage, and 0 to 1. Only where there is a bar to show it. */
	virtual void SetProgress(std::string_view /*Stage*/, float /*Fraction*/) {}
	virtual void SetCompletionState(EQVCompletionState State) = 0;
	virtual void ExpireAndFadeout() = 0;
};
