// SPDX-License-Identifier: MIT
#include "Standalone/Engine/PackageExamination.h"

#include "Core/QVNameSet.h"
#include "Standalone/Engine/PackageFacts.h"
#include "Standalone/Formats/Base/Parallel.h"

#include <algorithm>

namespace QVStandalone
{
namespace
{
constexpr std::uint32_t NoRow = FPackageGraph::NoRow;

/** Per folder whether the old graph read its mount point's files in the same place. */
std::vector<bool> FoldersOfSameMounts(
	const FPackageWalk& Walk, const std::vector<FMountPoint>& New, const std::vector<FMountPoint>& Old)
{
	std::vector<FMountPoint> Same;
	std::copy_if(New.begin(), New.end(), std::back_inserter(Same),
		[&Old](const FMountPoint& Mount)
		{
			return std::any_of(Old.begin(), Old.end(),
				[&Mount](const FMountPoint& Each) { return Each.Root == Mount.Root && Each.Folder == Mount.Folder; });
		});
	std::vector<bool> Folders;
	for (const FWalkedFolder& Each : Walk.Folders)
	{
		Folders.push_back(std::any_of(Same.begin(), Same.end(),
			[&Each](const FMountPoint& Mount) { return Each.PackagePath.starts_with(Mount.Root); }));
	}
	return Folders;
}

class FExamination
{
public:
	FExamination(const FPackageWalk& InWalk, const std::vector<FMountPoint>& InMounts, const FScannedPackages& InOld)
		: Walk(InWalk)
		, Mounts(InMounts)
		, Old(InOld)
	{
	}

	std::vector<FPackageCandidate> Candidates;

	void ExamineAll();

private:
	const FPackageWalk& Walk;
	const std::vector<FMountPoint>& Mounts;
	const FScannedPackages& Old;

	void Examine(std::size_t Index, bool bSameMount);
	bool IsStillValid(std::uint32_t Row, const FPackageCandidate& Candidate, const FWalkedFile& File) const;
	const FUnreadablePackage* FindOldUnreadable(const std::string& Path) const;
	void TellTwinsApart();
};

void FExamination::ExamineAll()
{
	constexpr std::size_t Lot = 256;
	const std::vector<bool> SameMount = FoldersOfSameMounts(Walk, Mounts, Old.Mounts);
	Candidates.resize(Walk.Files.size());
	const std::size_t Lots = (Candidates.size() + Lot - 1) / Lot;
	QVFormats::ParallelFor(QVFormats::ThreadCount(0, Lots), Lots,
		[&](unsigned, std::size_t Number)
		{
			const std::size_t End = std::min((Number + 1) * Lot, Candidates.size());
			for (std::size_t Index = Number * Lot; Index < End; ++Index)
			{
				Examine(Index, SameMount[Walk.Files[Index].Folder]);
			}
		});
	TellTwinsApart();
}

void FExamination::Examine(std::size_t Index, bool bSameMount)
{
	const FWalkedFile& File = Walk.Files[Index];
	FPackageCandidate& Candidate = Candidates[Index];
	const std::string Name = Walk.PackageNameOf(File);
	Candidate.Package = FQVName(Name);
	// once odd, always odd: what the old graph says of references to it was compared with the name of that time
	Candidate.bOddlySpelled = Candidate.Package.ToView() != Name ||
							  !File.FileName.ends_with(File.File.bMap ? ".umap" : ".uasset") ||
							  (!Old.OddlySpelled.empty() && Old.OddlySpelled.contains(Candidate.Package));
	Candidate.Problem = File.Problem.empty() ? PackageNameProblem(Name) : File.Problem;
	if (!Candidate.Problem.empty())
	{
		Candidate.bLasting = File.Problem.empty();
		return;
	}
	const std::uint32_t Row = Old.Graph.FindRow(Candidate.Package);
	if (bSameMount && Row != NoRow && IsStillValid(Row, Candidate, File))
	{
		Candidate.OldRow = Row;
	}
	else if (const FUnreadablePackage* Known = FindOldUnreadable(Walk.PathOf(File));
			 Known != nullptr && Known->Stamp == File.File)
	{
		Candidate.Problem = Known->Reason;
	}
	else
	{
		Candidate.bToRead = true;
	}
}

bool FExamination::IsStillValid(std::uint32_t Row, const FPackageCandidate& Candidate, const FWalkedFile& File) const
{
	if (!(Old.Graph.FileAt(Row) == File.File))
	{
		return false;
	}
	const auto Odd = Old.OddlySpelled.empty() ? Old.OddlySpelled.end() : Old.OddlySpelled.find(Candidate.Package);
	return Odd == Old.OddlySpelled.end() ? !Candidate.bOddlySpelled : Odd->second == Walk.PathOf(File);
}

const FUnreadablePackage* FExamination::FindOldUnreadable(const std::string& Path) const
{
	const auto At = std::lower_bound(Old.Unreadable.begin(), Old.Unreadable.end(), Path,
		[](const FUnreadablePackage& Each, const std::string& Wanted) { return Each.File < Wanted; });
	return At != Old.Unreadable.end() && At->File == Path && At->Stamp.Time != 0 ? &*At : nullptr;
}

/** Two files for one package, as Hall.uasset and Hall.umap or, on some disks, hall.umap: the first one counts. */
void FExamination::TellTwinsApart()
{
	FQVNameSet Seen;
	for (FPackageCandidate& Candidate : Candidates)
	{
		if (!Seen.Add(Candidate.Package))
		{
			Candidate.bToRead = false;
			Candidate.OldRow = NoRow;
			Candidate.bLasting = false;
			Candidate.Problem = "is left out: there is another file for " + Candidate.Package.ToString();
		}
	}
}

} // namespace

std::vector<FPackageCandidate> ExaminePackageFiles(
	const FPackageWalk& Walk, const std::vector<FMountPoint>& Mounts, const FScannedPackages& Old)
{
	FExamination Examination(Walk, Mounts, Old);
	Examination.ExamineAll();
	return std::move(Examination.Candidates);
}
} // namespace QVStandalone
