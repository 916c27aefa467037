// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Cli/ReferenceGraph.h"

namespace QVCli
{
/** The graph as a picture that needs nothing else: one SVG document, the same for the same graph. */
std::string ToSvg(const FReferenceGraph& Graph);
} // namespace QVCli
