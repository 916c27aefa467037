// SPDX-License-Identifier: MIT
#include "Tests/Formats/PakTestSupport.h"

#include "Standalone/Formats/Base/PathText.h"

#include <algorithm>
#include <fstream>
#include <iterator>

namespace QVTest
{
using namespace QVFormats;
namespace fs = std::filesystem;

FContent BytesOf(std::string_view Text)
{
	const FBytes Bytes = std::as_bytes(std::span(Text));
	return {Bytes.begin(), Bytes.end()};
}

FContent RandomBytes(std::size_t Count, unsigned Seed)
{
	std::mt19937 Random(Seed);
	FContent Result(Count);
	std::generate(Result.begin(), Result.end(), [&Random] { return static_cast<std::byte>(Random() >> 24); });
	return Result;
}

FContent RandomThenZeros(std::size_t Random, std::size_t Zeros, unsigned Seed)
{
	FContent Result = RandomBytes(Random, Seed);
	Result.resize(Random + Zeros);
	return Result;
}

FContent FromHex(std::string_view Hex)
{
	FContent Result;
	for (std::size_t Index = 0; Index + 1 < Hex.size(); Index += 2)
	{
		Result.push_back(static_cast<std::byte>(std::stoi(std::string(Hex.substr(Index, 2)), nullptr, 16)));
	}
	return Result;
}

FContent ReadBytes(const fs::path& File)
{
	std::ifstream In(File, std::ios::binary);
	return BytesOf(std::string(std::istreambuf_iterator<char>(In), {}));
}

void WriteBytes(const fs::path& File, const FContent& Content)
{
	fs::create_directories(File.parent_path());
	std::ofstream(File, std::ios::binary)
		.write(reinterpret_cast<const char*>(Content.data()), static_cast<std::streamsize>(Content.size()));
}

std::map<std::string, FContent> ReadTree(const fs::path& Folder)
{
	std::map<std::string, FContent> Result;
	std::error_code Code;
	for (const fs::directory_entry& Item : fs::recursive_directory_iterator(Folder, Code))
	{
		if (Item.is_regular_file())
		{
			std::string Name = PathText(Item.path().lexically_relative(Folder));
			std::replace(Name.begin(), Name.end(), '\\', '/');
			Result[Name] = ReadBytes(Item.path());
		}
	}
	return Result;
}

namespace
{
constexpr std::uint64_t ForgedSeed = 4711;

FPakRecord RecordOf(const FForgedFile& File, std::uint64_t Offset)
{
	FPakRecord Record;
	Record.Offset = static_cast<std::int64_t>(Offset);
	Record.Size = static_cast<std::int64_t>(File.Stored.size());
	Record.UncompressedSize = static_cast<std::int64_t>(File.Method == 0 ? File.Stored.size() : File.UncompressedSize);
	Record.Method = File.Method;
	Record.Hash = FSha1::Of(File.Stored);
	if (File.Method != 0)
	{
		const auto Head = static_cast<std::int64_t>(PakRecordHeadBytes(File.Method, 1));
		Record.Blocks = {{Head, Head + Record.Size}};
		Record.BlockSize = static_cast<std::uint32_t>(File.UncompressedSize);
	}
	Record.Flags = File.bEncrypted ? PakRecordEncrypted : 0;
	return Record;
}

void WriteEncoded(FByteWriter& Out, const FForgedFile& File, const FPakRecord& Record)
{
	const auto Length = static_cast<std::uint32_t>(Record.Size);
	FPakEncodedEntry Entry;
	Entry.Offset = static_cast<std::uint64_t>(Record.Offset);
	Entry.Size = Length;
	Entry.UncompressedSize = static_cast<std::uint64_t>(Record.UncompressedSize);
	Entry.Method = Record.Method;
	Entry.BlockSize = Record.BlockSize;
	Entry.BlockCount = Record.Method != 0 ? 1 : 0;
	Entry.bEncrypted = File.bEncrypted;
	Entry.BlockLengths = std::as_bytes(std::span(&Length, 1));
	Entry.Write(Out);
}

void WriteName(FByteWriter& Out, EPakVersion Version, std::string_view Name)
{
	if (Version < EPakVersion::Utf8Directory)
	{
		Out.String(Name);
		return;
	}
	Out.I32(static_cast<std::int32_t>(Name.size() + 1));
	Out.Append(std::as_bytes(std::span(Name)));
	Out.U8(0);
}

/** One folder for each file: nothing says that a folder stands in the table only once. */
FContent DirectoryOf(const FPakForge& Forge, const std::vector<std::int32_t>& Places)
{
	FByteWriter Out;
	Out.I32(static_cast<std::int32_t>(Forge.Files.size()));
	for (std::size_t Number = 0; Number < Forge.Files.size(); ++Number)
	{
		WriteName(Out, Forge.Version, Forge.Files[Number].Folder.empty() ? "/" : Forge.Files[Number].Folder);
		Out.I32(1);
		WriteName(Out, Forge.Version, Forge.Files[Number].Name);
		Out.I32(Places[Number]);
	}
	return Out.Release();
}

FContent PathHashesOf(const FPakForge& Forge, const std::vector<std::int32_t>& Places)
{
	FByteWriter Out;
	Out.I32(static_cast<std::int32_t>(Forge.Files.size()));
	for (std::size_t Number = 0; Number < Forge.Files.size(); ++Number)
	{
		Out.U64(PakPathHash(Forge.Files[Number].Folder, Forge.Files[Number].Name, ForgedSeed));
		Out.I32(Places[Number]);
	}
	Out.I32(0);
	return Out.Release();
}

void WriteTable(FByteWriter& Out, std::uint64_t Offset, const FContent& Table)
{
	Out.Bool32(true);
	Out.U64(Offset);
	Out.U64(Table.size());
	Out.Append(FSha1::Of(Table));
}

/** The index and what follows it up to the footer; gives the index's own size. */
std::size_t WriteHashedIndex(FByteWriter& Out, const FPakForge& Forge, const std::vector<FPakRecord>& Records)
{
	FByteWriter Encoded;
	FByteWriter Plain;
	std::vector<std::int32_t> Places;
	for (std::size_t Number = 0; Number < Records.size(); ++Number)
	{
		Places.push_back(Forge.bPlainEntries ? -static_cast<std::int32_t>(Number) - 1
											 : static_cast<std::int32_t>(Encoded.Position()));
		Forge.bPlainEntries ? Records[Number].Write(Plain)
							: WriteEncoded(Encoded, Forge.Files[Number], Records[Number]);
	}
	const FContent Hashes = PathHashesOf(Forge, Places);
	const FContent Directory = DirectoryOf(Forge, Places);
	const auto WriteIndex = [&](FByteWriter& Index, std::uint64_t TablesOffset)
	{
		Index.String(Forge.MountPoint);
		Index.I32(static_cast<std::int32_t>(Records.size()));
		Index.U64(ForgedSeed);
		WriteTable(Index, TablesOffset, Hashes);
		Forge.bWithDirectory ? WriteTable(Index, TablesOffset + Hashes.size(), Directory) : Index.Bool32(false);
		Index.I32(static_cast<std::int32_t>(Encoded.Position()));
		Index.Append(Encoded.Bytes());
		Index.I32(Forge.bPlainEntries ? static_cast<std::int32_t>(Records.size()) : 0);
		Index.Append(Plain.Bytes());
	};
	FByteWriter Measured;
	WriteIndex(Measured, 0);
	WriteIndex(Out, Out.Position() + Measured.Position());
	Out.Append(Hashes);
	Out.Append(Directory);
	return Measured.Position();
}

std::size_t WriteRecordIndex(FByteWriter& Out, const FPakForge& Forge, const std::vector<FPakRecord>& Records)
{
	const std::size_t Begin = Out.Position();
	Out.String(Forge.MountPoint);
	Out.I32(static_cast<std::int32_t>(Records.size()));
	for (std::size_t Number = 0; Number < Records.size(); ++Number)
	{
		Out.String(Forge.Files[Number].Folder + Forge.Files[Number].Name);
		Records[Number].Write(Out);
	}
	return Out.Position() - Begin;
}
} // namespace

FPakForge& FPakForge::Add(std::string Folder, std::string Name, std::string_view Text)
{
	Files.push_back({std::move(Folder), std::move(Name), BytesOf(Text)});
	return *this;
}

FPakForge& FPakForge::AddZlib(std::string Folder, std::string Name, const FContent& Content)
{
	FContent Stored(CompressedBound(Content.size()));
	Stored.resize(FZlibCompressor().Compress(Content, Stored));
	Files.push_back({std::move(Folder), std::move(Name), std::move(Stored), 1, Content.size()});
	return *this;
}

FContent FPakForge::Make() const
{
	FByteWriter Out;
	std::vector<FPakRecord> Records;
	for (const FForgedFile& File : Files)
	{
		Records.push_back(RecordOf(File, Out.Position()));
		RecordOf(File, 0).Write(Out);
		Out.Append(File.Stored);
	}
	const std::size_t IndexOffset = Out.Position();
	const std::size_t IndexSize = Version >= EPakVersion::PathHashIndex ? WriteHashedIndex(Out, *this, Records)
																		: WriteRecordIndex(Out, *this, Records);
	FPakFooter Footer;
	Footer.Version = Version;
	Footer.bIndexEncrypted = bIndexEncrypted;
	Footer.IndexOffset = static_cast<std::int64_t>(IndexOffset);
	Footer.IndexSize = static_cast<std::int64_t>(IndexSize);
	Footer.IndexHash = FSha1::Of(Out.Bytes().subspan(IndexOffset, IndexSize));
	Footer.Methods = Methods;
	Footer.Write(Out);
	FContent Pak = Out.Release();
	const auto MethodTable = Pak.end() - PakMethodCount * PakMethodNameBytes;
	if (Version == EPakVersion::FrozenIndex)
	{
		Pak.insert(MethodTable, static_cast<std::byte>(bIndexFrozen));
	}
	if (bEarlyFooter)
	{
		Pak.resize(Pak.size() - PakMethodNameBytes);
	}
	return Pak;
}

TResult<FPakReader> Parse(const FContent& Pak, EPakIndexHashes Hashes)
{
	return FPakReader::FromMemory(Pak, "Test.pak", Hashes);
}

std::string OpenError(const FContent& Pak, EPakIndexHashes Hashes)
{
	const TResult<FPakReader> Reader = Parse(Pak, Hashes);
	return Reader ? std::string() : Reader.Error().Message;
}

std::vector<std::string> Texts(const std::vector<FPakFinding>& Findings)
{
	std::vector<std::string> Result;
	for (const FPakFinding& Finding : Findings)
	{
		Result.push_back(Finding.Path + ": " + Finding.Message);
	}
	return Result;
}
} // namespace QVTest
