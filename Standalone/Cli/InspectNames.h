// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/PackageSections.h"

#include <cstdint>
#include <string>
#include <vector>

namespace QVCli
{
/** The engine's names of the bits that are set, lowest first; a bit without a known name is its number in hex. */
std::vector<std::string> PackageFlagNames(std::uint32_t Flags);
std::vector<std::string> ObjectFlagNames(std::uint32_t Flags);

std::string SectionName(QVFormats::EPackageSection Section);
/** `AAAAAAAA-BBBB-BBBB-CCCC-CCCCDDDDDDDD`. */
std::string GuidText(const QVFormats::FPackageGuid& Guid);
} // namespace QVCli
