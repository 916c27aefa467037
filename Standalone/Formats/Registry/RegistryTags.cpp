// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/Unicode.h"
#include "Standalone/Formats/Registry/RegistryLayout.h"

#include <algorithm>

namespace QVFormats::RegistryLayout
{
namespace
{
FRegistryPath ReadPath(FInput& In, FNameRef (FInput::*ReadPart)())
{
	FRegistryPath Path;
	Path.ClassPackage = In.IsAtLeast(EVersion::ClassPaths) ? (In.*ReadPart)() : NoName;
	Path.ClassName = (In.*ReadPart)();
	Path.Object = (In.*ReadPart)();
	Path.Package = (In.*ReadPart)();
	return Path;
}

template<class TRead>
void ReadRow(FInput& In, const FTagStore& Store, ERow Row, TRead ReadItem)
{
	In.Seek(static_cast<std::int64_t>(Store.Begin(Row)));
	for (std::uint32_t Left = Store.Count(Row); Left > 0 && !In.Failed(); --Left)
	{
		ReadItem();
	}
}

/** Bytes to the closing NUL, or all of them when there is none. */
std::size_t LengthOf(FBytes Text, std::size_t Unit)
{
	for (std::size_t Index = 0; Index < Text.size(); Index += Unit)
	{
		if (Text[Index] == std::byte{0} && Text[Index + Unit - 1] == std::byte{0})
		{
			return Index;
		}
	}
	return Text.size();
}

void ReadStrings(FInput& In, const FTagStore& Store, ERow Offsets, ERow Text, std::vector<std::string>& Out)
{
	const bool bWide = Text == ERow::WideText;
	const std::size_t Unit = bWide ? 2 : 1;
	In.Seek(static_cast<std::int64_t>(Store.Begin(Text)));
	const FBytes All = In.Take(Store.Count(Text) * Unit);
	// Strings that lie apart are no longer than their row; a file of overlapping ones could be made to fill any memory.
	std::size_t Left = All.size();
	ReadRow(In, Store, Offsets,
		[&]
		{
			const FBytes Rest = All.subspan(std::min(In.U32() * Unit, All.size()));
			const std::size_t Length = LengthOf(Rest.first(std::min(Rest.size(), Left)), Unit);
			if (Length + Unit > std::min(Rest.size(), Left))
			{
				In.Fail();
				return;
			}
			Left -= Length + Unit;
			Out.push_back(FStringView{Rest.first(Length), bWide}.ToUtf8());
			if (!bWide && !IsAscii(Out.back()))
			{
				In.Fail();
			}
		});
}

/** Which list each of the eight kinds of a pair's value counts in: numberless and numbered ones share a list here. */
struct FValueList
{
	ERegistryValue Kind = ERegistryValue::Ascii;
	std::size_t First = 0;
	std::size_t Count = 0;
};
using FValueLists = std::array<FValueList, 8>;

FValueLists ListsOf(const FTagStore& Store)
{
	const std::size_t Names = Store.Count(ERow::NumberlessNames);
	const std::size_t Paths = Store.Count(ERow::NumberlessPaths);
	return {{{ERegistryValue::Ascii, 0, Store.Count(ERow::AsciiOffsets)},
		{ERegistryValue::Wide, 0, Store.Count(ERow::WideOffsets)}, {ERegistryValue::Name, 0, Names},
		{ERegistryValue::Name, Names, Store.Count(ERow::Names)}, {ERegistryValue::Path, 0, Paths},
		{ERegistryValue::Path, Paths, Store.Count(ERow::Paths)}, {ERegistryValue::Text, 0, Store.Count(ERow::Texts)},
		{}}};
}

FRegistryTag ReadTag(FInput& In, const FValueLists& Lists, FNameRef Key)
{
	const std::uint32_t Value = In.U32();
	const FValueList& List = Lists[Value & 7];
	if (Value >> 3 >= List.Count)
	{
		In.Fail();
	}
	return {Key, List.Kind, static_cast<std::uint32_t>(List.First + (Value >> 3))};
}
} // namespace

void ReadNames(FInput& In, FAssetRegistryState& State)
{
	const FNameBatch Batch = ReadNameBatch(In);
	State.Names.reserve(In.NameCount);
	if (In.Failed() || !ForEachName(Batch, [&State](FStringView Name) { State.Names.push_back(Name.ToUtf8()); }))
	{
		In.Fail();
		return;
	}
	const auto None = std::find(State.Names.begin(), State.Names.end(), "None");
	In.NoneEntry = None == State.Names.end() ? NoName.Entry : static_cast<std::uint32_t>(None - State.Names.begin());
}

std::uint32_t ReadTags(FInput& In, FAssetRegistryState& State)
{
	const FTagStore Store = LocateTagStore(In);
	const std::size_t End = In.Position();
	if (In.Failed())
	{
		return 0;
	}
	const auto AddName = [&](FNameRef Name) { State.NameValues.push_back(Name); };
	const auto AddPath = [&](FNameRef (FInput::*ReadPart)()) { State.PathValues.push_back(ReadPath(In, ReadPart)); };
	ReadRow(In, Store, ERow::NumberlessNames, [&] { AddName(In.NumberlessName()); });
	ReadRow(In, Store, ERow::Names, [&] { AddName(In.Name()); });
	ReadRow(In, Store, ERow::NumberlessPaths, [&] { AddPath(&FInput::NumberlessName); });
	ReadRow(In, Store, ERow::Paths, [&] { AddPath(&FInput::Name); });
	ReadRow(In, Store, ERow::Texts, [&] { State.TextValues.push_back(In.Text()); });
	ReadStrings(In, Store, ERow::AsciiOffsets, ERow::AsciiText, State.AsciiValues);
	ReadStrings(In, Store, ERow::WideOffsets, ERow::WideText, State.WideValues);
	const FValueLists Lists = ListsOf(Store);
	const auto AddTag = [&](FNameRef Key) { State.Tags.push_back(ReadTag(In, Lists, Key)); };
	ReadRow(In, Store, ERow::NumberlessPairs, [&] { AddTag(In.NumberlessName()); });
	ReadRow(In, Store, ERow::Pairs, [&] { AddTag(In.Name()); });
	In.Seek(static_cast<std::int64_t>(End));
	return Store.Count(ERow::NumberlessPairs);
}
} // namespace QVFormats::RegistryLayout
