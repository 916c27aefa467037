// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/ByteReader.h"

#include <deque>
#include <limits>
#include <string_view>
#include <vector>

namespace QVFormats
{
/** The texts of an index: where a text stands in the file as ASCII or UTF-8, it is not copied. */
class FPakTexts
{
public:
	/** The copies go to Store, which entries look into: a deque, so that they stay where they are. */
	FPakTexts(bool bInUtf8, std::deque<std::string>& InStore)
		: bUtf8(bInUtf8)
		, Store(InStore)
	{
	}

	/** An FString, or from version 12 on a count of bytes of UTF-8. */
	std::string_view Read(FByteReader& In);
	void Skip(FByteReader& In) const;

private:
	std::string_view ReadUtf8(FByteReader& In);

	bool bUtf8;
	std::deque<std::string>& Store;
};

/** A name of the directory index and what it calls its entry by. */
struct FPakNamedPlace
{
	/** With its closing slash; empty for the top. */
	std::string_view Folder;
	std::string_view Name;
	std::int32_t Place = 0;
};

/**
 * Gives the files of a full directory index, the deleted ones left out. Tools lay the encoded entries in the order of
 * the paths, so they are given in the order of their places, which takes a walk over a table and no comparing of texts;
 * where two names share a place or one is none of the encoded entries, in the order of the table of folders.
 */
class FPakDirectory
{
public:
	FPakDirectory(FBytes InBytes, FPakTexts InTexts, std::size_t InEncodedBytes);

	/** False when the table ends too early or counts more than it can hold. */
	bool Scan();
	/** After Scan. */
	std::size_t FileCount() const { return Files; }
	/** Visit gives false to stop. */
	template<class FVisit>
	void ForEach(const FVisit& Visit)
	{
		if (!bByPlace)
		{
			Walk([&](std::size_t Name, std::size_t Folder, std::int32_t) { return Visit(At(Name, Folder)); });
			return;
		}
		for (const FNamePosition& Position : FileAt)
		{
			if (Position.Folder != 0 && !Visit(At(Position.Name, Position.Folder - 1)))
			{
				return;
			}
		}
	}

private:
	static constexpr std::int32_t DeletedPlace = std::numeric_limits<std::int32_t>::min();
	/** The least that a text takes in the file, and so a folder or a file with its number. */
	static constexpr std::size_t LeastItemBytes = 4 + 4;

	/** Where a file's name stands, and in which folder. */
	struct FNamePosition
	{
		std::uint32_t Name = 0;
		/** One more than its number; 0 for a place without a file. */
		std::uint32_t Folder = 0;
	};

	/** Step(Position of the name, number of the folder, place) for each file. */
	template<class FStep>
	bool Walk(const FStep& Step);
	bool Note(std::size_t NamePosition, std::size_t Folder, std::int32_t Place);
	FPakNamedPlace At(std::size_t NamePosition, std::size_t Folder);

	FBytes Bytes;
	FPakTexts Texts;
	std::vector<std::string_view> Folders;
	std::vector<FNamePosition> FileAt;
	std::size_t Files = 0;
	bool bByPlace = true;
};

template<class FStep>
bool FPakDirectory::Walk(const FStep& Step)
{
	FByteReader In(Bytes);
	const std::int32_t FolderCount = In.Count(LeastItemBytes);
	for (std::int32_t Folder = 0; Folder < FolderCount && !In.Failed(); ++Folder)
	{
		if (static_cast<std::size_t>(Folder) == Folders.size())
		{
			const std::string_view Name = Texts.Read(In);
			Folders.push_back(Name == "/" ? std::string_view() : Name);
		}
		else
		{
			Texts.Skip(In);
		}
		const std::int32_t FileCount = In.Count(LeastItemBytes);
		for (std::int32_t Number = 0; Number < FileCount; ++Number)
		{
			const std::size_t Name = In.Position();
			Texts.Skip(In);
			const std::int32_t Place = In.I32();
			if (In.Failed())
			{
				return false;
			}
			if (Place != DeletedPlace && !Step(Name, static_cast<std::size_t>(Folder), Place))
			{
				return true;
			}
		}
	}
	return !In.Failed();
}
} // namespace QVFormats
