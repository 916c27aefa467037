// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

/**
 * Tells how far a long operation is. Called on the thread that does the work: whoever shows it marshals. May be
 * unbound; bound to a target, it is silent once the target is gone.
 */
class FQVCookProgress
{
public:
	/** Stage is a word, Fraction 0 to 1, Message a line for a person. Views are good for the call only. */
	using FCallback = std::function<void(std::string_view Stage, float Fraction, std::string_view Message)>;

	FQVCookProgress() = default;
	FQVCookProgress(FCallback InCallback)
		: Callback(std::move(InCallback))
	{
	}
	FQVCookProgress(std::weak_ptr<const void> InTarget, FCallback InCallback)
		: Callback(std::move(InCallback))
		, Target(std::move(InTarget))
	{
	}

	void Report(std::string_view Stage, float Fraction, std::string_view Message) const
	{
		const std::shared_ptr<const void> Alive = Target ? Target->lock() : nullptr;
		if (Callback && (!Target || Alive))
		{
			Callback(Stage, Fraction, Message);
		}
	}

private:
	FCallback Callback;
	std::optional<std::weak_ptr<const void>> Target;
};

using FQVExportProgress = FQVCookProgress;
