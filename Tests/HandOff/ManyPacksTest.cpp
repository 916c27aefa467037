// SPDX-License-Identifier: MIT
#include "Tests/HandOff/FlowSupport.h"

#include <dirent.h>
#include <sys/wait.h>

using namespace QVTest;

namespace
{
int OpenDescriptors()
{
	int Count = 0;
	DIR* Folder = ::opendir("/proc/self/fd");
	while (::readdir(Folder) != nullptr)
	{
		++Count;
	}
	::closedir(Folder);
	return Count;
}
} // namespace

TEST_F(FFlowTest, FiftyPacksInARowLeaveNothingBehind)
{
	QVStandalone::FProcesses Real;
	Engine.Interfaces.Processes = &Real;
	UseOutsideContent();
	Project.ScriptEditorCmd(
		{"write " + Project.At("Saved/Cooked/Windows/MapWork/Plugins/Cave/Content/Maps/Hall.umap") + "|1",
			"write " + Project.At("Saved/Cooked/Windows/MapWork/Plugins/Cave/Content/Rock.uasset") + "|1"});
	Project.ScriptUnrealPak({"write {1}|pak"});
	const auto Threads = []
	{
		return std::distance(
			std::filesystem::directory_iterator("/proc/self/task"), std::filesystem::directory_iterator());
	};
	Run(Request("Cave", false));
	const std::string Before = Snapshot();
	const std::vector<std::string> Left = Project.FilesIn("Saved/QVPak/Temp");
	const int Descriptors = OpenDescriptors();
	const auto ThreadCount = Threads();
	for (int Round = 0; Round < 50; ++Round)
	{
		FQVMapPlaytest::RunExport(Request("Cave", false));
		Engine.GetGameThread().RunUntilIdle();
	}
	EXPECT_EQ(Completed.size(), 51U);
	EXPECT_EQ(OpenDescriptors(), Descriptors);
	EXPECT_EQ(Threads(), ThreadCount);
	EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1) << "a child is left, if only to be waited for";
	EXPECT_EQ(Project.FilesIn("Saved/QVPak/Temp"), Left);
	EXPECT_EQ(Project.FilesIn("Saved/QVPak/Output").size(), 1U);
	EXPECT_EQ(Snapshot(), Before);
}
