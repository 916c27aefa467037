// SPDX-License-Identifier: MIT
#include "Export/QVMapPackageSaver.h"

#include "Core/QVLog.h"
#include "Engine/QVAssetRegistry.h"
#include "Engine/QVEditor.h"
#include "Engine/QVEngine.h"
#include "Engine/QVPackages.h"
#include "Export/QVMapImportPaths.h"

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
	IQVPackages& Packages = *FQVEngine::Get().Packages;
	if (Package.IsNone() || !Packages.IsLoaded(Package))
	{
		OutError = "null package";
		return false;
	}
	const bool bWorld = Packages.ContainsWorld(Package);
	std::string File;
	if (!Packages.TryConvertLongPackageNameToFilename(
			Package.ToView(), File, bWorld ? IQVPackages::MapPackageExtension : IQVPackages::AssetPackageExtension))
	{
		OutError = QVPrintf("no file path for package %s", Package.ToView());
		return false;
	}
	if (Packages.SavePackage(Package, File, bWorld) == EQVSaveResult::Failed)
	{
		OutError = QVPrintf("could not write %s", File);
		return false;
	}
	OutFile = std::move(File);
	return true;
}
