// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVNameSet.h"
#include "Standalone/Formats/Base/Result.h"

#include <filesystem>
#include <vector>

class IQVAssetRegistry;

namespace QVEngineTools
{
/**
 * The maps and what they need at run time, hard and soft, each package once and in the order in which it was met; code
 * packages are left out, and whatever Except holds ends the walk.
 */
std::vector<FQVName> FindReached(
	const IQVAssetRegistry& Registry, const std::vector<FQVName>& Maps, const FQVNameSet& Except);

/** The packages of a release, from the registry that its cook left behind. */
QVFormats::TResult<FQVNameSet> ReadReleasePackages(const std::filesystem::path& RegistryFile);
} // namespace QVEngineTools
