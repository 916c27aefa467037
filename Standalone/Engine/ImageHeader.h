// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVImages.h"

namespace QVStandalone
{
/** Signature and IHDR chunk of a PNG. */
std::optional<FQVImageSize> ReadPngSize(std::span<const std::byte> Bytes);
/** The frame header of a JPEG, of any process. */
std::optional<FQVImageSize> ReadJpegSize(std::span<const std::byte> Bytes);

/**
 * Whether a JPEG can be given to a decoder that trusts it in this: Huffman tables of no more symbols than there are,
 * and no more scans, each of which is a pass over the whole image, than any picture needs.
 */
bool IsJpegSound(std::span<const std::byte> Bytes);
} // namespace QVStandalone
