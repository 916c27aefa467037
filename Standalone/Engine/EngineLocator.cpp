// SPDX-License-Identifier: MIT
#include "Standalone/Engine/EngineLocator.h"

#include "Core/QVPath.h"
#include "Core/QVPrintf.h"
#include "Core/QVString.h"
#include "Standalone/Engine/Descriptor.h"
#include "Standalone/Engine/Files.h"
#include "Standalone/Engine/JsonReader.h"

namespace QVStandalone
{
namespace
{
constexpr std::string_view LauncherPrefix = "UE_";

/** A user may name the engine's folder or the one that holds it. */
std::string EngineFolderIn(const std::string& Folder)
{
	const FFiles Files;
	std::string Inner = FQVPath::Combine(Folder, "Engine");
	if (Files.DirectoryExists(Inner) && !Files.DirectoryExists(FQVPath::Combine(Folder, "Binaries")))
	{
		return Inner;
	}
	return Files.DirectoryExists(Folder) ? Folder : std::string();
}

std::string ReadAssociation(const std::string& ProjectFile)
{
	const std::optional<FQVJson> Project = LoadDescriptor(ProjectFile);
	return Project ? Project->GetString("EngineAssociation") : std::string();
}

/** A project says "5.4" where the launcher says "UE_5.4". */
bool IsSameEngine(std::string_view Association, std::string_view Identifier)
{
	return FQVString::EqualsIgnoreCase(Association, Identifier) ||
		   (FQVString::StartsWithIgnoreCase(Identifier, LauncherPrefix) &&
			   FQVString::EqualsIgnoreCase(Association, Identifier.substr(LauncherPrefix.size())));
}

class FSearch
{
public:
	explicit FSearch(const FEngineSearch& InSearch)
		: Search(InSearch)
	{
	}

	FEngineLocation Run()
	{
		if (!Search.Named.empty() || !Search.FromEnvironment.empty())
		{
			TakeNamed();
		}
		else if (!TakeAssociated())
		{
			TakeBundled();
		}
		return std::move(Result);
	}

private:
	const FEngineSearch& Search;
	FEngineLocation Result;

	bool Take(const std::string& Where, const std::string& Folder)
	{
		const std::string Engine = Folder.empty() ? std::string() : EngineFolderIn(Folder);
		Result.EngineDir = Engine;
		Result.Tried.push_back({Where, !Engine.empty()	? QVPrintf("taken: %s", Engine)
									   : Folder.empty() ? "there is none"
														: QVPrintf("%s is not there", Folder)});
		return !Engine.empty();
	}

	void TakeNamed()
	{
		const bool bOption = !Search.Named.empty();
		const std::string_view Source = bOption ? "--engine" : "QVMAP_ENGINE_DIR";
		const std::string& Folder = bOption ? Search.Named : Search.FromEnvironment;
		if (!Take(std::string(Source), Folder))
		{
			Result.Error = QVPrintf("%s names %s, which is not a folder: give the engine's folder, the one that holds "
									"Binaries/Win64",
				Source, Folder);
		}
	}

	bool TakeAssociated()
	{
		const std::string Association =
			Search.ProjectFile.empty() ? std::string() : ReadAssociation(Search.ProjectFile);
		if (Association.empty())
		{
			Result.Tried.push_back({"EngineAssociation", "the project names no engine"});
			return false;
		}
		if (Association.find_first_of("/\\") != std::string::npos)
		{
			const std::string Folder =
				FQVPath::ConvertRelativePathToFull(FQVPath::GetPath(Search.ProjectFile), Association);
			return Take(QVPrintf("EngineAssociation \"%s\"", Association), Folder);
		}
		return TakeInstalled(Association);
	}

	bool TakeInstalled(const std::string& Association)
	{
		for (const FInstallRecord& Record : ReadInstallRecords())
		{
			const std::string Where = QVPrintf("EngineAssociation \"%s\" in %s", Association, Record.File);
			bool bListed = false;
			for (const FInstalledEngine& Engine : Record.Engines)
			{
				if (IsSameEngine(Association, Engine.Identifier))
				{
					bListed = true;
					if (Take(Where, FQVPath::NormalizeFilename(Engine.Root)))
					{
						return true;
					}
				}
			}
			if (!bListed)
			{
				Result.Tried.push_back({Where, "not listed there"});
			}
		}
		return false;
	}

	void TakeBundled()
	{
		Result.bBundled = Take("bundled engine", Search.Bundled);
		if (!Result.bBundled)
		{
			Result.Error = "no engine found: name its folder with --engine <folder> or QVMAP_ENGINE_DIR";
		}
	}
};
} // namespace

FEngineLocation FindEngine(const FEngineSearch& Search)
{
	return FSearch(Search).Run();
}

std::vector<FInstalledEngine> ParseInstallIni(std::string_view Text)
{
	std::vector<FInstalledEngine> Engines;
	bool bInSection = false;
	for (const std::string_view Line : FQVString::NonEmptyLines(Text))
	{
		const std::size_t Equals = Line.find('=');
		if (Line.front() == '[')
		{
			bInSection = FQVString::EqualsIgnoreCase(Line, "[Installations]");
		}
		else if (bInSection && Equals != std::string_view::npos && Line.front() != ';')
		{
			Engines.push_back({std::string(Line.substr(0, Equals)), std::string(Line.substr(Equals + 1))});
		}
	}
	return Engines;
}

std::vector<FInstalledEngine> ParseLauncherInstalled(std::string_view Text)
{
	std::vector<FInstalledEngine> Engines;
	FQVJson Json;
	std::string Error;
	const FQVJson* List = FJsonReader().Parse(Text, Json, Error) ? Json.Find("InstallationList") : nullptr;
	if (List == nullptr || List->AsArray() == nullptr)
	{
		return Engines;
	}
	for (const FQVJson& Entry : *List->AsArray())
	{
		const std::string Name = Entry.GetString("AppName");
		if (FQVString::StartsWithIgnoreCase(Name, LauncherPrefix))
		{
			Engines.push_back({Name, Entry.GetString("InstallLocation")});
		}
	}
	return Engines;
}
} // namespace QVStandalone
