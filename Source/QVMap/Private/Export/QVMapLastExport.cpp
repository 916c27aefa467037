// SPDX-License-Identifier: MIT
#include "Export/QVMapLastExport.h"

#include "Core/QVJson.h"
#include "Core/QVPath.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Engine/QVJsonReader.h"
#include "Workspace/QVMapPaths.h"

#include <cmath>
#include <limits>

namespace
{
/** Names each field of the file once, in its order, with the record's field; Visit does one thing to each. */
template<class RecordType, class VisitorType>
void VisitFields(RecordType& Record, VisitorType&& Visit)
{
	Visit("plugin_name", Record.PluginName);
	Visit("version", Record.Version);
	Visit("timestamp", Record.Timestamp);
	Visit("success", Record.bSuccess);
	Visit("failed_stage", Record.FailedStage);
	Visit("error_message", Record.ErrorMessage);
	Visit("pak_path", Record.PakPath);
	Visit("pak_size_bytes", Record.PakSizeBytes);
	Visit("log_path", Record.LogPath);
	Visit("cooked_dir", Record.CookedDir);
	Visit("maps_cooked", Record.MapsCooked);
	Visit("maps_manifest", Record.MapsManifest);
	Visit("filter_unused_active", Record.bFilterUnusedActive);
	Visit("files_packed", Record.FilesPacked);
	Visit("files_skipped", Record.FilesSkipped);
	Visit("plugin_files", Record.Analysis.PluginFiles);
	Visit("base_game_files", Record.Analysis.BaseGameFiles);
	Visit("engine_files", Record.Analysis.EngineFiles);
	Visit("other_files", Record.Analysis.OtherFiles);
	Visit("plugin_bytes", Record.Analysis.PluginBytes);
	Visit("base_game_bytes", Record.Analysis.BaseGameBytes);
	Visit("engine_bytes", Record.Analysis.EngineBytes);
	Visit("other_bytes", Record.Analysis.OtherBytes);
	Visit("base_game_sample", Record.Analysis.BaseGameSample);
}

struct FFieldWriter
{
	FQVJson& Json;

	template<class T>
	void operator()(std::string_view Key, const T& Value) const
	{
		Json.Set(Key, FQVJson(Value));
	}
	void operator()(std::string_view Key, const FQVDateTime& Value) const { Json.Set(Key, Value.ToIso8601()); }
	void operator()(std::string_view Key, const std::vector<std::string>& Value) const
	{
		Json.Set(Key, FQVJson::Array(Value));
	}
};

/** Tolerant: what is absent or of another type leaves the field as it is. */
struct FFieldReader
{
	const FQVJson& Json;

	void operator()(std::string_view Key, std::string& Value) const { Value = Json.TryString(Key).value_or(Value); }
	void operator()(std::string_view Key, bool& bValue) const { bValue = Json.TryBool(Key).value_or(bValue); }
	void operator()(std::string_view Key, std::vector<std::string>& Value) const { Value = Json.TryStrings(Key); }
	void operator()(std::string_view Key, FQVDateTime& Value) const
	{
		FQVDateTime::ParseIso8601(Json.TryString(Key).value_or(std::string()), Value);
	}
	template<std::integral T>
	void operator()(std::string_view Key, T& Value) const
	{
		const double Number = Json.TryNumber(Key).value_or(0.0);
		const bool bFits = std::abs(Number) < static_cast<double>(std::numeric_limits<T>::max());
		Value = bFits ? static_cast<T>(Number) : T{0};
	}
};
} // namespace

std::string FQVMapLastExport::GetLastExportRecordPath()
{
	return FQVPath::Combine(FQVMapPaths::GetLogsDir(), "last_export.json");
}

bool FQVMapLastExport::WriteLastExportRecord(const FQVLastExportRecord& Record)
{
	FQVJson Json = FQVJson::Object();
	Json.Set("schema_version", SchemaVersion);
	VisitFields(Record, FFieldWriter{Json});
	FQVMapPaths::EnsureDirectory(FQVMapPaths::GetLogsDir());
	return FQVEngine::Get().Files->SaveStringToFile(Json.ToPrettyString(), GetLastExportRecordPath());
}

bool FQVMapLastExport::ReadLastExportRecord(FQVLastExportRecord& OutRecord)
{
	const IQVFiles& Files = *FQVEngine::Get().Files;
	const std::string Path = GetLastExportRecordPath();
	std::string Text;
	std::string Error;
	FQVJson Json;
	if (!Files.FileExists(Path) || !Files.LoadFileToString(Text, Path) ||
		!FQVEngine::Get().JsonReader->Parse(Text, Json, Error) || Json.TryNumber("schema_version") != SchemaVersion)
	{
		return false;
	}
	OutRecord = {};
	VisitFields(OutRecord, FFieldReader{Json});
	return true;
}
