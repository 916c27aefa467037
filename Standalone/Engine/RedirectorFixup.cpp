// SPDX-License-Identifier: MIT
#include "Standalone/Engine/RedirectorFixup.h"

#include "Core/QVNameSet.h"
#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Standalone/Engine/EngineLog.h"
#include "Standalone/Engine/Files.h"
#include "Standalone/Engine/Interrupt.h"
#include "Standalone/Engine/OsFile.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Formats/Base/MappedFile.h"
#include "Standalone/Formats/Package/PackageHeader.h"

#include <algorithm>

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
/** `/Cave/Rock.Rock` taken apart; the object is empty if there is none. */
struct FObjectPath
{
	std::string Package;
	std::string Object;

	explicit FObjectPath(std::string_view Path)
		: Package(FQVAssetData::PackageOfObjectPath(Path))
	{
		// behind the class in quotes, if there is one
		const std::size_t Begin = Path.find('\'') == std::string_view::npos ? 0 : Path.find('\'') + 1;
		Path.remove_prefix(std::min(Path.size(), Begin + Package.size() + 1));
		Object = Path.substr(0, Path.find('\''));
	}
};

/** What the objects of a package of redirectors lead to. */
struct FRedirectorObjects
{
	std::vector<std::pair<std::string, std::string>> Objects;
	std::string Target;
	std::string Obstacle;

	void Add(std::string_view Object, const std::string& Destination)
	{
		const FObjectPath Path(Destination);
		if (Path.Package.empty() || Path.Object.empty())
		{
			Obstacle = QVPrintf("%s leads nowhere", Object);
		}
		else if (!Target.empty() && !FQVString::EqualsIgnoreCase(Target, Path.Package))
		{
			Obstacle = QVPrintf("its objects lead to several packages: %s and %s", Target, Path.Package);
		}
		Target = Path.Package;
		Objects.emplace_back(Object, Path.Object);
	}
};

FRedirectorObjects ReadObjects(const FPackageHeader& Header)
{
	FRedirectorObjects Found;
	for (const FPackageExport& Export : Header.Exports)
	{
		if (Export.bAsset && Header.ClassPathOf(Export) != FQVAssetData::RedirectorClass)
		{
			Found.Obstacle = QVPrintf("it holds %s too, which is no redirector", Header.Names.Text(Export.ObjectName));
		}
	}
	for (const FPackageAsset& Asset : Header.Registry.Assets)
	{
		for (const FPackageTag& Tag : Header.Registry.TagsOf(Asset))
		{
			if (Tag.Key.ToUtf8() == FQVAssetData::DestinationTag)
			{
				Found.Add(Asset.ObjectPath.ToUtf8(), Tag.Value.ToUtf8());
			}
		}
	}
	return Found;
}

FRedirectorObjects ReadObjects(const std::string& File)
{
	FRedirectorObjects Failed;
	const auto Mapped = FMappedFile::Open(ToOsPath(File));
	if (!Mapped)
	{
		Failed.Obstacle = Mapped.Error().Message;
		return Failed;
	}
	const auto Header = ReadPackageHeader(Mapped->Bytes());
	if (!Header)
	{
		Failed.Obstacle = QVPrintf("%s %s", File, Header.Error().Message);
		return Failed;
	}
	return ReadObjects(*Header);
}

std::string ObjectThere(const FRedirectorObjects& Next, const std::string& Object)
{
	const auto Found = std::find_if(Next.Objects.begin(), Next.Objects.end(),
		[&](const auto& Pair) { return FQVString::EqualsIgnoreCase(Pair.first, Object); });
	return Found == Next.Objects.end() ? Object : Found->second;
}

std::string_view AsText(FBytes Bytes)
{
	return {reinterpret_cast<const char*>(Bytes.data()), Bytes.size()};
}
} // namespace

bool FRedirectorPlan::IsWhole() const
{
	return std::all_of(
		Redirectors.begin(), Redirectors.end(), [](const FRedirectorFix& Fix) { return Fix.Obstacle.empty(); });
}

FRedirectorFixup::FRedirectorFixup(IQVAssetRegistry& InRegistry, const FPackages& InPackages, std::string InProjectDir)
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
	Fix.Obstacle = Fix.File.empty() ? "it has no file" : FollowToTheEnd(Fix);
	if (Fix.Obstacle.empty() && !FQVString::StartsWithIgnoreCase(Fix.File, ProjectDir + "/"))
	{
		Fix.Obstacle = QVPrintf("it lies outside the project: %s", Fix.File);
	}
	return Fix;
}

/** A redirector may lead to a redirector. */
std::string FRedirectorFixup::FollowToTheEnd(FRedirectorFix& Fix) const
{
	FQVNameSet Met{Fix.Package};
	FRedirectorObjects Found = ReadObjects(Fix.File);
	if (Found.Obstacle.empty() && Found.Objects.empty())
	{
		return "it holds no redirector";
	}
	while (Found.Obstacle.empty())
	{
		if (!Met.Add(FQVName(Found.Target)))
		{
			return "it leads to itself in the end";
		}
		const std::string File = Packages.FindPackageFile(Found.Target);
		if (File.empty())
		{
			return QVPrintf("what it leads to is not there: %s", Found.Target);
		}
		Fix.Rename.To = Found.Target;
		Fix.Rename.Objects = Found.Objects;
		FRedirectorObjects Next = ReadObjects(File);
		if (Next.Objects.empty() || !Next.Obstacle.empty())
		{
			return {}; // the end: an asset, or what cannot be followed further
		}
		for (auto& [Old, New] : Found.Objects)
		{
			New = ObjectThere(Next, New);
		}
		Found.Target = Next.Target;
	}
	return Found.Obstacle;
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
		if (!Plan.Redirectors[Place].Rename.To.empty())
		{
			Renames.push_back(Plan.Redirectors[Place].Rename);
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
	if (OutBytes != nullptr)
	{
		*OutBytes = AsText(Edit->Header);
		OutBytes->append(AsText(Mapped->Bytes().subspan(Edit->OldHeaderBytes)));
	}
	return {};
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
	if (Referencer.Obstacle.empty())
	{
		Referencer.Obstacle = KeepCopy(Referencer.File, BackupDir);
	}
	if (!Referencer.Obstacle.empty())
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
	Registry.ScanPathsSynchronous(FQVPath::GetPath(Referencer.File));
}

void FRedirectorFixup::DeleteUnused(FRedirectorPlan& Plan, std::string_view BackupDir)
{
	std::vector<FQVName> Referencers;
	for (FRedirectorFix& Fix : Plan.Redirectors)
	{
		Registry.GetReferencers(Fix.Package, Referencers);
		std::erase(Referencers, Fix.Package);
		if (Fix.Obstacle.empty() && !Referencers.empty())
		{
			Fix.Obstacle = QVPrintf("%s still refers to it", Referencers.front().ToView());
		}
		if (Fix.Obstacle.empty())
		{
			Fix.Obstacle = FInterrupt::IsRaised() ? "interrupted" : KeepCopy(Fix.File, BackupDir);
		}
		if (!Fix.Obstacle.empty())
		{
			continue;
		}
		Plan.BackupDir = BackupDir;
		Fix.bDeleted = FFiles().DeleteFile(Fix.File);
		Fix.Obstacle = Fix.bDeleted ? std::string() : QVPrintf("%s could not be deleted", Fix.File);
		Registry.ScanPathsSynchronous(FQVPath::GetPath(Fix.File));
	}
}

/** The file as it is now, at its place below the folder. */
std::string FRedirectorFixup::KeepCopy(std::string_view File, std::string_view BackupDir) const
{
	const std::filesystem::path Copy = ToOsPath(FQVPath::Combine(BackupDir, File.substr(ProjectDir.size() + 1)));
	std::error_code Error;
	if (std::filesystem::exists(Copy, Error))
	{
		return {}; // a redirector that was rewritten before it goes
	}
	std::filesystem::create_directories(Copy.parent_path(), Error);
	const auto Mapped = FMappedFile::Open(ToOsPath(File));
	if (!Mapped)
	{
		return Mapped.Error().Message;
	}
	Error = ReplaceFile(Copy, AsText(Mapped->Bytes()));
	return Error ? QVPrintf("%s could not be kept as %s: %s", File, FromOsPath(Copy), Error.message()) : std::string();
}
} // namespace QVStandalone
