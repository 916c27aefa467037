// SPDX-License-Identifier: MIT
#include "Export/QVMapImportVerification.h"

#include "Core/QVLog.h"
#include "Core/QVString.h"
#include "Core/QVTextSearch.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"

#include <algorithm>

namespace
{
/** `/Cave/Rock` of `/Cave/Rock_7`; empty if the name does not end in a number as the engine writes them. */
std::string_view WithoutNumber(std::string_view Name)
{
	constexpr std::size_t MostDigits = 10;
	const std::size_t Line = Name.rfind('_');
	const std::string_view Digits = Line == std::string_view::npos ? std::string_view() : Name.substr(Line + 1);
	const bool bNumber = !Digits.empty() && Digits.size() <= MostDigits &&
						 Digits.find_first_not_of("0123456789") == std::string_view::npos &&
						 (Digits.size() == 1 || Digits.front() != '0');
	return bNumber ? Name.substr(0, Line) : std::string_view();
}

/** The plain texts of the copies' names, then those of names with a number as a table of names has them: the number is
 * kept beside the text, so the whole name may be nowhere. Copies: to which copy each text belongs. */
std::vector<std::string> TextsToFind(const FQVImportResult& Import, std::vector<std::size_t>& OutCopies)
{
	std::vector<std::string> Texts;
	for (std::size_t Place = 0; Place < Import.Imported.size(); ++Place)
	{
		const std::string_view Name = Import.Imported[Place].Imported.ToView();
		Texts.emplace_back(Name);
		OutCopies.push_back(Place);
		if (const std::string_view Stored = WithoutNumber(Name); !Stored.empty())
		{
			Texts.emplace_back(Stored);
			Texts.back().push_back('\0'); // it ends there
			OutCopies.push_back(Place);
		}
	}
	return Texts;
}

std::string FindVanished(const FQVImportResult& Import)
{
	std::vector<std::string> Vanished;
	for (const FQVImportedPackage& Copy : Import.Imported)
	{
		if (!FQVEngine::Get().Files->FileExists(Copy.File))
		{
			Vanished.push_back(Copy.Imported.ToString());
		}
	}
	if (Vanished.empty())
	{
		return {};
	}
	QVLog(EQVLogVerbosity::Error, "QVMap: %d imported cop(ies) vanished before the cook", Vanished.size());
	return QVPrintf(
		"%d asset(s) copied into the map's folder for packing have been deleted again before the cook could "
		"read them:\n\n  %s\n\nSomething else is writing to this project while it packs.",
		Vanished.size(), FQVString::Join(Vanished, "\n  "));
}

/** Reads every file of an import once: which copies another file than their own mentions. */
class FMentions
{
public:
	explicit FMentions(const FQVImportResult& InImport)
		: Import(InImport)
		, Search(TextsToFind(Import, Copies))
		, Mentioned(Import.Imported.size())
	{
	}

	bool IsMentioned(std::size_t Copy) const { return Mentioned[Copy]; }

	/** The first file that cannot be read; empty if all can. */
	std::string Read()
	{
		std::vector<std::string> Files;
		for (const FQVImportedPackage& Copy : Import.Imported)
		{
			Files.push_back(Copy.File);
		}
		for (const FQVImportBackup& Backup : Import.Backups)
		{
			Files.push_back(Backup.Original);
		}
		// one for each file, since they come on several threads
		std::vector<std::optional<FFound>> FoundIn(Files.size());
		FQVEngine::Get().Files->LoadFiles(Files,
			[&](std::size_t Place, std::optional<std::span<const std::byte>> Bytes)
			{
				if (Bytes)
				{
					Search.Find(*Bytes, FoundIn[Place].emplace());
				}
			});
		const auto Unread = std::find(FoundIn.begin(), FoundIn.end(), std::nullopt);
		Note(FoundIn);
		return Unread == FoundIn.end() ? std::string() : Files[static_cast<std::size_t>(Unread - FoundIn.begin())];
	}

private:
	/** Places of texts. */
	using FFound = std::vector<std::size_t>;

	const FQVImportResult& Import;
	std::vector<std::size_t> Copies;
	const FQVTextSearch Search;
	std::vector<bool> Mentioned;

	/** A copy lies at its own place. */
	void Note(const std::vector<std::optional<FFound>>& FoundIn)
	{
		for (std::size_t Place = 0; Place < FoundIn.size(); ++Place)
		{
			for (const std::size_t Text : FoundIn[Place].value_or(FFound()))
			{
				Mentioned[Copies[Text]] = Mentioned[Copies[Text]] || Copies[Text] != Place;
			}
		}
	}
};

std::string TellUnmentioned(const FQVImportResult& Import, const FMentions& Mentions)
{
	std::vector<std::string> Missing;
	for (std::size_t Place = 0; Place < Import.Imported.size(); ++Place)
	{
		if (!Mentions.IsMentioned(Place))
		{
			const FQVImportedPackage& Copy = Import.Imported[Place];
			Missing.push_back(Copy.Imported.ToString());
			QVLog(EQVLogVerbosity::Error, "QVMap: Post-save verification: no reference to %s (copy of %s)",
				Copy.Imported.ToView(), Copy.Source.ToView());
		}
	}
	if (Missing.empty())
	{
		return {};
	}
	QVLog(EQVLogVerbosity::Error, "QVMap: Post-save verification failed for %d package(s)", Missing.size());
	return QVPrintf(
		"The map was updated to use the content brought in for packing, but the file written to disk does not mention "
		"%d of them:\n\n  %s\n\nThe pack was stopped before the cook and the project has been put back the way it was, "
		"so nothing has been lost.\n\nSomething put the old file back between saving it and reading it again: revision "
		"control connected in the editor, a cloud-synced project folder, or an antivirus. Turn those off and pack "
		"again.\n\nIf none of those apply, send this message and Saved/Logs/ to us. It is this check that stopped the "
		"pack, and the check can be wrong.",
		Missing.size(), FQVString::Join(Missing, "\n  "));
}
} // namespace

std::string FQVMapImportVerification::VerifyImportedReferences(const FQVImportResult& Import)
{
	if (std::string Vanished = FindVanished(Import); !Vanished.empty())
	{
		return Vanished;
	}
	FMentions Mentions(Import);
	if (const std::string Unreadable = Mentions.Read(); !Unreadable.empty())
	{
		return QVPrintf("Could not read '%s' back after saving it, so there is no way to tell whether the map still "
						"points at the content brought in for packing.",
			Unreadable);
	}
	return TellUnmentioned(Import, Mentions);
}
