// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <string>

/** Four 32-bit numbers. Made by the engine's clock, so that a test can foretell it. */
struct FQVGuid
{
	std::array<std::uint32_t, 4> Parts{};

	/** 32 upper-case hexadecimal characters. */
	std::string ToDigits() const;
};
