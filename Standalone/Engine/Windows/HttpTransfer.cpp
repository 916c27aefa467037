// SPDX-License-Identifier: MIT
#include "Standalone/Engine/HttpTransfer.h"

#include "Core/QVText.h"
#include "Core/QVUnicode.h"
#include "Standalone/Engine/EngineLog.h"
#include "Standalone/Engine/Interrupt.h"
#include "Standalone/Formats/Windows/Win32.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <winhttp.h>

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
constexpr DWORD MostRedirects = 5;
constexpr DWORD PollMilliseconds = 100;

struct FReason
{
	DWORD Code;
	std::string_view Text;
};

constexpr FReason Reasons[] = {
	{ERROR_WINHTTP_INVALID_URL, "is no web address"},
	{ERROR_WINHTTP_UNRECOGNIZED_SCHEME, "is no https address"},
	{ERROR_WINHTTP_TIMEOUT, "no answer came in time"},
	{ERROR_WINHTTP_NAME_NOT_RESOLVED, "the host is not known"},
	{ERROR_WINHTTP_CANNOT_CONNECT, "the host does not answer"},
	{ERROR_WINHTTP_CONNECTION_ERROR, "the connection was cut"},
	{ERROR_WINHTTP_INVALID_SERVER_RESPONSE, "the answer is not one of a web server"},
	{ERROR_WINHTTP_REDIRECT_FAILED, "the server sent us on too often"},
	{ERROR_WINHTTP_SECURE_FAILURE, "the server's certificate cannot be trusted"},
};

std::string ReasonOf(DWORD Code)
{
	const auto* Found =
		std::find_if(std::begin(Reasons), std::end(Reasons), [Code](const FReason& Each) { return Each.Code == Code; });
	return Found != std::end(Reasons) ? std::string(Found->Text) : WinError(Code).message();
}

/** A handle of the web library. */
class FWebHandle
{
public:
	FWebHandle() = default;
	FWebHandle(const FWebHandle&) = delete;
	FWebHandle& operator=(const FWebHandle&) = delete;
	~FWebHandle() { Close(); }

	bool Take(HINTERNET InHandle)
	{
		Handle = InHandle;
		return Handle != nullptr;
	}
	HINTERNET Get() const { return Handle; }
	void Close()
	{
		if (Handle != nullptr)
		{
			::WinHttpCloseHandle(std::exchange(Handle, nullptr));
		}
	}

private:
	HINTERNET Handle = nullptr;
};

/** One request. The library works on threads of its own and tells of each step, which is waited for here. */
class FTransfer
{
public:
	FTransfer(const FQVHttpRequest& InRequest, const std::atomic<bool>& bInStopped)
		: Request(InRequest)
		, bStopped(bInStopped)
		, Deadline(std::chrono::steady_clock::now() +
				   std::chrono::milliseconds(static_cast<std::int64_t>(Request.TimeoutSeconds * 1000.0)))
		, StepDone(::CreateEventW(nullptr, FALSE, FALSE, nullptr))
		, Closed(::CreateEventW(nullptr, TRUE, FALSE, nullptr))
	{
	}
	FTransfer(const FTransfer&) = delete;
	FTransfer& operator=(const FTransfer&) = delete;
	~FTransfer()
	{
		Exchange.Close();
		if (bWatched)
		{
			::WaitForSingleObject(Closed.Get(), INFINITE); // until then the library may call
		}
	}

	std::optional<FQVHttpResponse> Perform()
	{
		FQVHttpResponse Response;
		if (Open() && Send() && CheckAnswer(Response) && ReadBody())
		{
			Response.Content = FQVUnicode::Repair(Body);
			return Response;
		}
		if (!IsUnwanted())
		{
			LogEngine(EQVLogVerbosity::Warning, "%s: %s", Request.Url, Why);
		}
		return std::nullopt;
	}

private:
	const FQVHttpRequest& Request;
	const std::atomic<bool>& bStopped;
	const std::chrono::steady_clock::time_point Deadline;
	const FWinHandle StepDone;
	const FWinHandle Closed;
	FWebHandle Session;
	FWebHandle Host;
	FWebHandle Exchange;
	bool bWatched = false;
	std::string Body;
	std::string Why;
	char Piece[16 * 1024]; // the library writes into it until the handle is closed
	// written by the library's threads before the event
	std::atomic<DWORD> StepError{0};
	std::atomic<DWORD> StepBytes{0};

	bool IsUnwanted() const { return bStopped.load() || FInterrupt::IsRaised(); }

	bool Fail(std::string Reason)
	{
		Why = std::move(Reason);
		return false;
	}
	bool FailWithLast() { return Fail(ReasonOf(::GetLastError())); }

	static void CALLBACK OnStatus(HINTERNET, DWORD_PTR Context, DWORD Status, void* Info, DWORD Length)
	{
		auto* const Self = reinterpret_cast<FTransfer*>(Context);
		if (Self == nullptr)
		{
			return;
		}
		switch (Status)
		{
		case WINHTTP_CALLBACK_STATUS_HANDLE_CLOSING:
			::SetEvent(Self->Closed.Get());
			return;
		case WINHTTP_CALLBACK_STATUS_REQUEST_ERROR:
			Self->StepError = static_cast<const WINHTTP_ASYNC_RESULT*>(Info)->dwError;
			break;
		case WINHTTP_CALLBACK_STATUS_READ_COMPLETE:
			Self->StepBytes = Length;
			break;
		case WINHTTP_CALLBACK_STATUS_SENDREQUEST_COMPLETE:
		case WINHTTP_CALLBACK_STATUS_HEADERS_AVAILABLE:
			break;
		default:
			return;
		}
		::SetEvent(Self->StepDone.Get());
	}

	/** The step that was begun; false, and why, if it failed or nobody wants it any more. */
	bool Await(bool bBegun)
	{
		if (!bBegun)
		{
			return FailWithLast();
		}
		while (::WaitForSingleObject(StepDone.Get(), PollMilliseconds) == WAIT_TIMEOUT)
		{
			if (IsUnwanted() || std::chrono::steady_clock::now() >= Deadline)
			{
				return Fail(ReasonOf(ERROR_WINHTTP_TIMEOUT));
			}
		}
		return StepError == 0 || Fail(ReasonOf(StepError));
	}

	bool Open()
	{
		const std::wstring Url = ToWide(Request.Url);
		URL_COMPONENTS Parts = {};
		Parts.dwStructSize = sizeof(Parts);
		Parts.dwHostNameLength = Parts.dwUrlPathLength = Parts.dwExtraInfoLength = static_cast<DWORD>(-1);
		if (!::WinHttpCrackUrl(Url.c_str(), 0, 0, &Parts))
		{
			return FailWithLast();
		}
		if (Parts.nScheme != INTERNET_SCHEME_HTTPS)
		{
			return Fail(ReasonOf(ERROR_WINHTTP_UNRECOGNIZED_SCHEME));
		}
		const std::wstring HostName(Parts.lpszHostName, Parts.dwHostNameLength);
		const std::wstring Path(Parts.lpszUrlPath, Parts.dwUrlPathLength + Parts.dwExtraInfoLength);
		const bool bOpened =
			OpenSession() && Host.Take(::WinHttpConnect(Session.Get(), HostName.c_str(), Parts.nPort, 0)) &&
			Exchange.Take(
				::WinHttpOpenRequest(Host.Get(), L"GET", Path.c_str(), nullptr, nullptr, nullptr, WINHTTP_FLAG_SECURE));
		return bOpened ? Watch() : FailWithLast();
	}

	bool OpenSession()
	{
		for (const DWORD Proxy : {WINHTTP_ACCESS_TYPE_AUTOMATIC_PROXY, WINHTTP_ACCESS_TYPE_DEFAULT_PROXY})
		{
			if (Session.Take(::WinHttpOpen(L"QVMap", Proxy, nullptr, nullptr, WINHTTP_FLAG_ASYNC)))
			{
				return true;
			}
		}
		return false;
	}

	/** From https only to https, and not for ever; certificates are checked unless one says otherwise. */
	bool Watch()
	{
		DWORD Policy = WINHTTP_OPTION_REDIRECT_POLICY_DISALLOW_HTTPS_TO_HTTP;
		DWORD Most = MostRedirects;
		auto Context = reinterpret_cast<DWORD_PTR>(this);
		bWatched = ::WinHttpSetOption(Exchange.Get(), WINHTTP_OPTION_CONTEXT_VALUE, &Context, sizeof(Context)) &&
				   ::WinHttpSetStatusCallback(Exchange.Get(), &OnStatus, WINHTTP_CALLBACK_FLAG_ALL_NOTIFICATIONS, 0) !=
					   WINHTTP_INVALID_STATUS_CALLBACK;
		return (bWatched &&
				   ::WinHttpSetOption(Exchange.Get(), WINHTTP_OPTION_REDIRECT_POLICY, &Policy, sizeof(Policy)) &&
				   ::WinHttpSetOption(
					   Exchange.Get(), WINHTTP_OPTION_MAX_HTTP_AUTOMATIC_REDIRECTS, &Most, sizeof(Most))) ||
			   FailWithLast();
	}

	bool Send()
	{
		return Await(::WinHttpSendRequest(
				   Exchange.Get(), nullptr, 0, nullptr, 0, 0, reinterpret_cast<DWORD_PTR>(this))) &&
			   Await(::WinHttpReceiveResponse(Exchange.Get(), nullptr));
	}

	/** A number among the headers; nothing if it is not there. */
	std::optional<DWORD> Number(DWORD Header) const
	{
		DWORD Value = 0;
		DWORD Bytes = sizeof(Value);
		const bool bThere = ::WinHttpQueryHeaders(Exchange.Get(), Header | WINHTTP_QUERY_FLAG_NUMBER,
			WINHTTP_HEADER_NAME_BY_INDEX, &Value, &Bytes, WINHTTP_NO_HEADER_INDEX);
		return bThere ? std::optional<DWORD>(Value) : std::nullopt;
	}

	bool CheckAnswer(FQVHttpResponse& Response)
	{
		const DWORD Code = Number(WINHTTP_QUERY_STATUS_CODE).value_or(0);
		Response.Code = static_cast<int>(Code);
		DWORD Bytes = 0;
		const bool bSentOn = !::WinHttpQueryHeaders(Exchange.Get(), WINHTTP_QUERY_LOCATION,
								 WINHTTP_HEADER_NAME_BY_INDEX, nullptr, &Bytes, WINHTTP_NO_HEADER_INDEX) &&
							 ::GetLastError() == ERROR_INSUFFICIENT_BUFFER;
		return !(bSentOn && Code / 100 == 3) || Fail("the server sent us on to what is no https address");
	}

	bool ReadBody()
	{
		do
		{
			if (!Await(::WinHttpReadData(Exchange.Get(), Piece, sizeof(Piece), nullptr)))
			{
				return false;
			}
			Body.append(Piece, StepBytes);
			if (Body.size() > Request.MostBytes)
			{
				return Fail(QVPrintf("the answer is longer than %s bytes",
					FQVText::AsNumber(static_cast<std::int64_t>(Request.MostBytes))));
			}
		} while (StepBytes > 0);
		const DWORD Expected = Number(WINHTTP_QUERY_CONTENT_LENGTH).value_or(static_cast<DWORD>(Body.size()));
		return Expected == Body.size() || Fail(ReasonOf(ERROR_WINHTTP_CONNECTION_ERROR));
	}
};
} // namespace

void PrepareHttp() {}

std::optional<FQVHttpResponse> PerformHttp(
	const FQVHttpRequest& Request, const std::string& /*CertificateFile*/, const std::atomic<bool>& bStopped)
{
	return FTransfer(Request, bStopped).Perform();
}
} // namespace QVStandalone
