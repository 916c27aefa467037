// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/ByteReader.h"

namespace QVFormats
{
/**
 * Whether compressing this block would surely save less than about one percent: its bytes are spread evenly in every
 * stretch, and nothing in it comes twice. In doubt, and for short blocks, the answer is no. Many times faster than to
 * try; textures, sound and video, which are compressed already, are half of what a map packs.
 */
bool IsSurelyIncompressible(FBytes Block);
} // namespace QVFormats
