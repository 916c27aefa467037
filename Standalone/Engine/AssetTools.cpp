// SPDX-License-Identifier: MIT
#include "Standalone/Engine/AssetTools.h"

#include "Core/QVPath.h"
#include "Engine/QVClock.h"
#include "Engine/QVEngine.h"
#include "Standalone/Engine/EngineLog.h"
#include "Standalone/Engine/Files.h"

namespace QVStandalone
{
namespace
{
/** What an earlier run has kept is never written over. */
std::string FreeFolder(const std::string& Wanted)
{
	std::string Folder = Wanted;
	for (int Number = 2; FFiles().DirectoryExists(Folder); ++Number)
	{
		Folder = QVPrintf("%s-%d", Wanted, Number);
	}
	return Folder;
}
} // namespace

FAssetTools::FAssetTools(FAssetRegistry& Registry, const FPackages& Packages, const std::string& InProjectDir)
	: ProjectDir(InProjectDir)
	, Fixup(Registry, Packages, InProjectDir)
{
}

void FAssetTools::FixupReferencers(std::span<const FQVAssetData> Redirectors)
{
	Last = Fixup.Plan(Redirectors);
	const std::string Time = FQVEngine::Get().Clock->Now().ToString();
	Fixup.Apply(Last, FreeFolder(FQVPath::Combine(ProjectDir, "Saved/QVPak/Backup", "Redirectors-" + Time)));
	for (const FReferencerFix& Referencer : Last.Referencers)
	{
		const bool bDone = Referencer.bRewritten;
		LogEngine(bDone ? EQVLogVerbosity::Log : EQVLogVerbosity::Warning, "%s %s%s",
			bDone ? "Repointed" : "Could not repoint", Referencer.Package.ToView(),
			bDone ? std::string() : ": " + Referencer.Obstacle);
	}
	for (const FRedirectorFix& Fix : Last.Redirectors)
	{
		LogEngine(Fix.bDeleted ? EQVLogVerbosity::Log : EQVLogVerbosity::Warning, "%s redirector %s%s",
			Fix.bDeleted ? "Deleted" : "Kept", Fix.Package.ToView(),
			Fix.bDeleted ? std::string() : ": " + Fix.Obstacle);
	}
}
} // namespace QVStandalone
