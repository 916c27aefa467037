// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVPlugins.h"
#include "Standalone/Formats/Base/Result.h"

namespace QVStandalone
{
/** What a plugin's descriptor file holds, in the engine's form. */
std::string MakeDescriptorText(const FQVPluginDescriptor& Descriptor);

/**
 * Makes a plugin's folder with its descriptor and, if it can contain content, an empty Content folder. Refuses a folder
 * that is there already; of what it began, nothing is left on failure. The error says which path, and why.
 */
QVFormats::TResult<FQVPluginInfo> CreatePluginFolder(const FQVNewPlugin& Plugin);
} // namespace QVStandalone
