// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/SummaryWriter.h"

#include "Standalone/Formats/Base/ByteWriter.h"
#include "Standalone/Formats/Base/CityHash.h"

namespace QVFormats
{
namespace
{
constexpr std::int32_t LegacyVersion = -8;
constexpr std::int32_t LegacyUE3Version = 864;
constexpr std::string_view Branch = "++UE5+Release-5.4";
constexpr std::uint32_t SavedByChangelist = 35576357;
constexpr std::uint32_t CompatibleChangelist = 33043543;

struct FCustomVersion
{
	FPackageGuid Key;
	std::int32_t Version;
};
/** Those that decide how levels, classes and functions lie in export data, with the values of 5.4. */
constexpr FCustomVersion CustomVersions[] = {
	{{{0xCFFC743F, 0x43B04480, 0x939114DF, 0x171D2073}}, 37},  // Framework
	{{{0x375EC13C, 0x06E448FB, 0xB50084F0, 0x262A717E}}, 4},   // Core
	{{{0x9C54D522, 0xA8264FBE, 0x94210746, 0x61B482D0}}, 44},  // Release
	{{{0x12F88B9F, 0x88754AFC, 0xA67CD90C, 0x383ABD29}}, 48},  // Rendering
	{{{0x601D1886, 0xAC644F84, 0xAA16D3DE, 0x0DEAC7D6}}, 134}, // FortniteMain
	{{{0x697DD581, 0xE64F41AB, 0xAA4A51EC, 0xBEB7B628}}, 119}, // UE5Main
	{{{0xD89B5E42, 0x24BD4D46, 0x8412ACA8, 0xDF641779}}, 51},  // UE5Release
	{{{0xE4B068ED, 0xF49442E9, 0xA231DA0B, 0x2E46BB41}}, 40},  // Editor
};

/** Files are compared byte for byte, so nothing in them may be drawn at random. */
FPackageGuid GuidFrom(std::string_view Purpose, std::string_view PackageName)
{
	const std::string Text = std::string(Purpose) + std::string(PackageName);
	const std::uint64_t First = CityHash64(std::as_bytes(std::span(Text)));
	const std::uint64_t Second = CityHash64(std::as_bytes(std::span(&First, 1)));
	return {{static_cast<std::uint32_t>(First), static_cast<std::uint32_t>(First >> 32),
		static_cast<std::uint32_t>(Second), static_cast<std::uint32_t>(Second >> 32)}};
}

std::string HexDigits(const FPackageGuid& Guid)
{
	std::string Text;
	for (const std::uint32_t Word : Guid.Words)
	{
		for (int Shift = 28; Shift >= 0; Shift -= 4)
		{
			Text += "0123456789ABCDEF"[(Word >> Shift) & 0xF];
		}
	}
	return Text;
}

void EngineVersion(FByteWriter& To, std::uint16_t Patch, std::uint32_t Changelist)
{
	To.U16(5);
	To.U16(4);
	To.U16(Patch);
	To.U32(Changelist);
	To.String(Branch);
}

void Tables(FByteWriter& To, const FPackageSpec& Spec, const FSectionOffsets& Offsets, const FSummaryCounts& Counts)
{
	const auto Table = [&To](std::size_t Count, std::int32_t Offset)
	{
		To.I32(static_cast<std::int32_t>(Count));
		To.I32(Offset);
	};
	Table(Counts.Names, Offsets.Names);
	Table(Spec.SoftPaths.size(), Offsets.SoftPaths);
	To.String(HexDigits(GuidFrom("localization", Spec.PackageName)));
	Table(0, Offsets.GatherableText);
	Table(Spec.Exports.size(), Offsets.Exports);
	Table(Spec.Imports.size(), Offsets.Imports);
	To.I32(Offsets.Depends);
	Table(Counts.SoftPackages, Offsets.SoftPackages);
	To.I32(Offsets.SearchableNames);
	To.I32(0); // thumbnails
}

void Tail(FByteWriter& To, const FPackageSpec& Spec, const FSectionOffsets& Offsets, const FSummaryCounts& Counts)
{
	To.U32(0); // compression
	To.I32(0); // compressed chunks
	To.U32(GuidFrom("source", Spec.PackageName).Words[0]);
	To.I32(0); // additional packages
	To.I32(Offsets.AssetRegistry);
	To.I64(Offsets.BulkData);
	To.I32(0);	// world tile info
	To.I32(0);	// chunk ids
	To.I32(-1); // preload dependencies: as every editor package has them
	To.I32(Offsets.HeaderSize);
	To.I32(static_cast<std::int32_t>(Counts.DataNames));
	To.I64(Offsets.Trailer);
	To.I32(0); // data resources
}
} // namespace

std::vector<std::byte> WriteSummary(
	const FPackageSpec& Spec, const FSectionOffsets& Offsets, const FSummaryCounts& Counts)
{
	FByteWriter To;
	To.U32(PackageTag);
	To.I32(LegacyVersion);
	To.I32(LegacyUE3Version);
	To.Write(EUE4Version::AutomaticVersion);
	To.Write(EUE5Version::PropertyTagTypeNames);
	To.I32(0); // licensee
	To.I32(static_cast<std::int32_t>(std::size(CustomVersions)));
	To.Append(std::as_bytes(std::span(CustomVersions)));
	To.I32(Offsets.HeaderSize);
	To.String(Spec.PackageName);
	To.U32(Spec.Flags);
	Tables(To, Spec, Offsets, Counts);
	To.Write(GuidFrom("saved", Spec.PackageName));
	To.Write(GuidFrom("persistent", Spec.PackageName));
	To.I32(1);
	To.I32(static_cast<std::int32_t>(Spec.Exports.size()));
	To.I32(static_cast<std::int32_t>(Counts.Names));
	EngineVersion(To, 4, SavedByChangelist);
	EngineVersion(To, 0, CompatibleChangelist);
	Tail(To, Spec, Offsets, Counts);
	return To.Release();
}
} // namespace QVFormats
