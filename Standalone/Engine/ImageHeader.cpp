// SPDX-License-Identifier: MIT
#include "Standalone/Engine/ImageHeader.h"

#include "Standalone/Formats/Base/Crc32.h"

#include <algorithm>
#include <array>
#include <limits>

namespace QVStandalone
{
namespace
{
using FBytes = std::span<const std::byte>;

/** A progressive JPEG has about ten; each costs a pass over the whole image. */
constexpr int MostScans = 100;
constexpr std::size_t MostSymbols = 256; // of one Huffman table
constexpr std::size_t FrameHeaderSize = 6;

enum EMarker : std::uint8_t
{
	DefineHuffmanTable = 0xC4,
	JpegExtension = 0xC8,
	DefineArithmeticCoding = 0xCC,
	StartOfImage = 0xD8,
	EndOfImage = 0xD9,
	StartOfScan = 0xDA
};

std::uint8_t ByteAt(FBytes Bytes, std::size_t Place)
{
	return std::to_integer<std::uint8_t>(Bytes[Place]);
}

std::uint32_t BigEndianAt(FBytes Bytes, std::size_t Place, std::size_t Size)
{
	std::uint32_t Value = 0;
	for (const std::byte Each : Bytes.subspan(Place, Size))
	{
		Value = Value << 8 | std::to_integer<std::uint32_t>(Each);
	}
	return Value;
}

std::optional<FQVImageSize> MakeSize(std::uint32_t Width, std::uint32_t Height)
{
	constexpr std::uint32_t Most = std::numeric_limits<std::int32_t>::max();
	if (Width == 0 || Height == 0 || Width > Most || Height > Most)
	{
		return std::nullopt;
	}
	return FQVImageSize{static_cast<std::int32_t>(Width), static_cast<std::int32_t>(Height)};
}

bool IsFrame(std::uint8_t Marker)
{
	return (Marker & 0xF0) == 0xC0 && Marker != DefineHuffmanTable && Marker != JpegExtension &&
		   Marker != DefineArithmeticCoding;
}

struct FSegment
{
	std::uint8_t Marker = EndOfImage;
	/** Behind its length. */
	FBytes Body;
};

/** Goes from segment to segment; what is encoded behind a scan's header is passed over. */
class FSegments
{
public:
	explicit FSegments(FBytes InBytes)
		: Bytes(InBytes)
	{
		const bool bJpeg = Bytes.size() >= 2 && ByteAt(Bytes, 0) == 0xFF && ByteAt(Bytes, 1) == StartOfImage;
		Place = bJpeg ? 2 : Bytes.size();
	}

	/** False at the end of the image, or where a segment is not whole. */
	bool Next(FSegment& Out)
	{
		if (!FindMarker(Out.Marker) || Out.Marker == EndOfImage || Place + 2 > Bytes.size())
		{
			return false;
		}
		const std::size_t Length = BigEndianAt(Bytes, Place, 2); // its own two bytes with it
		if (Length < 2 || Length > Bytes.size() - Place)
		{
			return false;
		}
		Out.Body = Bytes.subspan(Place + 2, Length - 2);
		Place += Length;
		return true;
	}

private:
	const FBytes Bytes;
	std::size_t Place = 0;

	/** A marker that has a body: not one that stands within encoded data. */
	bool FindMarker(std::uint8_t& OutMarker)
	{
		while (Place < Bytes.size())
		{
			const auto Found =
				std::find(Bytes.begin() + static_cast<std::ptrdiff_t>(Place), Bytes.end(), std::byte{0xFF});
			Place = static_cast<std::size_t>(Found - Bytes.begin()) + 1;
			if (Place >= Bytes.size())
			{
				return false;
			}
			OutMarker = ByteAt(Bytes, Place);
			if (OutMarker != 0xFF && OutMarker > 0x01 && (OutMarker < 0xD0 || OutMarker > StartOfImage))
			{
				++Place;
				return true;
			}
		}
		return false;
	}
};

bool AreTablesSound(FBytes Tables)
{
	constexpr std::size_t HeadSize = 17; // which table, and how many codes there are of each length
	while (!Tables.empty())
	{
		if (Tables.size() < HeadSize)
		{
			return false;
		}
		std::size_t Symbols = 0;
		for (std::size_t Length = 1; Length < HeadSize; ++Length)
		{
			Symbols += ByteAt(Tables, Length);
		}
		if (Symbols > MostSymbols || Symbols > Tables.size() - HeadSize)
		{
			return false;
		}
		Tables = Tables.subspan(HeadSize + Symbols);
	}
	return true;
}

} // namespace

std::optional<FQVImageSize> ReadPngSize(FBytes Bytes)
{
	constexpr std::array<std::uint8_t, 16> Head = {
		0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n', 0, 0, 0, 13, 'I', 'H', 'D', 'R'};
	constexpr std::size_t CrcPlace = 29;
	constexpr std::size_t Size = CrcPlace + 4;
	if (Bytes.size() < Size || !std::equal(Head.begin(), Head.end(), Bytes.begin(),
								   [](std::uint8_t A, std::byte B) { return std::byte{A} == B; }))
	{
		return std::nullopt;
	}
	if (QVFormats::Crc32(Bytes.subspan(12, CrcPlace - 12)) != BigEndianAt(Bytes, CrcPlace, 4))
	{
		return std::nullopt;
	}
	return MakeSize(BigEndianAt(Bytes, 16, 4), BigEndianAt(Bytes, 20, 4));
}

std::optional<FQVImageSize> ReadJpegSize(FBytes Bytes)
{
	FSegments Segments(Bytes);
	FSegment Segment;
	while (Segments.Next(Segment) && Segment.Marker != StartOfScan)
	{
		if (IsFrame(Segment.Marker))
		{
			return Segment.Body.size() < FrameHeaderSize
					   ? std::nullopt
					   : MakeSize(BigEndianAt(Segment.Body, 3, 2), BigEndianAt(Segment.Body, 1, 2));
		}
	}
	return std::nullopt;
}

bool IsJpegSound(FBytes Bytes)
{
	int Scans = 0;
	FSegments Segments(Bytes);
	FSegment Segment;
	while (Segments.Next(Segment))
	{
		Scans += Segment.Marker == StartOfScan ? 1 : 0;
		if (Scans > MostScans || (Segment.Marker == DefineHuffmanTable && !AreTablesSound(Segment.Body)))
		{
			return false;
		}
	}
	return Scans > 0;
}
} // namespace QVStandalone
