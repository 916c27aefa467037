// SPDX-License-Identifier: MIT
#include "Standalone/Engine/HttpTransfer.h"

#include "Core/QVCheck.h"
#include "Core/QVText.h"
#include "Core/QVUnicode.h"
#include "Standalone/Engine/EngineLog.h"
#include "Standalone/Engine/Interrupt.h"

#include <curl/curl.h>
#include <memory>

namespace QVStandalone
{
namespace
{
constexpr long MostRedirects = 5;

/** One request, on the thread that performs it. */
class FTransfer
{
public:
	FTransfer(const FQVHttpRequest& InRequest, const std::string& CertificateFile, const std::atomic<bool>& bInStopped)
		: Request(InRequest)
		, bStopped(bInStopped)
	{
		Set(CURLOPT_URL, Request.Url.c_str());
		Set(CURLOPT_USERAGENT, "QVMap");
		Set(CURLOPT_DEFAULT_PROTOCOL, "https");
		Set(CURLOPT_PROTOCOLS_STR, "https");
		Set(CURLOPT_REDIR_PROTOCOLS_STR, "https");
		Set(CURLOPT_FOLLOWLOCATION, 1L);
		Set(CURLOPT_MAXREDIRS, MostRedirects);
		Set(CURLOPT_SSL_VERIFYPEER, 1L);
		Set(CURLOPT_SSL_VERIFYHOST, 2L);
		if (!CertificateFile.empty())
		{
			Set(CURLOPT_CAINFO, CertificateFile.c_str());
			Set(CURLOPT_CAPATH, static_cast<const char*>(nullptr));
		}
		Set(CURLOPT_TIMEOUT_MS, static_cast<long>(Request.TimeoutSeconds * 1000.0));
		Set(CURLOPT_NOSIGNAL, 1L);
		Set(CURLOPT_QUICK_EXIT, 1L); // a name server that never answers is not waited for
		Set(CURLOPT_ERRORBUFFER, Reason);
		Set(CURLOPT_WRITEFUNCTION, &OnBody);
		Set(CURLOPT_WRITEDATA, this);
		Set(CURLOPT_NOPROGRESS, 0L);
		Set(CURLOPT_XFERINFOFUNCTION, &OnProgress);
		Set(CURLOPT_XFERINFODATA, this);
	}

	std::optional<FQVHttpResponse> Perform()
	{
		const CURLcode Outcome = curl_easy_perform(Handle.get());
		if (Outcome != CURLE_OK)
		{
			Explain(Outcome);
			return std::nullopt;
		}
		long Code = 0;
		curl_easy_getinfo(Handle.get(), CURLINFO_RESPONSE_CODE, &Code);
		return FQVHttpResponse{static_cast<int>(Code), FQVUnicode::Repair(Body)};
	}

private:
	struct FCleanup
	{
		void operator()(CURL* Each) const { curl_easy_cleanup(Each); }
	};

	const FQVHttpRequest& Request;
	const std::atomic<bool>& bStopped;
	const std::unique_ptr<CURL, FCleanup> Handle{curl_easy_init()};
	char Reason[CURL_ERROR_SIZE] = {};
	std::string Body;
	bool bTooLong = false;

	template<class T>
	void Set(CURLoption Option, T Value)
	{
		// without one of them the request would be another one, and perhaps an unsafe one
		QV_CHECK(curl_easy_setopt(Handle.get(), Option, Value) == CURLE_OK);
	}

	bool IsUnwanted() const { return bStopped.load() || FInterrupt::IsRaised(); }

	static std::size_t OnBody(char* Bytes, std::size_t One, std::size_t Count, void* Self)
	{
		FTransfer& Transfer = *static_cast<FTransfer*>(Self);
		Transfer.bTooLong = Transfer.Body.size() + One * Count > Transfer.Request.MostBytes;
		if (Transfer.bTooLong)
		{
			return CURL_WRITEFUNC_ERROR;
		}
		Transfer.Body.append(Bytes, One * Count);
		return One * Count;
	}

	static int OnProgress(void* Self, curl_off_t, curl_off_t, curl_off_t, curl_off_t)
	{
		return static_cast<const FTransfer*>(Self)->IsUnwanted() ? 1 : 0;
	}

	void Explain(CURLcode Outcome) const
	{
		if (IsUnwanted())
		{
			return;
		}
		const std::string Why = bTooLong ? QVPrintf("the answer is longer than %s bytes",
											   FQVText::AsNumber(std::int64_t(Request.MostBytes)))
										 : std::string(Reason[0] != '\0' ? Reason : curl_easy_strerror(Outcome));
		LogEngine(EQVLogVerbosity::Warning, "%s: %s", Request.Url, Why);
	}
};
} // namespace

void PrepareHttp()
{
	static const CURLcode Ready = curl_global_init(CURL_GLOBAL_DEFAULT);
	QV_CHECK(Ready == CURLE_OK);
}

std::optional<FQVHttpResponse> PerformHttp(
	const FQVHttpRequest& Request, const std::string& CertificateFile, const std::atomic<bool>& bStopped)
{
	return FTransfer(Request, CertificateFile, bStopped).Perform();
}
} // namespace QVStandalone
