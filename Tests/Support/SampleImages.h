// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace QVTest
{
/** Bytes of a whole PNG, pixels as red, green, blue and alpha, one row behind the other. */
std::string MakePng(std::uint32_t Width, std::uint32_t Height, std::span<const std::uint8_t> Rgba);
/** All pixels black and clear. */
std::string MakePng(std::uint32_t Width, std::uint32_t Height);
/** A PNG that says it has this size and whose compressed data hold so many zeros, filters and all. */
std::string MakePngOfZeros(std::uint32_t Width, std::uint32_t Height, std::size_t Zeros);
/** Signature and IHDR alone. */
std::string MakePngHeader(std::uint32_t Width, std::uint32_t Height);

/** Bytes of a JPEG that is grey all over, at JpegGrey. */
std::string MakeJpeg(std::uint16_t Width, std::uint16_t Height);
/** The same as a progressive one that says it all so many times. */
std::string MakeProgressiveJpeg(std::uint16_t Width, std::uint16_t Height, int Scans);
inline constexpr std::uint8_t JpegGrey = 128 + 100;
} // namespace QVTest
