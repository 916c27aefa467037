// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <utility>
#include <vector>

/** Something that others want to hear of. Used on one thread; listeners may come and go while it is told. */
template<class... Args>
class TQVEvent
{
public:
	using FListener = std::function<void(Args...)>;

	/** Gives what Remove takes; never 0. */
	int Add(FListener Listener)
	{
		Listeners.emplace_back(++LastHandle, std::move(Listener));
		return LastHandle;
	}
	void Remove(int Handle)
	{
		std::erase_if(Listeners, [Handle](const auto& Each) { return Each.first == Handle; });
	}
	/** In the order in which they came. */
	void Broadcast(Args... Arguments) const
	{
		const auto Now = Listeners;
		for (const auto& [Handle, Listener] : Now)
		{
			Listener(Arguments...);
		}
	}

private:
	std::vector<std::pair<int, FListener>> Listeners;
	int LastHandle = 0;
};
