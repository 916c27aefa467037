// SPDX-License-Identifier: MIT
#include "Standalone/EngineTools/ResponseFile.h"

#include "Core/QVPath.h"
#include "Core/QVPrintf.h"
#include "Core/QVString.h"
#include "Standalone/Engine/Files.h"

#include <algorithm>

namespace QVEngineTools
{
namespace
{
using QVFormats::FError;

struct FLine
{
	std::vector<std::string> Words;
	bool bOpenQuote = false;
};

FLine SplitLine(std::string_view Text)
{
	FLine Line;
	while (!Text.empty())
	{
		const bool bQuoted = Text.front() == '"';
		if (Text.front() == ' ' || Text.front() == '\t')
		{
			Text.remove_prefix(1);
			continue;
		}
		Text.remove_prefix(bQuoted ? 1 : 0);
		const std::size_t End = bQuoted ? Text.find('"') : std::min(Text.find_first_of(" \t"), Text.size());
		const std::size_t Length = std::min(End, Text.size());
		const std::string_view Word = Text.substr(0, Length);
		const bool bStrayQuote = !bQuoted && Word.find('"') != std::string_view::npos;
		Line.bOpenQuote = Line.bOpenQuote || bStrayQuote || End == std::string_view::npos;
		Line.Words.emplace_back(Word);
		Text.remove_prefix(std::min(Length + (bQuoted ? 1 : 0), Text.size()));
	}
	return Line;
}

/** A destination that is a folder takes the source's name. */
std::string CompleteDestination(std::string_view Destination, std::string_view Source)
{
	const bool bFolder = Destination.ends_with('/');
	return bFolder ? FQVPath::Combine(Destination, FQVPath::GetCleanFilename(Source)) : std::string(Destination);
}

void AddEntries(const FResponseEntry& Entry, std::vector<FResponseEntry>& Out)
{
	const std::size_t Star = Entry.Source.find('*');
	if (Star == std::string::npos)
	{
		Out.push_back({Entry.Source, CompleteDestination(Entry.Destination, Entry.Source), Entry.bCompress});
		return;
	}
	const std::string Folder(FQVPath::GetPath(std::string_view(Entry.Source).substr(0, Star)));
	QVStandalone::FFiles().IterateDirectoryRecursively(Folder,
		[&](std::string_view Path, bool bIsDirectory)
		{
			std::string Below(Path);
			if (!bIsDirectory && FQVPath::MakePathRelativeTo(Below, Folder + "/"))
			{
				Out.push_back({std::string(Path), FQVPath::Combine(Entry.Destination, Below), Entry.bCompress});
			}
			return true;
		});
}

std::vector<std::string_view> SplitLines(std::string_view Text)
{
	std::vector<std::string_view> Lines;
	while (!Text.empty())
	{
		const std::size_t End = std::min(Text.find('\n'), Text.size());
		std::string_view Line = Text.substr(0, End);
		Line.remove_suffix(Line.ends_with('\r') ? 1 : 0);
		Lines.push_back(Line);
		Text.remove_prefix(std::min(End + 1, Text.size()));
	}
	return Lines;
}
} // namespace

QVFormats::TResult<std::vector<FResponseEntry>> ParseResponseFile(std::string_view Text)
{
	std::vector<FResponseEntry> Entries;
	std::size_t Number = 0;
	for (const std::string_view Each : SplitLines(Text))
	{
		++Number;
		const FLine Line = SplitLine(Each);
		if (Line.Words.empty())
		{
			continue;
		}
		if (Line.bOpenQuote)
		{
			return FError{QVPrintf("line %d: a quote is not closed", Number)};
		}
		if (Line.Words.size() < 2 || Line.Words[1].starts_with('-'))
		{
			return FError{QVPrintf("line %d: expected \"source\" \"destination\"", Number)};
		}
		FResponseEntry Entry{
			FQVPath::NormalizeFilename(Line.Words[0]), FQVPath::NormalizeFilename(Line.Words[1]), false};
		for (std::size_t Index = 2; Index < Line.Words.size(); ++Index)
		{
			if (!FQVString::EqualsIgnoreCase(Line.Words[Index], "-compress"))
			{
				return FError{QVPrintf("line %d: option %s is not supported", Number, Line.Words[Index])};
			}
			Entry.bCompress = true;
		}
		AddEntries(Entry, Entries);
	}
	return Entries;
}
} // namespace QVEngineTools
