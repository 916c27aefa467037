// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/ByteReader.h"
#include "Standalone/Formats/Base/Result.h"

#include <string>

namespace QVEngineTools
{
/**
 * Writes a file and the folders that lead to it, plainly: a cook's output is made anew after an accident, so it is not
 * worth a flush for each of its files.
 */
QVFormats::FStatus WriteRawFile(const std::string& Path, QVFormats::FBytes Bytes);
} // namespace QVEngineTools
