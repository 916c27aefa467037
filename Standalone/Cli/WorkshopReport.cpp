// SPDX-License-Identifier: MIT
#include "Standalone/Cli/WorkshopReport.h"

#include "Core/QVString.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "HandOff/QVMapWorkshopImages.h"
#include "HandOff/QVMapWorkshopLimits.h"
#include "Standalone/Cli/Console.h"
#include "Standalone/Cli/InspectReport.h"
#include "Standalone/Cli/TextColumns.h"

#include <algorithm>

namespace QVCli
{
namespace
{
constexpr std::size_t NameColumns = 14;

struct FImageFacts
{
	/** -1: there is no such file. */
	std::int64_t Bytes = -1;
	std::optional<FQVImageSize> Size;

	explicit FImageFacts(const std::string& Path)
		: Bytes(FQVEngine::Get().Files->FileSize(Path))
		, Size(FQVMapWorkshopImages::ReadSize(Path))
	{
	}
};

FQVJson ImageToJson(const std::string& Role, const std::string& Path)
{
	const FImageFacts Facts(Path);
	const FQVImageSize Size = Facts.Size.value_or(FQVImageSize());
	return FQVJson::Object()
		.Set("role", Role)
		.Set("path", Path)
		.Set("exists", Facts.Bytes >= 0)
		.Set("bytes", std::max<std::int64_t>(Facts.Bytes, 0))
		.Set("width", Size.Width)
		.Set("height", Size.Height)
		.Set("too_big", Facts.Bytes > FQVMapWorkshopConfig::MostImageBytes);
}

/** The path, and behind it what can be told of the file. */
std::string ImageLine(const std::string& Path)
{
	const FImageFacts Facts(Path);
	if (Path.empty())
	{
		return "(none)";
	}
	if (Facts.Bytes < 0)
	{
		return EscapeControls(Path) + "  (missing)";
	}
	const std::string Size =
		Facts.Size ? QVPrintf("%dx%d", Facts.Size->Width, Facts.Size->Height) : std::string("no image");
	return QVPrintf("%s  (%s, %.2f MB)", EscapeControls(Path), Size, FQVMapWorkshopConfig::ToMegabytes(Facts.Bytes));
}

void PrintField(FConsole& Console, std::string_view Name, const std::vector<std::string>& Lines)
{
	std::string_view Head = Name;
	for (const std::string& Line : Lines)
	{
		Console.Result(PadColumns(Head, NameColumns) + Line);
		Head = "";
	}
}

std::vector<std::string> LinesOf(const std::string& Text)
{
	std::vector<std::string> Lines;
	for (const std::string_view Line : FQVString::NonEmptyLines(Text))
	{
		Lines.push_back(EscapeControls(Line));
	}
	return Lines.empty() ? std::vector<std::string>{""} : Lines;
}

void AddMissing(std::vector<std::string>& Problems, const std::string& Role, const std::string& Path)
{
	if (!Path.empty() && !FQVEngine::Get().Files->FileExists(Path))
	{
		Problems.push_back(QVPrintf("%s is missing: %s", Role, EscapeControls(Path)));
	}
}
} // namespace

FWorkshopDetails FWorkshopDetails::Load(const FQVModInfo& Mod)
{
	FWorkshopDetails Details{Mod, {}, false};
	FQVWorkshopConfig& Config = Details.Config;
	Details.bStored = FQVMapWorkshopConfig::Load(Mod.PluginDir, Config);
	Config.Title = Config.Title.empty() ? Mod.Name : Config.Title;
	const bool bHasStartMap = std::any_of(Mod.Maps.begin(), Mod.Maps.end(),
		[&Config](const FQVMapInfo& Map) { return FQVString::EqualsIgnoreCase(Map.GamePath, Config.StartMap); });
	Config.StartMap = bHasStartMap ? Config.StartMap : Mod.Maps.front().GamePath;
	return Details;
}

std::vector<std::string> FWorkshopDetails::FindProblems() const
{
	std::vector<std::string> Problems = FQVMapWorkshopLimits::FindTooLong(Config);
	if (FQVString::TrimStartAndEnd(Config.Title).empty())
	{
		Problems.push_back("the title is blank");
	}
	AddMissing(Problems, "the main image", Config.PreviewImage);
	for (const std::string& Screenshot : Config.Screenshots)
	{
		AddMissing(Problems, "a screenshot", Screenshot);
	}
	const std::string Images = FQVMapWorkshopImages::CheckPreview(Config.PreviewImage).Text + "\n" +
							   FQVMapWorkshopImages::CheckScreenshots(Config.Screenshots).Text;
	for (const std::string_view Line : FQVString::NonEmptyLines(Images))
	{
		Problems.emplace_back(Line);
	}
	return Problems;
}

FQVJson FWorkshopDetails::ToJson() const
{
	FQVJson Images = FQVJson::Array();
	if (!Config.PreviewImage.empty())
	{
		Images.Add(ImageToJson("preview_image", Config.PreviewImage));
	}
	for (const std::string& Screenshot : Config.Screenshots)
	{
		Images.Add(ImageToJson("screenshot", Screenshot));
	}
	return FQVJson::Object()
		.Set("schema_version", 1)
		.Set("mod", Mod.Name)
		.Set("file", FQVMapWorkshopConfig::GetConfigPath(Mod.PluginDir))
		.Set("stored", bStored)
		.Set("title", Config.Title)
		.Set("description", Config.Description)
		.Set("visibility", Config.Visibility)
		.Set("change_note", Config.ChangeNote)
		.Set("start_map", Config.StartMap)
		.Set("tags", FQVJson::Array(Config.Tags))
		.Set("images", std::move(Images))
		.Set("warnings", FQVJson::Array(FindProblems()));
}

void FWorkshopDetails::Print(FConsole& Console) const
{
	std::vector<std::string> Screenshots;
	for (const std::string& Screenshot : Config.Screenshots)
	{
		Screenshots.push_back(ImageLine(Screenshot));
	}
	PrintField(Console, "title", LinesOf(Config.Title));
	PrintField(Console, "description", LinesOf(Config.Description));
	PrintField(Console, "tags", LinesOf(FQVString::Join(Config.Tags, ", ")));
	PrintField(Console, "visibility", LinesOf(Config.Visibility));
	PrintField(Console, "main image", {ImageLine(Config.PreviewImage)});
	PrintField(Console, "screenshots", Screenshots.empty() ? std::vector<std::string>{"(none)"} : Screenshots);
	PrintField(Console, "change note", LinesOf(Config.ChangeNote));
	PrintField(Console, "start map", {Config.StartMap});
	const std::string File = FQVMapWorkshopConfig::GetConfigPath(Mod.PluginDir);
	PrintField(Console, "file", {bStored ? File : File + "  (not there yet)"});
}
} // namespace QVCli
