// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVJson.h"

#include <string>
#include <string_view>

/** The engine's JSON parser. Any thread. */
class IQVJsonReader
{
public:
	virtual ~IQVJsonReader() = default;

	/** False if the text is no JSON value; OutError then says where and why, for a person. */
	virtual bool Parse(std::string_view Text, FQVJson& Out, std::string& OutError) const = 0;
};
