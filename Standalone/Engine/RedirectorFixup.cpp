// SPDX-License-Identifier: MIT
#include "Standalone/Engine/RedirectorFixup.h"

#include "Core/QVNameSet.h"
#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Standalone/Engine/EngineLog.h"
#include "Standalone/Engine/Files.h"
#include "Standalone/Engine/Interrupt.h"
#include "Standalone/Engine/NameSearch.h"
#include "Standalone/Engine/OsFile.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Engine/RedirectorChain.h"
#include "Standalone/Formats/Base/Disk.h"
#include "Standalone/Formats/Base/MappedFile.h"
#include "Standalone/Formats/Package/PackageHeader.h"

#include <algorithm>

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
std::string_view AsText(FBytes Bytes)
{
	return {reinterpret_cast<const char*>(Bytes.data()), Bytes.size()};
}

/** Texts that no table of the header knows: in the data of objects, in maps of old layouts. The table of names may keep
 * an entry that nothing uses any more, so it is not looked at. */
std::string WhatStillNames(std::string_view Bytes, const std::vector<FPackageRename>& Renames)
{
	const auto Header = ReadPackageHeader(std::as_bytes(std::span(Bytes)));
	if (!Header)
	{
		return QVPrintf("what it would become %s", Header.Error().Message);
	}
	const auto Names = static_cast<std::size_t>(Header->Summary.Names.Offset);
	for (const FPackageRename& Rename : Renames)
	{
		const FNameSearch Search(Rename.From);
		if (Search.IsIn(Bytes.substr(0, Names)) || Search.IsIn(Bytes.substr(Header->Names.EndPosition())))
		{
			return QVPrintf(
				"the data of its objects names %s: open it in the editor, fix the redirectors there", Rename.From);
		}
	}
	return {};
}
} // namespace

bool FRedirectorPlan::IsWhole() const
{
	return std::all_of(
		Redirectors.begin(), Redirectors.end(), [](const FRedirectorFix& Fix) { return Fix.Obstacle.empty(); });
}

FRedirectorFixup::FRedirectorFixup(FAssetRegistry& InRegistry, const FPackages& InPackages, std::string InProjectDir)
	: Registry(InRegistry)
	, Packages(InPackages)
	, ProjectDir(std::move(InProjectDir))
{
}

FRedirectorPlan FRedirectorFixup::Plan(std::span<const FQVAssetData> Redirectors)
{
	FRedirectorPlan Plan;
	for (const FQVAssetData& Redirector : Redirectors)
	{
		const bool bKnown = std::any_of(Plan.Redirectors.begin(), Plan.Redirectors.end(),
			[&](const FRedirectorFix& Fix) { return Fix.Package == Redirector.PackageName; });
		if (!bKnown)
		{
			Plan.Redirectors.push_back(Describe(Redirector.PackageName));
		}
	}
	LeaveAloneForUnread(Plan);
	for (std::size_t Place = 0; Place < Plan.Redirectors.size(); ++Place)
	{
		AddReferencers(Plan, Place);
	}
	for (FReferencerFix& Referencer : Plan.Referencers)
	{
		Referencer.Obstacle = Rewrite(Plan, Referencer, nullptr);
		HoldBack(Plan, Referencer);
	}
	return Plan;
}

FRedirectorFix FRedirectorFixup::Describe(FQVName Package) const
{
	FRedirectorFix Fix;
	Fix.Package = Package;
	Fix.File = Packages.FindPackageFile(Package.ToView());
	Fix.Rename.From = Package.ToString();
	Fix.Obstacle = Fix.File.empty() ? "it has no file" : FollowRedirector(Packages, Fix.File, Fix.Rename);
	if (!Fix.Obstacle.empty())
	{
		Fix.bLeftAlone = true; // where it leads is not where its references may go
	}
	if (Fix.Obstacle.empty() && !FQVString::StartsWithIgnoreCase(Fix.File, ProjectDir + "/"))
	{
		Fix.Obstacle = QVPrintf("it lies outside the project: %s", Fix.File);
	}
	if (Fix.Obstacle.empty() && IsMarkedReadOnly(ToOsPath(Fix.File)))
	{
		Fix.Obstacle = QVPrintf("%s is read-only", Fix.File);
	}
	return Fix;
}

void FRedirectorFixup::AddReferencers(FRedirectorPlan& Plan, std::size_t Place)
{
	std::vector<FQVName> Names;
	Registry.GetReferencers(Plan.Redirectors[Place].Package, Names);
	for (const FQVName Name : Names)
	{
		if (Name == Plan.Redirectors[Place].Package)
		{
			continue;
		}
		auto Known = std::find_if(Plan.Referencers.begin(), Plan.Referencers.end(),
			[Name](const FReferencerFix& Fix) { return Fix.Package == Name; });
		if (Known == Plan.Referencers.end())
		{
			Plan.Referencers.push_back({Name, Packages.FindPackageFile(Name.ToView()), {}, 0, {}, false});
			Known = std::prev(Plan.Referencers.end());
		}
		if (Known->Redirectors.empty() || Known->Redirectors.back() != Place)
		{
			Known->Redirectors.push_back(Place);
		}
	}
}

/** Makes the new file in memory. Gives what stands in the way. */
std::string FRedirectorFixup::Rewrite(
	const FRedirectorPlan& Plan, FReferencerFix& Referencer, std::string* OutBytes) const
{
	if (Referencer.File.empty())
	{
		return "it has no file";
	}
	if (!FQVString::StartsWithIgnoreCase(Referencer.File, ProjectDir + "/"))
	{
		return QVPrintf("it lies outside the project: %s", Referencer.File);
	}
	std::vector<FPackageRename> Renames;
	for (const std::size_t Place : Referencer.Redirectors)
	{
		const FRedirectorFix& Fix = Plan.Redirectors[Place];
		if (!Fix.Rename.To.empty() && !Fix.bLeftAlone)
		{
			Renames.push_back(Fix.Rename);
		}
	}
	if (Renames.empty())
	{
		return {};
	}
	for (const FPackageRename& Rename : Renames)
	{
		if (FQVString::EqualsIgnoreCase(Rename.To, Referencer.Package.ToView()))
		{
			return "it is what the redirector leads to, and would import itself: fix it in the editor";
		}
	}
	const auto Mapped = FMappedFile::Open(ToOsPath(Referencer.File));
	if (!Mapped)
	{
		return Mapped.Error().Message;
	}
	const auto Edit = RenameInPackage(Mapped->Bytes(), Referencer.Package.ToView(), Renames);
	if (!Edit)
	{
		return QVPrintf("%s %s", Referencer.File, Edit.Error().Message);
	}
	if (!Edit->PossiblyStale.empty())
	{
		return QVPrintf("the data of its objects may name %s: open it in the editor, fix the redirectors there",
			FQVString::Join(Edit->PossiblyStale, ", "));
	}
	Referencer.References = Edit->References;
	std::string Bytes(AsText(Edit->Header));
	Bytes.append(AsText(Mapped->Bytes().subspan(Edit->OldHeaderBytes)));
	std::string Obstacle = WhatStillNames(Bytes, Renames);
	if (Obstacle.empty() && OutBytes != nullptr && Edit->bChanged)
	{
		*OutBytes = std::move(Bytes);
	}
	return Obstacle;
}

/** What one referencer cannot let go of has to stay. */
void FRedirectorFixup::HoldBack(FRedirectorPlan& Plan, const FReferencerFix& Referencer)
{
	for (const std::size_t Place : Referencer.Redirectors)
	{
		FRedirectorFix& Fix = Plan.Redirectors[Place];
		if (!Referencer.Obstacle.empty() && Fix.Obstacle.empty())
		{
			Fix.Obstacle = QVPrintf("%s still refers to it", Referencer.Package.ToView());
		}
	}
}

/** What nobody has read may refer to anything: a damaged package, one of a plugin that is switched off. */
std::string FRedirectorFixup::WhatIsUnread() const
{
	const std::vector<FUnreadablePackage>& Unreadable = Registry.GetUnreadable();
	const auto Own = std::find_if(Unreadable.begin(), Unreadable.end(),
		[this](const FUnreadablePackage& Each)
		{ return FQVString::StartsWithIgnoreCase(Each.File, ProjectDir + "/"); });
	if (Own != Unreadable.end())
	{
		return QVPrintf("%s %s", Own->File, Own->Reason);
	}
	std::string Off;
	FFiles().IterateDirectory(FQVPath::Combine(ProjectDir, "Plugins"),
		[&](std::string_view Path, bool bIsDirectory)
		{
			const std::string Content = FQVPath::Combine(Path, "Content");
			std::string Package;
			if (bIsDirectory && FFiles().DirectoryExists(Content) &&
				!Packages.TryConvertFilenameToLongPackageName(Content + "/Any.uasset", Package))
			{
				Off = QVPrintf("%s belongs to no plugin that is switched on", Content);
			}
			return Off.empty();
		});
	return Off;
}

void FRedirectorFixup::LeaveAloneForUnread(FRedirectorPlan& Plan) const
{
	const std::string Unread = bDespiteUnreadable ? std::string() : WhatIsUnread();
	for (FRedirectorFix& Fix : Plan.Redirectors)
	{
		if (!Unread.empty() && !Fix.bDeleted)
		{
			Fix.bLeftAlone = true;
			Fix.Obstacle =
				Fix.Obstacle.empty() ? QVPrintf("what could not be read may refer to it: %s", Unread) : Fix.Obstacle;
		}
	}
}

void FRedirectorFixup::Apply(FRedirectorPlan& Plan, std::string_view BackupDir)
{
	for (FReferencerFix& Referencer : Plan.Referencers)
	{
		if (Referencer.Obstacle.empty())
		{
			RewriteOne(Plan, Referencer, BackupDir);
			HoldBack(Plan, Referencer);
		}
	}
	DeleteUnused(Plan, BackupDir);
}

void FRedirectorFixup::RewriteOne(FRedirectorPlan& Plan, FReferencerFix& Referencer, std::string_view BackupDir)
{
	std::string Bytes;
	Referencer.Obstacle = FInterrupt::IsRaised() ? "interrupted" : Rewrite(Plan, Referencer, &Bytes);
	if (Referencer.Obstacle.empty() && !Bytes.empty())
	{
		Referencer.Obstacle = KeepCopy(Referencer.File, BackupDir);
	}
	if (!Referencer.Obstacle.empty() || Bytes.empty())
	{
		return;
	}
	Plan.BackupDir = BackupDir;
	if (const std::error_code Error = ReplaceFile(ToOsPath(Referencer.File), Bytes))
	{
		Referencer.Obstacle = QVPrintf("%s could not be written: %s", Referencer.File, Error.message());
		return;
	}
	Referencer.bRewritten = true;
}

void FRedirectorFixup::DeleteUnused(FRedirectorPlan& Plan, std::string_view BackupDir)
{
	// whatever was saved meanwhile, by us or by an editor, is looked at before anything goes
	Registry.ScanPathsSynchronous(ProjectDir);
	LeaveAloneForUnread(Plan);
	FQVNameSet Gone;
	for (bool bMore = true; bMore;)
	{
		bMore = false;
		for (FRedirectorFix& Fix : Plan.Redirectors)
		{
			if (!Fix.bDeleted && Fix.Obstacle.empty() && FindReferencer(Fix.Package, Gone).IsNone())
			{
				Delete(Fix, BackupDir);
				Plan.BackupDir = BackupDir;
				Gone.Add(Fix.bDeleted ? Fix.Package : FQVName());
				bMore = bMore || Fix.bDeleted;
			}
		}
	}
	for (FRedirectorFix& Fix : Plan.Redirectors)
	{
		if (!Fix.bDeleted && Fix.Obstacle.empty())
		{
			Fix.Obstacle = QVPrintf("%s still refers to it", FindReferencer(Fix.Package, Gone).ToView());
		}
	}
	Registry.ScanPathsSynchronous(ProjectDir);
}

/** One that refers to a redirector and is not gone itself; none if there is no other. */
FQVName FRedirectorFixup::FindReferencer(FQVName Redirector, const FQVNameSet& Gone) const
{
	std::vector<FQVName> Referencers;
	Registry.GetReferencers(Redirector, Referencers);
	const auto Found = std::find_if(Referencers.begin(), Referencers.end(),
		[&](FQVName Each) { return Each != Redirector && !Gone.Contains(Each); });
	return Found != Referencers.end() ? *Found : FQVName();
}

void FRedirectorFixup::Delete(FRedirectorFix& Fix, std::string_view BackupDir) const
{
	Fix.Obstacle = FInterrupt::IsRaised() ? "interrupted" : KeepCopy(Fix.File, BackupDir);
	if (Fix.Obstacle.empty())
	{
		Fix.bDeleted = FFiles().DeleteFile(Fix.File);
		Fix.Obstacle = Fix.bDeleted ? std::string() : QVPrintf("%s could not be deleted", Fix.File);
	}
}

/** The file as it is now, at its place below the folder. */
std::string FRedirectorFixup::KeepCopy(std::string_view File, std::string_view BackupDir) const
{
	const std::filesystem::path Copy = ToOsPath(FQVPath::Combine(BackupDir, File.substr(ProjectDir.size() + 1)));
	if (FDisk::Exists(Copy))
	{
		return {}; // a redirector that was rewritten before it goes
	}
	std::error_code Error;
	FDisk::MakeFolders(Copy.parent_path(), Error);
	const auto Mapped = FMappedFile::Open(ToOsPath(File));
	if (!Mapped)
	{
		return Mapped.Error().Message;
	}
	Error = ReplaceFile(Copy, AsText(Mapped->Bytes()));
	return Error ? QVPrintf("%s could not be kept as %s: %s", File, FromOsPath(Copy), Error.message()) : std::string();
}
} // namespace QVStandalone
