// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/ByteReader.h"

namespace QVFormats
{
/** The common CRC-32 (zlib, PNG), one byte at a time: for short texts. */
std::uint32_t Crc32(FBytes Bytes);
} // namespace QVFormats
