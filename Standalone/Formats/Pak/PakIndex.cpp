// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Pak/PakIndex.h"

#include "Standalone/Formats/Base/Parallel.h"
#include "Standalone/Formats/Pak/PakDirectory.h"
#include "Standalone/Formats/Pak/PakIndexHashes.h"
#include "Standalone/Formats/Pak/PakPaths.h"

#include <algorithm>
#include <optional>

namespace QVFormats
{
namespace
{
/** The least that a record, and a name before it, takes in the file. */
constexpr std::size_t LeastNameBytes = 4;
constexpr std::size_t LeastRecordBytes = 53;
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

/** As their paths are ordered, which are put together only where one folder lies in the other. */
bool IsBefore(const FPakEntry& A, const FPakEntry& B)
{
	if (A.Folder.data() == B.Folder.data() && A.Folder.size() == B.Folder.size())
	{
		return ComparePakPaths(A.Name, B.Name) < 0;
	}
	const std::size_t Shared = std::min(A.Folder.size(), B.Folder.size());
	const int Order = ComparePakPaths(A.Folder.substr(0, Shared), B.Folder.substr(0, Shared));
	return Order != 0 ? Order < 0 : ComparePakPaths(A.Path(), B.Path()) < 0;
}

class FIndexParser
{
public:
	FIndexParser(FBytes InFile, const FPakFooter& InFooter, std::string_view InName, EPakIndexHashes InHashes)
		: File(InFile)
		, Footer(InFooter)
		, Name(InName)
		, HowToHash(InHashes)
	{
	}

	TResult<FPakIndex> Run();

private:
	using FProblem = std::optional<FError>;

	FError Error(const std::string& What) const { return {std::string(Name) + ": " + What}; }
	FProblem Refusal() const;
	FProblem TakePart(std::int64_t Offset, std::int64_t Size, const FSha1Hash& Hash, const char* What, FBytes& Out);
	FProblem ReadHead(FByteReader& In);
	FProblem TakeTables(const FSecondaryIndex& PathHash, const FSecondaryIndex& Directory);
	FProblem ReadEntries(FByteReader& In);
	FProblem ReadRecordIndex(FByteReader& In);
	FProblem ReadPlainEntries(FByteReader& In);
	FProblem ReadFiles();
	FProblem AddFile(const FPakNamedPlace& Named);
	FProblem CheckEntry(const FPakEntry& Entry) const;
	FProblem Sort();
	FPakTexts Texts() { return {Footer.Version >= EPakVersion::Utf8Directory, Index.Texts}; }

	FBytes File;
	const FPakFooter& Footer;
	std::string_view Name;
	EPakIndexHashes HowToHash;
	FPakIndexHashes Hashes;
	FPakIndex Index;
	std::int32_t FileCount = 0;
	FBytes DirectoryBytes;
	FBytes Encoded;
	std::vector<FPakEntry> PlainEntries;
};

/** A part is only read here within its bounds, so that it may be read before its hash is known. */
TResult<FPakIndex> FIndexParser::Run()
{
	FBytes Bytes;
	FProblem Problem = Refusal();
	if (!Problem)
	{
		Problem = TakePart(Footer.IndexOffset, Footer.IndexSize, Footer.IndexHash, "index", Bytes);
	}
	if (Problem)
	{
		return *Problem;
	}
	FByteReader In(Bytes);
	Problem = ReadHead(In);
	RunOnThreads(Hashes.AreLarge() ? 2 : 1,
		[this, &In, &Problem](unsigned Worker)
		{
			if (Worker == 0 && !Problem)
			{
				Problem = ReadEntries(In);
			}
			Hashes.Work();
		});
	if (const std::optional<std::string> Mismatch = Hashes.Mismatch())
	{
		return Error(*Mismatch);
	}
	return Problem ? TResult<FPakIndex>(*Problem) : TResult<FPakIndex>(std::move(Index));
}

FIndexParser::FProblem FIndexParser::Refusal() const
{
	if (Footer.bIndexEncrypted)
	{
		return Error("the index is encrypted; a pak without encryption is needed");
	}
	if (Footer.bIndexFrozen)
	{
		return Error("the index is frozen (version 9), which is a memory image; pack it anew without freezing");
	}
	return {};
}

FIndexParser::FProblem FIndexParser::TakePart(
	std::int64_t Offset, std::int64_t Size, const FSha1Hash& Hash, const char* What, FBytes& Out)
{
	const std::int64_t Limit = static_cast<std::int64_t>(File.size() - Footer.Bytes);
	if (Offset < 0 || Size < 0 || Offset > Limit || Size > Limit - Offset)
	{
		return Error("the " + std::string(What) + " lies outside the file: offset " + std::to_string(Offset) +
					 ", size " + std::to_string(Size) + ", and the footer begins at " + std::to_string(Limit));
	}
	Out = File.subspan(static_cast<std::size_t>(Offset), static_cast<std::size_t>(Size));
	if (HowToHash == EPakIndexHashes::Check)
	{
		Hashes.Add(What, Out, Hash);
	}
	return {};
}

FIndexParser::FProblem FIndexParser::ReadHead(FByteReader& In)
{
	Index.MountPoint = In.String().ToUtf8();
	if (Footer.Version < EPakVersion::PathHashIndex)
	{
		return {};
	}
	FileCount = In.I32();
	Index.PathHashSeed = In.U64();
	FSecondaryIndex PathHash;
	FSecondaryIndex Directory;
	PathHash.Read(In);
	Directory.Read(In);
	return In.Failed() ? FProblem(Error("the index ends too early")) : TakeTables(PathHash, Directory);
}

FIndexParser::FProblem FIndexParser::TakeTables(const FSecondaryIndex& PathHash, const FSecondaryIndex& Directory)
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

FIndexParser::FProblem FIndexParser::ReadEntries(FByteReader& In)
{
	FProblem Problem;
	if (Footer.Version < EPakVersion::PathHashIndex)
	{
		Problem = ReadRecordIndex(In);
	}
	else
	{
		Encoded = In.Take(static_cast<std::uint64_t>(In.Count(1)));
		Problem = ReadPlainEntries(In);
		Problem = Problem ? Problem : ReadFiles();
	}
	return Problem ? Problem : Sort();
}

FIndexParser::FProblem FIndexParser::ReadRecordIndex(FByteReader& In)
{
	const std::int32_t Count = In.Count(LeastNameBytes + LeastRecordBytes);
	if (In.Failed())
	{
		return Error("the index ends too early or counts more files than it can hold");
	}
	Index.Entries.reserve(static_cast<std::size_t>(Count));
	FPakTexts Names = Texts();
	for (std::int32_t Number = 0; Number < Count; ++Number)
	{
		const std::string_view Path = Names.Read(In);
		FPakEntry Entry;
		Entry.ReadRecord(In);
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
	return {};
}

FIndexParser::FProblem FIndexParser::ReadPlainEntries(FByteReader& In)
{
	const std::int32_t Count = In.Count(LeastRecordBytes);
	PlainEntries.reserve(static_cast<std::size_t>(Count));
	for (std::int32_t Number = 0; Number < Count && !In.Failed(); ++Number)
	{
		PlainEntries.emplace_back().ReadRecord(In);
	}
	return In.Failed() ? FProblem(Error("the index ends too early or counts more entries than it can hold"))
					   : FProblem();
}

FIndexParser::FProblem FIndexParser::ReadFiles()
{
	FPakDirectory Directory(DirectoryBytes, Texts(), Encoded.size());
	if (!Directory.Scan())
	{
		return Error("the directory index ends too early or counts more than it can hold");
	}
	if (FileCount < 0 || static_cast<std::size_t>(FileCount) < Directory.FileCount())
	{
		return Error("the index counts " + std::to_string(FileCount) + " files, its directory index " +
					 std::to_string(Directory.FileCount()));
	}
	Index.Entries.reserve(Directory.FileCount());
	FProblem Problem;
	Directory.ForEach(
		[this, &Problem](const FPakNamedPlace& Named)
		{
			Problem = AddFile(Named);
			return !Problem;
		});
	return Problem;
}

FIndexParser::FProblem FIndexParser::AddFile(const FPakNamedPlace& Named)
{
	const std::int64_t Place = Named.Place;
	FPakEntry& Entry = Index.Entries.emplace_back();
	bool bFound = false;
	if (Place >= 0)
	{
		FByteReader In(Encoded);
		In.Seek(Place);
		Entry.ReadEncoded(In);
		bFound = !In.Failed();
	}
	else if (static_cast<std::uint64_t>(-Place - 1) < PlainEntries.size())
	{
		Entry = PlainEntries[static_cast<std::size_t>(-Place - 1)];
		bFound = true;
	}
	Entry.Folder = Named.Folder;
	Entry.Name = Named.Name;
	Entry.Place = Named.Place;
	if (bFound)
	{
		return CheckEntry(Entry);
	}
	return Error(
		"the entry of \"" + Entry.Path() + "\" is " +
		(Place >= 0 ? "outside the encoded entries: place " + std::to_string(Place) + " of " +
						  std::to_string(Encoded.size()) + " bytes"
					: "plain entry " + std::to_string(-Place - 1) + " of " + std::to_string(PlainEntries.size())));
}

FIndexParser::FProblem FIndexParser::CheckEntry(const FPakEntry& Entry) const
{
	const std::string Reason = Entry.WhyImpossible(Footer);
	return Reason.empty() ? FProblem() : FProblem(Error("\"" + Entry.Path() + "\" " + Reason));
}

FIndexParser::FProblem FIndexParser::Sort()
{
	std::vector<FPakEntry>& Entries = Index.Entries;
	const auto IsNotBefore = [](const FPakEntry& A, const FPakEntry& B) { return !IsBefore(A, B); };
	if (std::adjacent_find(Entries.begin(), Entries.end(), IsNotBefore) == Entries.end())
	{
		return {};
	}
	std::sort(Entries.begin(), Entries.end(), IsBefore);
	const auto Twice = std::adjacent_find(Entries.begin(), Entries.end(), IsNotBefore);
	return Twice == Entries.end() ? FProblem() : FProblem(Error("it holds \"" + Twice->Path() + "\" twice"));
}
} // namespace

TResult<FPakIndex> FPakIndex::Read(FBytes File, const FPakFooter& Footer, std::string_view Name, EPakIndexHashes Hashes)
{
	return FIndexParser(File, Footer, Name, Hashes).Run();
}
} // namespace QVFormats
