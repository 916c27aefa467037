// SPDX-License-Identifier: MIT
#include "Standalone/Engine/ClassFile.h"

#include "Standalone/Engine/EngineLog.h"
#include "Standalone/Formats/Package/ObjectData.h"

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
constexpr std::string_view CoreUObject = "/Script/CoreUObject";

bool IsNamed(const FOpenPackage& Package, const FPackageExport& Export, std::string_view Name)
{
	return Export.Outer.IsNull() && FQVString::EqualsIgnoreCase(Package.Header.Names.Text(Export.ObjectName), Name);
}

void ReadDefaults(const FOpenPackage& Package, const FPackageExport& Object, FClassContent& Content)
{
	const FPackageHeader& Header = Package.Header;
	const TResult<FBytes> Data = FindExportData(Object, Package.Bytes);
	TResult<FPropertyReader> Reader =
		Data ? OpenProperties(Header, Object, *Data) : TResult<FPropertyReader>(Data.Error());
	for (FPropertyTag Tag; Reader && Reader->Next(Tag);)
	{
		const EPropertyKind Kind = Tag.Value.Type.Kind;
		if (Kind == EPropertyKind::Enum || Kind == EPropertyKind::Byte)
		{
			const std::string Name = Header.Names.Text(Tag.Name);
			if (const auto Saved = FindSavedEnum(Header, Object, Package.Bytes, Name))
			{
				Content.Defaults[FQVString::ToLower(Name)] = *Saved;
			}
		}
	}
}

std::string ReadDestination(const FOpenPackage& Package, const FPackageExport& Redirector)
{
	TResult<FByteReader> In = ReadObject(Package.Header, Redirector, Package.Bytes);
	return In ? Package.ObjectPath(ReadObjectIndex(*In, Package.Header)) : std::string();
}
} // namespace

std::vector<FQVFunction> ToFunctions(const FPackageHeader& Header, const std::vector<FScriptFunction>& Functions)
{
	std::vector<FQVFunction> Result;
	for (const FScriptFunction& Each : Functions)
	{
		Result.push_back({Header.Names.Text(Each.Name), Each.ScriptBytes});
	}
	return Result;
}

FClassContent ReadClass(const FOpenPackage& Package, std::size_t ClassExport)
{
	const FPackageHeader& Header = Package.Header;
	const FPackageExport& Class = Header.Exports[ClassExport];
	FClassContent Content;
	Content.Parent = Package.ObjectPath(Class.Super);
	if (const auto Functions = ReadScriptFunctions(Header, Package.Bytes, ClassExport))
	{
		Content.Functions = ToFunctions(Header, *Functions);
	}
	else
	{
		LogEngine(EQVLogVerbosity::Warning, "%s %s", Package.File, Functions.Error().Message);
	}
	for (const FPackageExport& Export : Header.Exports)
	{
		if (Export.Class == FPackageIndex::Export(ClassExport) &&
			(Export.ObjectFlags & static_cast<std::uint32_t>(EObjectFlags::ClassDefaultObject)) != 0)
		{
			ReadDefaults(Package, Export, Content);
		}
	}
	return Content;
}

FClassContent FindClassIn(const FOpenPackage& Package, std::string_view ClassName)
{
	for (std::size_t Index = 0; Index < Package.Header.Exports.size(); ++Index)
	{
		const FPackageExport& Export = Package.Header.Exports[Index];
		if (!IsNamed(Package, Export, ClassName))
		{
			continue;
		}
		if (IsClass(Package.Header, Export.Class, CoreUObject, "ObjectRedirector"))
		{
			FClassContent Moved;
			Moved.MovedTo = ReadDestination(Package, Export);
			return Moved;
		}
		return ReadClass(Package, Index);
	}
	return {};
}
} // namespace QVStandalone
