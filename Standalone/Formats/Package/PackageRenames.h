// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/Result.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace QVFormats
{
/** A package under a new name, with those of its top-level objects that change their names too. */
struct FPackageRename
{
	/** Long package names: `/Cave/Old/Rock`. */
	std::string From;
	std::string To;
	/** Old and new name of each top-level object that changes; a class default object follows its class by itself. */
	std::vector<std::pair<std::string, std::string>> Objects;
};

/** Finds renames by old name, ASCII case ignored. Points into the renames given, which have to outlive it. */
class FPackageRenames
{
public:
	/** Refuses names that no package or object can have, and two renames of one package. */
	static TResult<FPackageRenames> Make(std::span<const FPackageRename> Renames);

	/** Null: the package keeps its name. */
	const FPackageRename* Find(std::string_view Package) const;
	static std::optional<std::string> Object(const FPackageRename& Rename, std::string_view OldName);
	/** `Rock:Sub.Part`, a path without its package: only the first part is a top-level object. */
	static std::optional<std::string> ObjectPath(const FPackageRename& Rename, std::string_view OldPath);
	/** Text with every whole package name, and the object behind it, replaced; nothing when there was none. */
	std::optional<std::string> Text(std::string_view OldText) const;

private:
	/** Tries to replace a path that begins at At; moves At behind what was read. */
	bool ReplacePath(std::string_view Text, std::size_t& At, std::string& Out) const;

	std::unordered_map<std::string, const FPackageRename*> ByOldName;
	std::size_t LongestOldName = 0;
};
} // namespace QVFormats
