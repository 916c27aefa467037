// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/ByteReader.h"

namespace QVFormats
{
/** Google's CityHash64, version 1.1: what the engine keys names and package ids by. */
std::uint64_t CityHash64(FBytes Bytes);

/** The hash of a name that is the same for all spellings: A..Z made small first, in bytes or in UTF-16 units. */
std::uint64_t CityHash64Folded(FStringView Name);
} // namespace QVFormats
