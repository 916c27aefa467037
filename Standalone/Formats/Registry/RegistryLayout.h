// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Registry/AssetRegistry.h"

namespace QVFormats::RegistryLayout
{
/** Versions by what they brought. */
enum class EVersion : std::int32_t
{
	OldestInFiles = 3,
	FixedTags = 8,
	WorkspaceDomain = 9,
	ImportedClasses = 10,
	FileVersionUE5 = 11,
	ChunkHashes = 13,
	ClassPaths = 14,
	NoObjectPaths = 15,
	Header = 16,
	PackageExtension = 17,
	Utf8Strings = 19,
	PackageSavedHash = 20,
	ManageRules = 22,
	AlignedTagStore = 24,
	Newest = 24,
	Written = 17,
};

constexpr std::array<std::uint8_t, 16> Guid = {
	0xE7, 0x9E, 0x7F, 0x71, 0x3A, 0x49, 0xB0, 0xE9, 0x32, 0x91, 0xB3, 0x88, 0x07, 0x81, 0x38, 0x1B};
constexpr std::uint64_t CityHashAlgorithm = 0xC1640000;
constexpr std::size_t LongestName = 0x7FFF;
constexpr std::uint32_t NumberFollows = 0x80000000;
constexpr std::uint32_t TagStoreBegin = 0x12345679;
constexpr std::uint32_t OlderTagStoreBegin = 0x12345678;
constexpr std::uint32_t TagStoreEnd = 0x87654321;
constexpr std::uint64_t NumberlessHandle = std::uint64_t{1} << 63;
constexpr std::uint32_t DependencyBits = 5;

/** Least bytes that one row takes, in any layout; counts that promise more rows than fit are damage. */
constexpr std::size_t SmallestAsset = 40;
constexpr std::size_t SmallestNode = 17;
constexpr std::size_t SmallestPackage = 36;

/** The counts of the tag store in file order; each is also a row of it. */
enum class ERow
{
	NumberlessNames,
	Names,
	NumberlessPaths,
	Paths,
	Texts,
	AsciiOffsets,
	WideOffsets,
	AsciiText,
	WideText,
	NumberlessPairs,
	Pairs,
	Num,
};

/** The names as they lie in the file. */
struct FNameBatch
{
	std::uint32_t Count = 0;
	std::uint64_t Algorithm = CityHashAlgorithm;
	FBytes Hashes;
	FBytes Headers;
	FBytes Strings;
};

/** Where each row of the tag store begins, and how many items it has. */
struct FTagStore
{
	std::array<std::uint32_t, static_cast<std::size_t>(ERow::Num)> Counts{};
	std::array<std::size_t, static_cast<std::size_t>(ERow::Num)> Begins{};

	std::uint32_t Count(ERow Row) const { return Counts[static_cast<std::size_t>(Row)]; }
	std::size_t Begin(ERow Row) const { return Begins[static_cast<std::size_t>(Row)]; }
};

/** A reader that knows what it reads: version, flavour and how many names there are. */
class FInput : public FByteReader
{
public:
	explicit FInput(FBytes File)
		: FByteReader(File)
	{
	}

	bool IsAtLeast(EVersion Other) const { return Version >= Other; }
	/** A name outside the batch fails. */
	FNameRef Name();
	FNameRef NumberlessName() { return Known({U32(), 0}); }
	void SkipNames(std::uint64_t Count);
	/** FString, or UTF-8 from 5.6 on. */
	std::string Text();
	void SkipText();
	bool HasOuterPaths() const { return IsAtLeast(EVersion::NoObjectPaths) && !bFilterEditorOnly; }
	int NamesOfClass() const { return IsAtLeast(EVersion::ClassPaths) ? 2 : 1; }
	int NamesOfPath() const { return IsAtLeast(EVersion::ClassPaths) ? 4 : 3; }
	template<class T>
	std::vector<T> Items()
	{
		std::vector<T> Result(static_cast<std::size_t>(Count(sizeof(T))));
		const FBytes Bytes = Take(Result.size() * sizeof(T));
		if (!Bytes.empty())
		{
			std::memcpy(Result.data(), Bytes.data(), Bytes.size());
		}
		return Result;
	}

	EVersion Version = EVersion::Written;
	bool bFilterEditorOnly = false;
	std::uint32_t NameCount = 0;
	/** The entry that is read as NoName. */
	std::uint32_t NoneEntry = NoName.Entry;

private:
	FNameRef Known(FNameRef Name);
};

/** Guid, version, flag. */
FStatus ReadStart(FInput& In);
FNameBatch ReadNameBatch(FInput& In);
/** Passes the tag store. */
FTagStore LocateTagStore(FInput& In);
/** Batch and store, turned into the state's lists; returns how many of the state's tags come from numberless pairs. */
void ReadNames(FInput& In, FAssetRegistryState& State);
std::uint32_t ReadTags(FInput& In, FAssetRegistryState& State);

/** Calls Visit(FStringView) for each name of the batch; false when the strings do not fit their headers. */
template<class TVisit>
bool ForEachName(const FNameBatch& Batch, TVisit Visit)
{
	FByteReader Headers(Batch.Headers);
	FByteReader Strings(Batch.Strings);
	for (std::uint32_t Left = Batch.Count; Left > 0; --Left)
	{
		const std::uint8_t High = Headers.U8();
		const bool bWide = (High & 0x80) != 0;
		const std::uint64_t Units = static_cast<std::uint64_t>(High & 0x7F) << 8 | Headers.U8();
		const FBytes Text = Strings.Take(Units * (bWide ? 2 : 1));
		if (Strings.Failed())
		{
			return false;
		}
		Visit(FStringView{Text, bWide});
	}
	return true;
}

FError Damaged(std::string_view Where, const FInput& In);
} // namespace QVFormats::RegistryLayout
