// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>

namespace QVStandalone
{
/**
 * The file: this head, then counts, then arrays, each without a gap, little endian.
 *
 * counts    FPackageCacheCounts
 * names     u32 ends[Names], then the letters, UTF-8; a name's number is its place here plus 1, 0 is no name
 * packages  u32 name[], i64 size[], i64 time[], u8 flags[], u32 assets' end[], u32 references' end[]
 * assets    u32 name, class, outer
 * refers to u32 name << 2 | used in game << 1 | hard
 * mounts    text root, text folder                               (text: u32 length, letters)
 * odd       u32 name, text path
 * unreadable text file, text reason, i64 size, i64 time, u8 is a map
 */
struct FPackageCacheHead
{
	static constexpr std::array<char, 8> RightMagic = {'Q', 'V', 'M', 'A', 'P', 'R', 'E', 'G'};
	static constexpr std::uint64_t RightVersion = 2;

	std::array<char, 8> Magic = RightMagic;
	std::uint64_t Version = RightVersion;
	/** CityHash64 of all that follows. */
	std::uint64_t Hash = 0;
};

/** Of a package. */
enum class EPackageCacheFlag : std::uint8_t
{
	Map = 1,
	NewerEngine = 2,
	OddReferences = 4
};

struct FPackageCacheCounts
{
	std::uint32_t Names = 0;
	std::uint32_t Packages = 0;
	std::uint32_t Assets = 0;
	std::uint32_t References = 0;
	std::uint32_t Mounts = 0;
	std::uint32_t Odd = 0;
	std::uint32_t Unreadable = 0;
};
} // namespace QVStandalone
