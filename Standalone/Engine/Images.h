// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVImages.h"

namespace QVStandalone
{
/** Whatever the bytes are, memory is bounded by their number and by what MostPixels need: below a gigabyte. */
class FImages : public IQVImages
{
public:
	std::optional<FQVImageSize> GetSize(EQVImageFormat Format, std::span<const std::byte> Bytes) const override;
	bool GetPixels(EQVImageFormat Format, std::span<const std::byte> Bytes, FQVImagePixels& Out) const override;
};
} // namespace QVStandalone
