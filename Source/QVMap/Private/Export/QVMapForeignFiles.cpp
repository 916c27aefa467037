// SPDX-License-Identifier: MIT
#include "Export/QVMapForeignFiles.h"

#include "Core/QVLog.h"
#include "Core/QVPath.h"
#include "Engine/QVClock.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Workspace/QVMapPaths.h"

FQVFileStamp FQVMapForeignFiles::StampOf(const std::string& File)
{
	const IQVFiles& Files = *FQVEngine::Get().Files;
	return {Files.FileSize(File), Files.GetTimeStamp(File)};
}

bool FQVMapForeignFiles::Keep(const std::string& File)
{
	const FQVEngine& Engine = FQVEngine::Get();
	const std::string Inner = File.substr(FQVMapPaths::GetProjectDir().size() + 1);
	const std::string Base = FQVPath::Combine(FQVMapPaths::GetWorkDir(), "Replaced", Engine.Clock->Now().ToFileStamp());
	std::string Kept = FQVPath::Combine(Base, Inner);
	for (int Number = 2; Engine.Files->FileExists(Kept); ++Number)
	{
		Kept = FQVPath::Combine(Base + QVPrintf("-%d", Number), Inner); // another of the same second
	}
	const bool bKept = FQVMapPaths::EnsureDirectory(FQVPath::GetPath(Kept)) && Engine.Files->Copy(Kept, File);
	if (bKept)
	{
		QVLog(EQVLogVerbosity::Warning, "QVMap: %s may hold changes that are not from the pack. A copy is kept as %s",
			File, Kept);
	}
	else
	{
		QVLog(EQVLogVerbosity::Error,
			"QVMap: %s may hold changes that are not from the pack, and no copy could be kept as %s", File, Kept);
	}
	return bKept;
}

bool FQVMapForeignFiles::KeepIfChanged(const std::string& File, const FQVFileStamp& Left)
{
	const FQVFileStamp Now = StampOf(File);
	return Now.Size < 0 || Now == Left || Keep(File);
}
