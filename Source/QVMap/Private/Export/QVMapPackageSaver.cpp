// SPDX-License-Identifier: MIT
#include "Export/QVMapPackageSaver.h"

#include "Core/QVLog.h"
#include "Engine/QVAssetRegistry.h"
#include "Engine/QVEditor.h"
#include "Engine/QVEngine.h"
#include "Engine/QVPackages.h"
#include "Export/QVMapImportPaths.h"

namespace
{
/** Fills in where the package belongs. */
bool FindPlace(FQVPackageToSave& Save, std::string& OutError)
{
	const IQVPackages& Packages = *FQVEngine::Get().Packages;
	if (Save.Package.IsNone() || !Packages.IsLoaded(Save.Package))
	{
		OutError = "null package";
		return false;
	}
	Save.bWorld = Packages.ContainsWorld(Save.Package);
	const bool bFound = Packages.TryConvertLongPackageNameToFilename(Save.Package.ToView(), Save.File,
		Save.bWorld ? IQVPackages::MapPackageExtension : IQVPackages::AssetPackageExtension);
	if (!bFound)
	{
		OutError = QVPrintf("no file path for package %s", Save.Package.ToView());
	}
	return bFound;
}
} // namespace

bool FQVMapPackageSaver::SaveReferencedPackage(FQVName Package)
{
	const FQVEngine& Engine = FQVEngine::Get();
	if (!Engine.Packages->IsLoaded(Package))
	{
		return false;
	}
	Engine.Editor->FinishAllCompilation();
	std::string File;
	std::string Error;
	if (!SavePackageToDisk(Package, File, Error))
	{
		QVLog(EQVLogVerbosity::Warning, "QVMap: Could not save referenced package %s: %s", Package.ToView(), Error);
		return false;
	}
	Engine.AssetRegistry->ScanModifiedAssetFiles(std::span(&File, 1));
	QVLog(
		EQVLogVerbosity::Log, "QVMap: Saved referenced package that was not on disk: %s -> %s", Package.ToView(), File);
	return true;
}

void FQVMapPackageSaver::SaveDirtyPluginPackages(std::string_view PluginName)
{
	const FQVEngine& Engine = FQVEngine::Get();
	std::vector<FQVName> Dirty;
	Engine.Packages->GetDirtyPackages(Dirty);
	for (const FQVName Package : Dirty)
	{
		if (!FQVMapImportPaths::IsInPlugin(Package.ToView(), PluginName))
		{
			continue;
		}
		Engine.Editor->FinishAllCompilation();
		std::string File;
		std::string Error;
		if (SavePackageToDisk(Package, File, Error))
		{
			QVLog(EQVLogVerbosity::Log, "QVMap: Saved unsaved map content before packing: %s", Package.ToView());
		}
		else
		{
			QVLog(EQVLogVerbosity::Warning, "QVMap: Could not save %s before packing: %s", Package.ToView(), Error);
		}
	}
}

bool FQVMapPackageSaver::SavePackageToDisk(FQVName Package, std::string& OutFile, std::string& OutError)
{
	std::vector<std::string> Files;
	const bool bSaved = SavePackagesToDisk(std::span(&Package, 1), Files, OutError);
	OutFile = bSaved ? Files.front() : std::string();
	return bSaved;
}

bool FQVMapPackageSaver::SavePackagesToDisk(
	std::span<const FQVName> Packages, std::vector<std::string>& OutFiles, std::string& OutError)
{
	std::vector<FQVPackageToSave> Saves;
	for (const FQVName Package : Packages)
	{
		if (!FindPlace(Saves.emplace_back(FQVPackageToSave{Package, {}, false}), OutError))
		{
			return false;
		}
	}
	const std::vector<EQVSaveResult> Results = FQVEngine::Get().Packages->SavePackages(Saves);
	for (std::size_t Place = 0; Place < Saves.size(); ++Place)
	{
		const bool bSaved = Results[Place] != EQVSaveResult::Failed;
		OutError = bSaved || !OutError.empty() ? OutError : QVPrintf("could not write %s", Saves[Place].File);
		OutFiles.push_back(bSaved ? std::move(Saves[Place].File) : std::string());
	}
	return OutError.empty();
}
