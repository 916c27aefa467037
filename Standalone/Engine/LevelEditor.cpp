// SPDX-License-Identifier: MIT
#include "Standalone/Engine/LevelEditor.h"

#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Standalone/Engine/EngineLog.h"
#include "Standalone/Engine/Files.h"
#include "Standalone/Engine/OsFile.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Engine/PackageSave.h"
#include "Standalone/Formats/Base/MappedFile.h"
#include "Standalone/Formats/Package/LevelPackages.h"
#include "Standalone/Formats/Package/LevelReader.h"

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
struct FTemplate
{
	std::string WorldName;
	/** Of the Level Blueprint, if it is named like the world; else empty. */
	std::string ClassName;
	bool bPartitioned = false;
};

/** Refuses a file that is no map. */
TResult<FTemplate> ReadTemplate(const std::string& File)
{
	const TResult<FMappedFile> Mapped = FMappedFile::Open(ToOsPath(File));
	const TResult<FPackageHeader> Header =
		Mapped ? ReadPackageHeader(Mapped->Bytes(), {false}) : TResult<FPackageHeader>(Mapped.Error());
	const TResult<FMapWorld> World =
		Header ? ReadMapWorld(*Header, Mapped->Bytes()) : TResult<FMapWorld>(Header.Error());
	if (!World)
	{
		return FError{File + " " + World.Error().Message};
	}
	FTemplate Template{Header->Names.Text(Header->Exports[World->World].ObjectName), {}, World->bPartitioned};
	for (const FPackageExport& Export : Header->Exports)
	{
		const std::string Name = Header->Names.Text(Export.ObjectName);
		if (Export.Outer.IsNull() && FQVString::EqualsIgnoreCase(Name, Template.WorldName + "_C"))
		{
			Template.ClassName = Name;
		}
	}
	return Template;
}

/** The world is named like its package, and the Level Blueprint's class like the world. */
FPackageRename RenameOf(const FTemplate& Template, std::string From, const std::string& To)
{
	const std::string NewName(FQVPath::GetCleanFilename(To));
	FPackageRename Rename{std::move(From), To, {}};
	if (Template.WorldName != NewName)
	{
		Rename.Objects.emplace_back(Template.WorldName, NewName);
		if (!Template.ClassName.empty())
		{
			Rename.Objects.emplace_back(Template.ClassName, NewName + "_C");
		}
	}
	return Rename;
}
} // namespace

FLevelEditor::FLevelEditor(FPackages& InPackages, FOpenMap InOpenMap)
	: Packages(InPackages)
	, OpenMap(std::move(InOpenMap))
{
}

TResult<std::string> FLevelEditor::FileOfNewLevel(std::string_view PackageName) const
{
	std::string File;
	if (!Packages.IsValidLongPackageName(PackageName) ||
		!Packages.TryConvertLongPackageNameToFilename(PackageName, File, IQVPackages::MapPackageExtension))
	{
		return FError{QVPrintf("'%s' cannot be a package's name", PackageName)};
	}
	const std::string There = Packages.FindPackageFile(PackageName);
	return There.empty() ? TResult<std::string>(File) : FError{There + " is there already"};
}

FStatus FLevelEditor::SaveEmpty(const std::string& PackageName)
{
	const TResult<std::string> File = FileOfNewLevel(PackageName);
	if (!File)
	{
		return File.Error();
	}
	const std::vector<std::byte> Bytes = BuildLevelPackage({.PackageName = PackageName, .bModel = true});
	const std::filesystem::path Target = ToOsPath(*File);
	std::error_code Error = MakeFolders(Target.parent_path());
	Error = Error ? Error : ReplaceFile(Target, {reinterpret_cast<const char*>(Bytes.data()), Bytes.size()});
	if (Error)
	{
		return FError{QVPrintf("%s could not be written: %s", *File, Error.message())};
	}
	Packages.TellOfNew(FQVName(PackageName), *File);
	return Success();
}

FStatus FLevelEditor::SaveFromTemplate(const std::string& PackageName, std::string_view TemplatePackageName)
{
	const TResult<std::string> File = FileOfNewLevel(PackageName);
	const std::string TemplateFile = Packages.FindPackageFile(TemplatePackageName);
	if (!File || TemplateFile.empty())
	{
		return !File ? File.Error() : FError{QVPrintf("there is no %s", TemplatePackageName)};
	}
	const TResult<FTemplate> Template = ReadTemplate(TemplateFile);
	if (!Template)
	{
		return FError{"the template " + Template.Error().Message};
	}
	if (!Template->bPartitioned && Packages.HasExternalObjects(TemplatePackageName))
	{
		return FError{QVPrintf("the actors of the template %s lie in files of their own, which would not come along: "
							   "make the map in the editor, or turn off One File Per Actor in the template",
			TemplatePackageName)};
	}
	std::string TemplateName(TemplatePackageName);
	Packages.TryConvertFilenameToLongPackageName(TemplateFile, TemplateName);
	const FPackageSave Save{TemplateName, TemplateFile, *File,
		std::make_shared<const FRenameTable>(std::vector{RenameOf(*Template, TemplateName, PackageName)})};
	const TResult<std::string> Saved = SaveRenamedPackages(std::span(&Save, 1)).front();
	if (!Saved)
	{
		return Saved.Error();
	}
	Packages.TellOfNew(FQVName(PackageName), *File);
	return Success();
}

/** What cannot be opened is not left behind. */
bool FLevelEditor::OpenNew(std::string_view PackageName, const FStatus& Saved)
{
	if (!Saved)
	{
		LogEngine(EQVLogVerbosity::Error, "%s could not be made: %s", PackageName, Saved.Error().Message);
		return false;
	}
	const bool bOpened = LoadLevel(PackageName);
	if (!bOpened)
	{
		FFiles().DeleteFile(Packages.FindPackageFile(PackageName));
	}
	return bOpened;
}

bool FLevelEditor::NewLevel(std::string_view PackageName, bool bIsPartitionedWorld)
{
	return OpenNew(PackageName, bIsPartitionedWorld ? FError{"only Unreal Editor makes levels with World Partition"}
													: SaveEmpty(std::string(PackageName)));
}

bool FLevelEditor::NewLevelFromTemplate(std::string_view PackageName, std::string_view TemplatePackageName)
{
	return OpenNew(PackageName, SaveFromTemplate(std::string(PackageName), TemplatePackageName));
}

bool FLevelEditor::LoadLevel(std::string_view PackageName)
{
	// what is open stays so if there is nothing to take its place
	const bool bThere = !Packages.FindPackageFile(PackageName).empty();
	const FStatus Opened = bThere ? OpenMap(PackageName) : FError{"there is no such map"};
	if (!Opened)
	{
		LogEngine(EQVLogVerbosity::Error, "%s could not be opened: %s", PackageName, Opened.Error().Message);
	}
	return static_cast<bool>(Opened);
}
} // namespace QVStandalone
