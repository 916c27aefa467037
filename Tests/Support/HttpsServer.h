// SPDX-License-Identifier: MIT
#pragma once

#include "Tests/Support/TempFolder.h"
#include "Tests/Support/TestCertificate.h"

#include <map>
#include <mutex>
#include <openssl/ssl.h>
#include <string>
#include <thread>
#include <vector>

namespace QVTest
{
enum class EShownCertificate
{
	Good,
	UnknownAuthority,
	OtherHost,
	Expired
};

enum class EAfterAnswer
{
	Close,
	/** The connection goes without a goodbye. */
	Cut,
	/** Silence, until the client goes. */
	Wait
};

struct FServerAnswer
{
	/** Everything that is sent, the head too. */
	std::string Bytes;
	EAfterAnswer After = EAfterAnswer::Close;
};

/**
 * A web server on the loopback interface, on a thread of its own: one connection and one request at a time. Its
 * certificate is made for it. Any path that it was told no answer for gives 404.
 */
class FHttpsServer
{
public:
	explicit FHttpsServer(EShownCertificate Shown = EShownCertificate::Good);
	FHttpsServer(const FHttpsServer&) = delete;
	FHttpsServer& operator=(const FHttpsServer&) = delete;
	~FHttpsServer();

	/** `https://127.0.0.1:<port>`. */
	std::string Address() const { return "https://127.0.0.1:" + std::to_string(Port); }
	/** The certificate of the authority that clients are to trust. */
	std::string AuthorityFile() const { return (Folder.Path() / "authority.pem").string(); }

	void Answer(const std::string& Path, const FServerAnswer& Given);
	/** 200 with this body, and its length said. */
	void Serve(const std::string& Path, const std::string& Body) { Answer(Path, {Ok(Body)}); }
	static std::string Ok(const std::string& Body);
	/** The paths that were asked for. */
	std::vector<std::string> Requests() const;

private:
	FTempFolder Folder;
	std::shared_ptr<SSL_CTX> Context;
	int Listener = -1;
	int Port = 0;
	int Wake[2] = {-1, -1}; // a pipe; what is written into its second end stops the thread
	mutable std::mutex Lock;
	std::map<std::string, FServerAnswer> Answers;
	std::vector<std::string> Asked;
	std::thread Thread;

	void ShowCertificate(EShownCertificate Shown);
	void Listen();
	/** False when the server is to stop first. */
	bool WaitFor(int Descriptor) const;
	void Run();
	void Talk(int Connection);
	FServerAnswer AnswerTo(const std::string& Path);
};
} // namespace QVTest
