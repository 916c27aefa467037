// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/HeaderUses.h"
#include "Standalone/Formats/Package/PackageRenames.h"

namespace QVFormats
{
/** A use and, if it changes, the whole name that it gets. */
struct FNameChange
{
	FNameUse Use;
	std::optional<std::string> NewName;
};

/**
 * Gives the name table's entries to changed names. An entry of which all uses change alike is renamed in place, which
 * reaches export data too; else the uses go to another entry, an existing one or one more at the end. What an earlier
 * edit added goes away again when it is not used any more.
 */
class FNameTableEdit
{
public:
	/** Every entry in Changes has to lie in the name table. */
	FNameTableEdit(const FPackageHeader& InHeader, const FPackageRenames& InRenames, FBytes InData);

	/** Fills NewNames: what each change's field holds from now on. */
	void Apply(const std::vector<FNameChange>& Changes);

	bool IsChanged() const { return bChanged; }
	std::size_t Num() const { return Entries.size(); }
	/** The whole table; without bAnew, entries that did not change are copied and not written from their text. */
	std::vector<std::byte> Write(bool bAnew) const;

	/** In the order of Changes. */
	std::vector<FNameRef> NewNames;
	/** Old names that export data may still hold. */
	std::vector<std::string> PossiblyStale;
	/** Entries renamed that only export data uses. */
	std::size_t RenamedForData = 0;

private:
	struct FEntry
	{
		std::string Text;
		/** Of the file; empty when the text is new. */
		FBytes Bytes;
		std::size_t Uses = 0;
		bool bLostUses = false;
	};

	void ReadEntries();
	bool IsForData(std::size_t Entry) const { return Entry < DataCount; }
	bool CanRenameInPlace(std::size_t Entry, const std::vector<const FNameChange*>& Uses) const;
	std::vector<bool> EntriesOfObjects(const FPackageRename& Rename) const;
	bool HasObjectsInData(std::size_t Entry, const FPackageRename& Rename) const;
	void NoteObjectsInData(std::size_t Entry, const std::string& Package);
	void RenameInPlace(std::size_t Entry, std::string NewText);
	std::uint32_t FindOrAdd(std::string_view Text);
	/** Entries that no field of the header uses: export data may. */
	void RenameUnused(std::size_t Entry);
	std::optional<std::string> NewTextOfUnused(const std::string& Text, bool& bOutStale) const;
	void Repoint(const std::vector<FNameChange>& Changes);
	bool MayBeInData(std::size_t Entry) const;
	bool CanDropLast() const;
	void DropLast();

	const FPackageHeader& Header;
	const FPackageRenames& Renames;
	/** What lies behind the header, as far as it is at hand. */
	const FBytes Data;
	/** The layout tells how many entries at the table's start are used by export data. */
	bool bDivided = false;
	/** As many entries at the table's start are or may be used by export data. */
	std::size_t DataCount = 0;
	std::vector<FEntry> Entries;
	std::unordered_map<std::string, std::uint32_t> ByText;
	bool bChanged = false;
};
} // namespace QVFormats
