// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/PackageHeader.h"
#include "Standalone/Formats/Registry/AssetRegistryBuilder.h"

#include <string>

namespace QVEngineTools
{
/** Collects what packages say of themselves into the registry that a cook leaves behind. */
class FCookRegistry
{
public:
	/** PackageName is the one that the file's place gives, whatever its header says. Size in bytes, cooked. */
	void AddPackage(const std::string& PackageName, const QVFormats::FPackageHeader& Header, std::int64_t Size,
		const std::string& Extension);

	/** Everything, with each package's dependencies and referencers; leaves the collection empty. */
	QVFormats::FAssetRegistryState Finish() { return Builder.Finish(); }

private:
	QVFormats::FAssetRegistryBuilder Builder{false};
};
} // namespace QVEngineTools
