// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/PackageRenames.h"

#include <array>
#include <unordered_map>

namespace QVStandalone
{
/**
 * Looks in bytes for texts that hold one of many packages' old names, as single bytes or as UTF-16, in whatever case
 * and not as a part of a longer name. One pass, however many names there are.
 */
class FRenamedText
{
public:
	explicit FRenamedText(std::span<const QVFormats::FPackageRename> Renames);

	/** The first name that was found, as it is spelled in the renames; empty if there is none. */
	std::string FindIn(std::string_view Bytes) const;

private:
	/** By the name in small letters. */
	std::unordered_map<std::string, std::string> Names;
	std::size_t LongestName = 0;
	/** By the byte behind the first slash. Of almost all bytes this is enough to pass them by. */
	std::array<bool, 256> Seconds{};

	std::string FindAt(std::string_view Bytes, std::size_t At, std::size_t UnitBytes) const;
};
} // namespace QVStandalone
