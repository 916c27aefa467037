// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace QVFormats
{
struct FRedirectorPackageSpec
{
	/** `/Cave/Old/Rock`. */
	std::string PackageName;
	/** What stands at the new place: `/Cave/New/Stone` with its asset of the same name. */
	std::string Target;
	/** Of that asset: `/Script/Engine` and `StaticMesh`. For a blueprint, its class gets a redirector too. */
	std::string ClassPackage;
	std::string ClassName;
};

/** What the editor leaves behind when an asset has moved: the layout of the engine's own, without meta data. */
std::vector<std::byte> BuildRedirectorPackage(const FRedirectorPackageSpec& Spec);
} // namespace QVFormats
