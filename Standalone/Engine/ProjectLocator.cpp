// SPDX-License-Identifier: MIT
#include "Standalone/Engine/ProjectLocator.h"

#include "Core/QVPath.h"
#include "Core/QVPrintf.h"
#include "Core/QVString.h"
#include "Standalone/Engine/Files.h"

namespace QVStandalone
{
namespace
{
std::vector<std::string> ProjectFilesIn(std::string_view Folder)
{
	std::vector<std::string> Found;
	FFiles().IterateDirectory(Folder,
		[&Found](std::string_view Path, bool bIsDirectory)
		{
			if (!bIsDirectory && FQVString::EndsWithIgnoreCase(Path, ".uproject"))
			{
				Found.emplace_back(Path);
			}
			return true;
		});
	return Found;
}

FProjectLocation OneOf(const std::vector<std::string>& Found, std::string_view Folder)
{
	if (Found.size() == 1)
	{
		return {Found.front(), {}};
	}
	return {{}, QVPrintf("%s holds %d .uproject files (%s, %s): name the one you mean with --project <file>", Folder,
					Found.size(), FQVPath::GetCleanFilename(Found[0]), FQVPath::GetCleanFilename(Found[1]))};
}
} // namespace

FProjectLocation FindProjectAbove(std::string_view Folder)
{
	for (std::string_view Each = Folder; !Each.empty(); Each = FQVPath::GetPath(Each))
	{
		const std::vector<std::string> Found = ProjectFilesIn(Each);
		if (!Found.empty())
		{
			return OneOf(Found, Each);
		}
	}
	return {{}, QVPrintf("no mapping project found: neither %s nor a folder above it holds a .uproject file. Go into "
						 "your project, or name it with --project <file>",
					Folder)};
}

FProjectLocation FindNamedProject(std::string_view Path)
{
	const FFiles Files;
	if (Files.FileExists(Path) && FQVString::EndsWithIgnoreCase(Path, ".uproject"))
	{
		return {std::string(Path), {}};
	}
	if (!Files.DirectoryExists(Path))
	{
		return {{}, QVPrintf("%s is %s: --project takes a .uproject file or the folder that holds it", Path,
						Files.FileExists(Path) ? "not a .uproject file" : "not there")};
	}
	const std::vector<std::string> Found = ProjectFilesIn(Path);
	if (Found.empty())
	{
		return {{}, QVPrintf("%s holds no .uproject file", Path)};
	}
	return OneOf(Found, Path);
}
} // namespace QVStandalone
