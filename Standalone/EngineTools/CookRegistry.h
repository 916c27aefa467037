// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/PackageHeader.h"
#include "Standalone/Formats/Registry/AssetRegistry.h"

#include <string>
#include <unordered_map>

namespace QVEngineTools
{
/** Collects what packages say of themselves into the registry that a cook leaves behind. */
class FCookRegistry
{
public:
	/** PackageName is the one that the file's place gives, whatever its header says. Size in bytes, cooked. */
	void AddPackage(const std::string& PackageName, const QVFormats::FPackageHeader& Header, std::int64_t Size,
		const std::string& Extension);

	std::size_t PackageCount() const { return State.Packages.size(); }
	/** The game's flavour: assets only. */
	QVFormats::TResult<std::vector<std::byte>> RuntimeFile() const;
	/** Everything, with each package's dependencies and referencers. */
	QVFormats::TResult<std::vector<std::byte>> DevelopmentFile() const;

private:
	QVFormats::FAssetRegistryState State;
	std::unordered_map<std::string, std::uint32_t> NameEntries;
	std::unordered_map<std::string, std::int32_t> NodeByPackage;

	QVFormats::FNameRef Name(const std::string& Text);
	std::int32_t Node(const std::string& PackageName);
	void AddAsset(
		const std::string& PackageName, const QVFormats::FPackageHeader& Header, const QVFormats::FPackageAsset& Asset);
	void AddDependencies(const std::string& PackageName, const QVFormats::FPackageHeader& Header);
};
} // namespace QVEngineTools
