// SPDX-License-Identifier: MIT
#include "Export/QVMapToolchainStamp.h"

#include "Tests/Support/ToolkitTest.h"

using namespace QVTest;
using FToolchainStampTest = FToolkitTest;

namespace
{
constexpr std::string_view StampFile = "Releases/1.0/QVMapToolchain.json";
}

TEST_F(FToolchainStampTest, IsWrittenByteForByte)
{
	Project.AddBaseRelease();
	Project.Write("Plugins/Tools/QVMap/QVMap.uplugin", R"({"VersionName": "1.0.26"})");
	std::string Error;
	EXPECT_TRUE(FQVMapToolchainStamp::WriteToolchainStamp(Error));
	EXPECT_EQ(Project.Read(StampFile),
		"{\r\n\t\"engine\": \"5.4.4\",\r\n\t\"builtUtc\": \"2026-11-21T17:05:09.123Z\",\r\n\t\"baseReleaseVersion\": "
		"\"1.0\",\r\n\t\"contentPlugins\":\r\n\t{\r\n\t\t\"QUARVEL\": \"1.4\"\r\n\t},\r\n\t\"toolPlugins\":\r\n\t{\r\n"
		"\t\t\"QVMap\": \"1.0.26\"\r\n\t}\r\n}");
	EXPECT_EQ(Error, "");
	EXPECT_EQ(Logged(), "QVMap: Wrote toolchain stamp: <Project>/Releases/1.0/QVMapToolchain.json\n");
	EXPECT_TRUE(FQVMapToolchainStamp::CheckToolchain().bUpToDate);

	Project.Remove("Releases");
	EXPECT_FALSE(FQVMapToolchainStamp::WriteToolchainStamp(Error));
	EXPECT_EQ(Project.Mask(Error), "Failed to write toolchain stamp: <Project>/Releases/1.0/QVMapToolchain.json");
}

TEST(ToolchainStamp, IsComparedWithWhatIsInstalled)
{
	const std::string Unreadable = "The base release's toolchain record could not be read.";
	const std::string NoContent = "The base release's toolchain record lists no content plugins.";
	const struct
	{
		const char* Stamp;	   // null: there is none
		const char* Installed; // null: no such plugin
		const char* Flags;	   // up to date, record unusable
		std::string Reason;
	} Cases[] = {
		{nullptr, "1.4", "-U", "The base release carries no record of which plugin versions it was built against."},
		{"", "1.4", "-U", Unreadable},
		{"[\"contentPlugins\"]", "1.4", "-U", Unreadable},
		{"{\"contentPlugins\": ", "1.4", "-U", Unreadable},
		{"{}", "1.4", "-U", NoContent},
		{R"({"contentPlugins": "QUARVEL"})", "1.4", "-U", NoContent},
		{R"({"contentPlugins": {"QUARVEL": "1.4b"}})", "1.4B", "u-", ""},
		{R"({"contentPlugins": {"QUARVEL": "1.4", "Gone": "9"}, "toolPlugins": {"QVMap": "0.1"}, "engine": "4.27"})",
			"1.4", "u-", ""},
		{R"({"contentPlugins": {"QUARVEL": "1.3"}})", "1.4", "--", "QUARVEL: base release 1.3, installed 1.4"},
		{R"({"contentPlugins": {}})", "1.4", "--", "QUARVEL: base release (not recorded), installed 1.4"},
		{R"({"contentPlugins": {"QUARVEL": "1.3"}})", nullptr, "--",
			"QUARVEL: base release 1.3, installed (not installed)"},
		{R"({"contentPlugins": {"QUARVEL": ""}})", nullptr, "u-", ""},
	};
	for (const auto& Case : Cases)
	{
		FToolkit Toolkit; // plugins are remembered, so each case has a project of its own
		Toolkit.Project.AddBaseRelease();
		Toolkit.Project.Remove(StampFile);
		Toolkit.Project.Remove("Plugins/QUARVEL");
		if (Case.Stamp != nullptr)
		{
			Toolkit.Project.Write(StampFile, Case.Stamp);
		}
		if (Case.Installed != nullptr)
		{
			Toolkit.Project.Write(
				"Plugins/QUARVEL/QUARVEL.uplugin", QVPrintf("{\"VersionName\": \"%s\"}", Case.Installed));
		}
		const FQVToolchainCheck Check = FQVMapToolchainStamp::CheckToolchain();
		const std::string Flags{Check.bUpToDate ? 'u' : '-', Check.bRecordUnusable ? 'U' : '-'};
		EXPECT_EQ(Flags, Case.Flags) << (Case.Stamp != nullptr ? Case.Stamp : "none");
		EXPECT_EQ(Check.Reason, Case.Reason);
		EXPECT_FALSE(Check.bNoBaseRelease);
	}
}

TEST_F(FToolchainStampTest, ComparesNothingWithoutABaseRelease)
{
	const FQVToolchainCheck Check = FQVMapToolchainStamp::CheckToolchain();
	EXPECT_TRUE(Check.bNoBaseRelease);
	EXPECT_FALSE(Check.bUpToDate || Check.bRecordUnusable);
	EXPECT_EQ(Check.Reason, "");
}
