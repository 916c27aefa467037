// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Images.h"

#include "Standalone/Engine/ImageHeader.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>
#include <unordered_map>

namespace
{
/** What the decoder itself calls impossible. */
struct FDecoderFailure
{
};

/** The memory of one decoding: zeroed, of limited size, and gone with it whatever the decoder has forgotten. */
class FDecoderMemory
{
public:
	explicit FDecoderMemory(std::size_t MostBytes)
		: Left(MostBytes)
	{
		Current = this;
	}
	FDecoderMemory(const FDecoderMemory&) = delete;
	FDecoderMemory& operator=(const FDecoderMemory&) = delete;
	~FDecoderMemory() { Current = nullptr; }

	static void* Allocate(std::size_t Bytes) { return Current->Take(Bytes); }
	static void Free(void* Place) { Current->GiveBack(Place); }
	static void* Grow(void* Old, std::size_t OldBytes, std::size_t Bytes)
	{
		void* New = Allocate(Bytes);
		if (New != nullptr && Old != nullptr)
		{
			std::memcpy(New, Old, OldBytes);
			Free(Old);
		}
		return New;
	}

private:
	struct FFree
	{
		void operator()(void* Place) const { std::free(Place); }
	};
	struct FBlock
	{
		std::unique_ptr<void, FFree> Memory;
		std::size_t Bytes = 0;
	};

	static thread_local FDecoderMemory* Current;
	std::size_t Left;
	std::unordered_map<void*, FBlock> Blocks;

	void* Take(std::size_t Bytes)
	{
		std::unique_ptr<void, FFree> Memory(Bytes <= Left ? std::calloc(Bytes, 1) : nullptr);
		void* Place = Memory.get();
		if (Place != nullptr)
		{
			Blocks[Place] = {std::move(Memory), Bytes};
			Left -= Bytes;
		}
		return Place;
	}
	void GiveBack(void* Place)
	{
		if (const auto Found = Blocks.find(Place); Found != Blocks.end())
		{
			Left += Found->second.Bytes;
			Blocks.erase(Found);
		}
	}
};

thread_local FDecoderMemory* FDecoderMemory::Current = nullptr;
} // namespace

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#define STBI_NO_STDIO
#define STBI_NO_LINEAR
#define STBI_NO_HDR
#define STBI_ASSERT(Condition) ((Condition) ? static_cast<void>(0) : throw FDecoderFailure())
#define STBI_MALLOC FDecoderMemory::Allocate
#define STBI_FREE FDecoderMemory::Free
#define STBI_REALLOC_SIZED FDecoderMemory::Grow
#include <stb_image.h>

namespace QVStandalone
{
namespace
{
/** What decoding may take: 16 bits a channel twice over, in whole blocks of a JPEG, and what a file may hold besides.
 */
std::size_t MostDecoderBytes(FQVImageSize Size, std::size_t FileBytes)
{
	constexpr std::size_t LargestBlock = 32; // of a JPEG, to which its planes are filled up
	constexpr std::size_t BytesAPixel = 24;
	const auto Whole = [](std::int32_t Pixels)
	{ return (static_cast<std::size_t>(Pixels) / LargestBlock + 1) * LargestBlock; };
	return Whole(Size.Width) * Whole(Size.Height) * BytesAPixel + 4 * FileBytes + 1024 * 1024;
}

std::vector<std::uint8_t> DecodeBgra(std::span<const std::byte> Bytes, FQVImageSize Size)
{
	FDecoderMemory Memory(MostDecoderBytes(Size, Bytes.size()));
	FQVImageSize Decoded;
	int Channels = 0;
	const stbi_uc* Rgba = nullptr;
	try
	{
		Rgba = stbi_load_from_memory(reinterpret_cast<const stbi_uc*>(Bytes.data()), static_cast<int>(Bytes.size()),
			&Decoded.Width, &Decoded.Height, &Channels, STBI_rgb_alpha);
	}
	catch (const FDecoderFailure&)
	{
		return {};
	}
	if (Rgba == nullptr || Decoded != Size)
	{
		return {};
	}
	std::vector<std::uint8_t> Bgra(static_cast<std::size_t>(Size.Width) * static_cast<std::size_t>(Size.Height) * 4);
	for (std::size_t Pixel = 0; Pixel < Bgra.size(); Pixel += 4)
	{
		Bgra[Pixel] = Rgba[Pixel + 2];
		Bgra[Pixel + 1] = Rgba[Pixel + 1];
		Bgra[Pixel + 2] = Rgba[Pixel];
		Bgra[Pixel + 3] = Rgba[Pixel + 3];
	}
	return Bgra;
}
} // namespace

std::optional<FQVImageSize> FImages::GetSize(EQVImageFormat Format, std::span<const std::byte> Bytes) const
{
	return Format == EQVImageFormat::Png ? ReadPngSize(Bytes) : ReadJpegSize(Bytes);
}

bool FImages::GetPixels(EQVImageFormat Format, std::span<const std::byte> Bytes, FQVImagePixels& Out) const
{
	const std::optional<FQVImageSize> Size = GetSize(Format, Bytes);
	if (!Size || static_cast<std::int64_t>(Size->Width) * Size->Height > MostPixels ||
		Bytes.size() > static_cast<std::size_t>(std::numeric_limits<int>::max()) ||
		(Format == EQVImageFormat::Jpeg && !IsJpegSound(Bytes)))
	{
		return false;
	}
	std::vector<std::uint8_t> Bgra = DecodeBgra(Bytes, *Size);
	if (Bgra.empty())
	{
		return false;
	}
	Out = {*Size, std::move(Bgra)};
	return true;
}
} // namespace QVStandalone
