// SPDX-License-Identifier: MIT
#include "Tests/Crash/DisturbedRun.h"

#include "Tests/Cli/Program.h"
#include "Tests/Crash/CrashProject.h"

#include <fstream>
#include <mutex>
#include <sstream>

namespace fs = std::filesystem;

namespace QVTest
{
namespace
{
/** What a program inherits while another one is started would be held open by both. */
std::mutex Starting;

FNotedOperation ParseLine(const std::string& Line)
{
	std::istringstream Words(Line);
	FNotedOperation Operation;
	std::string Number;
	Words >> Operation.Letter >> Operation.Number;
	std::getline(Words, Number, '\t');
	std::getline(Words, Operation.Name, '\t');
	std::getline(Words, Operation.Path, '\t');
	std::getline(Words, Operation.Other, '\t');
	return Operation;
}
} // namespace

std::string FNotedOperation::Describe() const
{
	return Name + " " + Path + (Other.empty() ? "" : " -> " + Other);
}

std::vector<const FNotedOperation*> FRunEnd::OfLetter(char Letter) const
{
	std::vector<const FNotedOperation*> Found;
	for (const FNotedOperation& Each : Operations)
	{
		if (Each.Letter == Letter)
		{
			Found.push_back(&Each);
		}
	}
	return Found;
}

FCrashBench::FCrashBench()
	: Root(fs::canonical(Temp.Path()))
	, ProjectFolder(Root / "MapWork")
	, Shadow(Root / "shadow")
	, Home(Root / "home")
{
	fs::create_directory(Home);
}

void FCrashBench::TakeCopyOf(const fs::path& Template) const
{
	fs::remove_all(ProjectFolder);
	CopyTree(Template, ProjectFolder);
}

bool FCrashBench::IsHomeEmpty() const
{
	return fs::is_empty(Home);
}

FRunEnd FCrashBench::Run(const std::vector<std::string>& Words, const FDisturbance& Disturbance) const
{
	const fs::path Bin = fs::canonical(QVMAP_TEST_BIN);
	FProgramStart Start{Bin / "qvmap", {"--engine", (Bin / "Engine").string()}, ProjectFolder, {}, {}, 0};
	Start.Words.insert(Start.Words.end(), Words.begin(), Words.end());
	Start.Environment = {{"HOME", Home.string()}, {"TMPDIR", Home.string()}, {"LC_ALL", "C"}};
	fs::remove_all(Shadow);
	if (Disturbance.Kind != nullptr)
	{
		fs::create_directory(Shadow);
		Start.Environment["LD_PRELOAD"] = QVTEST_FAULT_SHIM;
		Start.Environment[FaultEnvironment::Program] = Start.File.string();
		Start.Environment[FaultEnvironment::Root] = ProjectFolder.string();
		Start.Environment[FaultEnvironment::Shadow] = Shadow.string();
		Start.Environment[FaultEnvironment::Kind] = Disturbance.Kind->Name;
		Start.Environment[FaultEnvironment::Point] = std::to_string(Disturbance.Point);
	}
	std::unique_lock Guard(Starting);
	FProgram Program(Start);
	Guard.unlock();
	const FProgramEnd Ended = Program.Wait();
	FRunEnd End{Ended.Code, Ended.Out, Ended.Err, Ended.bNothingLeft, {}, {}};
	ReadLog(End);
	return End;
}

void FCrashBench::ReadLog(FRunEnd& End) const
{
	std::ifstream Log(Shadow / OperationsLog);
	for (std::string Line; std::getline(Log, Line);)
	{
		FNotedOperation Operation = ParseLine(Line);
		if (Operation.Letter == StruckLetter)
		{
			End.Struck = std::move(Operation);
			continue;
		}
		End.Operations.push_back(std::move(Operation));
	}
}
} // namespace QVTest
