// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

/** Whoever holds it hears of an event; letting go of it ends that. It may outlive the event. */
using FQVSubscription = std::shared_ptr<const void>;

/** Something that happens now and then, and those who want to hear of it. On one thread. */
template<class... TArguments>
class TQVEvent
{
public:
	using FHandler = std::function<void(TArguments...)>;

	[[nodiscard]] FQVSubscription Subscribe(FHandler Handler)
	{
		auto Kept = std::make_shared<const FHandler>(std::move(Handler));
		Handlers.push_back(Kept);
		return Kept;
	}
	/** In the order of the subscriptions. A handler may subscribe, and let go of any subscription, its own too. */
	void Broadcast(TArguments... Arguments)
	{
		const auto Now = Handlers;
		for (const auto& Each : Now)
		{
			if (const std::shared_ptr<const FHandler> Handler = Each.lock())
			{
				(*Handler)(Arguments...);
			}
		}
		std::erase_if(Handlers, [](const auto& Each) { return Each.expired(); });
	}

private:
	std::vector<std::weak_ptr<const FHandler>> Handlers;
};
