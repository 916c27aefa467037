// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVHttp.h"

#include <atomic>
#include <optional>
#include <string>

namespace QVStandalone
{
/** On the game thread, before any thread performs a request. */
void PrepareHttp();

/**
 * One request, on the thread that asks; differs between systems. Nothing, and why in the log, if there is no answer;
 * nothing alone once it is stopped or interrupted.
 */
std::optional<FQVHttpResponse> PerformHttp(
	const FQVHttpRequest& Request, const std::string& CertificateFile, const std::atomic<bool>& bStopped);
} // namespace QVStandalone
