// SPDX-License-Identifier: MIT
#include "Standalone/EngineTools/PakCreation.h"

#include "Core/QVPath.h"
#include "Core/QVPrintf.h"
#include "Standalone/Engine/Files.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/EngineTools/ResponseFile.h"

namespace QVEngineTools
{
using namespace QVFormats;
using QVStandalone::FFiles;
using QVStandalone::ToOsPath;

namespace
{
std::vector<FPakSource> FromFolder(const std::string& Folder, const std::string& Mount, bool bCompress)
{
	std::vector<FPakSource> Sources;
	FFiles().IterateDirectoryRecursively(Folder,
		[&](std::string_view Path, bool bIsDirectory)
		{
			std::string Below(Path);
			if (!bIsDirectory && FQVPath::MakePathRelativeTo(Below, Folder + "/"))
			{
				Sources.push_back({ToOsPath(Path), FQVPath::Combine(Mount, Below), bCompress});
			}
			return true;
		});
	return Sources;
}

TResult<std::vector<FPakSource>> FromResponseFile(const std::string& Path, bool bCompress)
{
	std::string Text;
	const FFiles Files;
	if (!Files.LoadFileToString(Text, Path))
	{
		return FError{QVPrintf("%s is not there or cannot be read: expected a folder or a response file", Path)};
	}
	const TResult<std::vector<FResponseEntry>> Entries = ParseResponseFile(Text);
	if (!Entries)
	{
		return FError{QVPrintf("%s, %s", Path, Entries.Error().Message)};
	}
	std::vector<FPakSource> Sources;
	for (const FResponseEntry& Entry : *Entries)
	{
		if (!Files.FileExists(Entry.Source))
		{
			return FError{QVPrintf("%s names %s, which is not a file", Path, Entry.Source)};
		}
		Sources.push_back({ToOsPath(Entry.Source), Entry.Destination, bCompress || Entry.bCompress});
	}
	return Sources;
}
} // namespace

TResult<std::vector<FPakSource>> CollectPakSources(
	const std::string& FolderOrResponseFile, const std::string& Mount, bool bCompress)
{
	const std::string Path = FQVPath::NormalizeFilename(FolderOrResponseFile);
	return FFiles().DirectoryExists(Path) ? TResult<std::vector<FPakSource>>(FromFolder(Path, Mount, bCompress))
										  : FromResponseFile(Path, bCompress);
}
} // namespace QVEngineTools
