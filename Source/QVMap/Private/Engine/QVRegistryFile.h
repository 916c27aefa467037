// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string_view>

/** Loads the asset registry that a cook left on disk. Any thread. */
class IQVRegistryFile
{
public:
	virtual ~IQVRegistryFile() = default;

	/** The number of package names in the registry; false, with the reason logged, when it cannot be read. */
	virtual bool LoadFromDisk(std::string_view Path, std::int32_t& OutPackageCount) const = 0;
};
