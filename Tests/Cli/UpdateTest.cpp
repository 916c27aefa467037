// SPDX-License-Identifier: MIT
#include "Tests/Cli/CliTest.h"

#include "Core/QVString.h"
#include "Tests/Support/HttpsServer.h"

#include <csignal>

using namespace QVTest;
namespace fs = std::filesystem;

namespace
{
/** A project of version 1.0.26 with the bridge 1.4, and a maker's web host, whose address is <Host> in what is told. */
class FUpdate : public FScriptedToolsTest
{
protected:
	const std::string Path = "/quarvelMapping/version.json";
	const std::string Newer =
		R"({"version": "1.1.0", "downloadUrl": "https://maps.example/get", "qvmap": "1.1.2", "bridge": "1.5"})";
	FHttpsServer Server;

	FUpdate()
	{
		Environment["QVMAP_UPDATE_ADDRESS"] = Server.Address();
		Environment["SSL_CERT_FILE"] = Server.AuthorityFile();
		Environment["no_proxy"] = "*";
		InstallProject("1.0.26");
	}

	void InstallProject(const std::string& Version) const
	{
		Project.Write("Config/DefaultGame.ini",
			"[/Script/EngineSettings.GeneralProjectSettings]\nProjectVersion=" + Version + "\n");
	}

	std::string Mask(std::string Text) const override
	{
		return FQVString::ReplaceAll(FScriptedToolsTest::Mask(std::move(Text)), Server.Address(), "<Host>");
	}

	/** Stands in for the desktop's opener: what it is to open is then in the file "opened". */
	void PutOpener(int Code)
	{
		const fs::path Opener = Temp.Path() / "bin/xdg-open";
		Put(Opener, "#!/bin/sh\nprintf '%s' \"$*\" > '" + (Temp.Path() / "opened").string() + "'\nexit " +
						std::to_string(Code) + "\n");
		fs::permissions(Opener, fs::perms::owner_all);
		Environment["PATH"] = Opener.parent_path().string();
	}
};
} // namespace

TEST_F(FUpdate, TellsInstalledAndPublishedVersions)
{
	Server.Serve(Path, Newer);
	const std::string Rows = "                 installed  published\n"
							 "mapping project  1.0.26     1.1.0\n"
							 "QVMap            1.0.26     1.1.2\n"
							 "QUARVEL bridge   1.4        1.5\n"
							 "download page    https://maps.example/get\n"
							 "The bridge differs: with it the base release will need rebuilding.\n";
	const FTree Before = Snapshot(Folder);
	Expect({"update"}, 0, "A newer mapping project is available.\n" + Rows, "");
	Expect({"update", "--format", "json"}, 0,
		"{\n\t\"schema_version\": 1,\n\t\"update_available\": true,\n\t\"bridge_changed\": true,\n"
		"\t\"installed\":\n\t{\n\t\t\"project\": \"1.0.26\",\n\t\t\"qvmap\": \"1.0.26\",\n\t\t\"bridge\": "
		"\"1.4\"\n\t},\n"
		"\t\"published\":\n\t{\n\t\t\"project\": \"1.1.0\",\n\t\t\"qvmap\": \"1.1.2\",\n\t\t\"bridge\": \"1.5\"\n\t},\n"
		"\t\"download_page\": \"https://maps.example/get\"\n}\n",
		"");
	ExpectSameFiles(Before, Snapshot(Folder));

	Server.Serve(Path, "\xEF\xBB\xBF{\"version\": \"1.0.26.0\"}");
	const std::string Known = "                 installed  published\n"
							  "mapping project  1.0.26     1.0.26.0\n"
							  "QVMap            1.0.26     unknown\n"
							  "QUARVEL bridge   1.4        unknown\n"
							  "download page    <Host>/quarvelMapping/download\n";
	Expect({"update"}, 0, "You are on the latest mapping project (1.0.26).\n" + Known, "");

	Project.Remove("Config");
	const std::string Told = Run({"update"}).Out;
	EXPECT_EQ(Told.substr(0, Told.find('\n')),
		"Which mapping project this is cannot be told: Config/DefaultGame.ini has no ProjectVersion.");
}

TEST_F(FUpdate, FailuresAreToldWithTheirCause)
{
	const std::string See = "  the current version is told at <Host>/quarvelMapping/download\n";
	ExpectFailure({"update"}, "error: Update server returned 404\n" + See);
	Server.Serve(Path, std::string(65537, ' '));
	const std::string TooLong = "error: Could not reach the update server\n"
								"  cause: <Host>/quarvelMapping/version.json: the answer is longer than 65,536 bytes\n";
	ExpectFailure({"update"}, TooLong + See);
	Expect({"update", "--format", "json"}, 1,
		"{\n\t\"schema_version\": 1,\n\t\"error\": \"Could not reach the update server\"\n}\n", TooLong + See);

	Environment["SSL_CERT_FILE"] = "";
	const std::size_t Before = Server.Requests().size();
	const FProgramEnd Untrusted = Run({"update"});
	EXPECT_EQ(Untrusted.Code, 1);
	EXPECT_EQ(Untrusted.Err.find("error: Could not reach the update server\n  cause: <Host>/"), 0) << Untrusted.Err;
	EXPECT_NE(Untrusted.Err.find("certificate"), std::string::npos) << Untrusted.Err;
	EXPECT_EQ(Server.Requests().size(), Before);

	Environment["QVMAP_UPDATE_ADDRESS"] = "";
	ExpectFailure({"update"},
		"error: where updates are published is not known\n"
		"  fix: set QVMAP_UPDATE_ADDRESS to https:// and the name of the web host, or UpdateAddress under [QVMap] in "
		"Config/DefaultGame.ini\n");
	Project.Write("Config/DefaultGame.ini", "[QVMap]\nUpdateAddress=http://127.0.0.1:9\n");
	const FProgramEnd Insecure = Run({"update"});
	EXPECT_EQ(Insecure.Code, 1);
	EXPECT_NE(Insecure.Err.find("cause: http://127.0.0.1:9/quarvelMapping/version.json: "), std::string::npos);
}

TEST_F(FUpdate, TheDownloadPageIsOpenedWhenAskedFor)
{
	PutOpener(0);
	Server.Serve(Path, Newer);
	EXPECT_EQ(Run({"update"}).Code, 0);
	EXPECT_FALSE(fs::exists(Temp.Path() / "opened"));
	EXPECT_EQ(Run({"update", "--open"}).Code, 0);
	EXPECT_EQ(Get(Temp.Path() / "opened"), "https://maps.example/get");

	Server.Serve(Path, "no JSON");
	EXPECT_EQ(Run({"update", "--open"}).Code, 1);
	EXPECT_EQ(Mask(Get(Temp.Path() / "opened")), "<Host>/quarvelMapping/download");

	PutOpener(3);
	Server.Serve(Path, Newer);
	const FProgramEnd End = Run({"update", "--open"});
	EXPECT_EQ(End.Code, 1);
	EXPECT_EQ(End.Out.find("A newer mapping project is available.\n"), 0);
	EXPECT_EQ(End.Err.find("error: https://maps.example/get could not be opened\n"), 0) << End.Err;
}

TEST_F(FUpdate, AnInterruptEndsTheWait)
{
	Server.Answer(Path, {"", EAfterAnswer::Wait});
	FProgram Program(Start({"update", "--open"}));
	WaitUntil([this] { return !Server.Requests().empty(); });
	Program.Signal(SIGINT);
	const FProgramEnd End = Finish(Program);
	EXPECT_EQ(End.Code, 130);
	EXPECT_EQ(End.Out, "");
	EXPECT_EQ(End.Err, "error: interrupted\n");
}
