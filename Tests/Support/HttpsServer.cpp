// SPDX-License-Identifier: MIT
#include "Tests/Support/HttpsServer.h"

#include <arpa/inet.h>
#include <csignal>
#include <fstream>
#include <poll.h>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

namespace QVTest
{
namespace
{
void Require(bool bSuccess, const char* What)
{
	if (!bSuccess)
	{
		throw std::runtime_error(std::string("the test's server: ") + What);
	}
}

/** Up to the blank line; empty if the client went before it. */
std::string ReadHead(SSL* Session)
{
	std::string Head;
	char Bytes[4096];
	while (Head.find("\r\n\r\n") == std::string::npos)
	{
		const int Count = SSL_read(Session, Bytes, sizeof(Bytes));
		if (Count <= 0)
		{
			return {};
		}
		Head.append(Bytes, static_cast<std::size_t>(Count));
	}
	return Head;
}

/** "/a" of "GET /a HTTP/1.1". */
std::string PathOf(const std::string& Head)
{
	const std::size_t Begin = Head.find(' ') + 1;
	return Head.substr(Begin, Head.find(' ', Begin) - Begin);
}
} // namespace

FHttpsServer::FHttpsServer(EShownCertificate Shown)
{
	std::signal(SIGPIPE, SIG_IGN); // a client that goes in the middle of an answer
	ShowCertificate(Shown);
	Listen();
	Require(::pipe(Wake) == 0, "no pipe");
	Thread = std::thread([this] { Run(); });
}

FHttpsServer::~FHttpsServer()
{
	::close(Wake[1]);
	Thread.join();
	::close(Wake[0]);
	::close(Listener);
}

void FHttpsServer::ShowCertificate(EShownCertificate Shown)
{
	const FTestCertificate Trusted = MakeAuthority("Trusted");
	const FTestCertificate Unknown = MakeAuthority("Unknown");
	std::ofstream(AuthorityFile()) << Trusted.ToPem();
	const FTestCertificate Own = MakeCertificate(Shown == EShownCertificate::UnknownAuthority ? Unknown : Trusted,
		Shown == EShownCertificate::OtherHost ? "DNS:example.org" : "IP:127.0.0.1",
		Shown == EShownCertificate::Expired ? -SecondsPerDay : SecondsPerDay);
	Context.reset(SSL_CTX_new(TLS_server_method()), &SSL_CTX_free);
	Require(Context != nullptr && SSL_CTX_use_certificate(Context.get(), Own.Certificate.get()) == 1 &&
				SSL_CTX_use_PrivateKey(Context.get(), Own.Key.get()) == 1,
		"its certificate was refused");
}

void FHttpsServer::Listen()
{
	sockaddr_in Place = {};
	Place.sin_family = AF_INET;
	Place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
	socklen_t Size = sizeof(Place);
	auto* const Any = reinterpret_cast<sockaddr*>(&Place);
	Listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
	Require(Listener >= 0 && ::bind(Listener, Any, Size) == 0 && ::listen(Listener, 16) == 0 &&
				::getsockname(Listener, Any, &Size) == 0,
		"no port on the loopback interface");
	Port = ntohs(Place.sin_port);
}

bool FHttpsServer::WaitFor(int Descriptor) const
{
	pollfd Both[] = {{Descriptor, POLLIN, 0}, {Wake[0], POLLIN, 0}};
	while (::poll(Both, 2, -1) < 0)
	{
	}
	return Both[1].revents == 0;
}

void FHttpsServer::Run()
{
	while (WaitFor(Listener))
	{
		const int Connection = ::accept4(Listener, nullptr, nullptr, SOCK_CLOEXEC);
		const timeval MostSilence = {10, 0};
		::setsockopt(Connection, SOL_SOCKET, SO_RCVTIMEO, &MostSilence, sizeof(MostSilence));
		Talk(Connection);
		::close(Connection);
	}
}

void FHttpsServer::Talk(int Connection)
{
	const std::unique_ptr<SSL, decltype(&SSL_free)> Session(SSL_new(Context.get()), &SSL_free);
	SSL_set_fd(Session.get(), Connection);
	if (SSL_accept(Session.get()) != 1)
	{
		return;
	}
	const std::string Head = ReadHead(Session.get());
	if (Head.empty())
	{
		return;
	}
	const FServerAnswer Given = AnswerTo(PathOf(Head));
	if (!Given.Bytes.empty())
	{
		SSL_write(Session.get(), Given.Bytes.data(), static_cast<int>(Given.Bytes.size()));
	}
	if (Given.After == EAfterAnswer::Wait)
	{
		WaitFor(Connection);
	}
	if (Given.After == EAfterAnswer::Close)
	{
		SSL_shutdown(Session.get());
	}
}

FServerAnswer FHttpsServer::AnswerTo(const std::string& Path)
{
	const std::lock_guard Guard(Lock);
	Asked.push_back(Path);
	const auto Found = Answers.find(Path);
	return Found != Answers.end() ? Found->second
								  : FServerAnswer{"HTTP/1.1 404 Not Found\r\nConnection: close\r\n\r\nnothing here"};
}

void FHttpsServer::Answer(const std::string& Path, const FServerAnswer& Given)
{
	const std::lock_guard Guard(Lock);
	Answers[Path] = Given;
}

std::string FHttpsServer::Ok(const std::string& Body)
{
	return "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: " + std::to_string(Body.size()) + "\r\n\r\n" + Body;
}

std::vector<std::string> FHttpsServer::Requests() const
{
	const std::lock_guard Guard(Lock);
	return Asked;
}
} // namespace QVTest
