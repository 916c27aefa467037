// SPDX-License-Identifier: MIT
#include "Core/QVCheck.h"
#include "Core/QVPath.h"
#include "Standalone/Engine/AssetRegistry.h"
#include "Standalone/Engine/EngineLog.h"
#include "Standalone/Engine/Interrupt.h"
#include "Standalone/Engine/PackageCache.h"

#include <condition_variable>
#include <mutex>
#include <thread>

namespace QVStandalone
{
namespace
{
/** How often the game thread looks for the end of a scan, in seconds. */
constexpr double TakeOverPeriod = 0.05;
constexpr std::chrono::milliseconds ProgressPeriod{50};

/** The deepest folder that holds both, empty if there is none. None of them ends in a slash. */
std::string CommonFolder(std::string Common, const std::string& Other)
{
	while (!Common.empty() && !(Other + "/").starts_with(Common + "/"))
	{
		Common = FQVPath::GetPath(Common);
	}
	return Common;
}
} // namespace

struct FAssetRegistry::FJob
{
	std::string CachePath;
	FScanScope Scope;
	FScannedPackagesRef Old;
	bool bLoadCache = false;
	bool bSaveAnyway = false;

	FScanProgress Progress;
	std::atomic<bool> bStop = false;
	std::mutex Lock;
	std::condition_variable Wake;
	bool bDone = false;
	/** Null when the scan was stopped. Not touched by the thread once bDone is set. */
	FScannedPackagesRef Result;
	std::thread Thread;

	bool IsStopped() const { return bStop || FInterrupt::IsRaised(); }

	void Run()
	{
		const FScannedPackagesRef Found =
			ScanPackages([this] { return LoadOld(); }, Scope, Progress, [this] { return IsStopped(); });
		{
			const std::lock_guard Guard(Lock);
			Result = Found;
			bDone = true;
		}
		Wake.notify_all();
		if (Found != nullptr && (Found != Old || bSaveAnyway) && !IsStopped())
		{
			SaveCache(*Found);
		}
	}

	FScannedPackagesRef LoadOld()
	{
		if (bLoadCache)
		{
			const QVFormats::TResult<FScannedPackagesRef> Cache = LoadPackageCache(CachePath);
			Cache ? static_cast<void>(Old = *Cache)
				  : LogEngine(EQVLogVerbosity::Verbose, "All packages are read anew: %s", Cache.Error().Message);
		}
		return Old;
	}

	void SaveCache(const FScannedPackages& Found) const
	{
		const QVFormats::FStatus Saved = SavePackageCache(CachePath, Found);
		if (!Saved)
		{
			LogEngine(EQVLogVerbosity::Verbose, "The next start reads all packages again: %s", Saved.Error().Message);
		}
	}

	bool IsDone()
	{
		const std::lock_guard Guard(Lock);
		return bDone;
	}
};

FAssetRegistry::FAssetRegistry(std::string InProjectDir, const FPackages& InPackages, IQVGameThread& InGameThread)
	: ProjectDir(std::move(InProjectDir))
	, MountPoints(InPackages)
	, GameThread(InGameThread)
{
}

FAssetRegistry::~FAssetRegistry()
{
	if (Job != nullptr)
	{
		// what is already found is still kept for the next start
		Job->bStop = !Job->IsDone();
		EndJob();
	}
}

void FAssetRegistry::EndJob()
{
	if (Job != nullptr && Job->Thread.joinable())
	{
		Job->Thread.join();
	}
	Job.reset();
}

void FAssetRegistry::StartScan()
{
	QV_CHECK(GameThread.IsInGameThread());
	if (bLoading)
	{
		return;
	}
	EndJob();
	Job = std::make_shared<FJob>();
	Job->CachePath = FQVPath::Combine(ProjectDir, CacheFile);
	Job->Scope.Mounts = MountPoints.GetMountPoints();
	Job->Old = Packages;
	Job->bLoadCache = Packages->Graph.Num() == 0;
	Job->bSaveAnyway = !Job->bLoadCache && bCacheIsOld;
	bLoading = true;
	Job->Thread = std::thread([Running = Job.get()] { Running->Run(); });
	GameThread.AddTicker(TakeOverPeriod,
		[this, Watched = std::weak_ptr<FJob>(Job)]
		{
			const std::shared_ptr<FJob> Running = Watched.lock();
			if (Running == nullptr || !bLoading || !Running->IsDone())
			{
				return Running != nullptr && bLoading;
			}
			TakeOver();
			return false;
		});
}

bool FAssetRegistry::FinishScan(const FOnProgress& OnProgress)
{
	QV_CHECK(GameThread.IsInGameThread());
	if (!bLoading)
	{
		return true;
	}
	std::unique_lock Guard(Job->Lock);
	while (!Job->Wake.wait_for(Guard, ProgressPeriod, [this] { return Job->bDone; }))
	{
		Guard.unlock();
		if (OnProgress)
		{
			OnProgress(Job->Progress.Done, Job->Progress.Total);
		}
		Guard.lock();
	}
	Guard.unlock();
	return TakeOver();
}

/** Of a scan that is done. */
bool FAssetRegistry::TakeOver()
{
	bLoading = false;
	if (Job->Result == nullptr)
	{
		return false;
	}
	bCacheIsOld = false;
	Adopt(Job->Result);
	return true;
}

void FAssetRegistry::Adopt(FScannedPackagesRef New)
{
	Packages = std::move(New);
	Externals = FExternalPackages(Packages->Graph);
	for (const FUnreadablePackage& Each : Packages->Unreadable)
	{
		if (Complaints.emplace(Each.File, Each.Reason).second)
		{
			LogEngine(EQVLogVerbosity::Warning, "%s %s", Each.File, Each.Reason);
		}
	}
}

void FAssetRegistry::ScanPathsSynchronous(std::string_view Folder)
{
	ScanBelow(FQVPath::ConvertRelativePathToFull(ProjectDir, Folder));
}

void FAssetRegistry::ScanBelow(std::string Folder)
{
	QV_CHECK(GameThread.IsInGameThread());
	FinishScan();
	if (bTrustLastScan)
	{
		return;
	}
	FScanScope Scope;
	Scope.Mounts = MountPoints.GetMountPoints();
	Scope.Folder = std::move(Folder);
	FScanProgress Progress;
	FScannedPackagesRef New =
		ScanPackages([this] { return Packages; }, Scope, Progress, [] { return FInterrupt::IsRaised(); });
	if (New != nullptr && New != Packages)
	{
		bCacheIsOld = true;
		Adopt(std::move(New));
	}
}

/** A walk over the folder that they have in common costs little more than looking at each. */
void FAssetRegistry::ScanModifiedAssetFiles(std::span<const std::string> Files)
{
	std::optional<std::string> Common;
	for (const std::string& File : Files)
	{
		const std::string Folder(FQVPath::GetPath(FQVPath::ConvertRelativePathToFull(ProjectDir, File)));
		Common = Common ? CommonFolder(*Common, Folder) : Folder;
	}
	if (Common)
	{
		ScanBelow(*Common);
	}
}

void FAssetRegistry::UseGraph(FPackageGraph Graph)
{
	FinishScan();
	const auto New = std::make_shared<FScannedPackages>();
	New->Graph = std::move(Graph);
	Adopt(New);
}
} // namespace QVStandalone
