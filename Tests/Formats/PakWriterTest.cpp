// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/PathText.h"
#include "Standalone/Formats/Base/Unicode.h"
#include "Tests/Formats/PakTestSupport.h"
#include "Tests/Support/SmallDisk.h"
#include "Tests/Support/TestPrograms.h"

#include <gtest/gtest.h>

namespace QVTest
{
using namespace QVFormats;
namespace fs = std::filesystem;

namespace
{
constexpr std::string_view Root = "../../../Cave/Content/";

FPakWriteOptions WithThreads(unsigned Threads)
{
	FPakWriteOptions Options;
	Options.Threads = Threads;
	return Options;
}

/** Files on disk that are to be packed, and what they hold. */
class FPakInput
{
public:
	void Add(const std::string& Name, FContent Content, bool bCompress = true)
	{
		const fs::path Source = Temp.Path() / "Sources" / PathFromUtf8(Name);
		WriteBytes(Source, Content);
		Sources.push_back({Source, std::string(Root) + Name, bCompress});
		Contents["Cave/Content/" + Name] = std::move(Content);
	}

	fs::path Target() const { return Temp.Path() / "Map_P.pak"; }
	fs::path Extracted() const { return Temp.Path() / "Extracted"; }

	FContent Pack(unsigned Threads = 0) const
	{
		const TResult<FPakWriteSummary> Summary = WritePak(Target(), Sources, WithThreads(Threads));
		EXPECT_TRUE(Summary) << Summary.Error().Message;
		return ReadBytes(Target());
	}

	/** Packs, checks and extracts; the tree that comes out is the one that went in. */
	void ExpectRoundTrip() const
	{
		Pack();
		const TResult<FPakReader> Reader = FPakReader::Open(Target());
		ASSERT_TRUE(Reader) << Reader.Error().Message;
		const FPakVerifyReport Report = VerifyPak(*Reader);
		EXPECT_EQ(Texts(Report.Problems), std::vector<std::string>());
		EXPECT_EQ(Texts(ExtractPak(*Reader, Extracted()).Problems), std::vector<std::string>());
		EXPECT_EQ(ReadTree(Extracted()), Contents);
	}

	std::string MethodOf(const std::string& Name) const
	{
		const TResult<FPakReader> Reader = FPakReader::Open(Target());
		const FPakEntry* Entry = Reader ? Reader->Find(Name) : nullptr;
		return Entry == nullptr ? "no such entry" : std::string(Reader->MethodName(*Entry));
	}

	FTempFolder Temp;
	std::vector<FPakSource> Sources;
	std::map<std::string, FContent> Contents;
};

/** Even data with a random block at every place where samples are taken. */
FContent LooksRandomButIsNot()
{
	FContent Content(2 << 20);
	for (std::size_t Sample = 0; Sample < 4; ++Sample)
	{
		const FContent Random = RandomBytes(16 * 1024, static_cast<unsigned>(Sample));
		std::copy(Random.begin(), Random.end(), Content.begin() + static_cast<std::ptrdiff_t>(Sample * (1 << 19)));
	}
	return Content;
}

/** So many random bytes and then zeros that compressing saves exactly this much. */
FContent ContentThatSaves(std::size_t Saving)
{
	FZlibCompressor Compressor;
	FContent Out(PakBlockBytes);
	for (std::size_t Zeros = Saving; Zeros < Saving + 200; ++Zeros)
	{
		FContent Content = RandomThenZeros(3000, Zeros);
		if (Content.size() - Compressor.Compress(Content, Out) == Saving)
		{
			return Content;
		}
	}
	ADD_FAILURE() << "no content saves " << Saving;
	return {};
}
} // namespace

TEST(PakWriter, WritesTheGoldenBytes)
{
	FPakInput Input;
	const fs::path Source = Input.Temp.Path() / "Source";
	WriteBytes(Source, BytesOf("abc"));
	const struct
	{
		const char* Name;
		std::vector<FPakSource> Sources;
		std::string Hex;
	} Cases[] = {
		{"Tiny.pak", {{Source, "../../../Cave/Content/A.txt", true}},
			// Record: offset 0, size 3, uncompressed 3, method 0, SHA-1 of "abc", flags, block size, "abc".
			"0000000000000000"
			"0300000000000000"
			"0300000000000000"
			"00000000"
			"a9993e364706816aba3e25717850c26c9cd0d89d"
			"00"
			"00000000"
			"616263"
			// Index: mount point, 1 file, seed, path hash index at 195 (20 bytes), directory at 215 (28 bytes),
			// 12 bytes of encoded entries (offset 0, size 3), no plain ones.
			"17000000"
			"2e2e2f2e2e2f2e2e2f436176652f436f6e74656e742f00"
			"01000000"
			"e5b6010300000000"
			"01000000"
			"c300000000000000"
			"1400000000000000"
			"ad795ad6b732bd90c257c5c59d02d21c631cda63"
			"01000000"
			"d700000000000000"
			"1c00000000000000"
			"0cdd9c15a733ae91ec570f2114f41e7d52e44531"
			"0c000000"
			"000000e0"
			"00000000"
			"03000000"
			"00000000"
			// Path hash index: 1 hash with place 0, no pruned directory.
			"01000000"
			"f51ca90812052d2f"
			"00000000"
			"00000000"
			// Directory: the folder "/" with one file at place 0.
			"01000000"
			"02000000"
			"2f00"
			"01000000"
			"06000000"
			"412e74787400"
			"00000000"
			// Footer: index of 139 bytes at 56, its hash; no methods.
			"00000000000000000000000000000000"
			"00"
			"e1126f5a"
			"0b000000"
			"3800000000000000"
			"8b00000000000000"
			"e3cf2e57b687bc2ae34ac23e3ce917bf1bd659cf"},
		{"Empty.pak", {},
			"02000000"
			"2f00"
			"00000000"
			"2a8e069b00000000"
			"01000000"
			"6a00000000000000"
			"0800000000000000"
			"05fe405753166f125559e7c9ac558654f107c7e9"
			"01000000"
			"7200000000000000"
			"0400000000000000"
			"9069ca78e7450a285173431b3e52c5c25299e473"
			"00000000"
			"00000000"
			"00000000"
			"00000000"
			"00000000"
			"00000000000000000000000000000000"
			"00"
			"e1126f5a"
			"0b000000"
			"0000000000000000"
			"6a00000000000000"
			"53489e35fba60058829e16c8c9373c65aa84cef1"},
	};
	for (const auto& Case : Cases)
	{
		FContent Expected = FromHex(Case.Hex);
		Expected.resize(Expected.size() + 160);
		const fs::path Target = Input.Temp.Path() / Case.Name;
		ASSERT_TRUE(WritePak(Target, Case.Sources));
		EXPECT_EQ(ReadBytes(Target), Expected);
	}
}

TEST(PakWriter, RandomTreesComeBack)
{
	for (unsigned Seed = 1; Seed <= 4; ++Seed)
	{
		std::mt19937 Random(Seed);
		FPakInput Input;
		// where names heed no case, maps and Maps would be one folder
		const char* Folders[] = {"", "Maps/", bNamesHeedCase ? "maps/Deep/er/" : "Maps/Deep/er/", "Лес и река/", "森/"};
		for (int Number = 0; Number < 40; ++Number)
		{
			const std::size_t Size = Random() % 6 == 0 ? 0 : Random() % (Random() % 5 == 0 ? 200000 : 5000);
			FContent Content = Random() % 2 == 0 ? RandomBytes(Size, static_cast<unsigned>(Random()))
												 : RandomThenZeros(Size / 3, Size);
			Input.Add(Folders[Random() % 5] + std::to_string(Number) + ".uexp", std::move(Content), Random() % 4 != 0);
		}
		Input.ExpectRoundTrip();
	}
}

TEST(PakWriter, StoresAsPaysWhateverTheFirstGuess)
{
	FPakInput Input;
	Input.Add("Empty", {});
	Input.Add("OneBlock", RandomThenZeros(100, PakBlockBytes - 100));
	Input.Add("OneBlockAndAByte", RandomThenZeros(100, PakBlockBytes - 99));
	Input.Add("Random", RandomBytes(3 * PakBlockBytes, 1));
	Input.Add("NotAsked", FContent(300000), false);
	Input.Add("Large", RandomThenZeros(1 << 19, 3 << 19));
	Input.Add("LargeRandom", RandomBytes((1 << 20) + 17, 2));
	Input.Add("LargeNotAsked", FContent((1 << 20) + 1), false);
	Input.Add("LargeLooksRandomButIsNot", LooksRandomButIsNot());
	FContent Content = RandomBytes(5 << 18, 4);
	std::fill_n(Content.begin(), 40000, std::byte{7});
	Input.Add("LargeLooksEvenButIsNot", Content);
	Input.ExpectRoundTrip();
	const std::pair<const char*, const char*> Methods[] = {{"Empty", "None"}, {"OneBlock", "Zlib"},
		{"OneBlockAndAByte", "Zlib"}, {"Random", "None"}, {"NotAsked", "None"}, {"Large", "Zlib"},
		{"LargeRandom", "None"}, {"LargeNotAsked", "None"}, {"LargeLooksRandomButIsNot", "Zlib"},
		{"LargeLooksEvenButIsNot", "None"}};
	for (const auto& [Name, Method] : Methods)
	{
		EXPECT_EQ(Input.MethodOf(Name), Method) << Name;
	}
	const FContent Pak = ReadBytes(Input.Target());
	for (unsigned Threads = 1; Threads <= 4; ++Threads)
	{
		EXPECT_EQ(Input.Pack(Threads), Pak) << Threads;
	}
}

TEST(PakWriter, CompressesFrom1024BytesSavedOn)
{
	FPakInput Input;
	Input.Add("Saves1023", ContentThatSaves(1023));
	Input.Add("Saves1024", ContentThatSaves(1024));
	Input.ExpectRoundTrip();
	EXPECT_EQ(Input.MethodOf("Saves1023"), "None");
	EXPECT_EQ(Input.MethodOf("Saves1024"), "Zlib");
}

TEST(PakWriter, MountPointIsTheLongestCommonFolder)
{
	FTempFolder Temp;
	WriteBytes(Temp.Path() / "S", BytesOf("x"));
	const struct
	{
		std::vector<std::string> Destinations;
		std::string MountPoint;
	} Cases[] = {
		{{}, "/"},
		{{"../../../Cave/Content/Maps/Hall.umap"}, "../../../Cave/Content/Maps/"},
		{{"../../../Cave/Content/Maps/Hall.umap", "../../../Cave/Content/Maps/Hall.uexp",
			 "../../../Cave/Content/manifest.json"},
			"../../../Cave/Content/"},
		{{"../../../Cave/A/x", "../../../cave/a/y"}, "../../../Cave/A/"},
		{{"../../../Cave/Ab", "../../../Cave/Ac"}, "../../../Cave/"},
		{{"../../../A/x", "../../../B/y"}, "../../../"},
		{{"A.txt"}, "/"},
		{{"/A/x", "/B/y"}, "/"},
	};
	for (const auto& Case : Cases)
	{
		std::vector<FPakSource> Sources;
		for (const std::string& Destination : Case.Destinations)
		{
			Sources.push_back({Temp.Path() / "S", Destination, false});
		}
		const TResult<FPakWriteSummary> Summary = WritePak(Temp.Path() / "M.pak", Sources);
		ASSERT_TRUE(Summary) << Summary.Error().Message;
		EXPECT_EQ(Summary->MountPoint, Case.MountPoint);
		EXPECT_EQ(FPakReader::Open(Temp.Path() / "M.pak")->Entries().size(), Case.Destinations.size());
	}
}

TEST(PakWriter, OrdersRecordsByDestinationAndKeepsTheLastOfTwo)
{
	FPakInput Input;
	Input.Add("b.txt", BytesOf("old"));
	Input.Add("Hall.umap", BytesOf("umap"));
	Input.Add("Hall.uexp", BytesOf("uexp"));
	Input.Add("A/z", BytesOf("z"));
	Input.Add("new", BytesOf("new"));
	Input.Sources.back().Destination = std::string(Root) + "B.TXT";
	std::vector<std::size_t> Done;
	FPakWriteOptions Options;
	Options.PathHashSeed = 99;
	Options.OnFile = [&Done](const FPakWriteProgress& Progress)
	{ Done.push_back(Progress.FilesDone * 10 + Progress.Files); };
	const TResult<FPakWriteSummary> Summary = WritePak(Input.Target(), Input.Sources, Options);
	ASSERT_TRUE(Summary);
	EXPECT_EQ(Done, (std::vector<std::size_t>{14, 24, 34, 44}));
	const TResult<FPakReader> Reader = FPakReader::Open(Input.Target());
	std::vector<std::string> Paths;
	std::uint64_t Offset = 0;
	for (const FPakEntry& Entry : Reader->Entries())
	{
		Paths.push_back(Entry.Path());
		EXPECT_EQ(Entry.Offset, Offset);
		Offset += Entry.HeadBytes() + Entry.Size;
	}
	EXPECT_EQ(Paths, (std::vector<std::string>{"A/z", "B.TXT", "Hall.uexp", "Hall.umap"}));
	EXPECT_EQ(Reader->Footer().IndexOffset, static_cast<std::int64_t>(Offset));
	EXPECT_EQ(Reader->IndexTables().PathHashSeed, 99U);
	EXPECT_EQ(Summary->Files, 4U);
	EXPECT_EQ(Summary->BytesIn, 12U);
	EXPECT_EQ(Summary->PayloadBytes, 12U);
	EXPECT_EQ(Summary->BytesOut, fs::file_size(Input.Target()));
	EXPECT_EQ(Summary->BytesOut,
		Offset + Summary->IndexBytes + Summary->PathHashIndexBytes + Summary->DirectoryIndexBytes + PakFooterBytes);
	EXPECT_EQ(Summary->CompressedFiles, 0U);
	EXPECT_EQ(Texts(VerifyPak(*Reader).Problems), std::vector<std::string>());
}

TEST(PakWriter, FailuresLeaveTheOldPakAndNothingElse)
{
	FPakInput Input;
	Input.Add("A", RandomBytes(400000, 1));
	Input.Add("B", RandomBytes(400000, 2));
	WriteBytes(Input.Target(), BytesOf("old pak"));
	const fs::path Sources = Input.Temp.Path() / "Sources";
	const std::string Folder = PathText(Sources);
	const auto Error = [&Input](const FPakSource& Last, const FPakWriteOptions& Options = {})
	{
		std::vector<FPakSource> All = Input.Sources;
		All.push_back(Last);
		const TResult<FPakWriteSummary> Summary = WritePak(Input.Target(), All, Options);
		return Summary ? std::string() : Summary.Error().Message;
	};
	const FPakSource Good = {Input.Sources[0].Source, "../../../Cave/Content/Z", false};
	EXPECT_EQ(Error({Sources / "None", "../../../Cave/Content/C", false}),
		PathText(Sources / "None") + " could not be read: No such file or directory");
	EXPECT_EQ(Error({Sources, "../../../Cave/Content/C", false}), Folder + " could not be read: Is a directory");
	EXPECT_EQ(Error({Sources / "A", "", false}),
		PathText(Sources / "A") + ": destination \"\" is empty; a file needs a name in the pak");
	EXPECT_EQ(Error({Sources / "A", "../../Cave/C", false}),
		"destinations \"../../../Cave/Content/A\" and \"../../Cave/C\" "
		"have no common root; begin both with \"../../../\"");
	FPakWriteOptions Stopped;
	Stopped.ShouldStop = [] { return true; };
	EXPECT_EQ(Error(Good, Stopped), "the work was stopped before the pak was done");
	FPakWriteOptions Shortening = WithThreads(1);
	Shortening.OnFile = [&](const FPakWriteProgress& Progress)
	{
		if (Progress.FilesDone == 1)
		{
			fs::resize_file(Input.Sources[1].Source, 399999);
		}
	};
	EXPECT_EQ(Error(Good, Shortening),
		PathText(Sources / "B") +
			" changed while it was being packed: it had 400000 bytes before, and no longer does; pack again when "
			"nothing writes to it");
	EXPECT_EQ(WritePak(Input.Temp.Path() / "None" / "M.pak", Input.Sources).Error().Message,
		PathText(Input.Temp.Path() / "None" / "M.pak") + " could not be created: No such file or directory");
	if (bSmallDisks)
	{
		const FSmallDisk Disk(500'000);
		EXPECT_EQ(Error(Good), PathText(Input.Target()) + " could not be written: File too large");
	}
	EXPECT_EQ(ReadBytes(Input.Target()), BytesOf("old pak"));
	EXPECT_EQ(std::distance(fs::directory_iterator(Input.Temp.Path()), {}), 2);
}
} // namespace QVTest
