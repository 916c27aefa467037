// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Pak/PakIndex.h"

#include "Standalone/Formats/Base/Unicode.h"
#include "Standalone/Formats/Pak/PakPaths.h"

#include <algorithm>
#include <limits>
#include <optional>

namespace QVFormats
{
namespace
{
constexpr std::int32_t DeletedPlace = std::numeric_limits<std::int32_t>::min();
/** The least that each can take in the file. */
constexpr std::size_t LeastNameBytes = 4;
constexpr std::size_t LeastDirectoryFileBytes = LeastNameBytes + 4;
constexpr std::size_t LeastFolderBytes = LeastNameBytes + 4;
constexpr std::size_t LeastRecordBytes = 53;
constexpr std::size_t EncodedAlignment = 4;

struct FNamedPlace
{
	std::string_view Folder;
	std::string_view Name;
	std::int32_t Place = 0;
};

/** One of the two tables behind the index. */
struct FSecondaryIndex
{
	bool bPresent = false;
	std::int64_t Offset = 0;
	std::int64_t Size = 0;
	FSha1Hash Hash{};

	void Read(FByteReader& In)
	{
		bPresent = In.Bool32();
		if (bPresent)
		{
			Offset = In.I64();
			Size = In.I64();
			Hash = In.Read<FSha1Hash>();
		}
	}
};

int CompareText(const FNamedPlace& A, const FNamedPlace& B)
{
	if (A.Folder == B.Folder)
	{
		return ComparePakPaths(A.Name, B.Name);
	}
	return ComparePakPaths(std::string(A.Folder).append(A.Name), std::string(B.Folder).append(B.Name));
}

std::string Quoted(const FNamedPlace& File)
{
	return "\"" + std::string(File.Folder).append(File.Name) + "\"";
}

class FIndexParser
{
public:
	FIndexParser(FBytes InFile, const FPakFooter& InFooter, std::string_view InName, EPakIndexHashes InHashes)
		: File(InFile)
		, Footer(InFooter)
		, Name(InName)
		, Hashes(InHashes)
	{
	}

	TResult<FPakIndex> Run();

private:
	using FProblem = std::optional<FError>;

	FError Error(const std::string& What) const { return {std::string(Name) + ": " + What}; }
	FProblem TakePart(
		std::int64_t Offset, std::int64_t Size, const FSha1Hash& Hash, const char* What, FBytes& Out) const;
	FProblem ReadRecordIndex(FByteReader& In);
	FProblem ReadHashedIndex(FByteReader& In);
	FProblem ReadSecondary(const FSecondaryIndex& PathHash, const FSecondaryIndex& Directory, FBytes& DirectoryBytes);
	FProblem ReadPlainEntries(FByteReader& In);
	FProblem ReadDirectory(FBytes Bytes);
	FProblem SortFiles();
	FProblem CheckOrder();
	bool OrderByPlace();
	FProblem AddEntry(const FNamedPlace& NamedFile);
	bool FillEncoded(FPakEntry& Entry, std::int64_t Place) const;
	FProblem CheckEntry(const FPakEntry& Entry) const;

	std::string_view Text(FByteReader& In);
	std::string_view Utf8Text(FByteReader& In);
	std::string_view Keep(std::string InText) { return Index.Texts.emplace_back(std::move(InText)); }
	FPakEntry EntryOf(FByteReader& In) const;

	FBytes File;
	const FPakFooter& Footer;
	std::string_view Name;
	EPakIndexHashes Hashes;
	FPakIndex Index;
	FBytes Encoded;
	std::vector<FPakEntry> PlainEntries;
	std::vector<FNamedPlace> Files;
};

TResult<FPakIndex> FIndexParser::Run()
{
	if (Footer.bIndexEncrypted)
	{
		return Error("the index is encrypted; a pak without encryption is needed");
	}
	if (Footer.bIndexFrozen)
	{
		return Error("the index is frozen (version 9), which is a memory image; pack it anew without freezing");
	}
	FBytes Bytes;
	FProblem Problem = TakePart(Footer.IndexOffset, Footer.IndexSize, Footer.IndexHash, "index", Bytes);
	if (Problem)
	{
		return *Problem;
	}
	FByteReader In(Bytes);
	Index.MountPoint = In.String().ToUtf8();
	Problem = Footer.Version >= EPakVersion::PathHashIndex ? ReadHashedIndex(In) : ReadRecordIndex(In);
	if (Problem)
	{
		return *Problem;
	}
	Problem = CheckOrder();
	return Problem ? TResult<FPakIndex>(*Problem) : TResult<FPakIndex>(std::move(Index));
}

FIndexParser::FProblem FIndexParser::TakePart(
	std::int64_t Offset, std::int64_t Size, const FSha1Hash& Hash, const char* What, FBytes& Out) const
{
	const std::int64_t Limit = static_cast<std::int64_t>(File.size() - Footer.Bytes);
	if (Offset < 0 || Size < 0 || Offset > Limit || Size > Limit - Offset)
	{
		return Error("the " + std::string(What) + " lies outside the file: offset " + std::to_string(Offset) +
					 ", size " + std::to_string(Size) + ", and the footer begins at " + std::to_string(Limit));
	}
	Out = File.subspan(static_cast<std::size_t>(Offset), static_cast<std::size_t>(Size));
	if (Hashes == EPakIndexHashes::Skip)
	{
		return {};
	}
	const FSha1Hash Found = FSha1::Of(Out);
	if (Found != Hash)
	{
		return Error("the " + std::string(What) + " is damaged: its hash is " + HashText(Found) + ", and " +
					 HashText(Hash) + " was expected");
	}
	return {};
}

std::string_view FIndexParser::Text(FByteReader& In)
{
	const FStringView View = In.String();
	const std::string_view Narrow(reinterpret_cast<const char*>(View.Bytes.data()), View.Bytes.size());
	return !View.bWide && IsAscii(Narrow) ? Narrow : Keep(View.ToUtf8());
}

/** Version 12: bytes of UTF-8, their count, and a NUL or none. */
std::string_view FIndexParser::Utf8Text(FByteReader& In)
{
	const FBytes Bytes = In.Take(static_cast<std::uint64_t>(In.Count(1)));
	std::string_view Narrow(reinterpret_cast<const char*>(Bytes.data()), Bytes.size());
	if (Narrow.ends_with('\0'))
	{
		Narrow.remove_suffix(1);
	}
	if (IsAscii(Narrow))
	{
		return Narrow;
	}
	// Once there and back makes bad bytes into U+FFFD.
	const std::u16string Wide = Utf8ToUtf16(Narrow);
	return Keep(Utf16BytesToUtf8(std::as_bytes(std::span(Wide))));
}

FPakEntry FIndexParser::EntryOf(FByteReader& In) const
{
	FPakEntry Entry;
	Entry.Offset = In.U64();
	Entry.Size = In.U64();
	Entry.UncompressedSize = In.U64();
	Entry.Method = In.U32();
	In.Skip(sizeof(FSha1Hash));
	if (Entry.Method != 0)
	{
		Entry.BlockCount = static_cast<std::uint32_t>(In.Count(PakBlockRangeBytes));
		Entry.BlockTable = In.Take(Entry.BlockCount * PakBlockRangeBytes);
		Entry.bBlockRanges = true;
	}
	Entry.bEncrypted = (In.U8() & PakRecordEncrypted) != 0;
	Entry.BlockSize = In.U32();
	return Entry;
}

FIndexParser::FProblem FIndexParser::ReadRecordIndex(FByteReader& In)
{
	const std::int32_t Count = In.Count(LeastNameBytes + LeastRecordBytes);
	if (In.Failed())
	{
		return Error("the index ends too early or counts more files than it can hold");
	}
	Index.Entries.reserve(static_cast<std::size_t>(Count));
	for (std::int32_t Number = 0; Number < Count; ++Number)
	{
		const std::string_view Path = Text(In);
		FPakEntry Entry = EntryOf(In);
		if (In.Failed())
		{
			return Error("the index ends inside file " + std::to_string(Number + 1) + " of " + std::to_string(Count));
		}
		Entry.Name = Path;
		if (FProblem Problem = CheckEntry(Entry))
		{
			return Problem;
		}
		Index.Entries.push_back(Entry);
	}
	std::sort(Index.Entries.begin(), Index.Entries.end(),
		[](const FPakEntry& A, const FPakEntry& B) { return ComparePakPaths(A.Name, B.Name) < 0; });
	return {};
}

FIndexParser::FProblem FIndexParser::ReadHashedIndex(FByteReader& In)
{
	const std::int32_t Count = In.I32();
	Index.PathHashSeed = In.U64();
	FSecondaryIndex PathHash;
	FSecondaryIndex Directory;
	PathHash.Read(In);
	Directory.Read(In);
	Encoded = In.Take(static_cast<std::uint64_t>(In.Count(1)));
	if (FProblem Problem = ReadPlainEntries(In))
	{
		return Problem;
	}
	FBytes DirectoryBytes;
	if (FProblem Problem = ReadSecondary(PathHash, Directory, DirectoryBytes))
	{
		return Problem;
	}
	if (FProblem Problem = ReadDirectory(DirectoryBytes))
	{
		return Problem;
	}
	if (Count < 0 || static_cast<std::size_t>(Count) < Files.size())
	{
		return Error("the index counts " + std::to_string(Count) + " files, its directory index " +
					 std::to_string(Files.size()));
	}
	return SortFiles();
}

FIndexParser::FProblem FIndexParser::ReadPlainEntries(FByteReader& In)
{
	const std::int32_t Count = In.Count(LeastRecordBytes);
	PlainEntries.reserve(static_cast<std::size_t>(Count));
	for (std::int32_t Number = 0; Number < Count && !In.Failed(); ++Number)
	{
		PlainEntries.push_back(EntryOf(In));
	}
	return In.Failed() ? FProblem(Error("the index ends too early or counts more entries than it can hold"))
					   : FProblem();
}

FIndexParser::FProblem FIndexParser::ReadSecondary(
	const FSecondaryIndex& PathHash, const FSecondaryIndex& Directory, FBytes& DirectoryBytes)
{
	if (!Directory.bPresent)
	{
		return Error("it has no full directory index, so the names of its files are not in it");
	}
	Index.bHasPathHashIndex = PathHash.bPresent;
	if (PathHash.bPresent)
	{
		FProblem Problem =
			TakePart(PathHash.Offset, PathHash.Size, PathHash.Hash, "path hash index", Index.PathHashIndex);
		if (Problem)
		{
			return Problem;
		}
	}
	return TakePart(Directory.Offset, Directory.Size, Directory.Hash, "directory index", DirectoryBytes);
}

FIndexParser::FProblem FIndexParser::ReadDirectory(FBytes Bytes)
{
	FByteReader In(Bytes);
	const bool bUtf8 = Footer.Version >= EPakVersion::Utf8Directory;
	const std::int32_t FolderCount = In.Count(LeastFolderBytes);
	Files.reserve(Bytes.size() / 32);
	for (std::int32_t Folder = 0; Folder < FolderCount && !In.Failed(); ++Folder)
	{
		std::string_view FolderName = bUtf8 ? Utf8Text(In) : Text(In);
		FolderName = FolderName == "/" ? std::string_view() : FolderName;
		const std::int32_t FileCount = In.Count(LeastDirectoryFileBytes);
		for (std::int32_t Number = 0; Number < FileCount && !In.Failed(); ++Number)
		{
			const std::string_view FileName = bUtf8 ? Utf8Text(In) : Text(In);
			const std::int32_t Place = In.I32();
			if (Place != DeletedPlace)
			{
				Files.push_back({FolderName, FileName, Place});
			}
		}
	}
	return In.Failed() ? FProblem(Error("the directory index ends too early or counts more than it can hold"))
					   : FProblem();
}

/**
 * Tools lay the encoded entries in the order of the paths, so that sorting them by place, which is a walk over a table,
 * mostly saves sorting them by text. False when two names share an entry or an entry is none of the encoded ones.
 */
bool FIndexParser::OrderByPlace()
{
	constexpr std::uint32_t Nobody = std::numeric_limits<std::uint32_t>::max();
	std::vector<std::uint32_t> FileAt(Encoded.size() / EncodedAlignment + 1, Nobody);
	for (std::size_t Number = 0; Number < Files.size(); ++Number)
	{
		const std::int32_t Place = Files[Number].Place;
		if (Place < 0 || static_cast<std::size_t>(Place) >= Encoded.size() || Place % EncodedAlignment != 0 ||
			FileAt[static_cast<std::size_t>(Place) / EncodedAlignment] != Nobody)
		{
			return false;
		}
		FileAt[static_cast<std::size_t>(Place) / EncodedAlignment] = static_cast<std::uint32_t>(Number);
	}
	std::vector<FNamedPlace> Ordered;
	Ordered.reserve(Files.size());
	for (const std::uint32_t Number : FileAt)
	{
		if (Number != Nobody)
		{
			Ordered.push_back(Files[Number]);
		}
	}
	Files = std::move(Ordered);
	return true;
}

FIndexParser::FProblem FIndexParser::SortFiles()
{
	const auto Before = [](const FNamedPlace& A, const FNamedPlace& B) { return CompareText(A, B) < 0; };
	if (!OrderByPlace() || !std::is_sorted(Files.begin(), Files.end(), Before))
	{
		std::sort(Files.begin(), Files.end(), Before);
	}
	Index.Entries.reserve(Files.size());
	for (const FNamedPlace& NamedFile : Files)
	{
		if (FProblem Problem = AddEntry(NamedFile))
		{
			return Problem;
		}
	}
	return {};
}

FIndexParser::FProblem FIndexParser::AddEntry(const FNamedPlace& NamedFile)
{
	const std::int64_t Place = NamedFile.Place;
	FPakEntry Entry;
	if (Place >= 0)
	{
		if (!FillEncoded(Entry, Place))
		{
			return Error("the entry of " + Quoted(NamedFile) + " lies outside the encoded entries: place " +
						 std::to_string(Place) + " of " + std::to_string(Encoded.size()) + " bytes");
		}
	}
	else if (static_cast<std::uint64_t>(-Place - 1) < PlainEntries.size())
	{
		Entry = PlainEntries[static_cast<std::size_t>(-Place - 1)];
	}
	else
	{
		return Error("the entry of " + Quoted(NamedFile) + " is plain entry " + std::to_string(-Place - 1) + " of " +
					 std::to_string(PlainEntries.size()));
	}
	Entry.Folder = NamedFile.Folder;
	Entry.Name = NamedFile.Name;
	Entry.Place = NamedFile.Place;
	Index.Entries.push_back(Entry);
	return CheckEntry(Entry);
}

bool FIndexParser::FillEncoded(FPakEntry& Entry, std::int64_t Place) const
{
	FByteReader In(Encoded);
	In.Seek(Place);
	FPakEncodedEntry Fields;
	Fields.Read(In);
	Entry.Offset = Fields.Offset;
	Entry.Size = Fields.Size;
	Entry.UncompressedSize = Fields.UncompressedSize;
	Entry.Method = Fields.Method;
	Entry.BlockSize = Fields.BlockSize;
	Entry.BlockCount = Fields.BlockCount;
	Entry.bEncrypted = Fields.bEncrypted;
	Entry.BlockTable = Fields.BlockLengths;
	return !In.Failed();
}

FIndexParser::FProblem FIndexParser::CheckEntry(const FPakEntry& Entry) const
{
	const auto Wrong = [this, &Entry](const std::string& What) { return Error("\"" + Entry.Path() + "\" " + What); };
	const std::uint64_t Limit = static_cast<std::uint64_t>(Footer.IndexOffset);
	if (Entry.Offset > Limit || Entry.Size > Limit || Entry.HeadBytes() + Entry.Size > Limit - Entry.Offset)
	{
		return Wrong("lies outside the file: offset " + std::to_string(Entry.Offset) + ", size " +
					 std::to_string(Entry.Size) + ", and the index begins at " + std::to_string(Limit));
	}
	if (Entry.Method > Footer.Methods.size() || (Entry.Method > 0 && Footer.Methods[Entry.Method - 1].empty()))
	{
		return Wrong("is compressed by method " + std::to_string(Entry.Method) + ", which the footer does not name");
	}
	if (Entry.Method == 0)
	{
		return Entry.Size == Entry.UncompressedSize && Entry.BlockCount == 0
				   ? FProblem()
				   : Wrong("is not compressed, but its sizes are " + std::to_string(Entry.Size) + " and " +
						   std::to_string(Entry.UncompressedSize) + " and it has " + std::to_string(Entry.BlockCount) +
						   " blocks");
	}
	const std::uint64_t BlockSize = Entry.BlockCount == 1 ? Entry.UncompressedSize : Entry.BlockSize;
	if (BlockSize == 0 || BlockSize > PakLargestBlockBytes ||
		PakBlockCount(Entry.UncompressedSize, BlockSize) != Entry.BlockCount)
	{
		return Wrong("cannot have " + std::to_string(Entry.BlockCount) + " blocks of " + std::to_string(BlockSize) +
					 " bytes, since its size is " + std::to_string(Entry.UncompressedSize));
	}
	return {};
}

FIndexParser::FProblem FIndexParser::CheckOrder()
{
	const auto Same = [](const FPakEntry& A, const FPakEntry& B) {
		return CompareText({A.Folder, A.Name}, {B.Folder, B.Name}) == 0;
	};
	const auto Twice = std::adjacent_find(Index.Entries.begin(), Index.Entries.end(), Same);
	return Twice == Index.Entries.end() ? FProblem() : FProblem(Error("it holds \"" + Twice->Path() + "\" twice"));
}
} // namespace

std::string FPakEntry::Path() const
{
	return std::string(Folder).append(Name);
}

TResult<FPakIndex> FPakIndex::Read(FBytes File, const FPakFooter& Footer, std::string_view Name, EPakIndexHashes Hashes)
{
	return FIndexParser(File, Footer, Name, Hashes).Run();
}
} // namespace QVFormats
