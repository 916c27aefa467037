// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/Result.h"

#include <string>

namespace QVCli
{
/**
 * Writes a small mapping project into a folder, which must be new or empty: the bridge plugin with a map template,
 * content of the project itself, and two mods. Its packages have the engine's layout but were never opened by an
 * editor. Gives the path of the `.uproject`.
 */
QVFormats::TResult<std::string> WriteSampleProject(const std::string& Folder);
} // namespace QVCli
