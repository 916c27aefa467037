// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Pak/PakIndexWriter.h"

#include "Standalone/Formats/Pak/PakPaths.h"

#include <algorithm>
#include <map>

namespace QVFormats
{
namespace
{
struct FPathOrder
{
	using is_transparent = void;
	bool operator()(std::string_view A, std::string_view B) const { return ComparePakPaths(A, B) < 0; }
};

struct FPlace
{
	std::string_view Name;
	std::int32_t Place = 0;
};
using FFolders = std::map<std::string_view, std::vector<FPlace>, FPathOrder>;

/** The entries of the index, and what the other two tables call each of them by. */
struct FEntryTable
{
	FByteWriter Encoded;
	FByteWriter Plain;
	std::int32_t PlainCount = 0;
	std::vector<std::int32_t> Places;

	void Add(const FPakStoredFile& File)
	{
		FPakEncodedEntry Entry;
		Entry.Offset = File.Offset;
		Entry.Size = File.Size;
		Entry.UncompressedSize = File.UncompressedSize;
		Entry.Method = File.bCompressed ? 1 : 0;
		Entry.BlockSize = File.BlockSize();
		Entry.BlockCount = static_cast<std::uint32_t>(File.BlockLengths.size());
		Entry.BlockLengths = std::as_bytes(std::span(File.BlockLengths));
		if (Entry.Fits())
		{
			Places.push_back(static_cast<std::int32_t>(Encoded.Position()));
			Entry.Write(Encoded);
			return;
		}
		++PlainCount;
		Places.push_back(-PlainCount);
		File.Record(File.Offset).Write(Plain);
	}
};

std::vector<std::byte> MakePathHashIndex(const FPakPlan& Plan, const FEntryTable& Table, std::uint64_t Seed)
{
	std::vector<std::pair<std::uint64_t, std::int32_t>> Hashes;
	Hashes.reserve(Plan.Files.size());
	for (std::size_t Number = 0; Number < Plan.Files.size(); ++Number)
	{
		Hashes.emplace_back(PakPathHash("", Plan.Files[Number].Path(), Seed), Table.Places[Number]);
	}
	std::sort(Hashes.begin(), Hashes.end());
	FByteWriter Out;
	Out.I32(static_cast<std::int32_t>(Hashes.size()));
	for (const auto& [Hash, Place] : Hashes)
	{
		Out.U64(Hash);
		Out.I32(Place);
	}
	// The pruned directory index: nothing in a map is found by walking folders.
	Out.I32(0);
	return Out.Release();
}

/** The folder's part of a path with its slash; "/" for the top. */
std::string_view FolderOf(std::string_view Path)
{
	const std::size_t Slash = Path.find_last_of('/');
	return Slash == std::string_view::npos ? "/" : Path.substr(0, Slash + 1);
}

/** The folder and all on the way to it. */
void AddFolders(FFolders& Folders, std::string_view Folder)
{
	while (Folders.try_emplace(Folder).second && Folder != "/")
	{
		Folder = FolderOf(Folder.substr(0, Folder.size() - 1));
	}
}

FFolders GatherFolders(const FPakPlan& Plan, const FEntryTable& Table)
{
	FFolders Folders;
	for (std::size_t Number = 0; Number < Plan.Files.size(); ++Number)
	{
		const std::string_view Path = Plan.Files[Number].Path();
		const std::string_view Folder = FolderOf(Path);
		AddFolders(Folders, Folder);
		Folders.find(Folder)->second.push_back({Path.substr(Path.find_last_of('/') + 1), Table.Places[Number]});
	}
	return Folders;
}

std::vector<std::byte> MakeDirectoryIndex(const FPakPlan& Plan, const FEntryTable& Table)
{
	const FFolders Folders = GatherFolders(Plan, Table);
	FByteWriter Out;
	Out.I32(static_cast<std::int32_t>(Folders.size()));
	for (const auto& [Folder, Files] : Folders)
	{
		Out.String(Folder);
		Out.I32(static_cast<std::int32_t>(Files.size()));
		for (const FPlace& File : Files)
		{
			Out.String(File.Name);
			Out.I32(File.Place);
		}
	}
	return Out.Release();
}

/** A table's place in the index; gives where the next begins. */
std::uint64_t WriteTablePlace(FByteWriter& Out, std::uint64_t Offset, const std::vector<std::byte>& Table)
{
	Out.Bool32(true);
	Out.U64(Offset);
	Out.U64(Table.size());
	Out.Append(FSha1::Of(Table));
	return Offset + Table.size();
}

/** Once with any offsets to learn its size, once with the right ones. */
std::vector<std::byte> MakeIndex(const FPakPlan& Plan, const FEntryTable& Table, const FPakIndexBytes& Others,
	std::uint64_t Seed, std::uint64_t TablesOffset)
{
	FByteWriter Out;
	Out.String(Plan.MountPoint);
	Out.I32(static_cast<std::int32_t>(Plan.Files.size()));
	Out.U64(Seed);
	const std::uint64_t DirectoryOffset = WriteTablePlace(Out, TablesOffset, Others.PathHashIndex);
	WriteTablePlace(Out, DirectoryOffset, Others.DirectoryIndex);
	Out.I32(static_cast<std::int32_t>(Table.Encoded.Position()));
	Out.Append(Table.Encoded.Bytes());
	Out.I32(Table.PlainCount);
	Out.Append(Table.Plain.Bytes());
	return Out.Release();
}
} // namespace

FPakIndexBytes FPakIndexBytes::Make(const FPakPlan& Plan, const std::vector<FPakStoredFile>& Files,
	std::uint64_t IndexOffset, std::uint64_t PathHashSeed)
{
	FEntryTable Table;
	for (const FPakStoredFile& File : Files)
	{
		Table.Add(File);
	}
	FPakIndexBytes Result;
	Result.PathHashIndex = MakePathHashIndex(Plan, Table, PathHashSeed);
	Result.DirectoryIndex = MakeDirectoryIndex(Plan, Table);
	const std::size_t IndexBytes = MakeIndex(Plan, Table, Result, PathHashSeed, 0).size();
	Result.Index = MakeIndex(Plan, Table, Result, PathHashSeed, IndexOffset + IndexBytes);
	return Result;
}
} // namespace QVFormats
