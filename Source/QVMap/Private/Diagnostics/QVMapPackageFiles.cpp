// SPDX-License-Identifier: MIT
#include "Diagnostics/QVMapPackageFiles.h"

#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Engine/QVPackages.h"

std::string FQVMapPackageFiles::Find(std::string_view PackageName)
{
	const FQVEngine& Engine = FQVEngine::Get();
	for (const std::string_view Extension : {IQVPackages::AssetPackageExtension, IQVPackages::MapPackageExtension})
	{
		std::string File;
		if (Engine.Packages->TryConvertLongPackageNameToFilename(PackageName, File, Extension) &&
			Engine.Files->FileExists(File))
		{
			return File;
		}
	}
	return {};
}
