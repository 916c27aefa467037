// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/ByteReader.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

namespace QVTest
{
/** Files saved and cooked by the real editor, or empty when there are none on this machine. */
inline std::filesystem::path ContentFolder()
{
	const char* Folder = std::getenv("QVMAP_TEST_CONTENT");
	return Folder != nullptr ? Folder : "";
}

inline std::string ReadText(const std::filesystem::path& Path)
{
	std::ostringstream Text;
	Text << std::ifstream(Path, std::ios::binary).rdbuf();
	return Text.str();
}

inline std::vector<std::byte> ToBytes(std::string_view Text)
{
	const auto* Begin = reinterpret_cast<const std::byte*>(Text.data());
	return {Begin, Begin + Text.size()};
}

/** Calls Try with every shorter beginning of the bytes, each in a block of exactly its size: a sanitizer sees one
 * byte too far. */
inline void ForEachTruncation(QVFormats::FBytes Whole, const std::function<void(QVFormats::FBytes)>& Try)
{
	for (std::size_t Size = 0; Size < Whole.size(); ++Size)
	{
		const std::vector<std::byte> Cut(Whole.begin(), Whole.begin() + static_cast<std::ptrdiff_t>(Size));
		Try(Cut);
	}
}

/** Calls Try with the bytes in which one aligned field at a time is a number that no count or offset can be. */
inline void ForEachWildField(QVFormats::FBytes Whole, const std::function<void(QVFormats::FBytes)>& Try)
{
	std::vector<std::byte> Bytes(Whole.begin(), Whole.end());
	for (std::size_t At = 0; At + 4 <= Bytes.size(); ++At)
	{
		for (const std::uint32_t Wild : {0xFFFFFFFFu, 0x7FFFFFFFu, 0x80000000u, 0x00FFFFFFu})
		{
			std::memcpy(Bytes.data() + At, &Wild, sizeof(Wild));
			Try(Bytes);
			std::memcpy(Bytes.data() + At, Whole.data() + At, sizeof(Wild));
		}
	}
}
} // namespace QVTest
