// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/Result.h"

#include <string>

namespace QVCli
{
/** Full path of Graphviz' program `dot` in one of PATH's folders; empty if it is in none. */
std::string FindGraphviz();

/** Has it draw a graph as SVG. Its files lie in the project's folder for work files meanwhile. */
QVFormats::TResult<std::string> DrawWithGraphviz(const std::string& Program, const std::string& Dot);
} // namespace QVCli
