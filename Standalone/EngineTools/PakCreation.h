// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/Result.h"
#include "Standalone/Formats/Pak/PakWriter.h"

#include <string>
#include <vector>

namespace QVEngineTools
{
/**
 * What is to go into a pak. From a folder: all files below it, below Mount in the pak. From a response file: its lines.
 * Fails on a source that does not exist, naming it, before anything is written.
 */
QVFormats::TResult<std::vector<QVFormats::FPakSource>> CollectPakSources(
	const std::string& FolderOrResponseFile, const std::string& Mount, bool bCompress);
} // namespace QVEngineTools
