// SPDX-License-Identifier: MIT
#pragma once

#include "Tests/Cli/Program.h"
#include "Tests/Formats/PakTestSupport.h"
#include "Tests/Support/TempFolder.h"
#include "Tests/Support/TestProject.h"

#include <functional>
#include <gtest/gtest.h>

namespace QVTest
{
using FWords = std::vector<std::string>;
/** Files by their path below a folder, with their bytes. */
using FTree = std::map<std::string, std::string>;

/**
 * Runs qvmap in a folder of the test's own. In its output the test's folder is <T>, that of the built programs <Bin>,
 * and what differs from run to run has a name too: <Id> in a pak's name, <Time> in a log's, <Date>, <Hash>.
 */
class FCliTest : public testing::Test
{
protected:
	FTempFolder Temp;
	/** Where it is started. */
	std::filesystem::path Folder = Temp.Path();
	std::map<std::string, std::string> Environment = {
		{"HOME", (Temp.Path() / "home").string()}, {"TERM", "xterm"}, {"LC_ALL", "C"}};
	std::optional<std::uint64_t> MostFileBytes;

	FProgramStart Start(const FWords& Words) const;
	/** Whatever happens, no process may be left behind. */
	FProgramEnd Run(const FWords& Words) const { return Finish(Start(Words)); }
	FProgramEnd Finish(const FProgramStart& Start) const;
	FProgramEnd Finish(FProgram& Program) const;
	FProgramStart StartOnTerminal(const FWords& Words, unsigned Columns = 120) const;
	/** With plain line ends. */
	FProgramEnd FinishOnTerminal(FProgram& Program) const;
	/** The exit code and all output. */
	void Expect(const FWords& Words, int Code, std::string_view Out, std::string_view Err) const;
	/** Exit code 1, and on standard error exactly this beside the lines of progress. */
	void ExpectFailure(const FWords& Words, std::string_view Err) const;

	/** Goes into a new sample project. */
	void EnterSample();
	void BuildRelease() const;
	/** The paks in the project's output folder. */
	std::vector<std::filesystem::path> Paks() const;

	virtual std::string Mask(std::string Text) const;
	void Put(const std::filesystem::path& Path, std::string_view Text) const;
	std::string Get(const std::filesystem::path& Path) const;
};

FTree ReadFiles(const std::filesystem::path& Folder);
/** The text without the lines of progress. */
std::string WithoutProgress(std::string_view Text);

/** The files of a project, except those that any run may write: logs, work files, what was cooked. */
FTree Snapshot(const std::filesystem::path& Project);
/** Until it is so, for a minute at most. */
void WaitUntil(const std::function<bool()>& IsSo);

/** Names first: a difference there is told in full. */
void ExpectSameFiles(const FTree& Was, const FTree& Is);

/** A project whose engine's tools play a script. */
class FScriptedToolsTest : public FCliTest
{
protected:
	FTestProject Project;
	const std::string Cooked = Project.At("Saved/Cooked/Windows/MapWork/Plugins/Cave/Content/");
	/** The cook's part for the mod Cave: its map alone, which makes no good pak. */
	const std::string CookMapAlone = "write " + Cooked + "Maps/Hall.umap|cooked";
	/** With something that stands in the map. */
	const std::string CookHall = CookMapAlone + "\nwrite " + Cooked + "Rock.uasset|cooked";

	FScriptedToolsTest();
	std::string Mask(std::string Text) const override;
};
} // namespace QVTest
