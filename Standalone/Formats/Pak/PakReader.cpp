// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Pak/PakReader.h"

#include "Standalone/Formats/Base/PathText.h"
#include "Standalone/Formats/Pak/PakPaths.h"

#include <algorithm>

namespace QVFormats
{
namespace
{
/** Of a pak of 20,000 files. A larger index is read as it is met. */
constexpr std::uint64_t UsualIndexBytes = 1 << 20;
constexpr std::uint64_t FooterPageBytes = 4096;
} // namespace

TResult<FPakReader> FPakReader::Open(const std::filesystem::path& Path, EPakIndexHashes Hashes)
{
	TResult<FMappedFile> Mapped = FMappedFile::Open(Path);
	if (!Mapped)
	{
		return Mapped.Error();
	}
	const std::uint64_t Size = Mapped->Bytes().size();
	Mapped->WillRead(Size - std::min(Size, FooterPageBytes)); // what is needed first is to come first
	Mapped->WillRead(Size - std::min(Size, UsualIndexBytes));
	TResult<FPakReader> Reader = FromMemory(Mapped->Bytes(), PathText(Path), Hashes);
	if (Reader)
	{
		Reader->Mapping = std::move(*Mapped);
	}
	return Reader;
}

TResult<FPakReader> FPakReader::FromMemory(FBytes Bytes, std::string Name, EPakIndexHashes Hashes)
{
	TResult<FPakFooter> Footer = FPakFooter::Read(Bytes, Name);
	if (!Footer)
	{
		return Footer.Error();
	}
	TResult<FPakIndex> Index = FPakIndex::Read(Bytes, *Footer, Name, Hashes);
	if (!Index)
	{
		return Index.Error();
	}
	FPakReader Reader;
	Reader.View = Bytes;
	Reader.FileName = std::move(Name);
	Reader.FileFooter = std::move(*Footer);
	Reader.Index = std::move(*Index);
	return Reader;
}

const FPakEntry* FPakReader::Find(std::string_view Path) const
{
	const auto Before = [](const FPakEntry& Entry, std::string_view Wanted)
	{ return ComparePakPaths(Entry.Path(), Wanted) < 0; };
	const auto Found = std::lower_bound(Index.Entries.begin(), Index.Entries.end(), Path, Before);
	return Found != Index.Entries.end() && ComparePakPaths(Found->Path(), Path) == 0 ? &*Found : nullptr;
}

std::string_view FPakReader::MethodName(const FPakEntry& Entry) const
{
	return Entry.Method == 0 ? "None" : std::string_view(FileFooter.Methods[Entry.Method - 1]);
}
} // namespace QVFormats
