// SPDX-License-Identifier: MIT
#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Engine/QVFiles.h"
#include "Standalone/Cli/Session.h"
#include "Workspace/QVMapPaths.h"
#include "Workspace/QVMapScanner.h"

namespace QVCli
{
namespace
{
FQVJson ToJson(const FQVScanResult& Scan)
{
	FQVJson Mods = FQVJson::Array();
	for (const FQVModInfo& Mod : Scan.Mods)
	{
		FQVJson Maps = FQVJson::Array();
		for (const FQVMapInfo& Map : Mod.Maps)
		{
			Maps.Add(FQVJson::Object()
						 .Set("name", Map.Name)
						 .Set("file", FQVPath::Combine(Mod.ContentDir, Map.RelativePath))
						 .Set("game_path", Map.GamePath)
						 .Set("package", Map.CookPath));
		}
		Mods.Add(FQVJson::Object().Set("name", Mod.Name).Set("folder", Mod.PluginDir).Set("maps", std::move(Maps)));
	}
	return FQVJson::Object()
		.Set("schema_version", 1)
		.Set("project", FQVMapPaths::GetProjectFilePath())
		.Set("mods", std::move(Mods));
}

/** A base release build that was killed leaves descriptors aside; such a mod is not found any more. */
void WarnOfDisabledDescriptors(FConsole& Console)
{
	const IQVFiles& Files = *FQVEngine::Get().Files;
	Files.IterateDirectory(FQVMapPaths::GetPluginsDir(),
		[&](std::string_view Path, bool bIsDirectory)
		{
			const std::string Name(FQVPath::GetCleanFilename(Path));
			const std::string Disabled = FQVPath::Combine(Path, Name + ".uplugin.disabled");
			if (bIsDirectory && Files.FileExists(Disabled))
			{
				Console.Warn(
					QVPrintf("%s was set aside by a base release build that did not end: rename it to %s.uplugin",
						Disabled, Name));
			}
			return true;
		});
}

void PrintText(FConsole& Console, const FQVScanResult& Scan)
{
	for (const FQVModInfo& Mod : Scan.Mods)
	{
		Console.Result(QVPrintf("%s  (%d %s)", Mod.Name, Mod.Maps.size(), Mod.Maps.size() == 1 ? "map" : "maps"));
		for (const FQVMapInfo& Map : Mod.Maps)
		{
			Console.Result(QVPrintf("  %s", Map.CookPath));
		}
	}
	if (Scan.Mods.empty())
	{
		Console.Say(QVPrintf("no maps yet: no plugin below %s holds a .umap", FQVMapPaths::GetPluginsDir()));
	}
}

EExitCode ListMaps(FCommandLine& Line)
{
	const std::unique_ptr<FSession> Session = FSession::Open(Line);
	if (Session == nullptr)
	{
		return EExitCode::Failed;
	}
	const FQVScanResult Scan = FQVMapScanner::ScanMods();
	if (!Scan.ErrorMessage.empty())
	{
		Session->Console.Fail(Scan.ErrorMessage);
		return EExitCode::Failed;
	}
	WarnOfDisabledDescriptors(Session->Console);
	if (Line.Options.bJson)
	{
		Session->Console.Document(ToJson(Scan));
	}
	else
	{
		PrintText(Session->Console, Scan);
	}
	return EExitCode::Done;
}
} // namespace

void AddMapsVerb(FCommandLine& Line)
{
	CLI::App* Verb = Line.AddVerb(Line.App, "maps", "Lists the project's mods and their maps",
		"qvmap maps --project MyMaps/MyMaps.uproject", [&Line] { return ListMaps(Line); });
	Line.AddFormat(*Verb);
}
} // namespace QVCli
