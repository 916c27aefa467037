// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/NameTableEdit.h"

#include "Standalone/Formats/Base/ByteWriter.h"
#include "Standalone/Formats/Base/Unicode.h"

#include <algorithm>
#include <cstring>
#include <limits>
#include <unordered_set>

namespace QVFormats
{
namespace
{
void WriteEntry(FByteWriter& Out, std::string_view Text)
{
	const std::size_t Begin = Out.Position();
	Out.String(Text);
	FByteReader Written(Out.Bytes().subspan(Begin));
	Out.Write(ComputeNameHashes(Written.String()));
}

bool IsPath(std::string_view Text)
{
	return Text.starts_with('/');
}

/** The new entry text for an old one when old and new name have the same number. */
std::optional<std::string> SameNumber(std::string_view OldName, std::string_view NewName)
{
	const FSplitName Old = SplitNameNumber(OldName);
	const FSplitName New = SplitNameNumber(NewName);
	return Old.Number == New.Number ? std::optional<std::string>(New.Entry) : std::nullopt;
}
} // namespace

FNameTableEdit::FNameTableEdit(const FPackageHeader& InHeader, const FPackageRenames& InRenames, FBytes InData)
	: Header(InHeader)
	, Renames(InRenames)
	, Data(InData)
{
	ReadEntries();
	bDivided = Header.Summary.IsAtLeast(EUE5Version::NamesReferencedFromExportData);
	const std::int32_t Referenced = std::max(Header.Summary.NamesReferencedFromExportData, 0);
	DataCount = bDivided ? std::min(static_cast<std::size_t>(Referenced), Entries.size()) : Entries.size();
}

void FNameTableEdit::ReadEntries()
{
	FByteReader Reader(Header.Bytes);
	Reader.Seek(Header.Summary.Names.Offset);
	for (std::int32_t Left = Header.Summary.Names.Count; Left > 0; --Left)
	{
		const std::size_t Begin = Reader.Position();
		std::string Text = Reader.String().ToUtf8();
		Reader.Skip(sizeof(FNameHashes));
		ByText.emplace(Text, static_cast<std::uint32_t>(Entries.size()));
		Entries.push_back({std::move(Text), Header.Bytes.subspan(Begin, Reader.Position() - Begin)});
	}
}

bool FNameTableEdit::CanRenameInPlace(std::size_t Entry, const std::vector<const FNameChange*>& Uses) const
{
	const FNameChange& First = *Uses.front();
	if (!First.NewName || (!IsPath(Entries[Entry].Text) && IsForData(Entry)))
	{
		return false;
	}
	const std::string_view NewText = SplitNameNumber(*First.NewName).Entry;
	// Outside export data's names nothing is lost by going to the entry that there is, and going back finds this one.
	if (!IsForData(Entry) && ByText.contains(std::string(NewText)))
	{
		return NewText == Entries[Entry].Text;
	}
	return std::all_of(Uses.begin(), Uses.end(),
		[NewText](const FNameChange* Each)
		{
			const FSplitName New = SplitNameNumber(Each->NewName ? *Each->NewName : std::string_view());
			return Each->NewName && New.Entry == NewText && New.Number == Each->Use.Name.Number;
		});
}

void FNameTableEdit::RenameInPlace(std::size_t Entry, std::string NewText)
{
	FEntry& Each = Entries[Entry];
	const auto Known = ByText.find(Each.Text);
	if (Known != ByText.end() && Known->second == Entry)
	{
		ByText.erase(Known);
	}
	ByText.emplace(NewText, static_cast<std::uint32_t>(Entry));
	Each.Text = std::move(NewText);
	Each.Bytes = {};
	bChanged = true;
}

std::uint32_t FNameTableEdit::FindOrAdd(std::string_view Text)
{
	const auto [Known, bNew] = ByText.emplace(Text, static_cast<std::uint32_t>(Entries.size()));
	if (bNew)
	{
		Entries.push_back({std::string(Text), {}});
		bChanged = true;
	}
	return Known->second;
}

std::optional<std::string> FNameTableEdit::NewTextOfUnused(const std::string& Text, bool& bOutStale) const
{
	const std::size_t Dot = Text.find('.');
	if (Dot == std::string::npos)
	{
		const FPackageRename* Rename = Renames.Find(Text);
		std::optional<std::string> New = Rename != nullptr ? SameNumber(Text, Rename->To) : std::nullopt;
		bOutStale = Rename != nullptr && !New;
		return New;
	}
	// `package.asset`, one name in layouts before 1007. Its number, which belongs to the asset, is the package's.
	const FPackageRename* Rename = Renames.Find(std::string_view(Text).substr(0, Dot));
	if (Rename == nullptr)
	{
		return std::nullopt;
	}
	std::string Asset = Text.substr(Dot + 1);
	const std::string_view LastPart = std::string_view(Rename->From).substr(Rename->From.rfind('/') + 1);
	AppendNameNumber(Asset, SplitNameNumber(LastPart).Number);
	const std::string NewAsset = FPackageRenames::Object(*Rename, Asset).value_or(Asset);
	std::optional<std::string> NewEntry = SameNumber(Asset, NewAsset);
	bOutStale = !NewEntry;
	return NewEntry ? std::optional(Rename->To + "." + *NewEntry) : std::nullopt;
}

void FNameTableEdit::RenameUnused(std::size_t Entry)
{
	bool bStale = false;
	std::optional<std::string> New = NewTextOfUnused(Entries[Entry].Text, bStale);
	if (bStale)
	{
		PossiblyStale.push_back(Entries[Entry].Text);
	}
	else if (New && *New != Entries[Entry].Text)
	{
		RenameInPlace(Entry, std::move(*New));
		++RenamedForData;
	}
}

/** Of each entry, whether it is the name of an object that gets another, whatever its number. */
std::vector<bool> FNameTableEdit::EntriesOfObjects(const FPackageRename& Rename) const
{
	std::unordered_set<std::string> Names;
	for (const auto& [Old, New] : Rename.Objects)
	{
		if (Old != New)
		{
			const std::string Name = ToLowerAscii(SplitNameNumber(Old).Entry);
			Names.insert(Name);
			Names.insert("default__" + Name);
		}
	}
	std::vector<bool> Found;
	for (const FEntry& Each : Entries)
	{
		Found.push_back(!Names.empty() && Names.contains(ToLowerAscii(Each.Text)));
	}
	return Found;
}

/** Whether the data may name the package with such an object right behind it, as paths of objects are written. */
bool FNameTableEdit::HasObjectsInData(std::size_t Entry, const FPackageRename& Rename) const
{
	const std::vector<bool> IsObject = EntriesOfObjects(Rename);
	const auto Index = static_cast<std::uint32_t>(Entry);
	std::uint32_t Field[4] = {};
	for (std::size_t At = 0; At + sizeof(Field) <= Data.size(); ++At)
	{
		std::memcpy(Field, Data.data() + At, sizeof(Field));
		if (Field[0] == Index && Field[2] < IsObject.size() && IsObject[Field[2]])
		{
			return true;
		}
	}
	const bool bAny = std::any_of(
		Rename.Objects.begin(), Rename.Objects.end(), [](const auto& Object) { return Object.first != Object.second; });
	return Data.empty() && bAny;
}

/** Data that names a package next to one of its objects has the package's name follow, but not the object's. */
void FNameTableEdit::NoteObjectsInData(std::size_t Entry, const std::string& Package)
{
	const FPackageRename* Rename = IsForData(Entry) ? Renames.Find(Package) : nullptr;
	if (Rename != nullptr && HasObjectsInData(Entry, *Rename))
	{
		PossiblyStale.push_back(Package);
	}
}

void FNameTableEdit::Apply(const std::vector<FNameChange>& Changes)
{
	std::vector<std::vector<const FNameChange*>> UsesOf(Entries.size());
	for (const FNameChange& Change : Changes)
	{
		UsesOf[Change.Use.Name.Entry].push_back(&Change);
	}
	for (std::size_t Entry = 0; Entry < UsesOf.size(); ++Entry)
	{
		if (!UsesOf[Entry].empty() && CanRenameInPlace(Entry, UsesOf[Entry]))
		{
			const FNameChange& First = *UsesOf[Entry].front();
			const FSplitName New = SplitNameNumber(*First.NewName);
			if (New.Entry != Entries[Entry].Text)
			{
				NoteObjectsInData(Entry, Header.Names.Text(First.Use.Name));
				RenameInPlace(Entry, std::string(New.Entry));
			}
		}
		else if (UsesOf[Entry].empty() && IsForData(Entry) && IsPath(Entries[Entry].Text))
		{
			RenameUnused(Entry);
		}
	}
	Repoint(Changes);
	DropLast();
}

void FNameTableEdit::Repoint(const std::vector<FNameChange>& Changes)
{
	for (const FNameChange& Change : Changes)
	{
		const std::uint32_t Old = Change.Use.Name.Entry;
		const FSplitName New = SplitNameNumber(Change.NewName ? *Change.NewName : std::string_view());
		const bool bInPlace = Change.NewName && Entries[Old].Text == New.Entry;
		FNameRef Result = Change.Use.Name;
		if (Change.NewName)
		{
			Result = {bInPlace ? Old : FindOrAdd(New.Entry), New.Number};
			Entries[Old].bLostUses |= !bInPlace;
			const bool bPath = !bInPlace && IsForData(Old) && IsPath(Entries[Old].Text);
			const std::string OldName = bPath ? Header.Names.Text(Change.Use.Name) : std::string();
			if (bPath && std::find(PossiblyStale.begin(), PossiblyStale.end(), OldName) == PossiblyStale.end())
			{
				PossiblyStale.push_back(OldName);
			}
		}
		++Entries[Result.Entry].Uses;
		NewNames.push_back(Result);
	}
}

/** Where the layout does not tell: whether any eight bytes of the data could be a name of this entry. */
bool FNameTableEdit::MayBeInData(std::size_t Entry) const
{
	const auto Index = static_cast<std::uint32_t>(Entry);
	std::uint32_t Field[2] = {};
	for (std::size_t At = 0; At + sizeof(Field) <= Data.size(); ++At)
	{
		std::memcpy(Field, Data.data() + At, sizeof(Field));
		if (Field[0] == Index && Field[1] <= static_cast<std::uint32_t>(std::numeric_limits<std::int32_t>::max()))
		{
			return true;
		}
	}
	return Data.empty();
}

bool FNameTableEdit::CanDropLast() const
{
	const bool bUnused = !Entries.empty() && Entries.back().Uses == 0 && Entries.back().bLostUses;
	return bUnused && (Entries.size() > DataCount || (!bDivided && !MayBeInData(Entries.size() - 1)));
}

void FNameTableEdit::DropLast()
{
	while (CanDropLast())
	{
		Entries.pop_back();
		bChanged = true;
	}
}

std::vector<std::byte> FNameTableEdit::Write(bool bAnew) const
{
	FByteWriter Out;
	for (const FEntry& Entry : Entries)
	{
		if (bAnew || Entry.Bytes.empty())
		{
			WriteEntry(Out, Entry.Text);
			continue;
		}
		Out.Append(Entry.Bytes);
	}
	return Out.Release();
}
} // namespace QVFormats
