// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/ByteReader.h"

#include <array>

namespace QVFormats
{
using FSha1Hash = std::array<std::byte, 20>;

/** SHA-1 over bytes that come in pieces. */
class FSha1
{
public:
	static FSha1Hash Of(FBytes Bytes);

	void Update(FBytes Bytes);
	/** Ends the calculation; the object is used up. */
	FSha1Hash Finish();

private:
	static constexpr std::size_t BlockBytes = 64;

	std::array<std::uint32_t, 5> State = {0x67452301, 0xEFCDAB89, 0x98BADCFE, 0x10325476, 0xC3D2E1F0};
	std::array<std::byte, BlockBytes> Pending{};
	std::size_t PendingBytes = 0;
	std::uint64_t TotalBytes = 0;
};

/** 40 small hexadecimal digits. */
std::string HashText(const FSha1Hash& Hash);
} // namespace QVFormats
