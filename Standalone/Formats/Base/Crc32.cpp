// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/Crc32.h"

#include <array>

namespace QVFormats
{
namespace
{
constexpr std::array<std::uint32_t, 256> MakeTable()
{
	std::array<std::uint32_t, 256> Table{};
	for (std::uint32_t Index = 0; Index < 256; ++Index)
	{
		std::uint32_t Value = Index;
		for (int Bit = 0; Bit < 8; ++Bit)
		{
			Value = (Value >> 1) ^ ((Value & 1) * 0xEDB88320);
		}
		Table[Index] = Value;
	}
	return Table;
}

constexpr std::array<std::uint32_t, 256> Table = MakeTable();
} // namespace

std::uint32_t Crc32(FBytes Bytes)
{
	std::uint32_t Value = 0xFFFFFFFF;
	for (const std::byte Byte : Bytes)
	{
		Value = Table[(Value ^ std::to_integer<std::uint32_t>(Byte)) & 0xFF] ^ (Value >> 8);
	}
	return ~Value;
}
} // namespace QVFormats
