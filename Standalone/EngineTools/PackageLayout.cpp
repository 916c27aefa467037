// SPDX-License-Identifier: MIT
#include "Standalone/EngineTools/PackageLayout.h"

#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Standalone/Engine/Files.h"
#include "Standalone/Engine/Interrupt.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/EngineTools/RawFile.h"
#include "Standalone/Formats/Base/MappedFile.h"

namespace QVEngineTools
{
using namespace QVFormats;
using QVStandalone::FFiles;
using QVStandalone::ToOsPath;

namespace
{
constexpr std::size_t ProgressEvery = 50;

bool IsPackageFile(std::string_view Path)
{
	return FQVString::EndsWithIgnoreCase(Path, ".uasset") || FQVString::EndsWithIgnoreCase(Path, ".umap");
}

/** Whether an earlier cook's files still stand for this source. */
bool IsUpToDate(const std::string& Source, const std::string& Header, const std::string& Exports)
{
	const FFiles Files;
	const std::int64_t ExportBytes = Files.FileSize(Exports);
	return Files.FileExists(Header) && Files.GetTimeStamp(Header) >= Files.GetTimeStamp(Source) &&
		   Files.FileSize(Header) + (ExportBytes > 0 ? ExportBytes : 0) == Files.FileSize(Source);
}
} // namespace

void FPackageLayout::AddFolder(const FCookFolder& Folder)
{
	FFiles().IterateDirectoryRecursively(Folder.ContentDir,
		[&](std::string_view Path, bool bIsDirectory)
		{
			if (!bIsDirectory && IsPackageFile(Path))
			{
				std::string Below(Path);
				FQVPath::MakePathRelativeTo(Below, Folder.ContentDir + "/");
				const std::string Stem(FQVPath::WithoutExtension(Below));
				AddPackage(std::string(Path), Folder.Root + Stem, FQVPath::Combine(Folder.CookedDir, Stem));
			}
			return true;
		});
}

void FPackageLayout::AddPackage(const std::string& File, const std::string& PackageName, const std::string& CookedStem)
{
	Sources.push_back({File, PackageName, CookedStem, File.substr(FQVPath::WithoutExtension(File).size())});
}

void FPackageLayout::Run()
{
	Log.Display("LogCook", "Cooking %d packages", Sources.size());
	for (std::size_t Index = 0; Index < Sources.size(); ++Index)
	{
		if (QVStandalone::FInterrupt::IsRaised())
		{
			Log.Error("LogCook", "interrupted with %d of %d packages cooked", Index, Sources.size());
			return;
		}
		CookOne(Sources[Index]);
		if ((Index + 1) % ProgressEvery == 0)
		{
			Log.Display("LogCook", "Cooked packages %d Packages Remain %d Total %d", Index + 1,
				Sources.size() - Index - 1, Sources.size());
		}
	}
	Log.Display("LogCook", "Cooked packages %d Packages Remain 0 Total %d", Sources.size(), Sources.size());
}

void FPackageLayout::CookOne(const FSource& Source)
{
	const TResult<FMappedFile> File = FMappedFile::Open(ToOsPath(Source.File));
	if (!File)
	{
		Log.Error("LogCook", "%s", File.Error().Message);
		return;
	}
	const TResult<FPackageHeader> Header = ReadPackageHeader(File->Bytes());
	if (!Header)
	{
		Log.Error("LogCook", "%s %s", Source.File, Header.Error().Message);
		return;
	}
	const std::string HeaderFile = Source.CookedStem + Source.Extension;
	const std::string ExportFile = Source.CookedStem + ".uexp";
	Registry.AddPackage(Source.PackageName, *Header, static_cast<std::int64_t>(File->Bytes().size()), Source.Extension);
	if (Mode == ECookMode::Iterate && IsUpToDate(Source.File, HeaderFile, ExportFile))
	{
		return;
	}
	const FBytes Exports = File->Bytes().subspan(Header->Bytes.size());
	for (const auto& [Path, Bytes] : {std::pair(HeaderFile, Header->Bytes), std::pair(ExportFile, Exports)})
	{
		const FStatus Written = WriteRawFile(Path, Bytes);
		if (!Written)
		{
			Log.Error("LogCook", "%s", Written.Error().Message);
			return;
		}
	}
	Log.Display("LogCook", "Cooking %s -> %s", Source.PackageName, HeaderFile);
}
} // namespace QVEngineTools
