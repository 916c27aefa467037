// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/** What the author of a map says of it in the Steam Workshop. */
struct FQVWorkshopConfig
{
	/** All that a publication needs. */
	std::string Title;
	/** May span lines. */
	std::string Description;
	std::vector<std::string> Tags;
	/** Image files as they were picked; they stay where they are. */
	std::string PreviewImage;
	std::vector<std::string> Screenshots;
	/** "public", "friends_only" or "private"; another word is kept. */
	std::string Visibility = "public";
	/** What changed in this version. */
	std::string ChangeNote;
	/** The map that players load first, as `/Game/Cave/Maps/Hall`. */
	std::string StartMap;

	friend bool operator==(const FQVWorkshopConfig&, const FQVWorkshopConfig&) = default;
};

/** An image that Steam would refuse. */
struct FQVOversizeImage
{
	std::string Path;
	std::int64_t SizeBytes = 0;
	/** Else a screenshot. */
	bool bIsMainImage = false;
};

/**
 * The two files of a publication: the author's record, which lies in the map's plugin folder, and the one-shot request
 * that the game reads. Both are single bytes or UTF-16 with a mark, as the text needs it. Game thread.
 */
struct FQVMapWorkshopConfig
{
	/** The largest image file that Steam takes. */
	static constexpr std::int64_t MostImageBytes = 1048576;
	/** The words that the form offers. */
	static constexpr std::array<std::string_view, 3> Visibilities = {"public", "friends_only", "private"};

	static std::string GetConfigPath(std::string_view PluginDir);
	/** False, and Config untouched, if there is no record or it is no JSON object. */
	static bool Load(std::string_view PluginDir, FQVWorkshopConfig& Config);
	/** The plugin's folder has to be there. */
	static bool Save(std::string_view PluginDir, const FQVWorkshopConfig& Config);

	/** OutSizeBytes is 0, and the image not too large, if there is no such file. */
	static bool IsImageOversize(std::string_view Path, std::int64_t& OutSizeBytes);
	/** The main image first, then the screenshots in their order. */
	static std::vector<FQVOversizeImage> FindOversizeImages(const FQVWorkshopConfig& Config);
	/** A line for each, without a line end behind the last. */
	static std::string FormatOversizeImages(const std::vector<FQVOversizeImage>& Images);
	/** As users see sizes. */
	static double ToMegabytes(std::int64_t Bytes) { return static_cast<double>(Bytes) / 1048576.0; }

	/** `upload.json` of the work folder. */
	static std::string GetUploadPath();
	/** The request, its folder with it. Without a title or with images that are too large nothing is written. */
	static bool WriteUploadJson(const FQVWorkshopConfig& Config, std::string_view PakPath,
		std::string_view UploadJsonPath, std::string& OutError);
};
