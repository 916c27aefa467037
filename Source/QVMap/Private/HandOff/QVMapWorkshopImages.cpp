// SPDX-License-Identifier: MIT
#include "HandOff/QVMapWorkshopImages.h"

#include "Core/QVPath.h"
#include "Core/QVPrintf.h"
#include "Core/QVString.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "HandOff/QVMapWorkshopConfig.h"

#include <algorithm>
#include <cmath>

namespace
{
using FConfig = FQVMapWorkshopConfig;

/** False if there is no file of an image format that is small enough to be read. */
bool LoadImage(std::string_view Path, EQVImageFormat& OutFormat, std::vector<std::byte>& OutBytes)
{
	const IQVFiles& Files = *FQVEngine::Get().Files;
	const std::optional<EQVImageFormat> Format = FQVMapWorkshopImages::FormatOf(Path);
	if (!Format || !Files.FileExists(Path) || Files.FileSize(Path) > FQVMapWorkshopImages::MostFileBytes)
	{
		return false;
	}
	OutFormat = *Format;
	return Files.LoadFileToArray(OutBytes, Path);
}

bool IsThere(std::string_view Path)
{
	return !Path.empty() && FQVEngine::Get().Files->FileExists(Path);
}
} // namespace

std::optional<EQVImageFormat> FQVMapWorkshopImages::FormatOf(std::string_view Path)
{
	const auto EndsIn = [Path](std::string_view Ending) { return FQVString::EndsWithIgnoreCase(Path, Ending); };
	if (EndsIn(".png"))
	{
		return EQVImageFormat::Png;
	}
	return EndsIn(".jpg") || EndsIn(".jpeg") ? std::optional(EQVImageFormat::Jpeg) : std::nullopt;
}

std::optional<FQVImageSize> FQVMapWorkshopImages::ReadSize(std::string_view Path)
{
	EQVImageFormat Format{};
	std::vector<std::byte> Bytes;
	return LoadImage(Path, Format, Bytes) ? FQVEngine::Get().Images->GetSize(Format, Bytes) : std::nullopt;
}

bool FQVMapWorkshopImages::ReadPixels(std::string_view Path, FQVImagePixels& Out)
{
	EQVImageFormat Format{};
	std::vector<std::byte> Bytes;
	return LoadImage(Path, Format, Bytes) && FQVEngine::Get().Images->GetPixels(Format, Bytes, Out);
}

FQVWorkshopImageWarning FQVMapWorkshopImages::CheckPreview(std::string_view Path)
{
	FQVWorkshopImageWarning Warning;
	if (!IsThere(Path))
	{
		return Warning;
	}
	std::vector<std::string> Lines;
	std::int64_t SizeBytes = 0;
	Warning.bTooBig = FConfig::IsImageOversize(Path, SizeBytes);
	if (Warning.bTooBig)
	{
		Lines.push_back(QVPrintf("Over Steam's 1 MB limit at %.2f MB, publishing is blocked until it is smaller",
			FConfig::ToMegabytes(SizeBytes)));
	}
	if (const std::optional<FQVImageSize> Size = ReadSize(Path); Size && Size->Width != Size->Height)
	{
		Lines.push_back(
			QVPrintf("Image is %dx%d -- should be square (1:1). Recommended: 512x512", Size->Width, Size->Height));
	}
	Warning.Text = FQVString::Join(Lines, "\n");
	return Warning;
}

FQVWorkshopImageWarning FQVMapWorkshopImages::CheckScreenshots(const std::vector<std::string>& Paths)
{
	std::vector<std::string> TooBig;
	std::vector<std::string> Odd;
	for (const std::string& Path : Paths)
	{
		const std::string_view Name = FQVPath::GetCleanFilename(Path);
		std::int64_t SizeBytes = 0;
		if (FConfig::IsImageOversize(Path, SizeBytes))
		{
			TooBig.push_back(QVPrintf("%s (%.2f MB)", Name, FConfig::ToMegabytes(SizeBytes)));
		}
		if (const std::optional<FQVImageSize> Size = ReadSize(Path); Size && !IsWide(*Size))
		{
			Odd.push_back(QVPrintf("%s (%dx%d)", Name, Size->Width, Size->Height));
		}
	}
	std::vector<std::string> Lines;
	if (!TooBig.empty())
	{
		Lines.push_back(
			"Over Steam's 1 MB limit, publishing is blocked until these are smaller: " + FQVString::Join(TooBig, ", "));
	}
	if (!Odd.empty())
	{
		Lines.push_back("Not 16:9 aspect ratio: " + FQVString::Join(Odd, ", "));
	}
	return {!TooBig.empty(), FQVString::Join(Lines, "\n")};
}

bool FQVMapWorkshopImages::IsWide(FQVImageSize Size)
{
	const float Width = static_cast<float>(Size.Width);
	const float Height = static_cast<float>(std::max(Size.Height, 1));
	return std::abs(Width / Height - 1.7777778F) <= 0.05F;
}
