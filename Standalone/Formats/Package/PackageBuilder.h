// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/PackageSpec.h"

namespace QVFormats
{
/**
 * An uncooked package as UE 5.4 lays it out (file version 1012), with no thumbnails, texts or bulk data. The same spec
 * gives the same bytes. Checked against this library's reader and the layout of the engine's own files; no editor has
 * opened what it writes. Indices in the spec have to lie inside its tables.
 */
std::vector<std::byte> BuildPackage(const FPackageSpec& Spec);
} // namespace QVFormats
