// SPDX-License-Identifier: MIT
#include "HandOff/QVMapUpdateCheck.h"
#include "Standalone/Cli/InspectReport.h"
#include "Standalone/Cli/Session.h"
#include "Standalone/Cli/TextColumns.h"
#include "Standalone/Engine/Environment.h"
#include "Standalone/Engine/Interrupt.h"

namespace QVCli
{
namespace
{
struct FUpdateOptions
{
	bool bOpen = false;
};

FQVUpdateInfo Check(FSession& Session)
{
	bool bDone = false;
	FQVMapUpdateCheck::CheckForUpdate([&bDone](const FQVUpdateInfo&) { bDone = true; });
	Session.Engine.GetGameThread().RunUntil([&bDone] { return bDone; });
	return FQVMapUpdateCheck::GetLastResult();
}

FQVJson Versions(std::string_view Project, std::string_view Toolkit, std::string_view Bridge)
{
	return FQVJson::Object().Set("project", Project).Set("qvmap", Toolkit).Set("bridge", Bridge);
}

FQVJson ToJson(const FQVUpdateInfo& Info)
{
	return FQVJson::Object()
		.Set("schema_version", 1)
		.Set("update_available", Info.bUpdateAvailable)
		.Set("bridge_changed", Info.bBridgeChanged)
		.Set("installed", Versions(Info.InstalledVersion, Info.InstalledToolkit, Info.InstalledBridge))
		.Set("published", Versions(Info.PublishedVersion, Info.PublishedToolkit, Info.PublishedBridge))
		.Set("download_page", FQVMapUpdateCheck::GetDownloadPage());
}

/** "unknown" in place of an empty text. */
std::string Shown(std::string_view Version)
{
	return Version.empty() ? "unknown" : EscapeControls(Version);
}

std::string Row(std::string_view Name, std::string_view Installed, std::string_view Published)
{
	constexpr std::size_t NameColumns = 17;
	constexpr std::size_t VersionColumns = 11;
	return PadColumns(Name, NameColumns) + PadColumns(Installed, VersionColumns) + std::string(Published);
}

std::string Verdict(const FQVUpdateInfo& Info)
{
	if (Info.bUpdateAvailable)
	{
		return "A newer mapping project is available.";
	}
	return Info.InstalledVersion.empty()
			   ? "Which mapping project this is cannot be told: Config/DefaultGame.ini has no ProjectVersion."
			   : QVPrintf("You are on the latest mapping project (%s).", Shown(Info.InstalledVersion));
}

void PrintText(FConsole& Console, const FQVUpdateInfo& Info)
{
	Console.Result(Verdict(Info));
	Console.Result(Row("", "installed", "published"));
	Console.Result(Row("mapping project", Shown(Info.InstalledVersion), Shown(Info.PublishedVersion)));
	Console.Result(Row("QVMap", Shown(Info.InstalledToolkit), Shown(Info.PublishedToolkit)));
	Console.Result(Row("QUARVEL bridge", Shown(Info.InstalledBridge), Shown(Info.PublishedBridge)));
	Console.Result(Row("download page", EscapeControls(FQVMapUpdateCheck::GetDownloadPage()), ""));
	if (Info.bBridgeChanged)
	{
		Console.Result("The bridge differs: with it the base release will need rebuilding.");
	}
}

bool OpenPage(FConsole& Console)
{
	const bool bOpened = FQVMapUpdateCheck::OpenDownloadPage();
	if (!bOpened)
	{
		Console.Fail(QVPrintf("%s could not be opened", EscapeControls(FQVMapUpdateCheck::GetDownloadPage())));
	}
	return bOpened;
}

EExitCode ShowResult(FSession& Session, const FQVUpdateInfo& Info, bool bJson)
{
	if (!Info.ErrorText.empty())
	{
		Session.TellFailure(Info.ErrorText);
		Session.Console.Say("  the current version is told at " + FQVMapUpdateCheck::GetDefaultDownloadPage());
		return EExitCode::Failed;
	}
	if (bJson)
	{
		Session.Console.Document(ToJson(Info));
	}
	else
	{
		PrintText(Session.Console, Info);
	}
	return EExitCode::Done;
}

EExitCode Update(FCommandLine& Line, const FUpdateOptions& Options)
{
	const std::unique_ptr<FSession> Session = FSession::Open(Line);
	if (Session == nullptr)
	{
		return EExitCode::Failed;
	}
	FQVMapUpdateCheck::SetBaseAddress(QVStandalone::EnvironmentValue("QVMAP_UPDATE_ADDRESS"));
	if (FQVMapUpdateCheck::GetBaseAddress().empty())
	{
		Session->Console.Fail("where updates are published is not known");
		Session->Console.Say(
			"  fix: set QVMAP_UPDATE_ADDRESS to https:// and the name of the web host, or UpdateAddress "
			"under [QVMap] in Config/DefaultGame.ini");
		return EExitCode::Failed;
	}
	const FQVUpdateInfo Info = Check(*Session);
	if (QVStandalone::FInterrupt::IsRaised())
	{
		return EExitCode::Interrupted;
	}
	const EExitCode Code = ShowResult(*Session, Info, Line.Options.bJson);
	return Options.bOpen && !OpenPage(Session->Console) ? EExitCode::Failed : Code;
}
} // namespace

void AddUpdateVerb(FCommandLine& Line)
{
	const auto Options = std::make_shared<FUpdateOptions>();
	CLI::App* Verb = Line.AddVerb(Line.App, "update", "Whether a newer mapping project has been published",
		"qvmap update --open", [&Line, Options] { return Update(Line, *Options); });
	Verb->add_flag("--open", Options->bOpen, "Open the download page in the browser");
	Line.AddFormat(*Verb);
}
} // namespace QVCli
