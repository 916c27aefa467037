// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Http.h"

#include "Standalone/Engine/Interrupt.h"
#include "Standalone/Engine/StandaloneEngine.h"
#include "Tests/Support/HttpsServer.h"
#include "Tests/Support/RecordingLog.h"
#include "Tests/Support/ScopedEnvironment.h"
#include "Tests/Support/TestProject.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <optional>

using namespace QVTest;
using namespace QVStandalone;

namespace
{
class FHttpTest : public testing::Test
{
protected:
	void TearDown() override { FInterrupt::Reset(); }

	const FScopedEnvironment NoProxy{"no_proxy", "*"};
	FRecordingLog Recording;
	FGameThread GameThread;

	/** "200 body", or "none". */
	static std::string Describe(const FQVHttpResponse* Response)
	{
		return Response != nullptr ? std::to_string(Response->Code) + " " + Response->Content : "none";
	}

	std::string Ask(FHttp& Http, const FQVHttpRequest& Request)
	{
		std::string Story;
		Http.ProcessRequest(Request, [&Story](const FQVHttpResponse* Response) { Story = Describe(Response); });
		EXPECT_EQ(Story, "") << "it came before the call was over";
		GameThread.RunUntil([&Story] { return !Story.empty(); });
		return Story;
	}

	std::string Ask(const FHttpsServer& Server, const std::string& Path, double TimeoutSeconds = 30.0)
	{
		FHttp Http(GameThread, Server.AuthorityFile());
		return Ask(Http, {Server.Address() + Path, TimeoutSeconds, 65536});
	}

	/** What was logged, which must be one warning of the engine that begins with the address. */
	std::string Reason(const std::string& Url)
	{
		const std::vector<FLogLine> Lines = Recording.Take();
		if (Lines.size() != 1 || Lines[0].Verbosity != EQVLogVerbosity::Warning ||
			Lines[0].Category != "LogStandalone" || !Lines[0].Text.starts_with(Url + ": "))
		{
			return "not one warning about " + Url;
		}
		return Lines[0].Text.substr(Url.size() + 2);
	}
};

std::string Redirect(const std::string& To)
{
	return "HTTP/1.1 302 Found\r\nConnection: close\r\nContent-Length: 0\r\nLocation: " + To + "\r\n\r\n";
}

/** Of a body that ends where the connection ends. */
std::string Unmeasured(const std::string& Body)
{
	return "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n" + Body;
}
} // namespace

TEST_F(FHttpTest, AnswersComeWholeOrNotAtAll)
{
	const std::string Limit(65536, 'x');
	const std::string TooLong = "the answer is longer than 65,536 bytes";
	const struct
	{
		std::string Path;
		FServerAnswer Given;
		std::string Story;
		std::string Reason;
	} Cases[] = {
		{"/measured", {FHttpsServer::Ok("Пример")}, "200 Пример", ""},
		{"/empty", {FHttpsServer::Ok("")}, "200 ", ""},
		{"/unmeasured", {Unmeasured("to the end")}, "200 to the end", ""},
		{"/chunked",
			{"HTTP/1.1 200 OK\r\nConnection: close\r\nTransfer-Encoding: "
			 "chunked\r\n\r\n3\r\nabc\r\n2\r\nde\r\n0\r\n\r\n"},
			"200 abcde", ""},
		{"/badletter", {FHttpsServer::Ok("a\xFFz")}, "200 a\xEF\xBF\xBDz", ""},
		{"/missing", {"HTTP/1.1 404 Not Found\r\nConnection: close\r\n\r\ngone"}, "404 gone", ""},
		{"/sent-on", {Redirect("/measured")}, "200 Пример", ""},
		{"/limit", {FHttpsServer::Ok(Limit)}, "200 " + Limit, ""},
		{"/beyond", {FHttpsServer::Ok(Limit + "y")}, "none", TooLong},
		{"/far-beyond", {Unmeasured(std::string(5'000'000, 'x'))}, "none", TooLong},
		{"/to-http", {Redirect("http://127.0.0.1:9/")}, "none", "*"},
		{"/to-file", {Redirect("file:///etc/hostname")}, "none", "*"},
		{"/in-circles", {Redirect("/in-circles")}, "none", "*"},
		{"/cut-at-once", {"", EAfterAnswer::Cut}, "none", "*"},
		{"/cut-in-head", {"HTTP/1.1 200 O", EAfterAnswer::Cut}, "none", "*"},
		{"/cut-in-body", {FHttpsServer::Ok("whole").substr(0, 60), EAfterAnswer::Cut}, "none", "*"},
		{"/short", {FHttpsServer::Ok("whole").substr(0, 60), EAfterAnswer::Close}, "none", "*"},
		{"/no-http", {"220 mail.example.org ESMTP\r\n"}, "none", "*"},
	};
	FHttpsServer Server;
	for (const auto& Case : Cases)
	{
		Server.Answer(Case.Path, Case.Given);
	}
	for (const auto& Case : Cases)
	{
		SCOPED_TRACE(Case.Path);
		EXPECT_EQ(Ask(Server, Case.Path), Case.Story);
		if (Case.Reason.empty())
		{
			EXPECT_TRUE(Recording.Take().empty());
			continue;
		}
		const std::string Told = Reason(Server.Address() + Case.Path);
		EXPECT_TRUE(Case.Reason == "*" ? !Told.empty() : Told == Case.Reason) << Told;
	}
	// what stands behind the sixth address is not asked
	const std::vector<std::string> Asked = Server.Requests();
	EXPECT_EQ(std::count(Asked.begin(), Asked.end(), "/in-circles"), 6);
}

TEST_F(FHttpTest, ASlowServerIsGivenUp)
{
	FHttpsServer Server;
	Server.Answer("/silent", {"", EAfterAnswer::Wait});
	Server.Answer("/stuck", {FHttpsServer::Ok("whole").substr(0, 60), EAfterAnswer::Wait});
	for (const std::string Path : {"/silent", "/stuck"})
	{
		EXPECT_EQ(Ask(Server, Path, 0.5), "none");
		EXPECT_NE(Reason(Server.Address() + Path), "");
	}
}

TEST_F(FHttpTest, AServerThatCannotBeTrustedHearsNothing)
{
	for (const EShownCertificate Shown :
		{EShownCertificate::UnknownAuthority, EShownCertificate::OtherHost, EShownCertificate::Expired})
	{
		SCOPED_TRACE(static_cast<int>(Shown));
		FHttpsServer Server(Shown);
		Server.Serve("/", "secret");
		EXPECT_EQ(Ask(Server, "/"), "none");
		EXPECT_NE(Reason(Server.Address() + "/").find("certificate"), std::string::npos);
		EXPECT_TRUE(Server.Requests().empty());
	}
	FHttpsServer Server;
	Server.Serve("/", "secret");
	FHttp Http(GameThread, "");
	EXPECT_EQ(Ask(Http, {Server.Address() + "/"}), "none") << "only the test's own file knows the authority";
	EXPECT_TRUE(Server.Requests().empty());
}

TEST_F(FHttpTest, OnlyHttpsIsAsked)
{
	FHttpsServer Server;
	const std::string Host = Server.Address().substr(std::string("https://").size());
	FHttp Http(GameThread, Server.AuthorityFile());
	const std::string Urls[] = {
		"http://" + Host + "/", "file://" + Server.AuthorityFile(), "", "/path", "https://127.0.0.1:1/"};
	for (const std::string& Url : Urls)
	{
		Recording.Take();
		EXPECT_EQ(Ask(Http, {Url}), "none");
		EXPECT_NE(Reason(Url), "");
	}
	EXPECT_EQ(Ask(Http, {Host + "/"}), "404 nothing here") << "without a scheme it is https";
	EXPECT_EQ(Server.Requests().size(), 1);
}

TEST_F(FHttpTest, AnInterruptAndTheEndOfTheEngineEndIt)
{
	FHttpsServer Server;
	Server.Answer("/", {"", EAfterAnswer::Wait});
	const auto AskedFor = [&Server](std::size_t Count)
	{ return [&Server, Count] { return Server.Requests().size() == Count; }; };
	std::string Story;
	const auto Tell = [&Story](const FQVHttpResponse* Response) { Story += Describe(Response) + ";"; };
	FHttp Http(GameThread, Server.AuthorityFile());

	Http.ProcessRequest({Server.Address() + "/", 600.0}, Tell);
	GameThread.RunUntil(AskedFor(1));
	FInterrupt::Raise();
	GameThread.RunUntil([&Story] { return !Story.empty(); });
	FInterrupt::Reset();

	Http.ProcessRequest({Server.Address() + "/", 600.0}, Tell);
	GameThread.RunUntil(AskedFor(2));
	Http.Stop();
	EXPECT_EQ(Story, "none;none;");
	Http.ProcessRequest({Server.Address() + "/"}, Tell);
	Http.Stop();
	EXPECT_EQ(Story, "none;none;");
	EXPECT_TRUE(Recording.Take().empty()) << "that it was stopped is no failure";

	const FTestProject Project;
	{
		FStandaloneEngine Engine(Project.ProjectFile(), Project.EngineDir());
		Engine.Interfaces.Http->ProcessRequest({Server.Address() + "/"},
			[&Story](const FQVHttpResponse*) { Story = FQVEngine::Get().Project->ProjectDir(); });
	}
	EXPECT_EQ(Story, Project.ProjectDir()) << "whoever waits finds the engine whole";
}
