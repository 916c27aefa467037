// SPDX-License-Identifier: MIT
// Packing, checking and listing paks against the bare work that each cannot do without, side by side in one run.
// Usage: PakBenchmark [work folder] [rounds]. The work folder is removed afterwards.
#include "Benchmarks/Timing.h"
#include "Standalone/Formats/Base/Compression.h"
#include "Standalone/Formats/Base/InputFile.h"
#include "Standalone/Formats/Base/OutputFile.h"
#include "Standalone/Formats/Base/Parallel.h"
#include "Standalone/Formats/Base/PathText.h"
#include "Standalone/Formats/Pak/CompressionProbe.h"
#include "Standalone/Formats/Pak/PakPayload.h"
#include "Standalone/Formats/Pak/PakVerify.h"
#include "Standalone/Formats/Pak/PakWriter.h"

#include <cmath>
#include <fcntl.h>
#include <random>
#include <sys/resource.h>
#include <sys/wait.h>
#include <zlib.h>

namespace
{
using namespace QVFormats;
using namespace QVBench;
namespace fs = std::filesystem;
using FContent = std::vector<std::byte>;

// ---- Content ----

void FillRandom(std::span<std::byte> Out, std::mt19937_64& Random)
{
	for (std::byte& Byte : Out)
	{
		Byte = static_cast<std::byte>(Random() >> 56);
	}
}

/** Names, small numbers and vertices as they lie in cooked packages. */
void FillCompressible(std::span<std::byte> Out, std::mt19937_64& Random)
{
	std::vector<std::string> Words;
	for (int Word = 0; Word < 500; ++Word)
	{
		Words.push_back("/Game/Maps/" + std::to_string(Random() % 100000));
	}
	float Height = 0;
	for (std::size_t Begin = 0; Begin < Out.size();)
	{
		std::string Piece = Words[Random() % Words.size()];
		if (Random() % 3 == 0)
		{
			Piece.resize(64);
			for (std::size_t At = 0; At < 64; At += 4)
			{
				Height += static_cast<float>(static_cast<int>(Random() % 201) - 100) / 64.0F;
				std::memcpy(Piece.data() + At, &Height, 4);
			}
		}
		const std::size_t Taken = std::min(Piece.size(), Out.size() - Begin);
		std::memcpy(Out.data() + Begin, Piece.data(), Taken);
		Begin += Taken;
	}
}

struct FInput
{
	std::vector<FContent> Contents;
	std::vector<FPakSource> Sources;
	std::uint64_t Bytes = 0;
};

enum class EContent : std::uint8_t
{
	HalfOfTheFiles,
	Compressible,
};

FInput MakeInput(const fs::path& Folder, const std::vector<std::size_t>& Sizes, EContent Kind)
{
	std::mt19937_64 Random(2024);
	FInput Input;
	for (std::size_t Number = 0; Number < Sizes.size(); ++Number)
	{
		FContent& Content = Input.Contents.emplace_back(Sizes[Number]);
		const bool bRandom = Kind == EContent::HalfOfTheFiles && Number % 2 == 1;
		bRandom ? FillRandom(Content, Random) : FillCompressible(Content, Random);
		const std::string Name = "Sub" + std::to_string(Number % 97) + "/Asset_" + std::to_string(Number) + ".uexp";
		const fs::path Source = Folder / Name;
		WriteFile(Source, Content);
		Input.Sources.push_back({Source, "../../../Project/Plugins/Map/Content/" + Name, true});
		Input.Bytes += Content.size();
	}
	return Input;
}

std::vector<std::size_t> CookedSizes(std::size_t Count, double Total)
{
	std::mt19937_64 Random(7);
	std::vector<double> Shares;
	double Sum = 0;
	for (std::size_t Number = 0; Number < Count; ++Number)
	{
		// The sum of twelve even numbers is near enough to a normal one, and the same on every machine.
		double Normal = -6;
		for (int Step = 0; Step < 12; ++Step)
		{
			Normal += static_cast<double>(Random() >> 11) / 9007199254740992.0;
		}
		Shares.push_back(std::exp(1.7 * Normal));
		Sum += Shares.back();
	}
	std::vector<std::size_t> Sizes;
	for (const double Share : Shares)
	{
		Sizes.push_back(static_cast<std::size_t>(Share / Sum * Total) + 200);
	}
	return Sizes;
}

// ---- The bare work ----

struct FBlockList
{
	std::vector<FBytes> Blocks;
	explicit FBlockList(const FInput& Input, bool bOnlyCompressible)
	{
		for (const FContent& Content : Input.Contents)
		{
			for (std::size_t Begin = 0; Begin < Content.size(); Begin += PakBlockBytes)
			{
				const FBytes Block =
					FBytes(Content).subspan(Begin, std::min<std::size_t>(PakBlockBytes, Content.size() - Begin));
				if (!bOnlyCompressible || !IsSurelyIncompressible(Block))
				{
					Blocks.push_back(Block);
				}
			}
		}
	}
};

/** Compresses every block from memory on all cores and writes what comes out, in whatever order. */
std::uint64_t CompressAndWrite(const FBlockList& List, const fs::path& Target)
{
	FOutputFile Out = Need(FOutputFile::Create(Target));
	const unsigned Threads = ThreadCount(0, List.Blocks.size());
	std::vector<FZlibCompressor> Compressors(Threads);
	std::vector<FContent> Buffers(Threads, FContent(16 * CompressedBound(PakBlockBytes)));
	std::atomic<std::uint64_t> Position{0};
	ParallelFor(Threads, (List.Blocks.size() + 15) / 16,
		[&](unsigned Worker, std::size_t Lot)
		{
			std::size_t Used = 0;
			for (std::size_t Number = Lot * 16; Number < std::min(Lot * 16 + 16, List.Blocks.size()); ++Number)
			{
				Used += Compressors[Worker].Compress(List.Blocks[Number], std::span(Buffers[Worker]).subspan(Used));
			}
			Need(Out.WriteAt(Position.fetch_add(Used), FBytes(Buffers[Worker]).first(Used)));
		});
	Need(Out.Commit(Position));
	return Position;
}

/** zlib itself, level 6, one core; what is not worth it counts as stored. */
std::uint64_t ZlibBytes(const FInput& Input)
{
	std::uint64_t Total = 0;
	FContent Buffer(2 * PakBlockBytes);
	for (const FContent& Content : Input.Contents)
	{
		std::uint64_t Compressed = 0;
		for (std::size_t Begin = 0; Begin < Content.size(); Begin += PakBlockBytes)
		{
			uLongf Size = Buffer.size();
			const std::size_t Taken = std::min<std::size_t>(PakBlockBytes, Content.size() - Begin);
			::compress2(reinterpret_cast<Bytef*>(Buffer.data()), &Size,
				reinterpret_cast<const Bytef*>(Content.data()) + Begin, Taken, 6);
			Compressed += Size;
		}
		Total += PakCompressionPays(Content.size(), Compressed) ? Compressed : Content.size();
	}
	return Total;
}

void HashAndInflate(const FPakReader& Reader, const FContent& Pak)
{
	const unsigned Threads = ThreadCount(0, Reader.Entries().size());
	std::vector<FZlibDecompressor> Decompressors(Threads);
	std::vector<FContent> Buffers(Threads, FContent(PakBlockBytes));
	std::atomic<unsigned> Odd{0};
	ParallelFor(Threads, Reader.Entries().size(),
		[&](unsigned Worker, std::size_t Number)
		{
			const FPakEntry& Entry = Reader.Entries()[Number];
			FBytes Payload = FBytes(Pak).subspan(Entry.Offset + Entry.HeadBytes(), Entry.Size);
			Odd += std::to_integer<unsigned>(FSha1::Of(Payload)[0]) & 1;
			FByteReader Lengths(Entry.BlockTable());
			for (std::size_t Block = 0; Block < Entry.BlockCount; ++Block)
			{
				const std::size_t Length = Entry.BlockTableData == nullptr ? Payload.size() : Lengths.U32();
				const std::size_t Size = PakInflatedBlockBytes(Entry, Block);
				Decompressors[Worker].Decompress(Payload.first(Length), std::span(Buffers[Worker]).first(Size));
				Payload = Payload.subspan(Length);
			}
		});
}

// ---- The comparisons ----

void PackAgainstBare(const char* Title, const FInput& Input, const fs::path& Folder, int Rounds, bool bZlib)
{
	const fs::path Pak = Folder / "Map_P.pak";
	const FBlockList All(Input, false);
	const FBlockList Compressible(Input, true);
	FPakWriteSummary Summary;
	const std::vector<FTime> Best = BestOf(Rounds,
		{
			[&] { CompressAndWrite(All, Folder / "Bare"); },
			[&] { Summary = Need(WritePak(Pak, Input.Sources)); },
			[&] { CompressAndWrite(Compressible, Folder / "Bare"); },
		});
	std::printf("%s: %zu files, %.0f MB -> %.0f MB, %zu compressed\n", Title, Input.Contents.size(),
		static_cast<double>(Input.Bytes) / 1e6, static_cast<double>(Summary.BytesOut) / 1e6, Summary.CompressedFiles);
	PrintTime("pack", Best[1]);
	PrintRatio("compress + write the same blocks", Best[1], Best[0]);
	PrintRatio("only those worth compressing", Best[1], Best[2]);
	if (bZlib)
	{
		std::uint64_t Size = 0;
		const FTime Zlib = TimeOf([&] { Size = ZlibBytes(Input); });
		PrintTime("zlib level 6 on one core", Zlib);
		std::printf("  pack is %.2f times as fast; payload / zlib's payload = %.4f\n", Zlib.Wall / Best[1].Wall,
			static_cast<double>(Summary.PayloadBytes) / static_cast<double>(Size));
	}
}

void VerifyAgainstBare(const fs::path& Pak, int Rounds)
{
	const FPakReader Reader = Need(FPakReader::Open(Pak));
	const FContent Bytes(Reader.Bytes().begin(), Reader.Bytes().end());
	const std::vector<FTime> Best = BestOf(Rounds,
		{
			[&] { HashAndInflate(Reader, Bytes); },
			[&]
			{
				const FPakReader Fresh = Need(FPakReader::Open(Pak));
				if (!VerifyPak(Fresh).IsSound())
				{
					Fail("the pak is not sound");
				}
			},
		});
	PrintTime("verify", Best[1]);
	PrintRatio("hash + inflate the same bytes", Best[1], Best[0]);
}

std::size_t ListLength(const fs::path& Pak, EPakIndexHashes Hashes)
{
	const FPakReader Reader = Need(FPakReader::Open(Pak, Hashes));
	std::size_t Length = 0;
	for (const FPakEntry& Entry : Reader.Entries())
	{
		Length += Entry.Folder.size() + Entry.Name.size() + Entry.Size;
	}
	return Length;
}

/** What lies in the page cache of a file, given back: the next read comes from the disk. */
void ForgetCached(const fs::path& Path)
{
	const int File = ::open(Path.c_str(), O_RDONLY);
	if (File < 0 || ::fsync(File) != 0 || ::posix_fadvise(File, 0, 0, POSIX_FADV_DONTNEED) != 0)
	{
		Fail("the page cache could not be emptied of " + Path.string());
	}
	::close(File);
}

void ListAgainstReading(const fs::path& Pak)
{
	const auto Offset = static_cast<std::uint64_t>(Need(FPakReader::Open(Pak)).Footer().IndexOffset);
	std::size_t Sum = 0;
	const auto ReadIndex = [&]
	{
		FInputFile File = Need(FInputFile::Open(Pak));
		FContent Bytes(File.Size() - Offset);
		Need(File.ReadAt(Offset, Bytes));
		return Bytes;
	};
	const std::vector<std::function<void()>> Works = {
		[&] { Sum += ReadIndex().size(); },
		[&] { Sum += std::to_integer<std::size_t>(FSha1::Of(ReadIndex())[0]); },
		[&] { Sum += ListLength(Pak, EPakIndexHashes::Skip); },
		[&] { Sum += ListLength(Pak, EPakIndexHashes::Check); },
	};
	const std::vector<FTime> Cold = BestOf(20, Works, [&Pak] { ForgetCached(Pak); });
	PrintTime("list, from the disk", Cold[3]);
	std::printf("  the index has %zu bytes (%zu)\n", ReadIndex().size(), Sum % 10);
	PrintRatio("read its bytes from the disk", Cold[3], Cold[0]);
	const std::vector<FTime> Warm = BestOf(50, Works);
	PrintTime("list, from the page cache", Warm[3]);
	PrintRatio("read its bytes", Warm[3], Warm[0]);
	PrintRatio("read and hash them", Warm[3], Warm[1]);
	PrintTime("list, index believed", Warm[2]);
	PrintRatio("read its bytes", Warm[2], Warm[0]);
}

/** In a child, since a process's peak never falls again. */
void PeakOfLargeFile(const fs::path& Folder)
{
	constexpr std::uint64_t LargeBytes = std::uint64_t{4} << 30;
	const fs::path Source = Folder / "Large.ubulk";
	{
		FContent Content(32 << 20);
		std::mt19937_64 Random(3);
		FillCompressible(Content, Random);
		FOutputFile File = Need(FOutputFile::Create(Source));
		for (std::uint64_t Begin = 0; Begin < LargeBytes; Begin += LargeBytes / 8)
		{
			Need(File.WriteAt(Begin, Content));
		}
		Need(File.Commit(LargeBytes));
	}
	std::fflush(stdout);
	const pid_t Child = ::fork();
	if (Child == 0)
	{
		const std::vector<FPakSource> Sources = {{Source, "../../../Project/Content/Large.ubulk", true}};
		const FTime Time = TimeOf([&] { Need(WritePak(Folder / "Large.pak", Sources)); });
		rusage Usage = {};
		::getrusage(RUSAGE_SELF, &Usage);
		std::printf("one file of 4 GiB: %.1f s, %.2f cores busy, peak %.1f MiB\n", Time.Wall, Time.Cpu / Time.Wall,
			static_cast<double>(Usage.ru_maxrss) / 1024);
		std::fflush(stdout);
		::_exit(0);
	}
	int Status = 0;
	::waitpid(Child, &Status, 0);
	if (Status != 0)
	{
		Fail("packing the large file failed");
	}
	const fs::path Pak = Folder / "Large.pak";
	const FPakReader Reader = Need(FPakReader::Open(Pak));
	std::printf(
		"  %u blocks; it is %s\n", Reader.Entries()[0].BlockCount, VerifyPak(Reader).IsSound() ? "sound" : "NOT SOUND");
	fs::remove(Pak);
	fs::remove(Source);
}

void Run(const fs::path& Folder, int Rounds)
{
	std::printf("%u cores; the best of %d rounds\n", ThreadCount(0, 1000000), Rounds);
	PeakOfLargeFile(Folder);
	for (const EContent Kind : {EContent::HalfOfTheFiles, EContent::Compressible})
	{
		const bool bHalf = Kind == EContent::HalfOfTheFiles;
		const fs::path Sources = Folder / "Sources";
		{
			const FInput Input = MakeInput(Sources, CookedSizes(20000, 320e6), Kind);
			PackAgainstBare(bHalf ? "small files, half compressible" : "small files, all compressible", Input, Folder,
				Rounds, true);
		}
		VerifyAgainstBare(Folder / "Map_P.pak", Rounds);
		ListAgainstReading(Folder / "Map_P.pak");
		fs::remove_all(Sources);
		{
			const FInput Input = MakeInput(Sources, std::vector<std::size_t>(64, std::size_t{16} << 20), Kind);
			PackAgainstBare(bHalf ? "large files, half compressible" : "large files, all compressible", Input, Folder,
				Rounds, false);
		}
		VerifyAgainstBare(Folder / "Map_P.pak", Rounds);
		fs::remove_all(Sources);
	}
}
} // namespace

int main(int Count, char** Words)
{
	const FArguments Arguments("PakBenchmark", Count, Words, 3);
	Run(Arguments.Folder, Arguments.Rounds);
	return 0;
}
