// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVImages.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/** What there is to say of one image, or of a list of them, before it is published. */
struct FQVWorkshopImageWarning
{
	/** Steam refuses one of them, so nothing can be published until it is smaller. */
	bool bTooBig = false;
	/** Empty: nothing to say. */
	std::string Text;
};

/** Images for the Workshop as files, PNG or JPEG by their ending. */
struct FQVMapWorkshopImages
{
	/** A larger file is not read, so nothing is known of its picture. */
	static constexpr std::int64_t MostFileBytes = 64 * 1024 * 1024;

	/** By the ending, ignoring case; nothing for any other than .png, .jpg and .jpeg. */
	static std::optional<EQVImageFormat> FormatOf(std::string_view Path);
	/** From the file's header; nothing if it is missing or no image of the format that its ending says. */
	static std::optional<FQVImageSize> ReadSize(std::string_view Path);
	/** False, and Out untouched, if it cannot be decoded. */
	static bool ReadPixels(std::string_view Path, FQVImagePixels& Out);

	/** Its size in bytes, and whether it is square. A missing file is nothing to warn of. */
	static FQVWorkshopImageWarning CheckPreview(std::string_view Path);
	/** Their sizes in bytes, and whether they are 16:9. */
	static FQVWorkshopImageWarning CheckScreenshots(const std::vector<std::string>& Paths);
	/** Whether a screenshot is near enough to 16:9. */
	static bool IsWide(FQVImageSize Size);
};
