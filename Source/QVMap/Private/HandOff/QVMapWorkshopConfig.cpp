// SPDX-License-Identifier: MIT
#include "HandOff/QVMapWorkshopConfig.h"

#include "Core/QVJson.h"
#include "Core/QVLog.h"
#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Engine/QVJsonReader.h"
#include "Workspace/QVMapPaths.h"

namespace
{
/** As the game needs it, whose own folder is another one. */
std::string FullPath(std::string_view Path)
{
	return FQVPath::ConvertRelativePathToFull(FQVMapPaths::GetProjectDir(), Path);
}

void SetIfAny(FQVJson& Json, std::string_view Key, std::string_view Value)
{
	if (!Value.empty())
	{
		Json.Set(Key, Value);
	}
}

FQVJson TrimmedTags(const std::vector<std::string>& Tags)
{
	FQVJson Json = FQVJson::Array();
	for (const std::string& Tag : Tags)
	{
		if (const std::string_view Trimmed = FQVString::TrimStartAndEnd(Tag); !Trimmed.empty())
		{
			Json.Add(Trimmed);
		}
	}
	return Json;
}

FQVJson FullPaths(const std::vector<std::string>& Paths)
{
	FQVJson Json = FQVJson::Array();
	for (const std::string& Path : Paths)
	{
		Json.Add(FullPath(Path));
	}
	return Json;
}

FQVJson MakeUpload(const FQVWorkshopConfig& Config, std::string_view PakPath)
{
	FQVJson Json = FQVJson::Object();
	Json.Set("pak_path", FullPath(PakPath)).Set("title", Config.Title);
	SetIfAny(Json, "description", Config.Description);
	SetIfAny(Json, "preview_image", Config.PreviewImage.empty() ? std::string() : FullPath(Config.PreviewImage));
	SetIfAny(Json, "visibility", FQVString::ToLower(Config.Visibility));
	SetIfAny(Json, "change_note", Config.ChangeNote);
	SetIfAny(Json, "start_map", Config.StartMap);
	if (!Config.Tags.empty())
	{
		Json.Set("tags", TrimmedTags(Config.Tags));
	}
	if (!Config.Screenshots.empty())
	{
		Json.Set("screenshots", FullPaths(Config.Screenshots));
	}
	return Json;
}

void AddIfOversize(std::vector<FQVOversizeImage>& Images, const std::string& Path, bool bIsMainImage)
{
	std::int64_t SizeBytes = 0;
	if (FQVMapWorkshopConfig::IsImageOversize(Path, SizeBytes))
	{
		Images.push_back({Path, SizeBytes, bIsMainImage});
	}
}
} // namespace

std::string FQVMapWorkshopConfig::GetConfigPath(std::string_view PluginDir)
{
	return FQVPath::Combine(PluginDir, "workshop_config.json");
}

bool FQVMapWorkshopConfig::Load(std::string_view PluginDir, FQVWorkshopConfig& Config)
{
	const FQVEngine& Engine = FQVEngine::Get();
	const std::string Path = GetConfigPath(PluginDir);
	std::string Text;
	std::string Error;
	FQVJson Json;
	if (!Engine.Files->FileExists(Path) || !Engine.Files->LoadFileToString(Text, Path))
	{
		return false;
	}
	if (!Engine.JsonReader->Parse(Text, Json, Error) || !Json.IsObject())
	{
		QVLog(EQVLogVerbosity::Warning, "QVMap: Failed to parse workshop config: %s", Path);
		return false;
	}
	Config.Title = Json.GetString("title");
	Config.Description = Json.GetString("description");
	Config.PreviewImage = Json.GetString("preview_image");
	Config.Visibility = Json.GetString("visibility");
	Config.ChangeNote = Json.GetString("change_note");
	if (Json.Has("start_map"))
	{
		Config.StartMap = Json.GetString("start_map");
	}
	if (Config.Visibility.empty())
	{
		Config.Visibility = FQVWorkshopConfig().Visibility;
	}
	Config.Tags = Json.GetStrings("tags");
	Config.Screenshots = Json.GetStrings("screenshots");
	return true;
}

bool FQVMapWorkshopConfig::Save(std::string_view PluginDir, const FQVWorkshopConfig& Config)
{
	const std::string Path = GetConfigPath(PluginDir);
	const FQVJson Json = FQVJson::Object()
							 .Set("title", Config.Title)
							 .Set("description", Config.Description)
							 .Set("preview_image", Config.PreviewImage)
							 .Set("visibility", Config.Visibility)
							 .Set("change_note", Config.ChangeNote)
							 .Set("start_map", Config.StartMap)
							 .Set("tags", FQVJson::Array(Config.Tags))
							 .Set("screenshots", FQVJson::Array(Config.Screenshots));
	if (!FQVEngine::Get().Files->SaveStringToFile(Json.ToPrettyString(), Path))
	{
		QVLog(EQVLogVerbosity::Error, "QVMap: Failed to save workshop config to: %s", Path);
		return false;
	}
	QVLog(EQVLogVerbosity::Log, "QVMap: Workshop config saved to %s", Path);
	return true;
}

bool FQVMapWorkshopConfig::IsImageOversize(std::string_view Path, std::int64_t& OutSizeBytes)
{
	OutSizeBytes = 0;
	const std::int64_t SizeBytes = Path.empty() ? -1 : FQVEngine::Get().Files->FileSize(Path);
	if (SizeBytes < 0)
	{
		return false;
	}
	OutSizeBytes = SizeBytes;
	return SizeBytes > MostImageBytes;
}

std::vector<FQVOversizeImage> FQVMapWorkshopConfig::FindOversizeImages(const FQVWorkshopConfig& Config)
{
	std::vector<FQVOversizeImage> Images;
	AddIfOversize(Images, Config.PreviewImage, true);
	for (const std::string& Screenshot : Config.Screenshots)
	{
		AddIfOversize(Images, Screenshot, false);
	}
	return Images;
}

std::string FQVMapWorkshopConfig::FormatOversizeImages(const std::vector<FQVOversizeImage>& Images)
{
	std::vector<std::string> Lines;
	for (const FQVOversizeImage& Image : Images)
	{
		const std::string_view Role = Image.bIsMainImage ? "Main image:" : "Screenshot:";
		Lines.push_back(QVPrintf(
			"    %s  %s  (%.2f MB)", Role, FQVPath::GetCleanFilename(Image.Path), ToMegabytes(Image.SizeBytes)));
	}
	return FQVString::Join(Lines, "\n");
}

std::string FQVMapWorkshopConfig::GetUploadPath()
{
	return FQVPath::Combine(FQVMapPaths::GetWorkDir(), "upload.json");
}

bool FQVMapWorkshopConfig::WriteUploadJson(
	const FQVWorkshopConfig& Config, std::string_view PakPath, std::string_view UploadJsonPath, std::string& OutError)
{
	if (Config.Title.empty())
	{
		OutError = "Title is required";
		return false;
	}
	// the tab has looked, but packing takes minutes and an image may have grown
	if (const std::vector<FQVOversizeImage> Images = FindOversizeImages(Config); !Images.empty())
	{
		OutError = "These images are over Steam's 1 MB per-file limit:\n" + FormatOversizeImages(Images);
		return false;
	}
	FQVMapPaths::EnsureDirectory(FQVPath::GetPath(UploadJsonPath));
	if (!FQVEngine::Get().Files->SaveStringToFile(MakeUpload(Config, PakPath).ToPrettyString(), UploadJsonPath))
	{
		OutError = QVPrintf("Failed to write upload JSON to: %s", UploadJsonPath);
		return false;
	}
	QVLog(EQVLogVerbosity::Log, "QVMap: Upload JSON written to %s", UploadJsonPath);
	return true;
}
