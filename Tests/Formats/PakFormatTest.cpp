// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/Crc32.h"
#include "Standalone/Formats/Base/Unicode.h"
#include "Standalone/Formats/Pak/CompressionProbe.h"
#include "Standalone/Formats/Pak/PakPaths.h"
#include "Tests/Formats/PakTestSupport.h"

#include <gtest/gtest.h>

namespace QVTest
{
using namespace QVFormats;

TEST(Sha1, GivesTheStandardsValuesHoweverTheBytesCome)
{
	const struct
	{
		FContent Bytes;
		const char* Hash;
	} Cases[] = {
		{{}, "da39a3ee5e6b4b0d3255bfef95601890afd80709"},
		{BytesOf("abc"), "a9993e364706816aba3e25717850c26c9cd0d89d"},
		{BytesOf("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"),
			"84983e441c3bd26ebaae4aa1f95129e5e54670f1"},
		{FContent(1000000, std::byte{'a'}), "34aa973cd4c4daa4f61eeb2bdbad27316534016f"},
	};
	for (const auto& Case : Cases)
	{
		EXPECT_EQ(HashText(FSha1::Of(Case.Bytes)), Case.Hash);
	}
	const FContent Bytes = RandomBytes(300, 5);
	for (std::size_t Cut = 0; Cut <= Bytes.size(); ++Cut)
	{
		FSha1 Hash;
		Hash.Update(FBytes(Bytes).first(Cut / 2));
		Hash.Update(FBytes(Bytes).subspan(Cut / 2, Cut - Cut / 2));
		EXPECT_EQ(Hash.Finish(), FSha1::Of(FBytes(Bytes).first(Cut))) << Cut;
	}
}

TEST(Crc32, GivesTheCommonValue)
{
	EXPECT_EQ(Crc32({}), 0U);
	EXPECT_EQ(Crc32(BytesOf("123456789")), 0xCBF43926U);
}

TEST(Compression, InflatesOnlyWhatFitsExactly)
{
	const FContent Plain = RandomThenZeros(5000, 5000);
	FContent Packed(CompressedBound(Plain.size()));
	FZlibCompressor Compressor;
	FZlibDecompressor Decompressor;
	Packed.resize(Compressor.Compress(Plain, Packed));
	FContent Out(Plain.size());
	EXPECT_TRUE(Decompressor.Decompress(Packed, Out));
	EXPECT_EQ(Out, Plain);
	EXPECT_EQ(Packed[0], std::byte{0x78});
	EXPECT_EQ(Packed[1], std::byte{0x9C});
	FContent Less(Plain.size() - 1);
	EXPECT_FALSE(Decompressor.Decompress(Packed, Less));
	FContent More(Plain.size() + 1);
	EXPECT_FALSE(Decompressor.Decompress(Packed, More));
	EXPECT_FALSE(Decompressor.Decompress(FBytes(Packed).first(Packed.size() - 1), Out));
	Packed.push_back(std::byte{0});
	EXPECT_FALSE(Decompressor.Decompress(Packed, Out));
	FContent Small(100);
	EXPECT_EQ(Compressor.Compress(Plain, Small), 0U);
}

TEST(CompressionProbe, IsSureOnlyOfWhatDoesNotCompress)
{
	FContent Block = RandomBytes(PakBlockBytes, 9);
	EXPECT_TRUE(IsSurelyIncompressible(Block));
	EXPECT_TRUE(IsSurelyIncompressible(FBytes(Block).first(2048)));
	EXPECT_FALSE(IsSurelyIncompressible(FBytes(Block).first(2047)));
	FContent Repeated = Block;
	std::copy_n(Block.begin() + 100, 700, Repeated.begin() + 30000);
	EXPECT_FALSE(IsSurelyIncompressible(Repeated));
	FContent Stretch = Block;
	std::fill_n(Stretch.begin() + 40000, 700, std::byte{'e'});
	EXPECT_FALSE(IsSurelyIncompressible(Stretch));
	FContent Seven = Block;
	std::for_each(Seven.begin(), Seven.end(), [](std::byte& Byte) { Byte &= std::byte{0x7F}; });
	EXPECT_FALSE(IsSurelyIncompressible(Seven));
}

TEST(PakFormat, HashesPathsAsTheEngineDoes)
{
	// From a pak that the engine's own tool made.
	EXPECT_EQ(PakPathHash("", "DA_PatchTarget.uasset", 0xD7BC70F9), 0x8A06EA2958A0AF70U);
	EXPECT_EQ(PakPathHash("", "da_patchtarget.UASSET", 0xD7BC70F9), 0x8A06EA2958A0AF70U);
	EXPECT_EQ(PakPathHash("Maps/", "Hall.umap", 1), PakPathHash("", "Maps/Hall.umap", 1));
	// Four bytes for each letter, made small.
	EXPECT_EQ(PakPathHashSeed("A.pak"), Crc32(FromHex("610000002e000000700000006100000"
													  "06b000000")));
}

TEST(PakFormat, CompressionPaysFrom1024BytesAnd5PercentOn)
{
	const struct
	{
		std::uint64_t Size;
		std::uint64_t Compressed;
		bool bPays;
	} Cases[] = {
		{0, 0, false},
		{1023, 0, false},
		{1024, 0, true},
		{10000, 8977, false},
		{10000, 8976, true},
		{10000, 10001, false},
		{20480, 19456, true},
		{20481, 19457, false},
		{1000000, 950001, false},
		{1000000, 950000, true},
	};
	for (const auto& Case : Cases)
	{
		EXPECT_EQ(PakCompressionPays(Case.Size, Case.Compressed), Case.bPays) << Case.Size << " " << Case.Compressed;
	}
}

TEST(PakFormat, EncodedEntriesComeBack)
{
	const std::uint64_t Large = (std::uint64_t{1} << 32) + 5;
	const std::vector<std::uint32_t> Lengths(3, 700);
	const FBytes LengthBytes = std::as_bytes(std::span(Lengths));
	const FPakEncodedEntry Entries[] = {
		{0, 12, 12, 0, 0, 0, false, {}},
		{Large, Large, Large, 0, 0, 0, true, {}},
		{7, 2100, 180000, 1, PakBlockBytes, 3, false, LengthBytes},
		{7, 500, 2500, 1, 2500, 1, false, {}},
		{7, 500, 4096, 2, 4096, 1, true, LengthBytes.first(4)},
		{Large, Large, Large + 1, 1, 1 << 20, 3, true, LengthBytes},
	};
	const std::size_t Sizes[] = {12, 20, 28, 20, 20, 44};
	for (std::size_t Index = 0; Index < std::size(Entries); ++Index)
	{
		const FPakEncodedEntry& Entry = Entries[Index];
		FByteWriter Out;
		Entry.Write(Out);
		EXPECT_EQ(Out.Position(), Sizes[Index]) << Index;
		FByteReader In(Out.Bytes());
		FPakEncodedEntry Read;
		Read.Read(In);
		EXPECT_FALSE(In.Failed());
		EXPECT_EQ(In.Remaining(), 0U);
		EXPECT_EQ(std::tie(Read.Offset, Read.Size, Read.UncompressedSize, Read.Method, Read.BlockSize, Read.BlockCount,
					  Read.bEncrypted),
			std::tie(Entry.Offset, Entry.Size, Entry.UncompressedSize, Entry.Method, Entry.BlockSize, Entry.BlockCount,
				Entry.bEncrypted));
		EXPECT_TRUE(std::equal(
			Read.BlockLengths.begin(), Read.BlockLengths.end(), Entry.BlockLengths.begin(), Entry.BlockLengths.end()));
	}
}

TEST(PakPaths, NormalizesDestinations)
{
	const struct
	{
		const char* Destination;
		const char* Result;
	} Cases[] = {
		{"../../../Cave/Content/A.umap", "../../../Cave/Content/A.umap"},
		{"..\\..\\..\\Cave\\A.umap", "../../../Cave/A.umap"},
		{"../../..//Cave/./B/../A.umap", "../../../Cave/A.umap"},
		{"../mount/point/top/test.txt", "../mount/point/top/test.txt"},
		{"/Cave/A.umap", "/Cave/A.umap"},
		{"A.umap", "A.umap"},
		{"Лес/森.umap", "Лес/森.umap"},
	};
	for (const auto& Case : Cases)
	{
		const TResult<std::string> Result = NormalizePakDestination(Case.Destination);
		EXPECT_EQ(Result ? *Result : Result.Error().Message, Case.Result);
	}
	const std::string Climbs = "climbs out of its root; \"../../../\" at its beginning is the most that is allowed";
	const std::pair<std::string, std::string> Refused[] = {
		{"", "is empty; a file needs a name in the pak"},
		{"../../../Cave/", "names a folder, not a file"},
		{"../..", "names a folder, not a file"},
		{"../../../../A.umap", Climbs},
		{"../../../Cave/../../A.umap", Climbs},
		{"Cave/../../A.umap", Climbs},
		{"/../A.umap", Climbs},
		{"C:/Cave/A.umap", "holds a colon or a control character"},
		{"Cave/A\n.umap", "holds a colon or a control character"},
	};
	for (const auto& [Destination, Reason] : Refused)
	{
		EXPECT_EQ(
			NormalizePakDestination(Destination).Error().Message, "destination \"" + Destination + "\" " + Reason);
	}
}

TEST(PakPaths, KnowsWhatLeavesAFolder)
{
	for (const char* Safe : {"A", "Maps/A.umap", "a..b/..c/d..", "Лес/森"})
	{
		EXPECT_EQ(WhyUnsafeBelowFolder(Safe), "") << Safe;
	}
	const std::pair<std::string_view, std::string_view> Cases[] = {
		{"", "it is empty"},
		{"/etc/A", "it is absolute"},
		{"A/", "it names a folder"},
		{"A//B", "it has an empty folder name"},
		{"../A", "it leaves its folder by \".\" or \"..\""},
		{"A/../../B", "it leaves its folder by \".\" or \"..\""},
		{"A/.", "it leaves its folder by \".\" or \"..\""},
		{"A\\..\\B", "it holds a backslash"},
		{"C:A", "it holds a colon or a control character"},
		{std::string_view("A\0B", 3), "it holds a colon or a control character"},
	};
	for (const auto& [Path, Reason] : Cases)
	{
		EXPECT_EQ(WhyUnsafeBelowFolder(Path), Reason) << Path;
	}
}
} // namespace QVTest
