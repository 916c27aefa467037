// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/PackageEditor.h"

#include "Standalone/Formats/Base/ByteWriter.h"
#include "Standalone/Formats/Base/Unicode.h"
#include "Standalone/Formats/Package/HeaderSplice.h"
#include "Standalone/Formats/Package/NameTableEdit.h"
#include "Standalone/Formats/Package/PackageSections.h"

#include <algorithm>

namespace QVFormats
{
namespace
{
/** Sections have to lie end to end: what stands between them could hold names or offsets that nobody knows of. */
FStatus CheckAllKnown(const FPackageHeader& Header)
{
	const TResult<std::vector<FPackageSection>> Sections = LocateSections(Header);
	if (!Sections)
	{
		return Sections.Error();
	}
	std::size_t End = 0;
	for (const FPackageSection& Section : *Sections)
	{
		if (Section.Begin != End)
		{
			return FError{"cannot be edited: what its header holds at " + std::to_string(std::min(End, Section.Begin)) +
						  " is not known"};
		}
		End = Section.End;
	}
	// Some converters of cooked packages leave zeros at the end.
	const FBytes Rest = Header.Bytes.subspan(End);
	if (std::any_of(Rest.begin(), Rest.end(), [](std::byte Byte) { return Byte != std::byte{}; }))
	{
		return FError{"cannot be edited: what its header holds at " + std::to_string(End) + " is not known"};
	}
	return Success();
}

class FPackageEditor
{
public:
	FPackageEditor(FBytes InFile, const FPackageHeader& InHeader, const FPackageRenames& InRenames,
		std::string_view PackageName, bool bInAnew)
		: File(InFile)
		, Header(InHeader)
		, Renames(InRenames)
		, Self(InRenames.Find(PackageName))
		, bAnew(bInAnew)
		, Splice(InHeader.Bytes)
	{
	}

	TResult<FPackageEdit> Edit();

private:
	std::optional<std::string> NewName(const FNameUse& Use) const;
	std::optional<std::string> NewPackage(FNameRef Name) const;
	std::optional<std::string> NewObject(FNameRef Package, FNameRef Object) const;
	std::optional<std::string> NewImport(const FPackageImport& Import) const;
	std::optional<std::string> NewText(const FTextUse& Use) const;
	FStatus EditNames();
	FStatus EditTexts();
	void WriteNames(const FNameTableEdit& Table, const std::vector<FNameChange>& Changes);
	void WriteNameCounts(std::size_t Count);

	const FBytes File;
	const FPackageHeader& Header;
	const FPackageRenames& Renames;
	const FPackageRename* Self;
	bool bAnew;
	FHeaderSplice Splice;
	FPackageEdit Result;
};

std::optional<std::string> FPackageEditor::NewPackage(FNameRef Name) const
{
	const FPackageRename* Rename = Renames.Find(Header.Names.Text(Name));
	return Rename != nullptr ? std::optional(Rename->To) : std::nullopt;
}

std::optional<std::string> FPackageEditor::NewObject(FNameRef Package, FNameRef Object) const
{
	const FPackageRename* Rename = Renames.Find(Header.Names.Text(Package));
	return Rename != nullptr ? FPackageRenames::Object(*Rename, Header.Names.Text(Object)) : std::nullopt;
}

std::optional<std::string> FPackageEditor::NewImport(const FPackageImport& Import) const
{
	if (Import.Outer.IsNull())
	{
		return NewPackage(Import.ObjectName);
	}
	if (Import.Outer.IsExport())
	{
		return std::nullopt;
	}
	const FPackageImport& Outer = Header.Imports[Import.Outer.ToImport()];
	return Outer.Outer.IsNull() ? NewObject(Outer.ObjectName, Import.ObjectName) : std::nullopt;
}

std::optional<std::string> FPackageEditor::NewName(const FNameUse& Use) const
{
	switch (Use.Kind)
	{
	case ENameUse::ClassName:
		return NewObject(Header.Imports[Use.Row].ClassPackage, Use.Name);
	case ENameUse::ImportName:
		return NewImport(Header.Imports[Use.Row]);
	case ENameUse::ExportName:
		return Self != nullptr && Header.Exports[Use.Row].Outer.IsNull()
				   ? FPackageRenames::Object(*Self, Header.Names.Text(Use.Name))
				   : std::nullopt;
	case ENameUse::SoftPathAsset:
		return NewObject(Header.SoftObjectPaths[Use.Row].Package, Use.Name);
	case ENameUse::ClassPackage:
	case ENameUse::ImportPackage:
	case ENameUse::SoftPathPackage:
	case ENameUse::Package:
		return NewPackage(Use.Name);
	case ENameUse::Other:
		break;
	}
	return std::nullopt;
}

std::optional<std::string> FPackageEditor::NewText(const FTextUse& Use) const
{
	const std::string Old = Use.Text.ToUtf8();
	switch (Use.Kind)
	{
	case ETextUse::PackageName:
		// Up to 1007 the engine writes `None` here, or nothing.
		return Self != nullptr && Old.starts_with('/') ? std::optional(Self->To) : std::nullopt;
	case ETextUse::PrimaryAssetName:
		return Self != nullptr && !Old.starts_with('/') ? FPackageRenames::Object(*Self, Old) : Renames.Text(Old);
	case ETextUse::ObjectPath:
		if (!Old.starts_with('/'))
		{
			return Self != nullptr ? FPackageRenames::ObjectPath(*Self, Old) : std::nullopt;
		}
		return Renames.Text(Old);
	case ETextUse::Package:
	case ETextUse::FreeText:
		return Renames.Text(Old);
	case ETextUse::Other:
		break;
	}
	return std::nullopt;
}

void FPackageEditor::WriteNameCounts(std::size_t Count)
{
	const FPackageSummary& Summary = Header.Summary;
	const auto NewCount = static_cast<std::int32_t>(Count);
	FByteReader Reader(Header.Bytes);
	Reader.Seek(static_cast<std::int64_t>(Summary.PackageNameAt));
	Reader.String();
	Reader.U32(); // package flags
	Splice.Patch(Reader.Position(), NewCount);
	if (Summary.GenerationCount > 0)
	{
		const std::size_t LastAt = Summary.GenerationsAt + static_cast<std::size_t>(Summary.GenerationCount) * 8 - 4;
		Reader.Seek(static_cast<std::int64_t>(LastAt));
		if (Reader.I32() == Summary.Names.Count)
		{
			Splice.Patch(LastAt, NewCount);
		}
	}
}

void FPackageEditor::WriteNames(const FNameTableEdit& Table, const std::vector<FNameChange>& Changes)
{
	for (std::size_t Index = 0; Index < Changes.size(); ++Index)
	{
		Result.References += Changes[Index].NewName ? 1 : 0;
		if (bAnew || Table.NewNames[Index] != Changes[Index].Use.Name)
		{
			Splice.Patch(Changes[Index].Use.Position, Table.NewNames[Index]);
		}
	}
	Result.References += Table.RenamedForData;
	if ((bAnew || Table.IsChanged()) && Header.Summary.Names.Count > 0)
	{
		const auto Begin = static_cast<std::size_t>(Header.Summary.Names.Offset);
		Splice.Replace(Begin, Header.Names.EndPosition(), Table.Write(bAnew));
	}
	if (bAnew || Table.Num() != static_cast<std::size_t>(Header.Summary.Names.Count))
	{
		WriteNameCounts(Table.Num());
	}
}

FStatus FPackageEditor::EditNames()
{
	const TResult<std::vector<FNameUse>> Uses = LocateNames(Header);
	if (!Uses)
	{
		return Uses.Error();
	}
	std::vector<FNameChange> Changes;
	for (const FNameUse& Use : *Uses)
	{
		if (Use.Name.Entry >= static_cast<std::uint32_t>(Header.Summary.Names.Count))
		{
			return FError{"is damaged: the name at " + std::to_string(Use.Position) + " is not in the name table"};
		}
		std::optional<std::string> New = NewName(Use);
		const bool bSame = New && *New == Header.Names.Text(Use.Name);
		Changes.push_back({Use, bSame ? std::nullopt : std::move(New)});
	}
	FNameTableEdit Table(Header, Renames, File.subspan(std::min(File.size(), Header.Bytes.size())));
	Table.Apply(Changes);
	WriteNames(Table, Changes);
	Result.PossiblyStale = std::move(Table.PossiblyStale);
	return Success();
}

FStatus FPackageEditor::EditTexts()
{
	const TResult<std::vector<FTextUse>> Uses = LocateTexts(Header);
	if (!Uses)
	{
		return Uses.Error();
	}
	for (const FTextUse& Use : *Uses)
	{
		const std::string Old = Use.Text.ToUtf8();
		const std::string New = NewText(Use).value_or(Old);
		Result.References += New != Old ? 1 : 0;
		if (bAnew || New != Old)
		{
			FByteWriter Out;
			Out.String(New);
			Splice.Replace(Use.Begin, Use.End, Out.Bytes());
		}
	}
	return Success();
}

TResult<FPackageEdit> FPackageEditor::Edit()
{
	const TResult<std::vector<FOffsetField>> Fields = LocateOffsetFields(Header);
	for (const FStatus& Status :
		{CheckAllKnown(Header), Fields ? Success() : FStatus(Fields.Error()), EditNames(), EditTexts()})
	{
		if (!Status)
		{
			return Status.Error();
		}
	}
	TResult<std::vector<std::byte>> New = Splice.Apply(*Fields);
	if (!New)
	{
		return New.Error();
	}
	Result.Header = std::move(*New);
	Result.OldHeaderBytes = Header.Bytes.size();
	Result.bChanged = Result.References > 0;
	return std::move(Result);
}

TResult<FPackageEdit> EditPackage(FBytes File, std::string_view PackageName, const FPackageRenames& Renames, bool bAnew)
{
	const TResult<FPackageHeader> Header = ReadPackageHeader(File);
	return Header ? FPackageEditor(File, *Header, Renames, PackageName, bAnew).Edit()
				  : TResult<FPackageEdit>(Header.Error());
}
} // namespace

TResult<FPackageEdit> RenameInPackage(
	FBytes File, std::string_view PackageName, std::span<const FPackageRename> Renames)
{
	const TResult<FPackageRenames> Checked = FPackageRenames::Make(Renames);
	return Checked ? RenameInPackage(File, PackageName, *Checked) : TResult<FPackageEdit>(Checked.Error());
}

TResult<FPackageEdit> RenameInPackage(FBytes File, std::string_view PackageName, const FPackageRenames& Renames)
{
	return EditPackage(File, PackageName, Renames, false);
}

TResult<std::vector<std::byte>> WriteHeaderAnew(FBytes File)
{
	TResult<FPackageEdit> Edit = EditPackage(File, {}, {}, true);
	return Edit ? TResult<std::vector<std::byte>>(std::move(Edit->Header)) : Edit.Error();
}
} // namespace QVFormats
