// SPDX-License-Identifier: MIT
#include "Core/QVLog.h"
#include "Core/QVString.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Engine/QVRegistryFile.h"
#include "Workspace/QVMapPaths.h"

#include <mutex>

namespace
{
/** The last registry that was loaded. There is one release, so there is one entry. */
struct FCachedRegistry
{
	std::string Path;
	std::int64_t Timestamp = 0;
	std::int64_t SizeBytes = -1;
	bool bReadable = false;
	std::int32_t PackageCount = 0;

	bool IsFor(const FQVBaseReleaseStatus& Status) const
	{
		return FQVString::EqualsIgnoreCase(Path, Status.RegistryPath) && Timestamp == Status.RegistryTimestamp &&
			   SizeBytes == Status.RegistrySizeBytes;
	}
};

void LoadRegistry(const FQVBaseReleaseStatus& Status, FCachedRegistry& Out)
{
	Out = {Status.RegistryPath, Status.RegistryTimestamp, Status.RegistrySizeBytes, false, 0};
	Out.bReadable = FQVEngine::Get().RegistryFile->LoadFromDisk(Status.RegistryPath, Out.PackageCount);
	Out.PackageCount = Out.bReadable ? Out.PackageCount : 0;
	QVLog(EQVLogVerbosity::Log, "QVMap: Base release registry %s -- %s, %d package(s), %lld bytes", Out.Path,
		Out.bReadable ? "readable" : "UNREADABLE", Out.PackageCount, Out.SizeBytes);
}

void ReadRegistryThroughCache(FQVBaseReleaseStatus& Status)
{
	static std::mutex Lock;
	static FCachedRegistry Cached;
	const std::lock_guard Guard(Lock);
	if (!Cached.IsFor(Status))
	{
		LoadRegistry(Status, Cached);
	}
	Status.bRegistryReadable = Cached.bReadable;
	Status.PackageCount = Cached.PackageCount;
}

bool ChooseRegistry(FQVBaseReleaseStatus& Status)
{
	const IQVFiles& Files = *FQVEngine::Get().Files;
	const std::string Development = FQVMapPaths::GetDevelopmentRegistryPath();
	const std::string Runtime = FQVMapPaths::GetRuntimeRegistryPath();
	Status.bHasDevelopmentRegistry = Files.FileExists(Development);
	Status.bHasRuntimeRegistry = Files.FileExists(Runtime);
	if (!Status.bHasDevelopmentRegistry && !Status.bHasRuntimeRegistry)
	{
		Status.ErrorMessage = QVPrintf("The base release at %s is incomplete - %s is missing. This usually means a "
									   "previous 'Build Base Release' was interrupted or failed.",
			FQVMapPaths::GetBaseReleaseDir(), Development);
		return false;
	}
	Status.RegistryPath = Status.bHasDevelopmentRegistry ? Development : Runtime;
	Status.RegistrySizeBytes = Files.FileSize(Status.RegistryPath);
	Status.RegistryTimestamp = Files.GetTimeStamp(Status.RegistryPath).GetTicks();
	return true;
}
} // namespace

bool FQVMapPaths::CheckBaseRelease(FQVBaseReleaseStatus& OutStatus)
{
	OutStatus = {};
	OutStatus.bReleaseDirExists = FQVEngine::Get().Files->DirectoryExists(GetBaseReleaseDir());
	if (!OutStatus.bReleaseDirExists)
	{
		OutStatus.ErrorMessage = QVPrintf("No base release found at %s.", GetBaseReleaseDir());
		return false;
	}
	if (!ChooseRegistry(OutStatus))
	{
		return false;
	}
	ReadRegistryThroughCache(OutStatus);
	if (!OutStatus.bRegistryReadable)
	{
		OutStatus.ErrorMessage =
			QVPrintf("The base release asset registry at %s could not be read. It is likely corrupt or "
					 "was written by a different engine version. Rebuild the base release.",
				OutStatus.RegistryPath);
		return false;
	}
	if (OutStatus.PackageCount == 0)
	{
		OutStatus.ErrorMessage =
			QVPrintf("The base release at %s contains no packages, so a DLC cook based on it would "
					 "fail. Rebuild the base release.",
				GetBaseReleaseDir());
		return false;
	}
	return true;
}

bool FQVMapPaths::IsBaseReleaseValid()
{
	FQVBaseReleaseStatus Status;
	return CheckBaseRelease(Status);
}
