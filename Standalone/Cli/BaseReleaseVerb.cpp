// SPDX-License-Identifier: MIT
#include "Core/QVDateTime.h"
#include "Core/QVText.h"
#include "Export/QVMapCooker.h"
#include "Export/QVMapToolchainStamp.h"
#include "Standalone/Cli/Session.h"
#include "Standalone/Cli/StandInNote.h"
#include "Workspace/QVMapPaths.h"

namespace QVCli
{
namespace
{
FQVJson ToJson(const FQVBaseReleaseStatus& Status, const FQVToolchainCheck& Toolchain, bool bUsable)
{
	return FQVJson::Object()
		.Set("schema_version", 1)
		.Set("folder", FQVMapPaths::GetBaseReleaseDir())
		.Set("exists", Status.bReleaseDirExists)
		.Set("usable", bUsable)
		.Set("up_to_date", Toolchain.bUpToDate)
		.Set("registry", Status.RegistryPath)
		.Set("registry_bytes", Status.RegistrySizeBytes)
		.Set("packages", Status.PackageCount)
		.Set("problem", bUsable ? Toolchain.Reason : Status.ErrorMessage);
}

void PrintText(FConsole& Console, const FQVBaseReleaseStatus& Status)
{
	Console.Result(QVPrintf("base release  %s", FQVMapPaths::GetBaseReleaseDir()));
	Console.Result(QVPrintf("packages      %s", FQVText::AsNumber(std::int64_t{Status.PackageCount})));
	Console.Result(QVPrintf("registry      %s, %s bytes, %s UTC", Status.RegistryPath,
		FQVText::AsNumber(Status.RegistrySizeBytes), FQVDateTime(Status.RegistryTimestamp).ToDisplayText()));
}

EExitCode ShowStatus(FCommandLine& Line)
{
	const std::unique_ptr<FSession> Session = FSession::Open(Line);
	if (Session == nullptr)
	{
		return EExitCode::Failed;
	}
	FQVBaseReleaseStatus Status;
	const bool bUsable = FQVMapPaths::CheckBaseRelease(Status);
	const FQVToolchainCheck Toolchain = FQVMapToolchainStamp::CheckToolchain();
	if (Line.Options.bJson)
	{
		Session->Console.Document(ToJson(Status, Toolchain, bUsable));
	}
	else if (bUsable)
	{
		PrintText(Session->Console, Status);
	}
	if (bUsable && Toolchain.bUpToDate)
	{
		return EExitCode::Done;
	}
	Session->Console.Fail(bUsable ? "The base release is out of date: " + Toolchain.Reason : Status.ErrorMessage);
	Session->Console.Say("  fix: qvmap base-release build");
	return EExitCode::Failed;
}

EExitCode Build(FCommandLine& Line)
{
	const std::unique_ptr<FSession> Session = FSession::Open(Line);
	if (Session == nullptr)
	{
		return EExitCode::Failed;
	}
	FConsole& Console = Session->Console;
	FQVCookResult Result;
	Session->RunBlocking(
		[&]
		{
			Result = FQVMapCooker::BuildBaseRelease(
				FQVCookProgress([&Console](std::string_view Stage, float Fraction, std::string_view Message)
					{ Console.Progress(Stage, Fraction, Message); }));
		});
	if (!Result.bSuccess)
	{
		Session->TellFailure(Result.ErrorMessage);
		return EExitCode::Failed;
	}
	Console.Succeed();
	SayIfStandIn(*Session);
	if (Line.Options.bJson)
	{
		Console.Document(FQVJson::Object().Set("schema_version", 1).Set("folder", Result.CookedDir));
	}
	else
	{
		Console.Result(QVPrintf("base release  %s", Result.CookedDir));
	}
	return EExitCode::Done;
}
} // namespace

void AddBaseReleaseVerb(FCommandLine& Line)
{
	CLI::App* Group = Line.AddGroup("base-release", "The release of the game that maps are cooked against",
		"qvmap base-release status || qvmap base-release build");
	CLI::App* Status = Line.AddVerb(*Group, "status", "Tells whether there is one and whether it is up to date",
		"qvmap base-release status --format json", [&Line] { return ShowStatus(Line); });
	CLI::App* Make =
		Line.AddVerb(*Group, "build", "Builds it from the project as it stands; mods are set aside meanwhile",
			"qvmap base-release build", [&Line] { return Build(Line); });
	Line.AddFormat(*Status);
	Line.AddFormat(*Make);
}
} // namespace QVCli
