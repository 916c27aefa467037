// SPDX-License-Identifier: MIT
#include "Standalone/Engine/PackageScan.h"

#include "Core/QVString.h"
#include "Standalone/Engine/PackageExamination.h"
#include "Standalone/Engine/PackageFacts.h"
#include "Standalone/Engine/PackageGraphBuilder.h"
#include "Standalone/Engine/PackageHeaderBytes.h"
#include "Standalone/Engine/ScanRoots.h"
#include "Standalone/Formats/Base/Parallel.h"

#include <algorithm>

namespace QVStandalone
{
namespace
{
constexpr std::uint32_t NoRow = FPackageGraph::NoRow;

/** What one worker has read, one package behind the other. */
struct FHarvest
{
	FPackageHeaderReader Reader;
	FPackageFacts Facts;
};

/** Where in the harvest of a worker the facts of a package lie. */
struct FSlice
{
	unsigned Worker = 0;
	std::size_t AssetsBegin = 0;
	std::size_t AssetsEnd = 0;
	std::size_t ReferencesBegin = 0;
	std::size_t ReferencesEnd = 0;
	FPackageTraits Traits;
};

class FScan
{
public:
	FScan(
		const FLoadOldPackages& InLoadOld, const FScanScope& Scope, FScanProgress& InProgress, const FStopWish& InStop)
		: LoadOld(InLoadOld)
		, Folder(Scope.Folder.empty() || Scope.Folder.ends_with('/') ? Scope.Folder : Scope.Folder + "/")
		, Progress(InProgress)
		, Stop(InStop)
		, Result(std::make_shared<FScannedPackages>())
	{
		std::vector<FUnreadablePackage> Lost;
		Result->Mounts = WithoutLostMounts(Scope.Mounts, Lost);
		Result->Unreadable = Folder.empty() ? std::move(Lost) : std::vector<FUnreadablePackage>();
	}

	FScannedPackagesRef Run()
	{
		// reading the cache and walking the folders know nothing of each other
		QVFormats::ParallelFor(2, 2,
			[this](unsigned, std::size_t Number)
			{
				Number == 0 ? static_cast<void>(Old = LoadOld())
							: static_cast<void>(Walk = WalkPackageFiles(RootsWithin(Result->Mounts, Folder), Stop));
			});
		Candidates = ExaminePackageFiles(Walk, Result->Mounts, *Old);
		ReadAll();
		if (Stop())
		{
			return nullptr;
		}
		CollectUnreadable();
		return IsUnchanged() ? Old : Finish();
	}

private:
	const FLoadOldPackages& LoadOld;
	FScannedPackagesRef Old;
	/** Ends in a slash unless empty. */
	const std::string Folder;
	FScanProgress& Progress;
	const FStopWish& Stop;
	std::shared_ptr<FScannedPackages> Result;
	FPackageWalk Walk;
	std::vector<FPackageCandidate> Candidates;
	std::vector<std::size_t> ToRead;
	std::vector<FHarvest> Harvests;
	std::vector<FSlice> Slices;
	/** Rows of the old graph that are not below the folder. */
	std::vector<std::uint32_t> OutsideRows;

	void ReadAll();
	void Read(unsigned Worker, std::size_t Number);
	void CollectUnreadable();
	void CollectOutsideRows();
	bool IsUnchanged();
	FScannedPackagesRef Finish();
	void AddCandidate(FPackageGraphBuilder& Builder, std::size_t Index, std::size_t& NextSlice);
};

void FScan::ReadAll()
{
	for (std::size_t Index = 0; Index < Candidates.size(); ++Index)
	{
		if (Candidates[Index].bToRead)
		{
			ToRead.push_back(Index);
		}
	}
	Progress.Total = ToRead.size();
	Slices.resize(ToRead.size());
	const unsigned Threads = QVFormats::ThreadCount(0, ToRead.size());
	Harvests.resize(Threads);
	QVFormats::ParallelFor(
		Threads, ToRead.size(), [this](unsigned Worker, std::size_t Number) { Read(Worker, Number); });
}

void FScan::Read(unsigned Worker, std::size_t Number)
{
	if (Stop())
	{
		return;
	}
	const FWalkedFile& File = Walk.Files[ToRead[Number]];
	FPackageCandidate& Candidate = Candidates[ToRead[Number]];
	FHarvest& Harvest = Harvests[Worker];
	const QVFormats::TResult<QVFormats::FPackageHeader> Header = Harvest.Reader.Read(Walk.PathOf(File));
	FSlice& Slice = Slices[Number];
	Slice = {Worker, Harvest.Facts.Assets.size(), 0, Harvest.Facts.References.size(), 0, {}};
	if (Header)
	{
		Slice.Traits = Harvest.Facts.Append(*Header, Candidate.Package);
	}
	else
	{
		Candidate.Problem = Header.Error().Message;
		// what could not even be read may be readable next time, and nothing of the file shows it
		Candidate.bLasting = !Harvest.Reader.LastReads().empty();
	}
	Slice.AssetsEnd = Harvest.Facts.Assets.size();
	Slice.ReferencesEnd = Harvest.Facts.References.size();
	++Progress.Done;
}

void FScan::CollectUnreadable()
{
	std::vector<FUnreadablePackage>& List = Result->Unreadable;
	if (!Folder.empty())
	{
		std::copy_if(Old->Unreadable.begin(), Old->Unreadable.end(), std::back_inserter(List),
			[this](const FUnreadablePackage& Each) { return !Each.File.starts_with(Folder); });
	}
	for (const FUnreadableFolder& Each : Walk.Unreadable)
	{
		List.push_back({Each.Path, "could not be listed: " + Each.Problem, {}});
	}
	for (std::size_t Index = 0; Index < Candidates.size(); ++Index)
	{
		const FPackageCandidate& Candidate = Candidates[Index];
		if (!Candidate.Problem.empty())
		{
			const FWalkedFile& File = Walk.Files[Index];
			List.push_back({Walk.PathOf(File), Candidate.Problem, Candidate.bLasting ? File.File : FPackageFile{}});
		}
	}
	std::stable_sort(List.begin(), List.end(),
		[](const FUnreadablePackage& A, const FUnreadablePackage& B) { return A.File < B.File; });
}

void FScan::CollectOutsideRows()
{
	for (std::uint32_t Row = 0; !Folder.empty() && Row < Old->Graph.Num(); ++Row)
	{
		OutsideRows.push_back(Row);
	}
	for (const FMountPoint& Root : RootsWithin(Result->Mounts, Folder))
	{
		const auto [First, Last] = Old->Graph.RowsBelow(Root.Root);
		for (std::uint32_t Row = First; !Folder.empty() && Row < Last; ++Row)
		{
			OutsideRows[Row] = Old->PathAt(Row).starts_with(Folder) ? NoRow : Row;
		}
	}
	std::erase(OutsideRows, NoRow);
}

bool FScan::IsUnchanged()
{
	CollectOutsideRows();
	const auto Kept = std::count_if(
		Candidates.begin(), Candidates.end(), [](const FPackageCandidate& Each) { return Each.OldRow != NoRow; });
	const auto SameMount = [](const FMountPoint& A, const FMountPoint& B)
	{ return A.Root == B.Root && A.Folder == B.Folder; };
	return ToRead.empty() && OutsideRows.size() + static_cast<std::size_t>(Kept) == Old->Graph.Num() &&
		   Result->Unreadable == Old->Unreadable &&
		   std::equal(Result->Mounts.begin(), Result->Mounts.end(), Old->Mounts.begin(), Old->Mounts.end(), SameMount);
}

void FScan::AddCandidate(FPackageGraphBuilder& Builder, std::size_t Index, std::size_t& NextSlice)
{
	const FPackageCandidate& Candidate = Candidates[Index];
	const FSlice* Slice = Candidate.bToRead ? &Slices[NextSlice++] : nullptr;
	if (!Candidate.Problem.empty())
	{
		return;
	}
	if (Candidate.bOddlySpelled)
	{
		Result->OddlySpelled[Candidate.Package] = Walk.PathOf(Walk.Files[Index]);
	}
	if (Slice == nullptr)
	{
		Builder.AddFrom(Old->Graph, Candidate.OldRow);
		return;
	}
	Builder.AddPackage(Candidate.Package, Walk.Files[Index].File, Slice->Traits);
	const FHarvest& Harvest = Harvests[Slice->Worker];
	std::for_each(Harvest.Facts.Assets.begin() + static_cast<std::ptrdiff_t>(Slice->AssetsBegin),
		Harvest.Facts.Assets.begin() + static_cast<std::ptrdiff_t>(Slice->AssetsEnd),
		[&Builder](const FAssetRow& Asset) { Builder.AddAsset(Asset); });
	std::for_each(Harvest.Facts.References.begin() + static_cast<std::ptrdiff_t>(Slice->ReferencesBegin),
		Harvest.Facts.References.begin() + static_cast<std::ptrdiff_t>(Slice->ReferencesEnd),
		[&Builder](FPackedReference Reference) { Builder.AddReference(Reference.Unpack()); });
}

FScannedPackagesRef FScan::Finish()
{
	FPackageGraphBuilder Builder;
	const std::size_t Packages = OutsideRows.size() + Candidates.size();
	Builder.Reserve(Packages, Packages, Old->Graph.NumReferences());
	std::size_t NextSlice = 0;
	auto Outside = OutsideRows.begin();
	const auto AddOutside = [&]
	{
		const FQVName Name = Old->Graph.NameAt(*Outside);
		if (const auto Odd = Old->OddlySpelled.find(Name); Odd != Old->OddlySpelled.end())
		{
			Result->OddlySpelled.insert(*Odd);
		}
		Builder.AddFrom(Old->Graph, *Outside++);
	};
	for (std::size_t Index = 0; Index < Candidates.size(); ++Index)
	{
		while (Outside != OutsideRows.end() &&
			   FQVName::LexicalLess(Old->Graph.NameAt(*Outside), Candidates[Index].Package))
		{
			AddOutside();
		}
		AddCandidate(Builder, Index, NextSlice);
	}
	while (Outside != OutsideRows.end())
	{
		AddOutside();
	}
	Result->Graph = Builder.Build();
	return Result;
}
} // namespace

std::string FScannedPackages::PathAt(std::uint32_t Row) const
{
	const FQVName Package = Graph.NameAt(Row);
	if (const auto Odd = OddlySpelled.find(Package); Odd != OddlySpelled.end())
	{
		return Odd->second;
	}
	const std::string_view Name = Package.ToView();
	for (const FMountPoint& Mount : Mounts)
	{
		if (FQVString::StartsWithIgnoreCase(Name, Mount.Root))
		{
			return Mount.Folder + std::string(Name.substr(Mount.Root.size())) +
				   (Graph.FileAt(Row).bMap ? ".umap" : ".uasset");
		}
	}
	return {};
}

std::string FScannedPackages::NameOnDiskAt(std::uint32_t Row) const
{
	const std::string Name = Graph.NameAt(Row).ToString();
	const auto Odd = OddlySpelled.find(Graph.NameAt(Row));
	if (Odd == OddlySpelled.end())
	{
		return Name;
	}
	const std::string Path = Odd->second.substr(0, Odd->second.rfind('.'));
	for (const FMountPoint& Mount : Mounts)
	{
		if (FQVString::StartsWithIgnoreCase(Name, Mount.Root) && Path.starts_with(Mount.Folder))
		{
			return Mount.Root + Path.substr(Mount.Folder.size());
		}
	}
	return Name;
}

FScannedPackagesRef ScanPackages(
	const FLoadOldPackages& LoadOld, const FScanScope& Scope, FScanProgress& Progress, const FStopWish& Stop)
{
	return FScan(LoadOld, Scope, Progress, Stop).Run();
}
} // namespace QVStandalone
