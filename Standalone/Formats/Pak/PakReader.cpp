// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Pak/PakReader.h"

#include "Standalone/Formats/Base/PathText.h"
#include "Standalone/Formats/Pak/PakPaths.h"

#include <algorithm>

namespace QVFormats
{
namespace
{
/** Of a pak of 20,000 files: asked for before it is known where the index begins. */
constexpr std::uint64_t UsualIndexBytes = 1 << 20;
constexpr std::uint64_t FooterPageBytes = 4096;

/**
 * Asks for all that is going to be read, so that the disk works while the first of it is looked at: the footer, then
 * the directory index, which tools put last and which is read first, then what lies before it.
 */
void AskForIndex(const FMappedFile& Mapped)
{
	const std::uint64_t Size = Mapped.Bytes().size();
	for (const std::uint64_t Last : {FooterPageBytes, UsualIndexBytes / 2, UsualIndexBytes})
	{
		Mapped.WillRead(Size - std::min(Size, Last));
	}
	const TResult<FPakFooter> Footer = FPakFooter::Read(Mapped.Bytes(), {});
	const std::uint64_t Asked = Size - std::min(Size, UsualIndexBytes);
	if (Footer && Footer->IndexOffset >= 0 && static_cast<std::uint64_t>(Footer->IndexOffset) < Asked)
	{
		Mapped.WillRead(static_cast<std::uint64_t>(Footer->IndexOffset));
	}
}
} // namespace

TResult<FPakReader> FPakReader::Open(const std::filesystem::path& Path, EPakIndexHashes Hashes)
{
	TResult<FMappedFile> Mapped = FMappedFile::Open(Path);
	if (!Mapped)
	{
		return Mapped.Error();
	}
	AskForIndex(*Mapped);
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
