// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVRegistryFile.h"

namespace QVStandalone
{
/** Asset registries as files. */
class FRegistryFile : public IQVRegistryFile
{
public:
	bool LoadFromDisk(std::string_view Path, std::int32_t& OutPackageCount) const override;
};
} // namespace QVStandalone
