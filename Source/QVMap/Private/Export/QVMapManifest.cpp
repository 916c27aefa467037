// SPDX-License-Identifier: MIT
#include "Export/QVMapManifest.h"

#include "Core/QVJson.h"
#include "Core/QVLog.h"
#include "Core/QVPath.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Engine/QVJsonReader.h"
#include "Workspace/QVMapPaths.h"

namespace
{
/** An unreadable descriptor only means that the manifest lacks these keys. */
void AddDescriptorFields(FQVJson& Manifest, const std::string& UpluginPath)
{
	std::string Text;
	FQVJson Descriptor;
	std::string Error;
	const IQVFiles& Files = *FQVEngine::Get().Files;
	if (UpluginPath.empty() || !Files.FileExists(UpluginPath) || !Files.LoadFileToString(Text, UpluginPath) ||
		!FQVEngine::Get().JsonReader->Parse(Text, Descriptor, Error))
	{
		return;
	}
	constexpr std::pair<std::string_view, std::string_view> Fields[] = {
		{"Author", "CreatedBy"}, {"Description", "Description"}};
	for (const auto& [Key, Source] : Fields)
	{
		const std::string Value = Descriptor.TryString(Source).value_or(std::string());
		if (!Value.empty())
		{
			Manifest.Set(Key, Value);
		}
	}
}

FQVJson DescribeMaps(const std::vector<FQVMapInfo>& Maps)
{
	FQVJson Entries = FQVJson::Array();
	for (const FQVMapInfo& Map : Maps)
	{
		Entries.Add(FQVJson::Object().Set("DisplayName", Map.Name).Set("AssetPath", Map.GamePath));
		QVLog(EQVLogVerbosity::Log, "QVMap DEBUG: Manifest entry - Map=%s, AssetPath=%s", Map.Name, Map.GamePath);
	}
	return Entries;
}
} // namespace

bool FQVMapManifest::GenerateManifest(const std::string& ModName, const std::vector<FQVMapInfo>& Maps,
	std::int32_t Version, const std::string& UpluginPath, std::string& OutManifestPath, const std::string& StartMap)
{
	FQVJson Manifest = FQVJson::Object();
	Manifest.Set("ModName", ModName);
	Manifest.Set("Version", Version);
	AddDescriptorFields(Manifest, UpluginPath);
	Manifest.Set("Maps", DescribeMaps(Maps));
	if (!StartMap.empty())
	{
		Manifest.Set("StartMap", StartMap);
		QVLog(EQVLogVerbosity::Log, "QVMap: Manifest StartMap: %s", StartMap);
	}
	FQVMapPaths::EnsureDirectory(FQVMapPaths::GetTempDir());
	const std::string Path = FQVPath::Combine(FQVMapPaths::GetTempDir(), QVPrintf("%s_manifest.json", ModName));
	if (!FQVEngine::Get().Files->SaveStringToFile(Manifest.ToPrettyString(), Path))
	{
		QVLog(EQVLogVerbosity::Error, "QVMap: Failed to write manifest to: %s", Path);
		return false;
	}
	QVLog(EQVLogVerbosity::Log, "QVMap: Manifest generated: %s (%d maps)", Path, Maps.size());
	OutManifestPath = Path;
	return true;
}
