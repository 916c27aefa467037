// SPDX-License-Identifier: MIT
#include "Tests/Support/SampleImages.h"

#include "Standalone/Formats/Base/Compression.h"
#include "Standalone/Formats/Base/Crc32.h"

namespace QVTest
{
namespace
{
std::string BigEndian(std::uint32_t Value, std::size_t Size)
{
	std::string Bytes;
	for (std::size_t Place = Size; Place-- > 0;)
	{
		Bytes += static_cast<char>(Value >> 8 * Place);
	}
	return Bytes;
}

std::string Chunk(const std::string& Kind, const std::string& Body)
{
	const std::string Checked = Kind + Body;
	return BigEndian(static_cast<std::uint32_t>(Body.size()), 4) + Checked +
		   BigEndian(QVFormats::Crc32(std::as_bytes(std::span(Checked))), 4);
}

std::string Compress(const std::string& Text)
{
	std::string Out(QVFormats::CompressedBound(Text.size()), '\0');
	const std::size_t Size =
		QVFormats::FZlibCompressor().Compress(std::as_bytes(std::span(Text)), std::as_writable_bytes(std::span(Out)));
	return Out.substr(0, Size);
}

std::string WholePng(std::uint32_t Width, std::uint32_t Height, const std::string& Rows)
{
	return MakePngHeader(Width, Height) + Chunk("IDAT", Compress(Rows)) + Chunk("IEND", "");
}

/** Writes bits from the highest down; a byte of ones is followed by a zero, as a scan has it. */
struct FBits
{
	std::string Bytes;
	unsigned Open = 0;
	int Count = 0;

	void Put(unsigned Value, int Length)
	{
		for (int Bit = Length; Bit-- > 0;)
		{
			Open = Open << 1 | (Value >> Bit & 1U);
			if (++Count == 8)
			{
				Bytes += static_cast<char>(Open);
				Bytes += Open == 0xFF ? std::string(1, '\0') : std::string();
				Open = 0;
				Count = 0;
			}
		}
	}
	std::string Finish()
	{
		while (Count != 0)
		{
			Put(1, 1);
		}
		return Bytes;
	}
};

std::string Segment(char Marker, const std::string& Body)
{
	return std::string("\xFF") + Marker + BigEndian(static_cast<std::uint32_t>(Body.size() + 2), 2) + Body;
}

/** A table with the code 0 for the first symbol and, if there is one, 10 for the second. */
std::string HuffmanTable(char Which, const std::string& Symbols)
{
	std::string Counts(16, '\0');
	Counts[0] = 1;
	Counts[1] = static_cast<char>(Symbols.size() - 1);
	return Segment('\xC4', Which + Counts + Symbols);
}

/** Tables and frame. The quantizer 8 makes a block's first coefficient its grey, less 128. */
std::string JpegHead(char Frame, std::uint16_t Width, std::uint16_t Height)
{
	return "\xFF\xD8" + Segment('\xDB', '\0' + std::string(64, 8)) +
		   Segment(Frame, '\x08' + BigEndian(Height, 2) + BigEndian(Width, 2) + std::string("\x01\x01\x11\x00", 4)) +
		   HuffmanTable('\x00', std::string("\x00\x07", 2)) + HuffmanTable('\x10', std::string(1, '\0'));
}

std::string Scan(char LastCoefficient, std::uint16_t Width, std::uint16_t Height)
{
	const bool bDcOnly = LastCoefficient == 0;
	FBits Bits;
	const int Blocks = (Width + 7) / 8 * ((Height + 7) / 8);
	for (int Block = 0; Block < Blocks; ++Block)
	{
		// 10 and seven bits: 100 more than the block before; 0: the same
		Block == 0 ? Bits.Put(0b10U << 7 | (JpegGrey - 128U), 9) : Bits.Put(0, 1);
		Bits.Put(0, bDcOnly ? 0 : 1); // no other coefficients
	}
	return Segment('\xDA', std::string("\x01\x01\x00\x00", 4) + LastCoefficient + '\0') + Bits.Finish();
}
} // namespace

std::string MakePngHeader(std::uint32_t Width, std::uint32_t Height)
{
	return "\x89PNG\r\n\x1A\n" +
		   Chunk("IHDR", BigEndian(Width, 4) + BigEndian(Height, 4) + std::string("\x08\x06\x00\x00\x00", 5));
}

std::string MakePng(std::uint32_t Width, std::uint32_t Height, std::span<const std::uint8_t> Rgba)
{
	std::string Rows;
	for (std::uint32_t Row = 0; Row < Height; ++Row)
	{
		const auto Bytes = Rgba.subspan(Row * Width * 4, Width * 4);
		Rows += '\0' + std::string(Bytes.begin(), Bytes.end());
	}
	return WholePng(Width, Height, Rows);
}

std::string MakePng(std::uint32_t Width, std::uint32_t Height)
{
	return MakePngOfZeros(Width, Height, (Width * std::size_t{4} + 1) * Height);
}

std::string MakePngOfZeros(std::uint32_t Width, std::uint32_t Height, std::size_t Zeros)
{
	return WholePng(Width, Height, std::string(Zeros, '\0'));
}

std::string MakeJpeg(std::uint16_t Width, std::uint16_t Height)
{
	return JpegHead('\xC0', Width, Height) + Scan(63, Width, Height) + "\xFF\xD9";
}

std::string MakeProgressiveJpeg(std::uint16_t Width, std::uint16_t Height, int Scans)
{
	std::string Bytes = JpegHead('\xC2', Width, Height);
	for (int Each = 0; Each < Scans; ++Each)
	{
		Bytes += Scan(0, Width, Height);
	}
	return Bytes + "\xFF\xD9";
}
} // namespace QVTest
