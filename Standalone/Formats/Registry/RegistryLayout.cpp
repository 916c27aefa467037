// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Registry/RegistryLayout.h"

#include <span>

namespace QVFormats::RegistryLayout
{
namespace
{
constexpr std::string_view LfsPointer = "version https://git-lfs";
constexpr std::size_t StoreAlignment = 16;

void AlignTo(FInput& In, std::size_t Alignment)
{
	In.Skip((Alignment - In.Position() % Alignment) % Alignment);
}

void SkipRow(FInput& In, ERow Row, std::uint64_t Count)
{
	const auto PathNames = static_cast<std::uint64_t>(In.NamesOfPath());
	switch (Row)
	{
	case ERow::Names:
		return In.SkipNames(Count);
	case ERow::Paths:
		return In.SkipNames(Count * PathNames);
	case ERow::NumberlessPaths:
		return In.Skip(Count * PathNames * 4);
	case ERow::AsciiText:
		return In.Skip(Count);
	case ERow::WideText:
		return In.Skip(Count * 2);
	case ERow::NumberlessPairs:
		return In.Skip(Count * 8);
	case ERow::Pairs:
		for (; Count > 0 && !In.Failed(); --Count)
		{
			In.SkipNames(1);
			In.U32();
		}
		return;
	case ERow::Texts:
		for (; Count > 0 && !In.Failed(); --Count)
		{
			In.SkipText();
		}
		return;
	default:
		return In.Skip(Count * 4);
	}
}

constexpr ERow NewOrder[] = {ERow::Texts, ERow::NumberlessNames, ERow::Names, ERow::NumberlessPaths, ERow::Paths,
	ERow::AsciiOffsets, ERow::WideOffsets, ERow::AsciiText, ERow::WideText, ERow::NumberlessPairs, ERow::Pairs};
constexpr ERow OlderOrder[] = {ERow::NumberlessNames, ERow::Names, ERow::NumberlessPaths, ERow::Paths, ERow::Texts,
	ERow::AsciiOffsets, ERow::WideOffsets, ERow::AsciiText, ERow::WideText, ERow::NumberlessPairs, ERow::Pairs};

FError NotSupported(std::int32_t Version)
{
	const std::string Number = std::to_string(Version);
	if (Version > static_cast<std::int32_t>(EVersion::Newest))
	{
		return {"is an asset registry of version " + Number + ", newer than this program knows (24)"};
	}
	if (Version < static_cast<std::int32_t>(EVersion::OldestInFiles))
	{
		return {"is an asset registry of version " + Number + ", which no engine reads any more; cook it again"};
	}
	return {"is an asset registry of version " + Number +
			", written by UE 4; versions 8 to 24 are read. Cook it again with UE 5"};
}
} // namespace

FNameRef FInput::Name()
{
	const std::uint32_t Field = U32();
	return Known({Field & ~NumberFollows, (Field & NumberFollows) != 0 ? U32() : 0});
}

FNameRef FInput::Known(FNameRef Name)
{
	if (Name.Entry >= NameCount)
	{
		Fail();
		return NoName;
	}
	return Name.Entry == NoneEntry && Name.Number == 0 ? NoName : Name;
}

void FInput::SkipNames(std::uint64_t Count)
{
	for (; Count > 0 && !Failed(); --Count)
	{
		Name();
	}
}

std::string FInput::Text()
{
	if (!IsAtLeast(EVersion::Utf8Strings))
	{
		return String().ToUtf8();
	}
	const FBytes Bytes = Take(static_cast<std::uint64_t>(Count(1)));
	std::string Result(reinterpret_cast<const char*>(Bytes.data()), Bytes.size());
	// Not every string of these layouts is known to have lost its NUL.
	return !Result.empty() && Result.back() == '\0' ? Result.substr(0, Result.size() - 1) : Result;
}

void FInput::SkipText()
{
	IsAtLeast(EVersion::Utf8Strings) ? Skip(static_cast<std::uint64_t>(Count(1))) : static_cast<void>(String());
}

FError Damaged(std::string_view Where, const FInput& In)
{
	return {"is cut short or damaged in " + std::string(Where) + " (asset registry of version " +
			std::to_string(static_cast<std::int32_t>(In.Version)) + ", " + std::to_string(In.Size()) + " bytes)"};
}

FStatus ReadStart(FInput& In)
{
	if (In.Size() == 0)
	{
		return FError{"is empty, expected an asset registry"};
	}
	const auto Found = In.Read<std::array<std::uint8_t, Guid.size()>>();
	if (std::memcmp(Found.data(), LfsPointer.data(), Found.size()) == 0)
	{
		return FError{"is a Git LFS pointer: fetch the file with git lfs pull"};
	}
	if (In.Failed() || Found != Guid)
	{
		return FError{"is not an asset registry: it does not begin with the guid of one"};
	}
	const std::int32_t Version = In.I32();
	if (In.Failed())
	{
		return FError{"is cut short: an asset registry of " + std::to_string(In.Size()) + " bytes"};
	}
	In.Version = EVersion{Version};
	if (!In.IsAtLeast(EVersion::FixedTags) || In.Version > EVersion::Newest)
	{
		return NotSupported(Version);
	}
	In.bFilterEditorOnly = In.IsAtLeast(EVersion::Header) && In.Bool32();
	return In.Failed() ? FStatus(Damaged("its header", In)) : Success();
}

FNameBatch ReadNameBatch(FInput& In)
{
	FNameBatch Batch;
	Batch.Count = In.U32();
	if (Batch.Count == 0)
	{
		return Batch;
	}
	const std::uint32_t StringBytes = In.U32();
	Batch.Algorithm = In.U64();
	Batch.Hashes = In.Take(std::uint64_t{Batch.Count} * sizeof(std::uint64_t));
	Batch.Headers = In.Take(std::uint64_t{Batch.Count} * 2);
	Batch.Strings = In.Take(StringBytes);
	if (In.Failed())
	{
		return {};
	}
	In.NameCount = Batch.Count;
	return Batch;
}

FTagStore LocateTagStore(FInput& In)
{
	FTagStore Store;
	const bool bAligned = In.IsAtLeast(EVersion::AlignedTagStore);
	AlignTo(In, bAligned ? StoreAlignment : 1);
	const std::uint32_t Begin = In.U32();
	const bool bOlder = Begin == OlderTagStoreBegin;
	if (Begin != TagStoreBegin && !bOlder)
	{
		In.Fail();
		return Store;
	}
	for (std::uint32_t& Count : Store.Counts)
	{
		Count = In.U32();
	}
	const std::uint32_t TextBytes = bOlder ? 0 : In.U32();
	for (const ERow Row : bOlder ? std::span(OlderOrder) : std::span(NewOrder))
	{
		AlignTo(In, bAligned && !bOlder ? StoreAlignment : 1);
		Store.Begins[static_cast<std::size_t>(Row)] = In.Position();
		Row == ERow::Texts && !bOlder ? In.Skip(TextBytes) : SkipRow(In, Row, Store.Count(Row));
	}
	if (In.U32() != TagStoreEnd)
	{
		In.Fail();
	}
	return Store;
}
} // namespace QVFormats::RegistryLayout
