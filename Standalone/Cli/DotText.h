// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Cli/ReferenceGraph.h"

namespace QVCli
{
/** The graph in Graphviz' language: its own text alone, whatever the names hold. */
std::string ToDot(const FReferenceGraph& Graph);
} // namespace QVCli
