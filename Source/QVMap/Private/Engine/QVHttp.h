// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <string>

/** A GET. */
struct FQVHttpRequest
{
	/** Begins with `https://`; nothing else is asked, nor followed when the server sends us on. */
	std::string Url;
	/** For all of it, from the first look for the host to the last byte. */
	double TimeoutSeconds = 10.0;
	/** A longer body counts as no answer, and is not read on. */
	std::size_t MostBytes = 65536;
};

struct FQVHttpResponse
{
	int Code = 0;
	/** The body as UTF-8, each bad byte as U+FFFD. */
	std::string Content;
};

/** Requests to web servers. Game thread. */
class IQVHttp
{
public:
	/**
	 * The answer, valid for the call only; null if there is none, or not all of it. A body of which the server does not
	 * say the length ends where the connection ends, whoever ended it.
	 */
	using FOnComplete = std::function<void(const FQVHttpResponse* Response)>;

	virtual ~IQVHttp() = default;

	/**
	 * Sends the request and returns at once. OnComplete comes once, later, on the game thread. A server whose
	 * certificate cannot be trusted gives no answer; why there is none stands in the engine's log.
	 */
	virtual void ProcessRequest(const FQVHttpRequest& Request, FOnComplete OnComplete) = 0;
};
