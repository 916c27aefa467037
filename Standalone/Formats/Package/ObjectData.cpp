// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/ObjectData.h"

namespace QVFormats
{
namespace
{
FError Damaged(const FPackageHeader& Header, const FPackageExport& Export, std::string_view What)
{
	return {"is damaged: " + std::string(What) + " of its object " + Header.Names.Text(Export.ObjectName)};
}
} // namespace

TResult<FByteReader> ReadObject(const FPackageHeader& Header, const FPackageExport& Export, FBytes File,
	const std::function<void(const FPropertyTag&)>& OnProperty)
{
	const TResult<FBytes> Data = FindExportData(Export, File);
	TResult<FPropertyReader> Properties =
		Data ? OpenProperties(Header, Export, *Data) : TResult<FPropertyReader>(Data.Error());
	if (!Properties)
	{
		return Properties.Error();
	}
	for (FPropertyTag Tag; Properties->Next(Tag);)
	{
		if (OnProperty)
		{
			OnProperty(Tag);
		}
	}
	FByteReader In(*Data);
	const bool bOffsets = Header.Summary.IsAtLeast(EUE5Version::ScriptOffsets);
	In.Seek(bOffsets ? Export.ScriptEnd : static_cast<std::int64_t>(Properties->Position()));
	In.Skip(In.Bool32() ? sizeof(FPackageGuid) : 0);
	if (!Properties->IsAtEnd() || In.Failed())
	{
		return Damaged(Header, Export, "no end can be found to the properties");
	}
	return In;
}

FPackageIndex ReadObjectIndex(FByteReader& In, const FPackageHeader& Header)
{
	const FPackageIndex Index{In.I32()};
	const bool bInside = Index.IsNull() || (Index.IsExport() ? Index.ToExport() < Header.Exports.size()
															 : Index.ToImport() < Header.Imports.size());
	if (!bInside)
	{
		In.Fail();
	}
	return In.Failed() ? FPackageIndex() : Index;
}

std::vector<FPackageIndex> ReadObjectIndices(FByteReader& In, const FPackageHeader& Header)
{
	std::vector<FPackageIndex> Indices;
	const std::int32_t Count = In.Count(sizeof(FPackageIndex));
	Indices.reserve(static_cast<std::size_t>(Count));
	for (std::int32_t Left = Count; Left > 0 && !In.Failed(); --Left)
	{
		Indices.push_back(ReadObjectIndex(In, Header));
	}
	return Indices;
}

bool IsClass(const FPackageHeader& Header, FPackageIndex Class, std::string_view Package, std::string_view Name)
{
	if (!Class.IsImport())
	{
		return false;
	}
	const FPackageImport& Import = Header.Imports[Class.ToImport()];
	FNameRef Holder;
	return NameIs(Header.Names, Import.ObjectName, Name) && Header.FindPackageOf(Import, Holder) &&
		   NameIs(Header.Names, Holder, Package);
}
} // namespace QVFormats
