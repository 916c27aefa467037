// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Http.h"

#include "Core/QVCheck.h"
#include "Standalone/Engine/Environment.h"
#include "Standalone/Engine/HttpTransfer.h"

#include <optional>

namespace QVStandalone
{
FHttp::FHttp(FGameThread& InGameThread)
	: FHttp(InGameThread, EnvironmentValue("SSL_CERT_FILE"))
{
}

FHttp::FHttp(FGameThread& InGameThread, std::string InCertificateFile)
	: GameThread(InGameThread)
	, CertificateFile(std::move(InCertificateFile))
{
}

void FHttp::ProcessRequest(const FQVHttpRequest& Request, FOnComplete OnComplete)
{
	PrepareHttp();
	QV_CHECK(GameThread.IsInGameThread());
	if (bStopped.load())
	{
		return;
	}
	++InFlight;
	GameThread.RunOnDedicatedThread(
		[this, Request, OnComplete = std::move(OnComplete)]
		{
			const std::optional<FQVHttpResponse> Response = PerformHttp(Request, CertificateFile, bStopped);
			GameThread.RunOnGameThreadAndWait(
				[&]
				{
					--InFlight;
					OnComplete(Response ? &*Response : nullptr);
				});
		});
}

void FHttp::Stop()
{
	bStopped.store(true);
	GameThread.RunUntil([this] { return InFlight == 0; });
}
} // namespace QVStandalone
