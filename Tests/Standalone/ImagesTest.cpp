// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Images.h"

#include "Tests/Support/SampleImages.h"

#include <gtest/gtest.h>
#include <random>

using namespace QVTest;

namespace
{
constexpr EQVImageFormat Png = EQVImageFormat::Png;
constexpr EQVImageFormat Jpeg = EQVImageFormat::Jpeg;

const QVStandalone::FImages Images;

std::optional<FQVImageSize> SizeOf(EQVImageFormat Format, const std::string& Bytes)
{
	return Images.GetSize(Format, std::as_bytes(std::span(Bytes)));
}

bool Decodes(EQVImageFormat Format, const std::string& Bytes)
{
	FQVImagePixels Pixels;
	const bool bDecoded = Images.GetPixels(Format, std::as_bytes(std::span(Bytes)), Pixels);
	EXPECT_EQ(Pixels.Bgra.size(), static_cast<std::size_t>(Pixels.Size.Width) * Pixels.Size.Height * 4);
	EXPECT_EQ(bDecoded, !Pixels.Bgra.empty());
	return bDecoded;
}

std::string WithMarkerBefore(const std::string& Whole, char Marker, const std::string& Segment)
{
	std::string Bytes = Whole;
	return Bytes.insert(Bytes.find(std::string("\xFF") + Marker), Segment);
}
} // namespace

TEST(Images, PixelsComeAsBlueGreenRedAlpha)
{
	const std::uint8_t Rgba[] = {1, 2, 3, 255, 4, 5, 6, 0, 7, 8, 9, 128, 10, 11, 12, 1, 250, 251, 252, 253, 0, 0, 0, 9};
	const std::string Bytes = MakePng(3, 2, Rgba);
	FQVImagePixels Pixels;
	ASSERT_TRUE(Images.GetPixels(Png, std::as_bytes(std::span(Bytes)), Pixels));
	EXPECT_EQ(Pixels.Size, (FQVImageSize{3, 2}));
	EXPECT_EQ(Pixels.Bgra, (std::vector<std::uint8_t>{
							   3, 2, 1, 255, 6, 5, 4, 0, 9, 8, 7, 128, 12, 11, 10, 1, 252, 251, 250, 253, 0, 0, 0, 9}));
	for (const std::string& Grey : {MakeJpeg(17, 9), MakeProgressiveJpeg(17, 9, 1), MakeProgressiveJpeg(17, 9, 100)})
	{
		ASSERT_TRUE(Images.GetPixels(Jpeg, std::as_bytes(std::span(Grey)), Pixels));
		EXPECT_EQ(Pixels.Size, (FQVImageSize{17, 9}));
		std::vector<std::uint8_t> Expected;
		for (int Pixel = 0; Pixel < 17 * 9; ++Pixel)
		{
			Expected.insert(Expected.end(), {JpegGrey, JpegGrey, JpegGrey, 255});
		}
		EXPECT_EQ(Pixels.Bgra, Expected);
	}
}

TEST(Images, TheSizeIsTheHeadersAndNeedsNoMore)
{
	const struct
	{
		const char* What;
		EQVImageFormat Format;
		std::string Bytes;
		std::optional<FQVImageSize> Size;
		bool bDecodes;
	} Cases[] = {
		{"PNG", Png, MakePng(512, 511), FQVImageSize{512, 511}, true},
		{"JPEG", Jpeg, MakeJpeg(1920, 1080), FQVImageSize{1920, 1080}, true},
		{"wide", Png, MakePng(30'000, 2), FQVImageSize{30'000, 2}, true},
		{"too many pixels", Png, MakePngHeader(30'000, 30'000), FQVImageSize{30'000, 30'000}, false},
		{"the most pixels, without any", Png, MakePngHeader(8192, 4096), FQVImageSize{8192, 4096}, false},
		{"the largest PNG", Png, MakePngHeader(0x7FFF'FFFF, 0x7FFF'FFFF), FQVImageSize{0x7FFF'FFFF, 0x7FFF'FFFF},
			false},
		{"larger than any", Png, MakePngHeader(0x8000'0000, 1), {}, false},
		{"no width", Png, MakePngHeader(0, 4), {}, false},
		{"no height", Jpeg, MakeJpeg(8, 0), {}, false},
		{"the largest JPEG", Jpeg, MakeJpeg(65535, 1), FQVImageSize{65535, 1}, true},
		{"too many pixels of a JPEG", Jpeg, MakeJpeg(65535, 513), FQVImageSize{65535, 513}, false},
		{"PNG called JPEG", Jpeg, MakePng(4, 4), {}, false},
		{"JPEG called PNG", Png, MakeJpeg(4, 4), {}, false},
		{"a text", Png, "Dear diary, ", {}, false},
		{"a text", Jpeg, "Dear diary, ", {}, false},
		{"nothing", Png, "", {}, false},
		{"nothing", Jpeg, "", {}, false},
		{"start alone", Jpeg, "\xFF\xD8", {}, false},
		{"padding", Jpeg, WithMarkerBefore(MakeJpeg(8, 8), '\xC0', "\xFF\xFF\xFF"), FQVImageSize{8, 8}, true},
		{"comment with a frame in it", Jpeg,
			WithMarkerBefore(MakeJpeg(8, 8), '\xDB',
				std::string("\xFF\xFE\x00\x0D\xFF\xC0\x00\x0B\x08\x00\x63\x00\x63\x01\x00", 15)),
			FQVImageSize{8, 8}, true},
		{"arithmetic coding", Jpeg,
			WithMarkerBefore(
				MakeJpeg(8, 8), '\xC0', std::string("\xFF\xC9\x00\x0B\x08\x00\x09\x00\x07\x01\x01\x11\x00", 13)),
			FQVImageSize{7, 9}, false},
		{"a segment that does not end", Jpeg, WithMarkerBefore(MakeJpeg(8, 8), '\xC0', "\xFF\xFE\xFF\xF0 too short"),
			{}, false},
		{"a segment without a length", Jpeg, "\xFF\xD8\xFF\xC0\x01", {}, false},
	};
	for (const auto& Case : Cases)
	{
		SCOPED_TRACE(Case.What);
		EXPECT_EQ(SizeOf(Case.Format, Case.Bytes), Case.Size);
		EXPECT_EQ(Decodes(Case.Format, Case.Bytes), Case.bDecodes);
	}
	std::string Flipped = MakePng(512, 512);
	Flipped[18] = 1; // of the width, which then no longer has its checksum
	EXPECT_EQ(SizeOf(Png, Flipped), std::nullopt);
}

TEST(Images, WhatIsTruncatedOrMadeToBurstIsRefused)
{
	const std::string Whole = MakePng(64, 64);
	for (std::size_t Size = 0; Size < Whole.size(); ++Size)
	{
		const std::string Part = Whole.substr(0, Size);
		EXPECT_EQ(SizeOf(Png, Part).has_value(), Size >= 33) << Size;
		EXPECT_FALSE(Decodes(Png, Part) && Size < Whole.size() - 12) << Size;
	}
	const std::string WholeJpeg = MakeJpeg(64, 64);
	const std::size_t Frame = WholeJpeg.find("\xFF\xC0") + 13;
	for (std::size_t Size = 0; Size < WholeJpeg.size(); ++Size)
	{
		EXPECT_EQ(SizeOf(Jpeg, WholeJpeg.substr(0, Size)).has_value(), Size >= Frame) << Size;
		Decodes(Jpeg, WholeJpeg.substr(0, Size));
	}
	EXPECT_TRUE(Decodes(Png, MakePngOfZeros(8, 8, 1000))) << "a little too much is passed over";
	EXPECT_FALSE(Decodes(Png, MakePngOfZeros(8, 8, 20'000'000))) << "data that unpack to what no 8x8 image needs";
	EXPECT_FALSE(Decodes(Jpeg, MakeProgressiveJpeg(64, 64, 101))) << "more passes than any picture needs";
	const auto WithTable = [&WholeJpeg](char Count, std::size_t Symbols)
	{
		const std::string Body = '\x10' + std::string(8, '\0') + std::string(8, Count) + std::string(Symbols, 'x');
		const std::string Segment = std::string("\xFF\xC4") + static_cast<char>((Body.size() + 2) >> 8) +
									static_cast<char>(Body.size() + 2) + Body;
		return WithMarkerBefore(WholeJpeg, '\xC0', Segment);
	};
	EXPECT_TRUE(Decodes(Jpeg, WithTable(1, 8)));
	EXPECT_FALSE(Decodes(Jpeg, WithTable(1, 7))) << "symbols that are not there";
	EXPECT_FALSE(Decodes(Jpeg, WithTable(33, 264))) << "more symbols than there are";
}

TEST(Images, NoDamageBreaksTheDecoder)
{
	const std::pair<EQVImageFormat, std::string> Sounds[] = {
		{Png, MakePng(40, 30)}, {Jpeg, MakeJpeg(40, 30)}, {Jpeg, MakeProgressiveJpeg(40, 30, 3)}};
	std::mt19937 Random(7);
	const auto Below = [&Random](std::size_t Count)
	{ return std::uniform_int_distribution<std::size_t>(0, Count - 1)(Random); };
	int Decoded = 0;
	for (const auto& [Format, Sound] : Sounds)
	{
		ASSERT_TRUE(Decodes(Format, Sound));
		for (int Round = 0; Round < 3000; ++Round)
		{
			std::string Damaged = Sound;
			for (std::size_t Flips = 1 + Below(4); Flips > 0; --Flips)
			{
				Damaged[Below(Damaged.size())] = static_cast<char>(Below(256));
			}
			Decoded += Decodes(Format, Damaged) ? 1 : 0;
		}
	}
	EXPECT_GT(Decoded, 100) << "some get as far as the pixels";
}
