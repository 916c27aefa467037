// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace QVStandalone
{
/** A text file's bytes as UTF-8: UTF-16 by its mark (either order), else UTF-8 with or without one; never fails. */
std::string DecodeText(std::string_view Bytes);

/** The engine's default encoding: single bytes for ASCII alone, any other text as UTF-16 little endian with a mark. */
std::string EncodeText(std::string_view Utf8);
} // namespace QVStandalone
