// SPDX-License-Identifier: MIT
#include "HandOff/QVMapUpdateCheck.h"

#include "Standalone/Engine/Descriptor.h"
#include "Tests/Support/ScriptedHttp.h"
#include "Tests/Support/ScriptedShell.h"
#include "Tests/Support/ToolkitTest.h"

using namespace QVTest;
using FCheck = FQVMapUpdateCheck;

namespace
{
/** Before any check of this program. */
const FQVUpdateInfo& StoredAtStart()
{
	static const FQVUpdateInfo Stored = FCheck::GetLastResult();
	return Stored;
}

/** The bridge plugin of the project has version 1.4. */
class FUpdateCheck : public FToolkitTest
{
protected:
	FScriptedHttp Http;
	std::vector<std::string> Opened;
	FScriptedShell Shell{Opened};

	FUpdateCheck()
	{
		StoredAtStart();
		Engine.Interfaces.Http = &Http;
		Engine.Interfaces.Shell = &Shell;
		FCheck::SetBaseAddress("https://maps.example");
	}
	~FUpdateCheck() override { FCheck::SetBaseAddress(""); }

	void InstallProject(const std::string& Version) const
	{
		Project.Write("Config/DefaultGame.ini",
			"[/Script/EngineSettings.GeneralProjectSettings]\r\nProjectVersion=" + Version + "\r\n");
	}

	FQVUpdateInfo CheckAgainst(int Code, const std::string& Content)
	{
		FCheck::CheckForUpdate({});
		Http.Answer(Code, Content);
		return FCheck::GetLastResult();
	}
};

std::string Describe(const FQVUpdateInfo& Info)
{
	return QVPrintf("%s|%s|%s|%s|%s|%s", Info.bUpdateAvailable ? "newer" : "not newer",
		Info.bBridgeChanged ? "bridge changed" : "same bridge", Info.PublishedVersion, Info.PublishedToolkit,
		Info.PublishedBridge, Info.DownloadUrl);
}
} // namespace

TEST_F(FUpdateCheck, VersionsCompareByNumbers)
{
	// each is newer than the one behind it
	const std::pair<const char*, const char*> Newer[] = {{"1.0.10", "1.0.9"}, {"2", "1.99.99"}, {"1.2.0.1", "1.2"},
		{"2.x", "1.9"}, {"1.3rc1", "1.2.9"}, {"1..3", "1.2"}, {".1.1.", "1.0"}, {"1. 7", "1.6"}, {"1", "1.-1"},
		{"99999999999.1", "2147483646.2"}, {"0.1", "0.-99999999999"}};
	for (const auto& [A, B] : Newer)
	{
		EXPECT_TRUE(FCheck::IsNewer(A, B)) << A << " " << B;
		EXPECT_FALSE(FCheck::IsNewer(B, A)) << B << " " << A;
	}
	const std::pair<const char*, const char*> Neither[] = {{"1.2", "1.2.0"}, {"1.0.26", "1.0.26.0"}, {"", "1.0"},
		{"...", "1.0"}, {"2.x", "2.0"}, {"x", "0"}, {"1.2beta", "1.2"}, {"", ""}, {"99999999999", "2147483647"}};
	for (const auto& [A, B] : Neither)
	{
		EXPECT_FALSE(FCheck::IsNewer(A, B)) << A << " " << B;
		EXPECT_FALSE(FCheck::IsNewer(B, A)) << B << " " << A;
	}
}

TEST_F(FUpdateCheck, WhatIsPublishedIsComparedWithWhatIsInstalled)
{
	const std::string Whole =
		R"({"version": "1.1.0", "downloadUrl": "https://maps.example/get", "qvmap": "1.1.2", "bridge": "1.5"})";
	const struct
	{
		const char* Installed;
		std::string Content;
		const char* Result;
		const char* Logged;
	} Cases[] = {
		{"1.0.26", Whole, "newer|bridge changed|1.1.0|1.1.2|1.5|https://maps.example/get",
			"installed 1.0.26, published 1.1.0 (update available)"},
		{"1.0.26", "\xEF\xBB\xBF" + Whole, "newer|bridge changed|1.1.0|1.1.2|1.5|https://maps.example/get",
			"installed 1.0.26, published 1.1.0 (update available)"},
		{"1.1.0", Whole, "not newer|bridge changed|1.1.0|1.1.2|1.5|https://maps.example/get",
			"installed 1.1.0, published 1.1.0"},
		{"1.0.26", R"({"version": "1.0.26.0", "bridge": "1.4"})", "not newer|same bridge|1.0.26.0||1.4|",
			"installed 1.0.26, published 1.0.26.0"},
		{"", Whole, "not newer|bridge changed|1.1.0|1.1.2|1.5|https://maps.example/get",
			"installed unknown, published 1.1.0"},
		{"1.0", R"({"version": "2.x"})", "newer|same bridge|2.x|||", "installed 1.0, published 2.x (update available)"},
		{"1.0", R"({"version": 1.5, "bridge": "1.40"})", "newer|bridge changed|1.5||1.40|",
			"installed 1.0, published 1.5 (update available)"},
	};
	for (const auto& Case : Cases)
	{
		SCOPED_TRACE(Case.Content);
		InstallProject(Case.Installed);
		const FQVUpdateInfo Info = CheckAgainst(200, Case.Content);
		EXPECT_EQ(Describe(Info), Case.Result);
		EXPECT_EQ(Logged(), QVPrintf("QVMap: Update check - %s\n", std::string_view(Case.Logged)));
		EXPECT_TRUE(Info.bChecked);
		EXPECT_EQ(Info.ErrorText, "");
		EXPECT_EQ(Info.InstalledVersion, Case.Installed);
		EXPECT_EQ(Info.InstalledToolkit, FCheck::ToolkitVersion);
		EXPECT_EQ(Info.InstalledBridge, "1.4");
	}
	for (const FQVHttpRequest& Sent : Http.Sent)
	{
		EXPECT_EQ(Sent.Url, "https://maps.example/quarvelMapping/version.json");
		EXPECT_EQ(Sent.TimeoutSeconds, 10.0);
		EXPECT_EQ(Sent.MostBytes, 65536);
	}
}

TEST_F(FUpdateCheck, AbsentOrDifferentlySpelledBridgesDoNotDiffer)
{
	Project.Write("Plugins/QUARVEL/QUARVEL.uplugin", R"({"FileVersion": 3, "VersionName": "1.4-Beta"})");
	EXPECT_FALSE(CheckAgainst(200, R"({"version": "1", "bridge": "1.4-BETA"})").bBridgeChanged);
	EXPECT_TRUE(CheckAgainst(200, R"({"version": "1", "bridge": "1.4-BETA2"})").bBridgeChanged);

	const FTestProject Bare;
	Bare.Remove("Plugins/QUARVEL");
	QVStandalone::FPlugins NoPlugins(Bare.ProjectFile(), Bare.EngineDir());
	Engine.Interfaces.Plugins = &NoPlugins;
	const FQVUpdateInfo Info = CheckAgainst(200, R"({"version": "1", "bridge": "1.5"})");
	EXPECT_EQ(Info.InstalledBridge, "");
	EXPECT_FALSE(Info.bBridgeChanged);
}

TEST_F(FUpdateCheck, EveryFailureIsAResultAndNoComplaint)
{
	const std::string Unread = "Update information could not be read";
	const std::string NotJson = "QVMap: Update check failed - manifest is not valid JSON\n";
	const struct
	{
		int Code;
		const char* Content;
		std::string Error;
		std::string Logged;
	} Cases[] = {
		{0, "", "Could not reach the update server", "QVMap: Update check failed - no response\n"},
		{404, R"({"version": "9"})", "Update server returned 404", "QVMap: Update check failed - HTTP 404\n"},
		{204, "", "Update server returned 204", "QVMap: Update check failed - HTTP 204\n"},
		{200, "", Unread, NotJson},
		{200, "<html>", Unread, NotJson},
		{200, R"(["version"])", Unread, NotJson},
		{200, R"({"version": "9")", Unread, NotJson},
		{200, "\xEF\xBB\xBF\xEF\xBB\xBF{\"version\": \"9\"", Unread, NotJson},
		{200, R"({"bridge": "9", "downloadUrl": "https://x/"})", "Update information carried no version", ""},
		{200, R"({"version": ""})", "Update information carried no version", ""},
	};
	InstallProject("1.0");
	for (const auto& Case : Cases)
	{
		SCOPED_TRACE(Case.Content);
		FCheck::CheckForUpdate({});
		Case.Code == 0 ? Http.Fail() : Http.Answer(Case.Code, Case.Content);
		const FQVUpdateInfo Info = FCheck::GetLastResult();
		EXPECT_EQ(Info.ErrorText, Case.Error);
		EXPECT_EQ(Logged(), Case.Logged);
		EXPECT_TRUE(Info.bChecked);
		EXPECT_FALSE(Info.bUpdateAvailable);
		EXPECT_FALSE(Info.bBridgeChanged);
		EXPECT_EQ(Info.PublishedVersion, "");
		EXPECT_EQ(Info.InstalledVersion, "1.0");
		EXPECT_EQ(Info.InstalledBridge, "1.4");
	}
}

TEST_F(FUpdateCheck, OneRequestServesAllWhoAskMeanwhile)
{
	EXPECT_FALSE(StoredAtStart().bChecked);
	std::string Story;
	const auto Tell = [&Story](const char* Name)
	{ return [&Story, Name](const FQVUpdateInfo& Info) { Story += Name + Info.PublishedVersion + " "; }; };
	InstallProject("1.0");
	FCheck::CheckForUpdate(Tell("a"));
	InstallProject("7.0");
	FCheck::CheckForUpdate(
		[&](const FQVUpdateInfo& Info)
		{
			Tell("b")(Info);
			EXPECT_EQ(Info.InstalledVersion, "1.0") << "as it was when the request was sent";
			EXPECT_EQ(FCheck::GetLastResult().PublishedVersion, "2") << "stored before anybody is called";
			FCheck::CheckForUpdate(Tell("later"));
			FCheck::CheckForUpdate({});
		});
	FCheck::CheckForUpdate({});
	FCheck::CheckForUpdate(Tell("c"));
	EXPECT_EQ(Http.Sent.size(), 1);
	Http.Answer(200, R"({"version": "2"})");
	EXPECT_EQ(Story, "a2 b2 c2 ");
	EXPECT_EQ(Http.Sent.size(), 2);
	EXPECT_EQ(FCheck::GetLastResult().PublishedVersion, "2") << "stays until the next check ends";
	Http.Answer(200, R"({"version": "3"})");
	EXPECT_EQ(Story, "a2 b2 c2 later3 ");
	EXPECT_EQ(FCheck::GetLastResult().InstalledVersion, "7.0");
	EXPECT_EQ(Http.Open(), 0);
}

TEST_F(FUpdateCheck, TheDownloadPageIsThePublishedOneOrTheMakersOwn)
{
	const std::string Default = "https://maps.example/quarvelMapping/download";
	const std::pair<std::string, std::string> Cases[] = {
		{R"({"version": "2", "downloadUrl": "HTTPS://elsewhere.example/a?b"})", "HTTPS://elsewhere.example/a?b"},
		{R"({"version": "2"})", Default},
		{R"({"version": "2", "downloadUrl": "file:///home/me/run.desktop"})", Default},
		{R"({"version": "2", "downloadUrl": "--help"})", Default},
		{"no JSON", Default},
	};
	for (const auto& [Content, Page] : Cases)
	{
		CheckAgainst(200, Content);
		Logged();
		EXPECT_TRUE(FCheck::OpenDownloadPage());
		EXPECT_EQ(Opened.back(), "open " + Page);
		EXPECT_EQ(Logged(), "QVMap: Opening download page " + Page + "\n");
	}
	EXPECT_EQ(FCheck::GetDefaultDownloadPage(), Default);
	Shell.Other = 32;
	EXPECT_FALSE(FCheck::OpenDownloadPage());
}

TEST_F(FUpdateCheck, TheHostComesFromTheProgramElseTheProject)
{
	Project.Write("Config/DefaultGame.ini", "[QVMap]\nUpdateAddress=https://project.example/\n");
	EXPECT_EQ(FCheck::GetBaseAddress(), "https://maps.example");
	FCheck::SetBaseAddress("https://program.example//");
	EXPECT_EQ(FCheck::GetBaseAddress(), "https://program.example");
	FCheck::SetBaseAddress("");
	EXPECT_EQ(FCheck::GetBaseAddress(), "https://project.example");
}

TEST(ToolkitVersion, IsThatOfThePlugin)
{
	const std::optional<FQVJson> Descriptor =
		QVStandalone::LoadDescriptor(std::string(QVMAP_SOURCE_DIR) + "/QVMap.uplugin");
	ASSERT_TRUE(Descriptor);
	EXPECT_EQ(Descriptor->GetString("VersionName"), FCheck::ToolkitVersion);
}
