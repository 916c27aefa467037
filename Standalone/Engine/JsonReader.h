// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVJsonReader.h"

namespace QVStandalone
{
/** Strict JSON. Of a key that stands twice the last value counts; nesting is limited, so that no text ends the stack.
 */
class FJsonReader : public IQVJsonReader
{
public:
	bool Parse(std::string_view Text, FQVJson& Out, std::string& OutError) const override;
};
} // namespace QVStandalone
