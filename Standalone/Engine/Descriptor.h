// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVJson.h"

#include <optional>
#include <string>

namespace QVStandalone
{
/** The JSON object in a `.uproject` or `.uplugin` file; nothing, with the reason logged, if there is none. */
std::optional<FQVJson> LoadDescriptor(const std::string& Path);
} // namespace QVStandalone
