// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

enum class EQVImageFormat : std::uint8_t
{
	Png,
	Jpeg
};

/** In pixels, each at least 1. */
struct FQVImageSize
{
	std::int32_t Width = 0;
	std::int32_t Height = 0;

	friend bool operator==(const FQVImageSize&, const FQVImageSize&) = default;
};

struct FQVImagePixels
{
	FQVImageSize Size;
	/** Blue, green, red and alpha of each pixel, rows from the top. */
	std::vector<std::uint8_t> Bgra;
};

/** Decodes images out of the bytes of their files, which may be damaged. Any thread. */
class IQVImages
{
public:
	/** More than these need not be decoded; an 8K picture has fewer. */
	static constexpr std::int64_t MostPixels = 32 * 1024 * 1024;

	virtual ~IQVImages() = default;

	/** From the header alone; nothing if the bytes are no image of that format. */
	virtual std::optional<FQVImageSize> GetSize(EQVImageFormat Format, std::span<const std::byte> Bytes) const = 0;
	/** False, and Out untouched, if the image is damaged or has more than MostPixels. */
	virtual bool GetPixels(EQVImageFormat Format, std::span<const std::byte> Bytes, FQVImagePixels& Out) const = 0;
};
