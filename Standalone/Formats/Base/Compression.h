// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/ByteReader.h"

#include <memory>

namespace QVFormats
{
inline constexpr int DefaultCompressionLevel = 6;

/** The most that one block of this size can become, at any level. */
std::size_t CompressedBound(std::size_t Size);

/** Makes zlib streams, one whole block at a time. Costly to make: keep one for each thread. Not to be shared. */
class FZlibCompressor
{
public:
	/** Level 0 stores without searching. */
	explicit FZlibCompressor(int Level = DefaultCompressionLevel);

	/** The bytes written, or 0 when Out is too small. */
	std::size_t Compress(FBytes In, std::span<std::byte> Out);

private:
	struct FFree
	{
		void operator()(void* Handle) const;
	};
	std::unique_ptr<void, FFree> Handle;
};

/** Reads zlib streams. Keep one for each thread; not to be shared. */
class FZlibDecompressor
{
public:
	FZlibDecompressor();

	/** True when In is exactly one sound stream and fills Out exactly. Never writes outside Out. */
	bool Decompress(FBytes In, std::span<std::byte> Out);

private:
	struct FFree
	{
		void operator()(void* Handle) const;
	};
	std::unique_ptr<void, FFree> Handle;
};
} // namespace QVFormats
