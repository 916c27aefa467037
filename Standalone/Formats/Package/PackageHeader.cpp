// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/PackageHeader.h"

namespace QVFormats
{
namespace
{
/** Moves a result's value to Out; on failure keeps the error. */
template<class T>
bool Keep(TResult<T> Result, T& Out, FError& OutError)
{
	if (!Result)
	{
		OutError = Result.Error();
		return false;
	}
	Out = std::move(*Result);
	return true;
}

bool ReadParts(FPackageHeader& Header, const FPackageReadOptions& Options, FError& OutError)
{
	const FPackageSummary& Summary = Header.Summary;
	const FBytes Bytes = Header.Bytes;
	return Keep(FPackageNames::Read(Bytes, Summary), Header.Names, OutError) &&
		   Keep(ReadSoftObjectPaths(Bytes, Summary, Header.Names), Header.SoftObjectPaths, OutError) &&
		   Keep(ReadImports(Bytes, Summary, Header.Names), Header.Imports, OutError) &&
		   Keep(ReadExports(Bytes, Summary, Header.Names), Header.Exports, OutError) &&
		   Keep(ReadSoftPackageReferences(Bytes, Summary, Header.Names), Header.SoftPackageReferences, OutError) &&
		   (!Options.bRegistrySection || Keep(ReadRegistrySection(Bytes, Summary), Header.Registry, OutError));
}
} // namespace

bool FPackageHeader::FindPackageOf(const FPackageImport& Import, FNameRef& OutPackage) const
{
	// A damaged table can go in circles; objects do not nest this deep.
	constexpr int LongestChain = 256;
	const FPackageImport* At = &Import;
	for (int Steps = 0; Steps < LongestChain; ++Steps)
	{
		if (At->bHasPackageName)
		{
			OutPackage = At->PackageName;
			return true;
		}
		if (At->Outer.IsNull())
		{
			OutPackage = At->ObjectName;
			return true;
		}
		if (At->Outer.IsExport())
		{
			return false;
		}
		At = &Imports[At->Outer.ToImport()];
	}
	return false;
}

std::string FPackageHeader::ClassPathOf(const FPackageExport& Export) const
{
	if (Export.Class.IsNull())
	{
		return {};
	}
	if (Export.Class.IsExport())
	{
		return Summary.PackageName.ToUtf8() + "." + Names.Text(Exports[Export.Class.ToExport()].ObjectName);
	}
	const FPackageImport& Class = Imports[Export.Class.ToImport()];
	FNameRef Package;
	const std::string ClassName = Names.Text(Class.ObjectName);
	return FindPackageOf(Class, Package) ? Names.Text(Package) + "." + ClassName : ClassName;
}

TResult<FPackageHeader> ReadPackageHeader(FBytes File, const FPackageReadOptions& Options)
{
	TResult<FPackageSummary> Summary = ReadPackageSummary(File);
	if (!Summary)
	{
		return Summary.Error();
	}
	FPackageHeader Header;
	Header.Summary = std::move(*Summary);
	Header.Bytes = File.first(static_cast<std::size_t>(Header.Summary.TotalHeaderSize));
	FError Error;
	if (!ReadParts(Header, Options, Error))
	{
		return Error;
	}
	return Header;
}
} // namespace QVFormats
