// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVHttp.h"

#include <string>
#include <utility>
#include <vector>

namespace QVTest
{
/** Requests stay open until the test answers them. */
class FScriptedHttp : public IQVHttp
{
public:
	/** Those that were sent, answered or not. */
	std::vector<FQVHttpRequest> Sent;

	void ProcessRequest(const FQVHttpRequest& Request, FOnComplete OnComplete) override
	{
		Sent.push_back(Request);
		Pending.push_back(std::move(OnComplete));
	}

	std::size_t Open() const { return Pending.size(); }

	/** To the oldest open request. */
	void Answer(int Code, const std::string& Content)
	{
		const FQVHttpResponse Response{Code, Content};
		TakeOldest()(&Response);
	}
	void Fail() { TakeOldest()(nullptr); }

private:
	std::vector<FOnComplete> Pending;

	FOnComplete TakeOldest()
	{
		FOnComplete Oldest = std::move(Pending.front());
		Pending.erase(Pending.begin());
		return Oldest;
	}
};
} // namespace QVTest
