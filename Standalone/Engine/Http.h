// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVHttp.h"
#include "Standalone/Engine/GameThread.h"

#include <atomic>

namespace QVStandalone
{
/**
 * Requests by libcurl, on Windows by the system, each on a thread of its own. An interrupt ends them within about a
 * second, without an answer. Made and used on the game thread.
 */
class FHttp final : public IQVHttp
{
public:
	/** A file of certificates to be trusted in place of the system's may be named by SSL_CERT_FILE; not on Windows. */
	explicit FHttp(FGameThread& InGameThread);
	FHttp(FGameThread& InGameThread, std::string InCertificateFile);

	void ProcessRequest(const FQVHttpRequest& Request, FOnComplete OnComplete) override;

	/** Ends what is under way, without answers, and waits for it. What is asked from then on never completes. */
	void Stop();

private:
	FGameThread& GameThread;
	const std::string CertificateFile;
	std::atomic<bool> bStopped{false};
	std::size_t InFlight = 0; // touched by the game thread only
};
} // namespace QVStandalone
