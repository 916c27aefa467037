// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVEvent.h"
#include "Export/QVMapExportResult.h"
#include "HandOff/QVMapWorkshopConfig.h"
#include "HandOff/QVMapWorkshopImages.h"
#include "Interface/SQVWorkshopForm.h"

#include <functional>
#include <map>
#include <memory>
#include <span>

/** What draws the form. It asks the tab for what to draw when it is told that a row has changed. */
class IQVWorkshopTabView
{
public:
	virtual ~IQVWorkshopTabView() = default;

	/** What stands in the box of Title, Description, Tags or ChangeNote, committed or not. */
	virtual std::string GetText(EQVWorkshopRow Box) const = 0;
	/** Commits nothing. */
	virtual void SetText(EQVWorkshopRow Box, const std::string& Text) = 0;
	/** Places of the screenshots that are selected. */
	virtual std::vector<std::size_t> GetSelectedScreenshots() const = 0;
	virtual void OnRowChanged(EQVWorkshopRow Row) = 0;
};

/** A picture to be drawn, in its natural size. */
struct FQVWorkshopBrush
{
	/** Under which an engine keeps it; two pictures may have the same. */
	std::string ResourceName;
	FQVImagePixels Image;
};

/** What the tab starts or asks that is another one's to do; all are bound. */
struct FQVWorkshopTabActions
{
	/** The base release is being built, and mods are set aside meanwhile. */
	std::function<bool()> IsBaseReleaseBuilding;
	/** The open map's mod, map and game path; false when there is none, which the user then has been told. */
	std::function<bool(std::string& OutMod, std::string& OutMap, std::string& OutGamePath)> ResolveOpenMap;
	/** Packs the mod without launching the game; OnComplete follows a pak that is to be used. */
	std::function<void(const std::string& Mod, const std::string& Map, const std::string& GamePath,
		std::function<void(const FQVExportResult&)> OnComplete)>
		RunExport;

	/** As the toolkit does it. */
	static FQVWorkshopTabActions OfToolkit();
};

/**
 * The tab "Share Map" without its drawing: the Workshop details of the map that is open, saved at every edit, and the
 * way from the button to the game. It is bound to the plugin of that map, or to none. Game thread.
 */
class SQVWorkshopTab
{
public:
	/** Shows the open map's details at once, and follows when another one is opened. The view outlives the tab. */
	explicit SQVWorkshopTab(
		IQVWorkshopTabView& InView, FQVWorkshopTabActions InActions = FQVWorkshopTabActions::OfToolkit());
	SQVWorkshopTab(const SQVWorkshopTab&) = delete;
	SQVWorkshopTab& operator=(const SQVWorkshopTab&) = delete;

	/** What the user does. */
	void OnTextCommitted();
	void OnVisibilitySelected(std::size_t Option);
	void Press(EQVWorkshopAction Action);

	/** What the rows show. */
	FQVText GetHeader() const;
	static std::span<const std::string_view> GetVisibilityOptions();
	std::size_t GetSelectedVisibility() const { return SelectedVisibility; }
	FQVText GetPreviewName() const;
	/** Null: no picture. */
	const FQVWorkshopBrush* GetPreviewBrush() const { return PreviewBrush.get(); }
	const FQVWorkshopImageWarning& GetPreviewWarning() const { return PreviewWarning; }
	/** Full paths, which are the tooltips too; a row shows the clean name. */
	const std::vector<std::string>& GetScreenshots() const { return ScreenshotItems; }
	/** Decoded when it is asked for, once. Null, and tried again the next time, if that fails. */
	const FQVWorkshopBrush* GetThumbnail(const std::string& Path);
	const FQVWorkshopImageWarning& GetScreenshotWarning() const { return ScreenshotWarning; }
	static FQVWorkshopColor GetColor(const FQVWorkshopImageWarning& Warning);
	FQVText GetStartMapText() const;
	FQVText GetStartMapTooltip() const;
	FQVText GetLastExport() const { return LastExport; }
	bool CanPublish() const { return !PluginName.empty(); }

private:
	IQVWorkshopTabView& View;
	const FQVWorkshopTabActions Actions;
	/** Empty when no map qualifies. */
	std::string PluginName;
	std::string PluginDir;
	std::string MapName;
	std::string MapGamePath;
	FQVWorkshopConfig Config;
	std::size_t SelectedVisibility = 0;
	std::string ResolvedStartMap;
	/** Stand for the record's until they are collected. */
	std::vector<std::string> ScreenshotItems;
	std::map<std::string, FQVWorkshopBrush, std::less<>> ThumbnailBrushes;
	std::unique_ptr<FQVWorkshopBrush> PreviewBrush;
	FQVWorkshopImageWarning PreviewWarning;
	FQVWorkshopImageWarning ScreenshotWarning;
	FQVText LastExport;
	/** For who may outlive the tab. */
	const std::shared_ptr<SQVWorkshopTab*> Self = std::make_shared<SQVWorkshopTab*>(this);
	/** Last: it goes first. */
	FQVSubscription MapOpenedHandle;

	void FollowOpenMap();
	void RefreshIdentity();
	void LoadForm();
	void ShowVisibility();
	void ResolveStartMap();
	/** Empty without one. */
	std::string FindStartMap() const;
	void CollectForm();
	void CollectTags();
	void SaveConfig() const;
	void UpdatePreview(const std::string& Path);
	void UpdatePreviewWarning(const std::string& Path);
	void UpdateScreenshotWarning();
	void UpdateLastExport();
	void OnScreenshotsChanged();
	void OnBrowsePreview();
	void OnAddScreenshots();
	void OnRemoveScreenshots();
	void OnPackAndPublish();
	// each false when something stands in the way, which the user then has been told
	bool IsOpenMapShown(std::string& OutMap, std::string& OutGamePath);
	bool AreDetailsGood();
};
