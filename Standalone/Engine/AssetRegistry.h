// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVGameThread.h"
#include "Standalone/Engine/ExternalPackages.h"
#include "Standalone/Engine/PackageScan.h"

#include <set>

namespace QVStandalone
{
/**
 * The asset registry over the package files of a project, its engine and its plugins. Only headers are read, and what
 * was read is kept in a file for the next start. Nothing is known until a scan was started and its result taken over,
 * which happens on the game thread; so queries need no locks. Made, asked and destroyed on the game thread.
 */
class FAssetRegistry : public IQVAssetRegistry
{
public:
	/** Below the project's folder. */
	static constexpr std::string_view CacheFile = "Saved/QVMapRegistry.cache";

	/** What is given outlives the registry. */
	FAssetRegistry(std::string InProjectDir, const FPackages& InPackages, IQVGameThread& InGameThread);
	FAssetRegistry(const FAssetRegistry&) = delete;
	FAssetRegistry& operator=(const FAssetRegistry&) = delete;
	/** Stops a running scan. */
	~FAssetRegistry() override;

	/** Begins a scan of all mount points on a thread of its own; nothing if there is one running. */
	void StartScan();
	/** Called now and then with the files read and to be read, the second 0 while that is not known. */
	using FOnProgress = std::function<void(std::size_t Done, std::size_t Total)>;
	/** Waits for the scan and takes its result over. False if the user's interrupt stopped it: nothing has changed. */
	bool FinishScan(const FOnProgress& OnProgress = {});
	/** From now on only a whole scan looks at the disk: for work that changes no file and is over at once. */
	void TrustLastScan() { bTrustLastScan = true; }

	bool IsLoadingAssets() const override { return bLoading; }
	void ScanPathsSynchronous(std::string_view Folder) override;
	void ScanModifiedAssetFiles(std::span<const std::string> Files) override;
	void GetAssets(const FQVAssetFilter& Filter, std::vector<FQVAssetData>& Out) const override;
	void GetAssetsByPackageName(FQVName Package, std::vector<FQVAssetData>& Out) const override;
	void GetDependencies(
		FQVName Package, EQVDependencyQuery Query, std::vector<FQVPackageDependency>& Out) const override;
	void GetDependenciesOfEach(
		std::span<const FQVName> OfPackages, EQVDependencyQuery Query, FQVDependencyLists& Out) const override;
	void GetReferencers(FQVName Package, std::vector<FQVName>& Out) const override;
	std::optional<std::int64_t> GetPackageSize(FQVName Package) const override;
	void GetUnreadablePackages(std::vector<FQVUnreadablePackage>& Out) const override;
	/** Reads the package's header if there is something to tell. */
	std::string GetNewerEngine(FQVName Package) const override;
	/** Reads the package's header if there may be something to tell. */
	void GetMisspelledReferences(FQVName Package, std::vector<FQVMisspelledReference>& Out) const override;
	/** Reads the package's header: tags are not kept. */
	bool GetTagValue(const FQVAssetData& Asset, std::string_view Tag, std::string& Out) const override;

	/** Replaces Out: the packages of a map's actors and other objects in files of their own, by their place. */
	void GetExternalPackages(FQVName Map, std::vector<FQVName>& Out) const;
	std::size_t GetPackageCount() const { return Packages->Graph.Num(); }
	/** Full path of a package's file; empty if the package is not known. */
	std::string GetPackageFile(FQVName Package) const;
	/** Files and folders that could not be read, and why; each was logged as a warning. */
	const std::vector<FUnreadablePackage>& GetUnreadable() const { return Packages->Unreadable; }
	/** All packages and references. Good until the next scan is taken over. */
	const FPackageGraph& GetGraph() const { return Packages->Graph; }
	/** Puts made-up packages in place of the files'. */
	void UseGraph(FPackageGraph Graph);

private:
	struct FJob;

	const std::string ProjectDir;
	const FPackages& MountPoints;
	IQVGameThread& GameThread;
	FScannedPackagesRef Packages = std::make_shared<FScannedPackages>();
	FExternalPackages Externals;
	/** Shared with its own thread and, weakly, with the ticker that takes its result over. */
	std::shared_ptr<FJob> Job;
	bool bLoading = false;
	bool bTrustLastScan = false;
	/** The cache does not know what was scanned since. */
	bool bCacheIsOld = true;
	std::set<std::pair<std::string, std::string>> Complaints;

	void AppendDependencies(FQVName Package, const FPackedReference* First, EQVDependencyQuery Query,
		std::vector<FQVPackageDependency>& Out) const;
	/** Folder: full path; empty: everything. */
	void ScanBelow(std::string Folder);
	bool TakeOver();
	void Adopt(FScannedPackagesRef New);
	void EndJob();
};
} // namespace QVStandalone
