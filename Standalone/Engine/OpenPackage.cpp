// SPDX-License-Identifier: MIT
#include "Standalone/Engine/OpenPackage.h"

#include "Standalone/Engine/HeaderFile.h"
#include "Standalone/Formats/Package/PropertyValues.h"

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
TResult<std::vector<std::byte>> ReadWhole(const std::string& Path)
{
	const FHeaderFile File(Path);
	if (!File.Status())
	{
		return File.Status().Error();
	}
	std::vector<std::byte> Bytes(static_cast<std::size_t>(File.Size()));
	const TResult<std::size_t> Count = File.ReadAt(0, Bytes);
	if (!Count)
	{
		return Count.Error();
	}
	return *Count == Bytes.size() ? TResult<std::vector<std::byte>>(std::move(Bytes))
								  : FError{"became shorter while it was read"};
}
} // namespace

std::string ObjectPathIn(const FPackageHeader& Header, std::string_view Package, FPackageIndex Index)
{
	if (Index.IsNull())
	{
		return {};
	}
	const auto Join = [](std::string_view Holder, const std::string& Name)
	{ return std::string(Holder).append(".").append(Name); };
	if (Index.IsExport())
	{
		return Join(Package, Header.Names.Text(Header.Exports[Index.ToExport()].ObjectName));
	}
	const FPackageImport& Import = Header.Imports[Index.ToImport()];
	FNameRef Holder;
	const bool bElsewhere = Header.FindPackageOf(Import, Holder);
	return Join(bElsewhere ? Header.Names.Text(Holder) : std::string(Package), Header.Names.Text(Import.ObjectName));
}

std::string FOpenPackage::ObjectPath(FPackageIndex Index) const
{
	return ObjectPathIn(Header, Name, Index);
}

TResult<std::unique_ptr<FOpenPackage>> OpenPackage(std::string PackageName, std::string File)
{
	auto Package = std::make_unique<FOpenPackage>();
	Package->Name = std::move(PackageName);
	Package->File = std::move(File);
	TResult<std::vector<std::byte>> Bytes = ReadWhole(Package->File);
	if (!Bytes)
	{
		return FError{Package->File + " " + Bytes.Error().Message};
	}
	Package->Bytes = std::move(*Bytes);
	TResult<FPackageHeader> Header = ReadPackageHeader(Package->Bytes, {.bRegistrySection = false});
	if (!Header)
	{
		return FError{Package->File + " " + Header.Error().Message};
	}
	Package->Header = std::move(*Header);
	return Package;
}

std::optional<std::string> FindSavedEnum(
	const FPackageHeader& Header, const FPackageExport& Export, FBytes File, std::string_view Property)
{
	const TResult<FBytes> Data = FindExportData(Export, File);
	const std::optional<FPropertyTag> Tag =
		Data ? FindProperty(Header, Export, *Data, Property) : std::optional<FPropertyTag>();
	const std::optional<FNameRef> Value = Tag ? ToName(Header, Tag->Value) : std::optional<FNameRef>();
	if (!Value)
	{
		return std::nullopt;
	}
	const std::string Text = Header.Names.Text(*Value);
	const std::size_t Colons = Text.rfind("::");
	return Colons == std::string::npos ? Text : Text.substr(Colons + 2);
}
} // namespace QVStandalone
