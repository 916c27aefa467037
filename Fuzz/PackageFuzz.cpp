// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/PackageDependencies.h"
#include "Standalone/Formats/Package/PackageEditor.h"
#include "Standalone/Formats/Package/PackageSections.h"
#include "Standalone/Formats/Package/PropertyArrays.h"

using namespace QVFormats;

namespace
{
void ReadValue(const FPackageHeader& Header, const FPropertyValue& Value);

void ReadTags(const FPackageHeader& Header, FPropertyReader Reader)
{
	for (FPropertyTag Tag; Reader.Next(Tag);)
	{
		ReadValue(Header, Tag.Value);
	}
}

void ReadValue(const FPackageHeader& Header, const FPropertyValue& Value)
{
	ToBool(Value);
	ToInteger(Value);
	ToReal(Value);
	ToName(Header, Value);
	ToStringView(Value);
	ToObject(Header, Value);
	ToSoftPath(Header, Value);
	ToVector(Header, Value);
	ToRotator(Header, Value);
	ToQuat(Header, Value);
	ToLinearColor(Header, Value);
	ToGuid(Header, Value);
	if (const std::optional<FPropertyReader> Struct = OpenStruct(Header, Value))
	{
		ReadTags(Header, *Struct);
	}
	if (std::optional<FPropertyArrayReader> Array = OpenArray(Header, Value))
	{
		for (FPropertyValue Element; Array->Next(Element);)
		{
			ReadValue(Header, Element);
		}
	}
}

void ReadExports(const FPackageHeader& Header, FBytes File)
{
	// many exports can claim the same bytes: enough of them are looked at
	constexpr std::size_t Most = 64;
	for (std::size_t Index = 0; Index < Header.Exports.size() && Index < Most; ++Index)
	{
		const FPackageExport& Export = Header.Exports[Index];
		Header.ClassPathOf(Export);
		if (const TResult<FBytes> Data = FindExportData(Export, File))
		{
			if (const TResult<FPropertyReader> Reader = OpenProperties(Header, Export, *Data))
			{
				ReadTags(Header, *Reader);
			}
		}
	}
}

void Rename(const FPackageHeader& Header, FBytes File)
{
	const std::string Own = Header.Summary.PackageName.ToUtf8();
	const FPackageRename Renames[] = {
		{"/Game/Meshes/Rock", "/Game/Meshes/A_Much_Longer_Name_Than_Before", {{"Rock", "Stone"}}},
		{Own, "/Game/W", {}}};
	const TResult<FPackageEdit> Edit = RenameInPackage(File, Own, Renames);
	if (Edit && Edit->bChanged && !ReadPackageHeader(Edit->Header))
	{
		__builtin_trap(); // what an edit writes can be read
	}
	static_cast<void>(WriteHeaderAnew(File));
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
	const FBytes File = std::as_bytes(std::span(Data, Size));
	static_cast<void>(PeekHeaderSize(File));
	const TResult<FPackageHeader> Header = ReadPackageHeader(File);
	if (!Header)
	{
		return 0;
	}
	DescribeEngine(Header->Summary);
	PackageDependencies(*Header);
	static_cast<void>(LocateSections(*Header));
	static_cast<void>(LocateOffsetFields(*Header));
	ReadExports(*Header, File);
	Rename(*Header, File);
	return 0;
}
