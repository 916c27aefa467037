// SPDX-License-Identifier: MIT
#include "Standalone/Engine/PackageSave.h"

#include "Core/QVPath.h"
#include "Core/QVPrintf.h"
#include "Core/QVString.h"
#include "Standalone/Engine/OsFile.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Formats/Base/MappedFile.h"
#include "Standalone/Formats/Base/Parallel.h"
#include "Standalone/Formats/Package/PackageEditor.h"
#include "Standalone/Formats/Package/PackageHeader.h"

#include <algorithm>
#include <unordered_set>

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
std::string_view AsText(FBytes Bytes)
{
	return {reinterpret_cast<const char*>(Bytes.data()), Bytes.size()};
}

bool HoldsItsData(const FPackageHeader& Header, std::size_t FileBytes)
{
	return std::all_of(Header.Exports.begin(), Header.Exports.end(),
		[FileBytes](const FPackageExport& Export)
		{ return Export.SerialOffset + Export.SerialSize <= static_cast<std::int64_t>(FileBytes); });
}

class FPackageSaver
{
public:
	FPackageSaver(const FPackageSave& InSave, FFolderFlushes& InFolders)
		: Save(InSave)
		, Folders(InFolders)
	{
	}

	TResult<std::string> Run();

private:
	const FPackageSave& Save;
	FFolderFlushes& Folders;
	FMappedFile Source;

	FError Refuse(std::string Why) const
	{
		return {
			QVPrintf("%s %s: open it in the editor and save it there once, or copy it by hand", Save.SourceFile, Why)};
	}

	TResult<FPackageEdit> Edit() const;
	TResult<std::string> FindTexts(const FPackageEdit& Edit) const;
	FStatus Write(const FPackageEdit& Edit) const;
};

TResult<FPackageEdit> FPackageSaver::Edit() const
{
	const TResult<FPackageHeader> Header = ReadPackageHeader(Source.Bytes(), {false});
	if (!Header)
	{
		return FError{Save.SourceFile + " " + Header.Error().Message};
	}
	if (!HoldsItsData(*Header, Source.Bytes().size()))
	{
		return FError{Save.SourceFile +
					  " has the data of its objects in a file of its own, as cooking does it: get the package as it "
					  "was before it was cooked"};
	}
	const TResult<FPackageRenames>& Renames = Save.Table->Renames;
	TResult<FPackageEdit> Edit =
		Renames ? RenameInPackage(Source.Bytes(), Save.SourceName, *Renames) : TResult<FPackageEdit>(Renames.Error());
	if (!Edit)
	{
		return FError{Save.SourceFile + " " + Edit.Error().Message};
	}
	if (!Edit->PossiblyStale.empty())
	{
		return Refuse("may go on referring to " + FQVString::Join(Edit->PossiblyStale, ", "));
	}
	return Edit;
}

/** Old names outside the name table. In layouts without names in soft paths such a text may be a reference. */
TResult<std::string> FPackageSaver::FindTexts(const FPackageEdit& Edit) const
{
	const TResult<FPackageHeader> Header = ReadPackageHeader(Edit.Header, {false});
	if (!Header)
	{
		return FError{
			QVPrintf("%s cannot be edited: what it would become %s", Save.SourceFile, Header.Error().Message)};
	}
	const std::string_view New = AsText(Edit.Header);
	const auto Names = static_cast<std::size_t>(Header->Summary.Names.Offset);
	std::string Found;
	for (const std::string_view Part : {New.substr(0, Names), New.substr(Header->Names.EndPosition()),
			 AsText(Source.Bytes().subspan(Edit.OldHeaderBytes))})
	{
		Found = Found.empty() ? Save.Table->OldNames.FindIn(Part) : Found;
	}
	if (!Found.empty() && !Header->Summary.IsAtLeast(EUE4Version::SoftPackageNames))
	{
		return Refuse("comes from an engine that wrote references as texts, and holds " + Found);
	}
	return Found;
}

FStatus FPackageSaver::Write(const FPackageEdit& Edit) const
{
	const std::filesystem::path Target = ToOsPath(Save.File);
	std::error_code Error = MakeFolders(Target.parent_path());
	if (!Error && IsMarkedReadOnly(Target))
	{
		return FError{Save.File + " is marked read-only: it stays as it is"};
	}
	const std::string_view Parts[] = {AsText(Edit.Header), AsText(Source.Bytes().subspan(Edit.OldHeaderBytes))};
	Error = Error ? Error : ReplaceFile(Target, Parts, &Folders);
	return Error ? FError{QVPrintf("%s could not be written: %s", Save.File, Error.message())} : Success();
}

TResult<std::string> FPackageSaver::Run()
{
	TResult<FMappedFile> Mapped = FMappedFile::Open(ToOsPath(Save.SourceFile));
	if (!Mapped)
	{
		return FError{Save.SourceFile + " " + Mapped.Error().Message};
	}
	Source = std::move(*Mapped);
	Source.WillRead(0);
	const TResult<FPackageEdit> Edited = Edit();
	if (!Edited)
	{
		return Edited.Error();
	}
	TResult<std::string> Text = FindTexts(*Edited);
	if (!Text)
	{
		return Text;
	}
	const bool bSame = !Edited->bChanged && Save.File == Save.SourceFile;
	const FStatus Written = bSame ? Success() : Write(*Edited);
	return Written ? Text : Written.Error();
}

bool IsSourceOfAnother(std::span<const FPackageSave> Saves)
{
	std::unordered_set<std::string_view> Targets;
	for (const FPackageSave& Save : Saves)
	{
		Targets.insert(Save.File);
	}
	return std::any_of(Saves.begin(), Saves.end(),
		[&Targets](const FPackageSave& Save)
		{ return Save.SourceFile != Save.File && Targets.contains(Save.SourceFile); });
}
} // namespace

std::vector<TResult<std::string>> SaveRenamedPackages(std::span<const FPackageSave> Saves)
{
	FFolderFlushes Folders;
	std::vector<TResult<std::string>> Results(Saves.size(), std::string());
	const unsigned Threads = IsSourceOfAnother(Saves) ? 1 : FFolderFlushes::FilesAtOnce;
	ParallelFor(ThreadCount(Threads, Saves.size()), Saves.size(),
		[&](unsigned, std::size_t Place) { Results[Place] = FPackageSaver(Saves[Place], Folders).Run(); });
	std::filesystem::path Folder;
	if (const std::error_code Error = Folders.Flush(Folder))
	{
		const FError NotFlushed{QVPrintf("%s could not be flushed: %s", FromOsPath(Folder), Error.message())};
		Results.assign(Saves.size(), NotFlushed);
	}
	return Results;
}
} // namespace QVStandalone
