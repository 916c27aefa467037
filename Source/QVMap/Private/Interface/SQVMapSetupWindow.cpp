// SPDX-License-Identifier: MIT
#include "Interface/SQVMapSetupWindow.h"

#include "Core/QVLog.h"
#include "Diagnostics/QVMapSetupChecklist.h"
#include "Engine/QVDialogs.h"
#include "Engine/QVInterface.h"
#include "Engine/QVTicker.h"
#include "Export/QVMapBaseReleaseBuild.h"
#include "HandOff/QVMapUpdateCheck.h"
#include "Interface/SQVMapNewModDialog.h"
#include "Workspace/QVMapConfig.h"

#include <algorithm>

namespace
{
/** In seconds. */
constexpr double ShowDelay = 0.5;

struct FSetupHook
{
	FQVSubscription MainFrameHandle;
	FQVTicker ShowTicker;
};

FSetupHook& SetupHook()
{
	static FSetupHook Instance;
	return Instance;
}

FQVText SetupText(std::string_view Key, std::string_view Source)
{
	return {SQVMapSetupWindow::TextNamespace, Key, Source};
}

void ShowIfSomethingIsMissing()
{
	const FQVDiagnosticFindings Rows = FQVMapSetupChecklist::Evaluate({});
	if (FQVMapSetupChecklist::ShouldShowAtStart(Rows))
	{
		FQVMapSetupWindow::Open();
	}
	else if (FQVMapSetupChecklist::IsComplete(Rows))
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: Setup check passed - nothing to show");
	}
	else
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: Setup incomplete, but the startup window is disabled");
	}
}

/** Not while a window is open that would cover it. */
void ShowSoon()
{
	SetupHook().ShowTicker = FQVTicker(ShowDelay,
		[]
		{
			if (FQVEngine::Get().Dialogs->IsModalWindowActive())
			{
				return true;
			}
			SetupHook().ShowTicker.Reset();
			ShowIfSomethingIsMissing();
			return false;
		});
}
} // namespace

void FQVMapSetupWindow::Register()
{
	IQVInterface& Interface = *FQVEngine::Get().Interface;
	FQVTab Window;
	Window.Id = WindowId;
	Window.DisplayName = SQVMapSetupWindow::GetTitle();
	Window.bWindow = true;
	Interface.RegisterTab(std::move(Window));
	SetupHook().MainFrameHandle = Interface.OnMainFrameCreated(ShowSoon);
}

void FQVMapSetupWindow::Unregister()
{
	SetupHook() = {};
	FQVEngine::Get().Interface->UnregisterTab(WindowId);
}

void FQVMapSetupWindow::Open()
{
	FQVEngine::Get().Interface->InvokeTab(WindowId);
}

SQVMapSetupWindow::SQVMapSetupWindow(IQVSetupWindowView& InView)
	: View(InView)
{
	Evaluate();
	LookForUpdate();
	BuildEndedHandle = FQVMapBaseReleaseBuild::OnBuildEnded().Subscribe([this] { Refresh(); });
}

FQVText SQVMapSetupWindow::GetTitle()
{
	return SetupText("WindowTitle", "QVMap Setup");
}

FQVText SQVMapSetupWindow::GetVersion()
{
	return {TextNamespace, "Version", "QVMap {0}", FQVMapUpdateCheck::ToolkitVersion};
}

FQVText SQVMapSetupWindow::GetSummary() const
{
	if (FQVMapSetupChecklist::IsComplete(Rows))
	{
		return SetupText("Complete", "All that a map needs to be packed is there.");
	}
	const auto Missing = std::ranges::count(Rows, EQVDiagSeverity::Error, &FQVDiagnosticFinding::Severity);
	return {TextNamespace, "Incomplete", "{0} of {1} steps are still to be done before a map can be packed.",
		static_cast<std::int64_t>(Missing), Rows.size()};
}

FQVText SQVMapSetupWindow::GetUpdate() const
{
	const FQVUpdateInfo Info = FQVMapUpdateCheck::GetLastResult();
	if (!Info.bUpdateAvailable)
	{
		return {};
	}
	if (Info.bBridgeChanged)
	{
		return {TextNamespace, "SetupUpdateAvailableBridge",
			"Mapping project {0} is available. It changes the QUARVEL bridge, so your base release will need "
			"rebuilding.",
			Info.PublishedVersion};
	}
	return {TextNamespace, "SetupUpdateAvailable", "Mapping project {0} is available.", Info.PublishedVersion};
}

FQVText SQVMapSetupWindow::GetShowOnStartupLabel()
{
	return SetupText("ShowOnStartup", "Show at startup when something is missing");
}

bool SQVMapSetupWindow::GetShowOnStartup()
{
	return FQVMapConfig::GetShowSetupOnStartup();
}

void SQVMapSetupWindow::Act(std::size_t Row)
{
	if (Row >= Rows.size() || !QVHasAction(Rows[Row]))
	{
		return;
	}
	// whoever acts may have the list evaluated anew
	const FQVDiagnosticFinding Finding = Rows[Row];
	if (QVRunAction(Finding, View))
	{
		Refresh();
	}
}

void SQVMapSetupWindow::Refresh()
{
	Evaluate();
	View.OnChanged();
}

void SQVMapSetupWindow::NewMap()
{
	FQVCreateModResult Result;
	if (SQVMapNewModDialog::ShowDialog(Result))
	{
		Refresh();
	}
}

void SQVMapSetupWindow::OpenDownloadPage()
{
	FQVMapUpdateCheck::OpenDownloadPage();
}

void SQVMapSetupWindow::SetShowOnStartup(bool bShow)
{
	FQVMapConfig::SetShowSetupOnStartup(bShow);
	View.OnChanged();
}

FQVDiagnosticActions SQVMapSetupWindow::MakeActions()
{
	FQVDiagnosticActions Actions;
	Actions.BuildBaseRelease = [] { FQVMapBaseReleaseBuild::StartBaseReleaseBuild({}); };
	return Actions;
}

void SQVMapSetupWindow::Evaluate()
{
	Rows = FQVMapSetupChecklist::Evaluate(MakeActions());
}

/** Silent: what went wrong is nobody's business here. */
void SQVMapSetupWindow::LookForUpdate()
{
	if (FQVMapUpdateCheck::GetLastResult().bChecked)
	{
		return;
	}
	FQVMapUpdateCheck::CheckForUpdate(
		[Window = std::weak_ptr(Self)](const FQVUpdateInfo&)
		{
			if (const std::shared_ptr<SQVMapSetupWindow*> Alive = Window.lock())
			{
				(*Alive)->View.OnChanged();
			}
		});
}
