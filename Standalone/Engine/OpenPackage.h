// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/PackageHeader.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace QVStandalone
{
/** A package's file in memory, whole, and its tables: what is kept of a map while it is open. Does not hold the file.
 */
struct FOpenPackage
{
	/** By the file's place. */
	std::string Name;
	std::string File;
	std::vector<std::byte> Bytes;
	QVFormats::FPackageHeader Header;

	/** `/Script/Engine.PlayerStart` of an import or an export; empty for none. */
	std::string ObjectPath(QVFormats::FPackageIndex Index) const;
};

/** The error begins with the file's name. */
QVFormats::TResult<std::unique_ptr<FOpenPackage>> OpenPackage(std::string PackageName, std::string File);

/** The same for tables that are not kept open. Package: by the file's place. */
std::string ObjectPathIn(
	const QVFormats::FPackageHeader& Header, std::string_view Package, QVFormats::FPackageIndex Index);

/** An enum property as it is saved, `Start` of `EType::Start`; nothing if it is not in the file. File: all of it. */
std::optional<std::string> FindSavedEnum(const QVFormats::FPackageHeader& Header,
	const QVFormats::FPackageExport& Export, QVFormats::FBytes File, std::string_view Property);
} // namespace QVStandalone
