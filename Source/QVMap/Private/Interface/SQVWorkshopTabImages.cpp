// SPDX-License-Identifier: MIT
// The tab's images: what is picked, shown and warned of.
#include "Core/QVPath.h"
#include "Core/QVPrintf.h"
#include "Core/QVString.h"
#include "Engine/QVDialogs.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Interface/SQVWorkshopTab.h"

#include <algorithm>

namespace
{
using enum EQVWorkshopRow;

constexpr std::string_view ImageFiles = "Image Files (*.jpg;*.jpeg;*.png)|*.jpg;*.jpeg;*.png";

/** Null if it cannot be decoded. */
std::unique_ptr<FQVWorkshopBrush> MakeBrush(std::string_view Prefix, const std::string& Path)
{
	auto Brush = std::make_unique<FQVWorkshopBrush>();
	Brush->ResourceName = QVPrintf("%s%s", Prefix, FQVPath::GetCleanFilename(Path));
	return FQVMapWorkshopImages::ReadPixels(Path, Brush->Image) ? std::move(Brush) : nullptr;
}

void TellPreviewTooBig(const std::string& Path, std::int64_t SizeBytes)
{
	FQVEngine::Get().Dialogs->ShowMessage({FQVWorkshopForm::TextNamespace, "PreviewTooBig",
		"'{0}' is {1} MB.\n\nSteam refuses Workshop images over 1 MB, so this one was not added. Save it smaller "
		"(512x512 JPG is usually well under the limit) and browse again.",
		FQVPath::GetCleanFilename(Path), QVPrintf("%.2f", FQVMapWorkshopConfig::ToMegabytes(SizeBytes))});
}

void TellScreenshotsTooBig(const std::vector<std::string>& Refused)
{
	FQVEngine::Get().Dialogs->ShowMessage({FQVWorkshopForm::TextNamespace, "ScreenshotsTooBig",
		"Steam refuses Workshop images over 1 MB, one file at a time, so these were not added:\n\n{0}\n\nSave them "
		"smaller (1920x1080 JPG at moderate quality fits) and add them again.",
		FQVString::Join(Refused, "\n")});
}
} // namespace

FQVText SQVWorkshopTab::GetPreviewName() const
{
	return FQVText::FromString(Config.PreviewImage.empty() ? "(none)" : FQVPath::GetCleanFilename(Config.PreviewImage));
}

FQVWorkshopColor SQVWorkshopTab::GetColor(const FQVWorkshopImageWarning& Warning)
{
	return Warning.bTooBig ? FQVWorkshopForm::BlockingColor : FQVWorkshopForm::WarningColor;
}

const FQVWorkshopBrush* SQVWorkshopTab::GetThumbnail(const std::string& Path)
{
	const auto Kept = ThumbnailBrushes.find(Path);
	if (Kept != ThumbnailBrushes.end())
	{
		return &Kept->second;
	}
	const std::unique_ptr<FQVWorkshopBrush> Brush = MakeBrush("QVScreenshot_", Path);
	return Brush != nullptr ? &ThumbnailBrushes.emplace(Path, std::move(*Brush)).first->second : nullptr;
}

void SQVWorkshopTab::UpdatePreview(const std::string& Path)
{
	const bool bThere = !Path.empty() && FQVEngine::Get().Files->FileExists(Path);
	PreviewBrush = bThere ? MakeBrush("QVWorkshopPreview_", Path) : nullptr;
	View.OnRowChanged(MainImage);
}

void SQVWorkshopTab::UpdatePreviewWarning(const std::string& Path)
{
	PreviewWarning = FQVMapWorkshopImages::CheckPreview(Path);
	View.OnRowChanged(MainImage);
}

void SQVWorkshopTab::UpdateScreenshotWarning()
{
	ScreenshotWarning = FQVMapWorkshopImages::CheckScreenshots(ScreenshotItems);
	View.OnRowChanged(Screenshots);
}

void SQVWorkshopTab::OnBrowsePreview()
{
	IQVDialogs& Dialogs = *FQVEngine::Get().Dialogs;
	const std::optional<std::string> Path =
		Dialogs.HasDesktop() ? Dialogs.OpenFileDialog("Select Preview Image", ImageFiles) : std::nullopt;
	if (!Path || Path->empty())
	{
		return;
	}
	std::int64_t SizeBytes = 0;
	if (FQVMapWorkshopConfig::IsImageOversize(*Path, SizeBytes))
	{
		TellPreviewTooBig(*Path, SizeBytes);
		return;
	}
	Config.PreviewImage = *Path;
	UpdatePreview(*Path);
	UpdatePreviewWarning(*Path);
	SaveConfig();
}

void SQVWorkshopTab::OnAddScreenshots()
{
	IQVDialogs& Dialogs = *FQVEngine::Get().Dialogs;
	const std::vector<std::string> Chosen =
		Dialogs.HasDesktop() ? Dialogs.OpenFilesDialog("Add Screenshots", ImageFiles) : std::vector<std::string>();
	const std::size_t Before = ScreenshotItems.size();
	std::vector<std::string> Refused;
	for (const std::string& Path : Chosen)
	{
		std::int64_t SizeBytes = 0;
		if (FQVMapWorkshopConfig::IsImageOversize(Path, SizeBytes))
		{
			Refused.push_back(QVPrintf(
				"    %s  (%.2f MB)", FQVPath::GetCleanFilename(Path), FQVMapWorkshopConfig::ToMegabytes(SizeBytes)));
		}
		else
		{
			ScreenshotItems.push_back(Path);
		}
	}
	if (ScreenshotItems.size() > Before)
	{
		OnScreenshotsChanged();
	}
	if (!Refused.empty())
	{
		TellScreenshotsTooBig(Refused);
	}
}

void SQVWorkshopTab::OnRemoveScreenshots()
{
	std::vector<std::size_t> Selected = View.GetSelectedScreenshots();
	std::size_t Place = 0;
	std::erase_if(ScreenshotItems,
		[&](const std::string&) { return std::find(Selected.begin(), Selected.end(), Place++) != Selected.end(); });
	OnScreenshotsChanged();
}

void SQVWorkshopTab::OnScreenshotsChanged()
{
	CollectForm();
	UpdateScreenshotWarning();
	SaveConfig();
}
