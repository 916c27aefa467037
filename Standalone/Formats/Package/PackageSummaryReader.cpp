// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/SummaryFields.h"

#include <algorithm>
#include <cstdio>
#include <span>

namespace QVFormats
{
namespace
{
/** Far beyond what any engine registers; a larger number is damage. */
constexpr std::int32_t MostCustomVersions = 4096;
constexpr std::size_t ShortestPrefix = 64;
constexpr std::int32_t OldestLegacyVersion = -7;
constexpr std::int32_t NewestLegacyVersion = -9;
constexpr std::string_view LfsPointer = "version https://git-lfs";

std::string Hex(std::uint32_t Value)
{
	char Text[16];
	std::snprintf(Text, sizeof(Text), "0x%08X", Value);
	return Text;
}

FStatus RefuseOtherFiles(FBytes Bytes)
{
	if (Bytes.empty())
	{
		return FError{"is empty, expected an Unreal package"};
	}
	if (Bytes.size() >= LfsPointer.size() && std::memcmp(Bytes.data(), LfsPointer.data(), LfsPointer.size()) == 0)
	{
		return FError{"is a Git LFS pointer: fetch the file with git lfs pull"};
	}
	const std::uint32_t Tag = FByteReader(Bytes).U32();
	if (Tag == SwappedPackageTag)
	{
		return FError{"is a package of a big-endian platform; only little-endian ones are read"};
	}
	if (Bytes.size() >= sizeof(Tag) && Tag != PackageTag)
	{
		return FError{"is not an Unreal package: begins with " + Hex(Tag) + ", expected " + Hex(PackageTag)};
	}
	return Success();
}

FStatus RefuseOtherVersions(const FPackageSummary& Summary)
{
	if (Summary.LegacyVersion > OldestLegacyVersion || !Summary.IsAtLeast(EUE4Version::Oldest))
	{
		return FError{"was saved by an engine older than 4.15 (legacy version " +
					  std::to_string(Summary.LegacyVersion) + ", file version " +
					  std::to_string(Summary.FileVersionUE4) + "); open and save it in a newer editor"};
	}
	if (Summary.LegacyVersion < NewestLegacyVersion || Summary.LayoutUE4 > EUE4Version::AutomaticVersion ||
		Summary.LayoutUE5 > EUE5Version::Newest)
	{
		return FError{"was saved by an engine newer than 5.8 (legacy version " + std::to_string(Summary.LegacyVersion) +
					  ", file version " + std::to_string(Summary.FileVersionUE5) + "); known are versions up to " +
					  std::to_string(static_cast<std::int32_t>(EUE5Version::Newest))};
	}
	return Success();
}

FError CutShort(std::size_t Size)
{
	return {"is cut short or damaged in its summary (" + std::to_string(Size) + " bytes)"};
}

/** The exports end where the next table begins in the right layout only. */
bool ExportTableFits(const FPackageSummary& Summary)
{
	const std::int64_t Distance = static_cast<std::int64_t>(Summary.DependsOffset) - Summary.Exports.Offset;
	const std::int64_t Count = Summary.Exports.Count;
	return Count <= 0 || Distance == Count * static_cast<std::int64_t>(Summary.ExportBytes());
}

bool ReadAs(FBytes Header, FPackageSummary& Summary, EUE5Version Layout)
{
	Summary = {};
	FSummaryReader Reader(Header, Summary);
	Reader.Versions();
	Summary.LayoutUE5 = Layout;
	Reader.HeaderSizeAndCustomVersions();
	Reader.Tables();
	Reader.Identity();
	Reader.Tail();
	return !Reader.In.Failed();
}

/** A cooked package does not say its version: the newest layout is taken for which all meets. */
TResult<FPackageSummary> GuessLayout(FBytes Header, std::int32_t LegacyVersion)
{
	static constexpr EUE5Version Newest[] = {EUE5Version::ImportTypeHierarchies, EUE5Version::SavedHash};
	static constexpr EUE5Version Middle[] = {EUE5Version::Cells, EUE5Version::MetaData,
		EUE5Version::PropertyTagTypeNames, EUE5Version::DataResources, EUE5Version::SoftObjectPathList,
		EUE5Version::LargeWorldCoordinates};
	static constexpr EUE5Version Oldest[] = {EUE5Version::None};
	const std::span<const EUE5Version> Candidates = LegacyVersion <= -9	  ? std::span<const EUE5Version>(Newest)
													: LegacyVersion == -8 ? std::span<const EUE5Version>(Middle)
																		  : std::span<const EUE5Version>(Oldest);
	FPackageSummary Summary;
	for (const EUE5Version Layout : Candidates)
	{
		if (ReadAs(Header, Summary, Layout) && static_cast<std::int64_t>(Summary.End) == Summary.Names.Offset &&
			ExportTableFits(Summary))
		{
			return Summary;
		}
	}
	return FError{"is a cooked package whose header has none of the layouts of 4.26 to 5.8, or is cut short"};
}

TResult<FPackageSummary> ReadLayout(FBytes Header, EUE5Version Layout)
{
	FPackageSummary Summary;
	return ReadAs(Header, Summary, Layout) ? TResult<FPackageSummary>(std::move(Summary)) : CutShort(Header.size());
}

/** In: behind the versions. */
TResult<FHeaderSize> ReadHeaderSize(FByteReader& In, bool bSavedHashFirst)
{
	std::size_t SizeAt = In.Position() + SavedHashBytes;
	if (!bSavedHashFirst)
	{
		const std::int32_t Customs = In.I32();
		if (Customs < 0 || Customs > MostCustomVersions)
		{
			return FError{"is damaged: it announces " + std::to_string(Customs) + " custom versions"};
		}
		SizeAt = In.Position() + static_cast<std::size_t>(Customs) * CustomVersionBytes;
	}
	In.Seek(static_cast<std::int64_t>(SizeAt));
	const std::int32_t HeaderBytes = In.I32();
	if (In.Failed())
	{
		return FHeaderSize{std::max(SizeAt + sizeof(HeaderBytes), ShortestPrefix), false};
	}
	if (HeaderBytes <= 0)
	{
		return FError{"is damaged: its header is said to have " + std::to_string(HeaderBytes) + " bytes"};
	}
	return FHeaderSize{static_cast<std::size_t>(HeaderBytes), true};
}

FStatus CheckSummary(const FPackageSummary& Summary, std::size_t FileBytes)
{
	if (Summary.TotalHeaderSize < 0 || static_cast<std::size_t>(Summary.TotalHeaderSize) > FileBytes)
	{
		return FError{"is cut short: its header has " + std::to_string(Summary.TotalHeaderSize) + " bytes, there are " +
					  std::to_string(FileBytes)};
	}
	if (static_cast<std::int64_t>(Summary.End) != Summary.Names.Offset ||
		Summary.Names.Offset > Summary.TotalHeaderSize)
	{
		return FError{"is damaged: its summary ends at " + std::to_string(Summary.End) +
					  ", where the names should begin, and they are said to begin at " +
					  std::to_string(Summary.Names.Offset)};
	}
	return Success();
}
} // namespace

TResult<FHeaderSize> PeekHeaderSize(FBytes Prefix)
{
	if (const FStatus Status = RefuseOtherFiles(Prefix); !Status)
	{
		return Status.Error();
	}
	FPackageSummary Summary;
	FSummaryReader Reader(Prefix, Summary);
	Reader.Versions();
	if (Reader.In.Failed())
	{
		return FHeaderSize{ShortestPrefix, false};
	}
	if (const FStatus Status = RefuseOtherVersions(Summary); !Status)
	{
		return Status.Error();
	}
	return ReadHeaderSize(Reader.In, Summary.IsAtLeast(EUE5Version::SavedHash));
}

TResult<FPackageSummary> ReadPackageSummary(FBytes Header)
{
	if (const FStatus Status = RefuseOtherFiles(Header); !Status)
	{
		return Status.Error();
	}
	FPackageSummary Versions;
	FSummaryReader Reader(Header, Versions);
	Reader.Versions();
	if (Reader.In.Failed())
	{
		return CutShort(Header.size());
	}
	if (const FStatus Status = RefuseOtherVersions(Versions); !Status)
	{
		return Status.Error();
	}
	TResult<FPackageSummary> Summary =
		Versions.IsUnversioned() ? GuessLayout(Header, Versions.LegacyVersion) : ReadLayout(Header, Versions.LayoutUE5);
	const FStatus Checked = Summary ? CheckSummary(*Summary, Header.size()) : FStatus(Summary.Error());
	return Checked ? std::move(Summary) : TResult<FPackageSummary>(Checked.Error());
}
} // namespace QVFormats
