// SPDX-License-Identifier: MIT
#include "Standalone/Engine/PackageHeaderBytes.h"

#include <algorithm>

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
/** Most headers fit; reading more costs less than asking twice. */
constexpr std::size_t FirstRead = std::size_t{16} << 10;
/** A gap that is not worth a read of its own. */
constexpr std::size_t SmallGap = std::size_t{16} << 10;

/** Where names and imports, which follow the summary, end. */
std::size_t TablesEnd(const FPackageSummary& Summary)
{
	const auto HeaderEnd = static_cast<std::uint64_t>(Summary.TotalHeaderSize);
	const FPackageTable& Imports = Summary.Imports;
	if (Imports.Count <= 0 || Imports.Offset < Summary.Names.Offset)
	{
		return HeaderEnd;
	}
	const std::uint64_t End =
		static_cast<std::uint64_t>(Imports.Offset) + static_cast<std::uint64_t>(Imports.Count) * Summary.ImportBytes();
	return static_cast<std::size_t>(std::min(End, HeaderEnd));
}

struct FPart
{
	std::size_t Begin = 0;
	std::size_t End = 0;
};

/** Soft package references; to the header's end where their length is not known beforehand. */
FPart SoftReferencesPart(const FPackageSummary& Summary)
{
	const auto HeaderEnd = static_cast<std::size_t>(Summary.TotalHeaderSize);
	const FPackageTable& Table = Summary.SoftPackageReferences;
	if (Table.Count <= 0 || Table.Offset <= 0)
	{
		return {HeaderEnd, HeaderEnd};
	}
	const auto Begin = std::min(static_cast<std::size_t>(Table.Offset), HeaderEnd);
	const std::size_t Bytes = static_cast<std::size_t>(Table.Count) * 8;
	return {Begin, Summary.IsAtLeast(EUE4Version::SoftPackageNames) ? std::min(Begin + Bytes, HeaderEnd) : HeaderEnd};
}

FPart RegistryPart(const FPackageSummary& Summary)
{
	const auto HeaderEnd = static_cast<std::size_t>(Summary.TotalHeaderSize);
	const std::int32_t Offset = Summary.AssetRegistryOffset;
	return {Offset > 0 ? std::min(static_cast<std::size_t>(Offset), HeaderEnd) : HeaderEnd, HeaderEnd};
}

/** Moves a result's value to Out; false, and the error kept, if there is none. */
template<class T>
bool Keep(TResult<T> Result, T& Out, FError& OutError)
{
	if (!Result)
	{
		OutError = Result.Error();
		return false;
	}
	Out = std::move(*Result);
	return true;
}
} // namespace

FStatus FPackageHeaderReader::ReadPart(const FHeaderFile& File, std::size_t Begin, std::size_t End)
{
	const TResult<std::size_t> Count = File.ReadAt(Begin, std::span(Buffer).subspan(Begin, End - Begin));
	if (!Count)
	{
		return Count.Error();
	}
	Reads.emplace_back(Begin, *Count);
	return *Count == End - Begin ? Success() : FError{"became shorter while it was read"};
}

/** The first bytes, and the summary whole; gives how many were read. The buffer then has room for the header. */
TResult<std::size_t> FPackageHeaderReader::ReadStart(const FHeaderFile& File)
{
	const std::uint64_t FileBytes = File.Size();
	std::size_t Known = 0;
	for (std::size_t Wanted = FirstRead;;)
	{
		const auto End = static_cast<std::size_t>(std::min<std::uint64_t>(Wanted, FileBytes));
		Buffer.resize(std::max(Buffer.size(), End));
		if (const FStatus Status = ReadPart(File, Known, End); !Status)
		{
			return Status.Error();
		}
		Known = End;
		const TResult<FHeaderSize> Size = PeekHeaderSize(FBytes(Buffer).first(Known));
		if (!Size)
		{
			return Size.Error();
		}
		if (Size->bKnown && Size->Bytes <= FileBytes)
		{
			Buffer.resize(std::max(Buffer.size(), Size->Bytes));
			return Known;
		}
		if (Size->bKnown || Known == FileBytes || Size->Bytes <= Known)
		{
			return FError{"is cut short: its header has " + std::to_string(Size->Bytes) + " bytes, there are " +
						  std::to_string(FileBytes)};
		}
		Wanted = Size->Bytes;
	}
}

TResult<FPackageHeader> FPackageHeaderReader::ReadTables(const FHeaderFile& File, FPackageSummary Summary)
{
	std::size_t Known = Reads.back().first + Reads.back().second;
	FPart Parts[] = {{0, TablesEnd(Summary)}, SoftReferencesPart(Summary), RegistryPart(Summary)};
	std::sort(std::begin(Parts), std::end(Parts), [](const FPart& A, const FPart& B) { return A.Begin < B.Begin; });
	for (const FPart& Part : Parts)
	{
		if (Part.End > Known)
		{
			const std::size_t Begin = Part.Begin > Known + SmallGap ? Part.Begin : Known;
			if (const FStatus Status = ReadPart(File, Begin, Part.End); !Status)
			{
				return Status.Error();
			}
			Known = Part.End;
		}
	}
	FPackageHeader Header;
	Header.Bytes = FBytes(Buffer).first(static_cast<std::size_t>(Summary.TotalHeaderSize));
	// names that leave their place would be read from where an earlier file lies in the buffer
	const FBytes Front = Header.Bytes.first(TablesEnd(Summary));
	FError Error;
	const bool bGood =
		Keep(FPackageNames::Read(Front, Summary), Header.Names, Error) &&
		Keep(ReadImports(Front, Summary, Header.Names), Header.Imports, Error) &&
		Keep(ReadSoftPackageReferences(Header.Bytes, Summary, Header.Names), Header.SoftPackageReferences, Error) &&
		Keep(ReadRegistrySection(Header.Bytes, Summary), Header.Registry, Error);
	if (bGood && Header.Registry.DependencyOffsetAt > Header.Registry.DependencyBegin)
	{
		Error = {"is damaged: its dependency data lie before its registry section"};
	}
	Header.Summary = std::move(Summary);
	return Error.Message.empty() ? TResult<FPackageHeader>(std::move(Header)) : TResult<FPackageHeader>(Error);
}

TResult<FPackageHeader> FPackageHeaderReader::Read(const std::string& Path)
{
	Reads.clear();
	const FHeaderFile File(Path);
	if (!File.Status())
	{
		return File.Status().Error();
	}
	const TResult<std::size_t> Known = ReadStart(File);
	if (!Known)
	{
		return Known.Error();
	}
	const TResult<FHeaderSize> Size = PeekHeaderSize(FBytes(Buffer).first(*Known));
	TResult<FPackageSummary> Summary = ReadPackageSummary(FBytes(Buffer).first(Size->Bytes));
	if (Size->Bytes > *Known && (!Summary || Summary->End > *Known))
	{
		// a summary of this length is damaged or foreign: nothing is left out
		if (const FStatus Status = ReadPart(File, *Known, Size->Bytes); !Status)
		{
			return Status.Error();
		}
		Summary = ReadPackageSummary(FBytes(Buffer).first(Size->Bytes));
	}
	return Summary ? ReadTables(File, std::move(*Summary)) : TResult<FPackageHeader>(Summary.Error());
}
} // namespace QVStandalone
