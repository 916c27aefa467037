// SPDX-License-Identifier: MIT
#include "Standalone/Cli/WorkshopField.h"

#include "Core/QVPrintf.h"
#include "Core/QVString.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "HandOff/QVMapWorkshopImages.h"
#include "Standalone/Cli/NearestWord.h"
#include "Standalone/Cli/TypedPath.h"

namespace QVCli
{
namespace
{
std::string TakeAsIs(const FQVModInfo&, const std::string& Typed, std::string&)
{
	return Typed;
}

std::string TakeVisibility(const FQVModInfo&, const std::string& Typed, std::string& OutError)
{
	std::vector<std::string> Words;
	for (const std::string_view Word : FQVMapWorkshopConfig::Visibilities)
	{
		if (FQVString::EqualsIgnoreCase(Word, Typed))
		{
			return std::string(Word);
		}
		Words.emplace_back(Word);
	}
	OutError = QVPrintf("there is no visibility '%s'%s", Typed, DidYouMean(Typed, Words));
	return {};
}

std::string TakeStartMap(const FQVModInfo& Mod, const std::string& Typed, std::string& OutError)
{
	std::vector<std::string> Names;
	for (const FQVMapInfo& Map : Mod.Maps)
	{
		for (const std::string& Name : {Map.Name, Map.CookPath, Map.GamePath})
		{
			if (FQVString::EqualsIgnoreCase(Name, Typed))
			{
				return Map.GamePath;
			}
		}
		Names.push_back(Map.Name);
	}
	OutError = QVPrintf("%s has no map '%s'%s", Mod.Name, Typed, DidYouMean(Typed, Names));
	return {};
}

/** Full path of an image that Steam takes. */
std::string TakeImage(const FQVModInfo&, const std::string& Typed, std::string& OutError)
{
	const std::string Path = FullPath(Typed);
	std::int64_t Bytes = 0;
	if (Path.empty())
	{
		return Path;
	}
	if (!FQVEngine::Get().Files->FileExists(Path))
	{
		OutError = QVPrintf("there is no file %s", Path);
	}
	else if (FQVMapWorkshopConfig::IsImageOversize(Path, Bytes))
	{
		OutError = QVPrintf(
			"%s is %.2f MB: Steam refuses Workshop images over 1 MB", Path, FQVMapWorkshopConfig::ToMegabytes(Bytes));
	}
	else if (!FQVMapWorkshopImages::FormatOf(Path))
	{
		OutError = QVPrintf("%s: expected a file that ends in .png, .jpg or .jpeg", Path);
	}
	else if (!FQVMapWorkshopImages::ReadSize(Path))
	{
		OutError = QVPrintf("%s is not the image that its ending says", Path);
	}
	return Path;
}

const FWorkshopField Fields[] = {
	{"title", &FQVWorkshopConfig::Title, nullptr, TakeAsIs},
	{"description", &FQVWorkshopConfig::Description, nullptr, TakeAsIs},
	{"tags", nullptr, &FQVWorkshopConfig::Tags, TakeAsIs},
	{"visibility", &FQVWorkshopConfig::Visibility, nullptr, TakeVisibility},
	{"preview_image", &FQVWorkshopConfig::PreviewImage, nullptr, TakeImage},
	{"screenshots", nullptr, &FQVWorkshopConfig::Screenshots, TakeImage},
	{"change_note", &FQVWorkshopConfig::ChangeNote, nullptr, TakeAsIs},
	{"start_map", &FQVWorkshopConfig::StartMap, nullptr, TakeStartMap},
};
} // namespace

std::string DidYouMean(const std::string& Typed, const std::vector<std::string>& Words)
{
	const std::string Nearest = NearestWord(Typed, Words);
	return Nearest.empty() ? ": " + FQVString::Join(Words, ", ") : QVPrintf(". Did you mean '%s'?", Nearest);
}

std::vector<std::string> WorkshopFieldKeys(bool bListsOnly)
{
	std::vector<std::string> Keys;
	for (const FWorkshopField& Field : Fields)
	{
		if (Field.List != nullptr || !bListsOnly)
		{
			Keys.emplace_back(Field.Key);
		}
	}
	return Keys;
}

const FWorkshopField* FindWorkshopField(const std::string& Typed, bool bListsOnly, std::string& OutError)
{
	const std::string Key = FQVString::ReplaceAll(Typed, "-", "_");
	for (const FWorkshopField& Field : Fields)
	{
		if (FQVString::EqualsIgnoreCase(Field.Key, Key) && (Field.List != nullptr || !bListsOnly))
		{
			return &Field;
		}
	}
	OutError = QVPrintf("there is no %s '%s'%s", std::string_view(bListsOnly ? "list" : "field"), Typed,
		DidYouMean(Typed, WorkshopFieldKeys(bListsOnly)));
	return nullptr;
}
} // namespace QVCli
