// SPDX-License-Identifier: MIT
#include "Tests/Formats/PakTestSupport.h"

#include <cstdlib>
#include <gtest/gtest.h>

namespace QVTest
{
using namespace QVFormats;
namespace fs = std::filesystem;

namespace
{
using FNames = std::vector<std::string>;

FNames PathsOf(const FPakReader& Reader)
{
	FNames Paths;
	for (const FPakEntry& Entry : Reader.Entries())
	{
		Paths.push_back(Entry.Path());
	}
	return Paths;
}

FPakForge SmallForge()
{
	return FPakForge()
		.Add("", "A.txt", "abc")
		.AddZlib("Maps/", "Hall.umap", RandomThenZeros(40, 1500))
		.Add("", "Z", "");
}

/** Opens, checks and reads everything; true when nothing was found wrong or left out. */
bool IsFlawless(const FContent& Pak, EPakIndexHashes Hashes = EPakIndexHashes::Check)
{
	const TResult<FPakReader> Reader = Parse(Pak, Hashes);
	if (!Reader)
	{
		return false;
	}
	const FPakVerifyReport Report = VerifyPak(*Reader, 1);
	return Report.IsSound() && Report.Notes.empty();
}

template<class T>
FContent With(FContent Pak, std::size_t Position, T Value)
{
	std::memcpy(Pak.data() + Position, &Value, sizeof(Value));
	return Pak;
}
} // namespace

TEST(PakReader, ReadsEveryVersion)
{
	const struct
	{
		EPakVersion Version;
		bool bEarlyFooter;
		bool bPlainEntries;
		FNames Notes;
	} Cases[] = {
		{EPakVersion::CompressionNames, true, false, {": path hashes not checked: the pak has no path hash index"}},
		{EPakVersion::CompressionNames, false, false, {": path hashes not checked: the pak has no path hash index"}},
		{EPakVersion::FrozenIndex, false, false, {": path hashes not checked: the pak has no path hash index"}},
		{EPakVersion::PathHashIndex, false, false,
			{": path hashes not checked: version 10 calculates them in another way"}},
		{EPakVersion::Fnv64BugFix, false, false, {}},
		{EPakVersion::Fnv64BugFix, false, true, {}},
		{EPakVersion::Utf8Directory, false, false, {}},
	};
	for (const auto& Case : Cases)
	{
		SCOPED_TRACE(static_cast<int>(Case.Version));
		FPakForge Forge = SmallForge();
		Forge.Version = Case.Version;
		Forge.bEarlyFooter = Case.bEarlyFooter;
		Forge.bPlainEntries = Case.bPlainEntries;
		const FContent Pak = Forge.Make();
		const TResult<FPakReader> Reader = Parse(Pak);
		ASSERT_TRUE(Reader) << Reader.Error().Message;
		EXPECT_EQ(Reader->Version(), Case.Version);
		EXPECT_EQ(Reader->MountPoint(), "../../../Cave/Content/");
		EXPECT_EQ(PathsOf(*Reader), (FNames{"A.txt", "Maps/Hall.umap", "Z"}));
		const FPakEntry* Hall = Reader->Find("maps/HALL.umap");
		ASSERT_NE(Hall, nullptr);
		EXPECT_EQ(Reader->MethodName(*Hall), "Zlib");
		EXPECT_EQ(Hall->UncompressedSize, 1540U);
		EXPECT_EQ(Reader->Find("Maps/Hall"), nullptr);
		const FPakVerifyReport Report = VerifyPak(*Reader);
		EXPECT_EQ(Texts(Report.Problems), FNames());
		EXPECT_EQ(Texts(Report.Notes), Case.Notes);
		EXPECT_EQ(Report.InflatedBytes, 1540U);
	}
}

TEST(PakReader, SortsWithoutCaseWhateverTheOrderOfEntries)
{
	const FContent Pak = FPakForge().Add("b/", "1", "").Add("", "C", "").Add("B/", "0", "").Add("", "a", "").Make();
	EXPECT_EQ(PathsOf(*Parse(Pak)), (FNames{"a", "B/0", "b/1", "C"}));
	for (const EPakVersion Version : {EPakVersion::Fnv64BugFix, EPakVersion::Utf8Directory})
	{
		FPakForge Forge = FPakForge().Add("Лес/", "\xE6\xA3\xAE.umap", "x");
		Forge.Version = Version;
		const FContent Wide = Forge.Make();
		EXPECT_EQ(PathsOf(*Parse(Wide)), FNames{"Лес/森.umap"});
	}
}

TEST(PakReader, RefusesByName)
{
	const FContent Pak = SmallForge().Make();
	const std::size_t Footer = Pak.size() - PakFooterBytes;
	const auto Forged = [](auto Change)
	{
		FPakForge Forge = SmallForge();
		Change(Forge);
		return Forge.Make();
	};
	const std::int64_t IndexOffset = Parse(Pak)->Footer().IndexOffset;
	const auto Index = static_cast<std::size_t>(IndexOffset);
	const auto IndexSize = static_cast<std::size_t>(Parse(Pak)->Footer().IndexSize);
	const struct
	{
		FContent Pak;
		std::string Message;
	} Cases[] = {
		{{}, "Test.pak is empty; a pak has a footer of 221 bytes"},
		{FContent(100), "Test.pak is too small for a pak: 100 bytes, and the footer alone has 221"},
		{FContent(5000), "Test.pak is not a pak file: its end does not hold the mark 0x5A6F12E1 where a footer of "
						 "version 8 to 12 has it"},
		{With(Pak, Footer + 21, 13), "Test.pak: pak version 13 is not known; versions 8 to 12 can be read"},
		{With(With(FContent(300), 300 - 44, PakMagic), 300 - 40, 7),
			"Test.pak: pak version 7 is not known; versions 8 to 12 can be read"},
		{With(Pak, Footer + 25, std::int64_t{1} << 40),
			"Test.pak: the index lies outside the file: offset 1099511627776, size " + std::to_string(IndexSize) +
				", and the footer begins at " + std::to_string(Footer)},
		{With(Pak, Footer + 33, std::int64_t{-1}), "Test.pak: the index lies outside the file: offset " +
													   std::to_string(IndexOffset) +
													   ", size -1, and the footer begins at " + std::to_string(Footer)},
		{Forged([](FPakForge& Forge) { Forge.bIndexEncrypted = true; }),
			"Test.pak: the index is encrypted; a pak without encryption is needed"},
		{Forged(
			 [](FPakForge& Forge)
			 {
				 Forge.Version = EPakVersion::FrozenIndex;
				 Forge.bIndexFrozen = true;
			 }),
			"Test.pak: the index is frozen (version 9), which is a memory image; pack it anew without freezing"},
		{Forged([](FPakForge& Forge) { Forge.bWithDirectory = false; }),
			"Test.pak: it has no full directory index, so the names of its files are not in it"},
		{Forged([](FPakForge& Forge) { Forge.Add("", "a.TXT", ""); }), "Test.pak: it holds \"A.txt\" twice"},
		{Forged([](FPakForge& Forge) { Forge.Methods = {}; }),
			"Test.pak: \"Maps/Hall.umap\" is compressed by method 1, which the footer does not name"},
		{Forged([](FPakForge& Forge) { Forge.Files[1].UncompressedSize = 1U << 30; }),
			"Test.pak: \"Maps/Hall.umap\" cannot have 1 blocks of 1073741824 bytes, since its size is 1073741824"},
	};
	for (const auto& Case : Cases)
	{
		EXPECT_EQ(OpenError(Case.Pak), Case.Message);
	}
	const std::string Damaged = " is damaged: its hash is ";
	EXPECT_NE(OpenError(With(Pak, Index + 40, 1)).find("the index" + Damaged), std::string::npos);
	EXPECT_NE(OpenError(With(Pak, Footer - 2, 'x')).find("the directory index" + Damaged), std::string::npos);
	EXPECT_NE(OpenError(With(Pak, Index + IndexSize + 4, 1)).find("the path hash index" + Damaged), std::string::npos);
	EXPECT_EQ(FPakReader::Open("/nowhere/None.pak").Error().Message,
		"/nowhere/None.pak could not be opened: No such file or directory");
}

TEST(PakReader, RefusesImpossibleCountsAndPlaces)
{
	FPakForge Forge = FPakForge().Add("", "A.txt", "abc");
	const FContent Pak = Forge.Make();
	const auto Index = static_cast<std::size_t>(Parse(Pak)->Footer().IndexOffset);
	const std::size_t Encoded = Index + 27 + 12 + 80;
	const std::size_t Directory = Encoded + 4 + 12 + 4 + 20;
	Forge.Version = EPakVersion::CompressionNames;
	const FContent Old = Forge.Make();
	const auto OldCount = static_cast<std::size_t>(Parse(Old)->Footer().IndexOffset) + 27;
	const struct
	{
		const FContent& Pak;
		std::size_t Position;
		std::int32_t Value;
		std::string Message;
	} Cases[] = {
		{Pak, Index, 0x7FFFFFFF, "the index ends too early"},
		{Pak, Index + 27, 0, "the index counts 0 files, its directory index 1"},
		{Pak, Encoded, 0x7FFFFFFF, "the index ends too early or counts more entries than it can hold"},
		{Pak, Encoded + 16, 0x7FFFFFFF, "the index ends too early or counts more entries than it can hold"},
		{Pak, Encoded + 8, 50, "\"A.txt\" lies outside the file: offset 50, size 3, and the index begins at 56"},
		{Pak, Encoded + 12, 4, "\"A.txt\" lies outside the file: offset 0, size 4, and the index begins at 56"},
		{Pak, Directory, 0x7FFFFFFF, "the directory index ends too early or counts more than it can hold"},
		{Pak, Directory + 10, -1, "the directory index ends too early or counts more than it can hold"},
		{Pak, Directory + 24, 12, "the entry of \"A.txt\" is outside the encoded entries: place 12 of 12 bytes"},
		{Pak, Directory + 24, -1, "the entry of \"A.txt\" is plain entry 0 of 0"},
		{Old, OldCount, 0x7FFFFFFF, "the index ends too early or counts more files than it can hold"},
	};
	for (const auto& Case : Cases)
	{
		EXPECT_EQ(
			OpenError(With(Case.Pak, Case.Position, Case.Value), EPakIndexHashes::Skip), "Test.pak: " + Case.Message);
	}
}

TEST(PakReader, SurvivesEveryTruncation)
{
	const FContent Pak = SmallForge().Make();
	for (std::size_t Size = 0; Size < Pak.size(); ++Size)
	{
		// Of exactly that size, so that a sanitizer sees one byte too far.
		const FContent Short(Pak.begin(), Pak.begin() + static_cast<std::ptrdiff_t>(Size));
		EXPECT_NE(OpenError(Short), "") << Size;
	}
}

TEST(PakReader, NoticesEveryFlippedByteThatMatters)
{
	const FContent Pak = SmallForge().Make();
	ASSERT_TRUE(IsFlawless(Pak));
	std::vector<std::size_t> Unnoticed;
	for (std::size_t Position = 0; Position < Pak.size(); ++Position)
	{
		for (const std::byte Bits : {std::byte{0x01}, std::byte{0x80}, std::byte{0xFF}})
		{
			const FContent Flipped = With(Pak, Position, Pak[Position] ^ Bits);
			if (IsFlawless(Flipped) && (Unnoticed.empty() || Unnoticed.back() != Position))
			{
				Unnoticed.push_back(Position);
			}
		}
	}
	// No check covers the key guid of a pak that is not encrypted, nor the names of methods that no file has: here all
	// behind "Zlib" and its NUL.
	std::vector<std::size_t> Expected;
	for (std::size_t Position = 0; Position < PakFooterBytes; ++Position)
	{
		if (Position < 16 || Position > PakFooterBaseBytes + 4)
		{
			Expected.push_back(Pak.size() - PakFooterBytes + Position);
		}
	}
	EXPECT_EQ(Unnoticed, Expected);
}

TEST(PakReader, SurvivesAnythingInAnIndexThatIsBelieved)
{
	for (const EPakVersion Version :
		{EPakVersion::CompressionNames, EPakVersion::Fnv64BugFix, EPakVersion::Utf8Directory})
	{
		for (const bool bPlainEntries : {false, true})
		{
			FPakForge Forge = SmallForge();
			Forge.Version = Version;
			Forge.bPlainEntries = bPlainEntries;
			Forge.Files[1].bEncrypted = bPlainEntries;
			const FContent Pak = Forge.Make();
			const auto Begin = static_cast<std::size_t>(Parse(Pak)->Footer().IndexOffset);
			for (std::size_t Position = Begin; Position + 4 < Pak.size(); ++Position)
			{
				for (const std::uint32_t Value : {0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFFU, 0x00010000U, 0U})
				{
					IsFlawless(With(Pak, Position, Value), EPakIndexHashes::Skip);
				}
			}
		}
	}
}

TEST(PakVerify, NamesWhatIsWrongInARecord)
{
	const FContent Pak = SmallForge().Make();
	const auto Hall = static_cast<std::size_t>(Parse(Pak)->Find("Maps/Hall.umap")->Offset);
	const auto Stored = static_cast<std::size_t>(Parse(Pak)->Find("Maps/Hall.umap")->Size);
	const std::string Size = std::to_string(Stored);
	const struct
	{
		std::size_t Position;
		std::int32_t Value;
		std::string Message;
	} Cases[] = {
		{0, 1, "the record's offset is 1, and 0 was expected"},
		{8, 1, "the record's size is 1, the index has " + Size},
		{16, 1, "the record's uncompressed size is 1, the index has 1540"},
		{24, 2, "the record's compression method is 2, the index has 1"},
		{48, 9999, "the record's head is damaged: its block count does not fit into it"},
		{52, 74, "the record's blocks lie elsewhere than the index has them"},
		{69, 7, "the record's block size is 7, the index has 1540"},
	};
	for (const auto& Case : Cases)
	{
		const FContent Broken = With(Pak, Hall + Case.Position, Case.Value);
		EXPECT_EQ(Texts(VerifyPak(*Parse(Broken)).Problems), FNames{"Maps/Hall.umap: " + Case.Message});
	}
	const FContent Content = With(Pak, Hall + 73 + Stored - 1, '!');
	const FNames Problems = Texts(VerifyPak(*Parse(Content)).Problems);
	ASSERT_EQ(Problems.size(), 1U);
	EXPECT_EQ(Problems[0].substr(0, 52), "Maps/Hall.umap: the content is damaged: its hash is ");
}

TEST(PakVerify, ChecksBlocksWhoseHashIsRight)
{
	FPakForge Forge = SmallForge();
	Forge.Files[1].Stored.back() ^= std::byte{1};
	const FContent Broken = Forge.Make();
	EXPECT_EQ(Texts(VerifyPak(*Parse(Broken)).Problems),
		FNames{"Maps/Hall.umap: block 1 of 1 does not inflate to its 1540 bytes"});
	Forge = SmallForge();
	--Forge.Files[1].UncompressedSize;
	const FContent Longer = Forge.Make();
	EXPECT_EQ(Texts(VerifyPak(*Parse(Longer)).Problems),
		FNames{"Maps/Hall.umap: block 1 of 1 does not inflate to its 1539 bytes"});
}

TEST(PakVerify, NotesWhatItCannotLookInto)
{
	FPakForge Forge = SmallForge();
	Forge.Files[0].bEncrypted = true;
	Forge.Files[1].Method = 2;
	const FContent Pak = Forge.Make();
	const FPakVerifyReport Report = VerifyPak(*Parse(Pak));
	EXPECT_EQ(Texts(Report.Problems), FNames());
	EXPECT_EQ(Texts(Report.Notes), (FNames{"A.txt: content not checked: encrypted",
									   "Maps/Hall.umap: content not checked: compressed with Oodle"}));
}

TEST(PakVerify, SoundOnPaksOfTheEngine)
{
	const char* Content = std::getenv("QVMAP_TEST_CONTENT");
	if (Content == nullptr)
	{
		GTEST_SKIP() << "QVMAP_TEST_CONTENT is not set";
	}
	const fs::path Root(Content);
	const struct
	{
		const char* File;
		EPakVersion Version;
		const char* MountPoint;
		std::size_t Files;
		std::size_t Notes;
	} Cases[] = {
		{"simple2d/Releases/1.0/Windows/Remaster2D-Windows_0_P.pak", EPakVersion::Fnv64BugFix, "/", 0, 0},
		{"pak-v12/UE5_8/LegacyPak/Tagged/Oodle/CUE4ParseFixtures-Legacy-Tagged-Oodle.pak", EPakVersion::Utf8Directory,
			"../../../CUE4ParseFixtures/Content/Fixtures/", 11, 10},
		{"pak-v12/UE5_8/LegacyPak/Tagged/Zlib/CUE4ParseFixtures-Legacy-Tagged-Zlib.pak", EPakVersion::Utf8Directory,
			"../../../CUE4ParseFixtures/Content/Fixtures/", 11, 0},
		{"pak-v12/UE5_8/Patch/Pak/CUE4ParseFixtures-PatchBase.pak", EPakVersion::Utf8Directory,
			"../../../CUE4ParseFixtures/Content/PatchFixtures/", 4, 0},
		{"pak-v12/UE5_8/Patch/Pak/CUE4ParseFixtures-PatchBase_0_P.pak", EPakVersion::Utf8Directory,
			"../../../CUE4ParseFixtures/Content/PatchFixtures/", 2, 0},
	};
	for (const auto& Case : Cases)
	{
		SCOPED_TRACE(Case.File);
		const TResult<FPakReader> Reader = FPakReader::Open(Root / Case.File);
		ASSERT_TRUE(Reader) << Reader.Error().Message;
		EXPECT_EQ(Reader->Version(), Case.Version);
		EXPECT_EQ(Reader->MountPoint(), Case.MountPoint);
		EXPECT_EQ(Reader->Entries().size(), Case.Files);
		const FPakVerifyReport Report = VerifyPak(*Reader);
		EXPECT_EQ(Texts(Report.Problems), FNames());
		EXPECT_EQ(Report.Notes.size(), Case.Notes);
	}
}
} // namespace QVTest
