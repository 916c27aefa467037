// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/Compression.h"

#ifdef QVMAP_COMPRESSION_ZLIB
#include <zlib.h>
#else
#include <libdeflate.h>
#endif

namespace QVFormats
{
#ifdef QVMAP_COMPRESSION_ZLIB
namespace
{
Bytef* ZlibBytes(const std::byte* Bytes)
{
	return const_cast<Bytef*>(reinterpret_cast<const Bytef*>(Bytes));
}

void SetBuffers(z_stream& Stream, FBytes In, std::span<std::byte> Out)
{
	Stream.next_in = ZlibBytes(In.data());
	Stream.avail_in = static_cast<uInt>(In.size());
	Stream.next_out = ZlibBytes(Out.data());
	Stream.avail_out = static_cast<uInt>(Out.size());
}
} // namespace

std::size_t CompressedBound(std::size_t Size)
{
	return ::compressBound(static_cast<uLong>(Size));
}

FZlibCompressor::FZlibCompressor(int Level)
{
	auto Stream = std::make_unique<z_stream>();
	if (::deflateInit(Stream.get(), Level) == Z_OK)
	{
		Handle.reset(Stream.release());
	}
}

void FZlibCompressor::FFree::operator()(void* Stream) const
{
	const std::unique_ptr<z_stream> Owned(static_cast<z_stream*>(Stream));
	::deflateEnd(Owned.get());
}

std::size_t FZlibCompressor::Compress(FBytes In, std::span<std::byte> Out)
{
	z_stream* Stream = static_cast<z_stream*>(Handle.get());
	if (Stream == nullptr || ::deflateReset(Stream) != Z_OK)
	{
		return 0;
	}
	SetBuffers(*Stream, In, Out);
	return ::deflate(Stream, Z_FINISH) == Z_STREAM_END ? Out.size() - Stream->avail_out : 0;
}

FZlibDecompressor::FZlibDecompressor()
{
	auto Stream = std::make_unique<z_stream>();
	if (::inflateInit(Stream.get()) == Z_OK)
	{
		Handle.reset(Stream.release());
	}
}

void FZlibDecompressor::FFree::operator()(void* Stream) const
{
	const std::unique_ptr<z_stream> Owned(static_cast<z_stream*>(Stream));
	::inflateEnd(Owned.get());
}

bool FZlibDecompressor::Decompress(FBytes In, std::span<std::byte> Out)
{
	z_stream* Stream = static_cast<z_stream*>(Handle.get());
	if (Stream == nullptr || ::inflateReset(Stream) != Z_OK)
	{
		return false;
	}
	SetBuffers(*Stream, In, Out);
	return ::inflate(Stream, Z_FINISH) == Z_STREAM_END && Stream->avail_in == 0 && Stream->avail_out == 0;
}
#else
std::size_t CompressedBound(std::size_t Size)
{
	return ::libdeflate_zlib_compress_bound(nullptr, Size);
}

FZlibCompressor::FZlibCompressor(int Level)
	: Handle(::libdeflate_alloc_compressor(Level))
{
}

void FZlibCompressor::FFree::operator()(void* Compressor) const
{
	::libdeflate_free_compressor(static_cast<libdeflate_compressor*>(Compressor));
}

std::size_t FZlibCompressor::Compress(FBytes In, std::span<std::byte> Out)
{
	auto* Compressor = static_cast<libdeflate_compressor*>(Handle.get());
	return Compressor == nullptr ? 0
								 : ::libdeflate_zlib_compress(Compressor, In.data(), In.size(), Out.data(), Out.size());
}

FZlibDecompressor::FZlibDecompressor()
	: Handle(::libdeflate_alloc_decompressor())
{
}

void FZlibDecompressor::FFree::operator()(void* Decompressor) const
{
	::libdeflate_free_decompressor(static_cast<libdeflate_decompressor*>(Decompressor));
}

bool FZlibDecompressor::Decompress(FBytes In, std::span<std::byte> Out)
{
	auto* Decompressor = static_cast<libdeflate_decompressor*>(Handle.get());
	std::size_t Used = 0;
	return Decompressor != nullptr &&
		   ::libdeflate_zlib_decompress_ex(
			   Decompressor, In.data(), In.size(), Out.data(), Out.size(), &Used, nullptr) == LIBDEFLATE_SUCCESS &&
		   Used == In.size();
}
#endif
} // namespace QVFormats
