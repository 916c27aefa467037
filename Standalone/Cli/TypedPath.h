// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVPath.h"
#include "Standalone/Engine/OsPath.h"

namespace QVCli
{
/** A path that the user typed, in full; empty stays empty. */
inline std::string FullPath(std::string_view Typed)
{
	std::error_code Error;
	const std::string Here = QVStandalone::FromOsPath(std::filesystem::current_path(Error));
	return Typed.empty() ? std::string() : FQVPath::ConvertRelativePathToFull(Here, Typed);
}
} // namespace QVCli
