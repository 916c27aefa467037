// SPDX-License-Identifier: MIT
#include "Interface/SQVWorkshopTab.h"

#include "Core/QVPath.h"
#include "Core/QVPrintf.h"
#include "Core/QVString.h"
#include "Engine/QVEditor.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Export/QVMapLastExport.h"
#include "Workspace/QVMapPaths.h"
#include "Workspace/QVMapReadiness.h"
#include "Workspace/QVMapScanner.h"

#include <algorithm>

namespace
{
using enum EQVWorkshopRow;

constexpr auto& VisibilityOptions = FQVMapWorkshopConfig::Visibilities;

FQVText Loc(std::string_view Key, std::string_view Source)
{
	return {FQVWorkshopForm::TextNamespace, Key, Source};
}

/** `Maps/Hall` for `/Game/Cave/Maps/Hall`. */
std::string ShortStartMap(const std::string& GamePath)
{
	constexpr std::size_t Mount = 2; // "/Game" and the plugin
	const std::vector<std::string_view> Pieces = FQVString::Split(GamePath, '/');
	if (Pieces.size() < Mount + 2)
	{
		return std::string(FQVPath::GetBaseFilename(GamePath));
	}
	return FQVString::Join(std::vector<std::string>(Pieces.begin() + Mount, Pieces.end()), "/");
}
} // namespace

SQVWorkshopTab::SQVWorkshopTab(IQVWorkshopTabView& InView, FQVWorkshopTabActions InActions)
	: View(InView)
	, Actions(std::move(InActions))
	, LastExport(Loc("NoExport", "No previous export found"))
{
	FollowOpenMap();
	if (IQVEditor* Editor = FQVEngine::Get().Editor)
	{
		MapOpenedHandle = Editor->OnMapOpened([this] { FollowOpenMap(); });
	}
}

void SQVWorkshopTab::FollowOpenMap()
{
	RefreshIdentity();
	LoadForm();
	ResolveStartMap();
}

void SQVWorkshopTab::RefreshIdentity()
{
	PluginName.clear();
	PluginDir.clear();
	MapName.clear();
	MapGamePath.clear();
	FQVText Unshown;
	if (FQVMapReadiness::ResolveOpenMap(PluginName, MapName, Unshown, &MapGamePath))
	{
		PluginDir = FQVPath::Combine(FQVMapPaths::GetPluginsDir(), PluginName);
	}
	View.OnRowChanged(Header);
	View.OnRowChanged(Publish);
}

void SQVWorkshopTab::LoadForm()
{
	Config = {};
	if (!PluginDir.empty())
	{
		FQVMapWorkshopConfig::Load(PluginDir, Config);
	}
	if (Config.Title.empty())
	{
		Config.Title = PluginName;
	}
	View.SetText(Title, Config.Title);
	View.SetText(Description, Config.Description);
	View.SetText(Tags, FQVString::Join(Config.Tags, ", "));
	View.SetText(ChangeNote, Config.ChangeNote);
	ShowVisibility();
	ScreenshotItems = Config.Screenshots;
	View.OnRowChanged(Screenshots);
	View.OnRowChanged(MainImage);
	UpdatePreview(Config.PreviewImage);
	UpdatePreviewWarning(Config.PreviewImage);
	UpdateScreenshotWarning();
	UpdateLastExport();
}

void SQVWorkshopTab::ShowVisibility()
{
	const auto Found = std::find_if(std::begin(VisibilityOptions), std::end(VisibilityOptions),
		[this](std::string_view Option) { return FQVString::EqualsIgnoreCase(Option, Config.Visibility); });
	if (Found != std::end(VisibilityOptions))
	{
		SelectedVisibility = static_cast<std::size_t>(Found - std::begin(VisibilityOptions));
	}
	View.OnRowChanged(Visibility);
}

void SQVWorkshopTab::ResolveStartMap()
{
	// a build sets the descriptors aside, and no mod would be found
	if (Actions.IsBaseReleaseBuilding())
	{
		return;
	}
	ResolvedStartMap = FindStartMap();
	View.OnRowChanged(StartMap);
	if (!ResolvedStartMap.empty() && !FQVString::EqualsIgnoreCase(Config.StartMap, ResolvedStartMap))
	{
		Config.StartMap = ResolvedStartMap;
		SaveConfig();
	}
}

std::string SQVWorkshopTab::FindStartMap() const
{
	if (PluginName.empty())
	{
		return {};
	}
	const FQVScanResult Scan = FQVMapScanner::ScanMods();
	const FQVModInfo* Mod = Scan.Find(PluginName);
	if (Mod == nullptr || Mod->Maps.empty())
	{
		return {};
	}
	const auto Stored = std::find_if(Mod->Maps.begin(), Mod->Maps.end(),
		[this](const FQVMapInfo& Map) { return FQVString::EqualsIgnoreCase(Map.GamePath, Config.StartMap); });
	return Stored != Mod->Maps.end() ? Stored->GamePath : Mod->Maps.front().GamePath;
}

void SQVWorkshopTab::CollectForm()
{
	Config.Title = View.GetText(Title);
	Config.Description = View.GetText(Description);
	CollectTags();
	Config.ChangeNote = View.GetText(ChangeNote);
	Config.Visibility = VisibilityOptions[SelectedVisibility];
	if (!ResolvedStartMap.empty())
	{
		Config.StartMap = ResolvedStartMap;
	}
	Config.Screenshots = ScreenshotItems;
}

void SQVWorkshopTab::CollectTags()
{
	Config.Tags.clear();
	const std::string Text = View.GetText(Tags);
	for (const std::string_view Piece : FQVString::Split(Text, ','))
	{
		Config.Tags.emplace_back(FQVString::TrimStartAndEnd(Piece));
	}
}

void SQVWorkshopTab::SaveConfig() const
{
	if (!PluginDir.empty())
	{
		FQVMapWorkshopConfig::Save(PluginDir, Config);
	}
}

void SQVWorkshopTab::UpdateLastExport()
{
	if (PluginName.empty())
	{
		return;
	}
	FQVLastExportRecord Record;
	const bool bGood = FQVMapLastExport::ReadLastExportRecord(Record) &&
					   FQVString::EqualsIgnoreCase(Record.PluginName, PluginName) && Record.bSuccess &&
					   FQVEngine::Get().Files->FileExists(Record.PakPath);
	LastExport = bGood ? FQVText::FromString(
							 QVPrintf("Last Export: %s (%.2f MB, %d files)", FQVPath::GetCleanFilename(Record.PakPath),
								 FQVMapWorkshopConfig::ToMegabytes(Record.PakSizeBytes), Record.FilesPacked))
					   : Loc("NoExportFound", "No previous export found");
	View.OnRowChanged(EQVWorkshopRow::LastExport);
}

void SQVWorkshopTab::OnTextCommitted()
{
	CollectForm();
	SaveConfig();
}

void SQVWorkshopTab::OnVisibilitySelected(std::size_t Option)
{
	if (Option < std::size(VisibilityOptions))
	{
		SelectedVisibility = Option;
		CollectForm();
		SaveConfig();
	}
}

void SQVWorkshopTab::Press(EQVWorkshopAction Action)
{
	switch (Action)
	{
	case EQVWorkshopAction::Refresh:
		FollowOpenMap();
		break;
	case EQVWorkshopAction::BrowsePreview:
		OnBrowsePreview();
		break;
	case EQVWorkshopAction::AddScreenshots:
		OnAddScreenshots();
		break;
	case EQVWorkshopAction::RemoveScreenshots:
		OnRemoveScreenshots();
		break;
	case EQVWorkshopAction::PackAndPublish:
		OnPackAndPublish();
		break;
	}
}

FQVText SQVWorkshopTab::GetHeader() const
{
	return PluginName.empty() ? Loc("NoMapOpen", "(no map open)") : FQVText::FromString(MapName);
}

std::span<const std::string_view> SQVWorkshopTab::GetVisibilityOptions()
{
	return VisibilityOptions;
}

FQVText SQVWorkshopTab::GetStartMapText() const
{
	return ResolvedStartMap.empty() ? Loc("NoStartMap", "(no map found)")
									: FQVText::FromString(ShortStartMap(ResolvedStartMap));
}

FQVText SQVWorkshopTab::GetStartMapTooltip() const
{
	return ResolvedStartMap.empty() ? Loc("NoStartMapTooltip", "No map was found in this map's folder.")
									: FQVText(FQVWorkshopForm::TextNamespace, "StartMapTooltip",
										  "Players load this map first: {0}", ResolvedStartMap);
}
