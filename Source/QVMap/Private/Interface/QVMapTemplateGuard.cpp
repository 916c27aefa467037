// SPDX-License-Identifier: MIT
#include "Interface/QVMapTemplateGuard.h"

#include "Core/QVCheck.h"
#include "Core/QVEvent.h"
#include "Core/QVLog.h"
#include "Core/QVNameSet.h"
#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Engine/QVDialogs.h"
#include "Engine/QVEditor.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Engine/QVGameThread.h"
#include "Engine/QVPackages.h"
#include "Engine/QVProject.h"
#include "Engine/QVWorld.h"
#include "Interface/QVMapMods.h"
#include "Interface/SQVMapNewModDialog.h"

#include <optional>
#include <utility>

namespace
{
constexpr std::string_view TextNamespace = "FQVMapTemplateGuard";
constexpr std::string_view TemplatePlugin = "QUARVEL";
/** In seconds. */
constexpr double StartupDelay = 2.5;
constexpr double WarningDelay = 0.5;

enum class EEvent : std::uint8_t
{
	Opened,
	Saved
};

/** A tick that comes to nothing once its ticker is let go of. */
using FTicker = std::shared_ptr<const void>;

struct FGuardState
{
	bool bGuardSuppressed = false;
	std::string LastWarnedMap;
	FQVNameSet WarnedPackages;
	FQVSubscription MapOpenedHandle;
	FQVSubscription PackageSavedHandle;
	FTicker StartupTicker;
	FTicker PendingTicker;
};

FGuardState& State()
{
	static FGuardState Instance;
	return Instance;
}

/** The author's map with the newest file. */
struct FRecentMap
{
	std::string ModName;
	FQVMapInfo Map;
};

bool IsInTemplateFolder(std::string_view Package)
{
	static const std::string Prefix = QVPrintf("/%s/", TemplatePlugin);
	return FQVString::StartsWithIgnoreCase(Package, Prefix);
}

std::optional<FRecentMap> FindMostRecentMap()
{
	std::optional<FRecentMap> Newest;
	std::int64_t NewestTicks = 0;
	for (const FQVModInfo& Mod : FQVMapMods::GetMods(true).Mods)
	{
		for (const FQVMapInfo& Map : Mod.Maps)
		{
			const std::string File = FQVPath::Combine(Mod.ContentDir, Map.RelativePath);
			const std::int64_t Ticks = FQVEngine::Get().Files->GetTimeStamp(File).GetTicks();
			if (!Newest || Ticks > NewestTicks)
			{
				Newest = {Mod.Name, Map};
				NewestTicks = Ticks;
			}
		}
	}
	return Newest;
}

FQVText MakeQuestion(EEvent Event, const std::optional<FRecentMap>& Recent)
{
	if (Event == EEvent::Opened)
	{
		return Recent ? FQVText(TextNamespace, "TemplateOpenSwitchQuestion", "Open your map \"{0}\" instead?",
							Recent->Map.Name)
					  : FQVText(TextNamespace, "TemplateOpenCreateQuestion", "Create a map of your own now?");
	}
	return Recent
			   ? FQVText(TextNamespace, "TemplateMoveQuestion", "Save what is open here into one of your own maps now?")
			   : FQVText(TextNamespace, "TemplateCreateQuestion", "Create a map of your own from it now?");
}

FQVText MakeWarning(EEvent Event, const std::string& Path, const std::optional<FRecentMap>& Recent)
{
	const FQVText Opened(TextNamespace, "TemplateOpenedIntro", "You have opened a map that ships with QUARVEL:");
	const FQVText Saved(
		TextNamespace, "TemplateSavedIntro", "You have just saved into the folder that ships with QUARVEL:");
	const FQVText Body(TextNamespace, "TemplateBody",
		"It belongs to the toolkit rather than to you:\n\n  - It cannot be packed or published. Anything you build in "
		"it counts as content from outside the map being packed.\n  - Its whole folder is replaced every time you "
		"update QUARVEL, so work saved here is lost at the next update.\n\nYour maps live in a folder of their own "
		"under Plugins/, which is what New Map creates for you.");
	return {TextNamespace, "TemplateWarning", "{0}\n\n  {1}\n\n{2}\n\n{3}", Event == EEvent::Opened ? Opened : Saved,
		Path, Body, MakeQuestion(Event, Recent)};
}

void CreateMapOfOnesOwn()
{
	FQVCreateModResult Result;
	if (SQVMapNewModDialog::ShowDialog(Result) && Result.bCreated)
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: Left the template for a new map: %s", Result.MapPackagePath);
	}
}

void SwitchTo(const FRecentMap& Recent)
{
	if (FQVMapMods::OpenMap(Recent.ModName, Recent.Map.CookPath))
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: Left the template for %s", Recent.Map.CookPath);
	}
	else
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: Could not open %s - still in the template", Recent.Map.CookPath);
	}
}

void MoveOut()
{
	IQVEditor& Editor = *FQVEngine::Get().Editor;
	const IQVWorld* World = Editor.GetOpenWorld();
	const IQVLevel* Level = World != nullptr ? World->GetPersistentLevel() : nullptr;
	if (Level == nullptr)
	{
		return;
	}
	if (FQVMapMods::GetMods(true).Mods.empty())
	{
		CreateMapOfOnesOwn();
		return;
	}
	std::string File;
	if (Editor.SaveLevelAs(*Level, File))
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: Template contents saved out to %s", File);
	}
	else
	{
		QVLog(EQVLogVerbosity::Log, "QVMap: Save Level As cancelled - still in the template");
	}
}

void Act(EEvent Event, const std::optional<FRecentMap>& Recent)
{
	if (Event == EEvent::Saved)
	{
		MoveOut();
	}
	else if (Recent)
	{
		SwitchTo(*Recent);
	}
	else
	{
		CreateMapOfOnesOwn();
	}
}

void ShowWarning(EEvent Event, const std::string& Path)
{
	const std::optional<FRecentMap> Recent = FindMostRecentMap();
	const bool bYes = FQVEngine::Get().Dialogs->AskYesNo(
		MakeWarning(Event, Path, Recent), FQVText(TextNamespace, "TemplateWarningTitle", "This is not your map"));
	QVLog(EQVLogVerbosity::Warning, "QVMap: Mapper is in the toolkit's own folder (%s), answered %s", Path,
		bYes ? "move it out" : "leave it");
	if (bYes)
	{
		const bool bBefore = std::exchange(State().bGuardSuppressed, true);
		Act(Event, Recent);
		State().bGuardSuppressed = bBefore;
	}
}

void AddTicker(FTicker& Ticker, double Period, std::function<bool()> Tick)
{
	Ticker = std::make_shared<const bool>();
	FQVEngine::Get().GameThread->AddTicker(Period,
		[Held = std::weak_ptr<const void>(Ticker), Tick = std::move(Tick)] { return !Held.expired() && Tick(); });
}

/** A dialog must not open inside a save or while a window is loading. */
void ScheduleWarning(EEvent Event, const std::string& Path)
{
	if (State().PendingTicker != nullptr)
	{
		return;
	}
	AddTicker(State().PendingTicker, WarningDelay,
		[Event, Path]
		{
			if (FQVEngine::Get().Dialogs->IsModalWindowActive())
			{
				return true;
			}
			State().PendingTicker.reset();
			ShowWarning(Event, Path);
			return false;
		});
}

void CheckOpenMap()
{
	const IQVWorld* World = FQVEngine::Get().Editor->GetOpenWorld();
	const std::string Package = World != nullptr ? World->GetPackageName() : std::string();
	std::string& LastWarned = State().LastWarnedMap;
	if (!IsInTemplateFolder(Package))
	{
		LastWarned.clear();
	}
	else if (!FQVString::EqualsIgnoreCase(Package, LastWarned))
	{
		LastWarned = Package;
		ScheduleWarning(EEvent::Opened, Package);
	}
}

void CheckSave(FQVName Package)
{
	FGuardState& Guard = State();
	if (Guard.bGuardSuppressed || !IsInTemplateFolder(Package.ToView()) || Guard.WarnedPackages.Contains(Package) ||
		FQVEngine::Get().Editor->IsAutosaving())
	{
		return;
	}
	Guard.WarnedPackages.Add(Package);
	ScheduleWarning(EEvent::Saved, Package.ToString());
}
} // namespace

void FQVMapTemplateGuard::Register()
{
	const FQVEngine& Engine = FQVEngine::Get();
	QV_CHECK(Engine.GameThread->IsInGameThread());
	if (Engine.Editor == nullptr || Engine.Project->IsRunningCommandlet() || Engine.Editor->IsUnattended())
	{
		return;
	}
	FGuardState& Guard = State();
	Guard.MapOpenedHandle = Engine.Editor->OnMapOpened(CheckOpenMap);
	Guard.PackageSavedHandle = Engine.Packages->OnPackageSaved(CheckSave);
	AddTicker(Guard.StartupTicker, StartupDelay,
		[]
		{
			State().StartupTicker.reset();
			CheckOpenMap();
			return false;
		});
}

void FQVMapTemplateGuard::Unregister()
{
	State() = {};
}
