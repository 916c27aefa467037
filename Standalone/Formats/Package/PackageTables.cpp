// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/PackageTables.h"

namespace QVFormats
{
namespace
{
constexpr FPackageGuid FortniteMainKey{{0x601D1886, 0xAC644F84, 0xAA16D3DE, 0x0DEAC7D6}};
constexpr std::int32_t Utf8SubPaths = 192;

FError DamagedTable(std::string_view What, const FPackageTable& Table)
{
	return {"is damaged: its table of " + std::to_string(Table.Count) + " " + std::string(What) + " at " +
			std::to_string(Table.Offset) + " leaves the header or points outside its tables"};
}

/** Reads Table.Count items; the count is believed only as far as items of MinItemBytes fit into the header. */
template<class T, class TReadItem>
TResult<std::vector<T>> ReadTable(
	FBytes Header, const FPackageTable& Table, std::size_t MinItemBytes, std::string_view What, TReadItem ReadItem)
{
	std::vector<T> Items;
	if (Table.Count == 0)
	{
		return Items;
	}
	FByteReader Reader(Header);
	Reader.Seek(Table.Offset);
	if (Table.Count < 0 || static_cast<std::uint64_t>(Table.Count) * MinItemBytes > Reader.Remaining())
	{
		return DamagedTable(What, Table);
	}
	Items.reserve(static_cast<std::size_t>(Table.Count));
	for (std::int32_t Left = Table.Count; Left > 0 && !Reader.Failed(); --Left)
	{
		Items.push_back(ReadItem(Reader));
	}
	if (Reader.Failed())
	{
		return DamagedTable(What, Table);
	}
	return Items;
}

FPackageIndex ReadIndex(FByteReader& Reader, const FPackageSummary& Summary)
{
	const FPackageIndex Index{Reader.I32()};
	const std::int64_t Value = Index.Value;
	if (Value > Summary.Exports.Count || -Value > Summary.Imports.Count)
	{
		Reader.Fail();
		return {};
	}
	return Index;
}

FPackageExport ReadExport(FByteReader& Reader, const FPackageSummary& Summary, const FPackageNames& Names)
{
	const bool bWideSizes = Summary.IsAtLeast(EUE4Version::ExportSizes64Bit);
	FPackageExport Export;
	Export.Class = ReadIndex(Reader, Summary);
	Export.Super = ReadIndex(Reader, Summary);
	Export.Template = ReadIndex(Reader, Summary);
	Export.Outer = ReadIndex(Reader, Summary);
	Export.ObjectName = ReadName(Reader, Names);
	Export.ObjectFlags = Reader.U32();
	Export.SerialSize = bWideSizes ? Reader.I64() : Reader.I32();
	Export.SerialOffsetAt = static_cast<std::uint32_t>(Reader.Position());
	Export.SerialOffset = bWideSizes ? Reader.I64() : Reader.I32();
	Export.bForced = Reader.Bool32();
	Export.bNotForClient = Reader.Bool32();
	Export.bNotForServer = Reader.Bool32();
	Reader.Skip(Summary.IsAtLeast(EUE5Version::NoExportPackageGuid) ? 0 : sizeof(FPackageGuid));
	Export.bInherited = Summary.IsAtLeast(EUE5Version::ExportInheritance) && Reader.Bool32();
	Reader.Skip(2 * sizeof(std::uint32_t)); // package flags, not always loaded for the editor's game
	Export.bAsset = Reader.Bool32();
	Export.bPublicHash = Summary.IsAtLeast(EUE5Version::OptionalResources) && Reader.Bool32();
	Reader.Skip(5 * sizeof(std::int32_t)); // preload dependencies: first and four counts
	if (Summary.IsAtLeast(EUE5Version::ScriptOffsets) && !Summary.Has(EPackageFlags::UnversionedProperties))
	{
		Export.ScriptStart = Reader.I64();
		Export.ScriptEnd = Reader.I64();
	}
	return Export;
}

bool HasUtf8SubPaths(const FPackageSummary& Summary)
{
	return Summary.IsUnversioned() ? Summary.IsAtLeast(EUE5Version::SavedHash)
								   : Summary.CustomVersion(FortniteMainKey) >= Utf8SubPaths;
}
} // namespace

TResult<std::vector<FPackageImport>> ReadImports(
	FBytes Header, const FPackageSummary& Summary, const FPackageNames& Names)
{
	const bool bPackageName = Summary.ImportsHavePackageName();
	const bool bOptional = Summary.IsAtLeast(EUE5Version::OptionalResources);
	return ReadTable<FPackageImport>(Header, Summary.Imports, Summary.ImportBytes(), "imports",
		[&](FByteReader& Reader)
		{
			FPackageImport Import;
			Import.ClassPackage = ReadName(Reader, Names);
			Import.ClassName = ReadName(Reader, Names);
			Import.Outer = ReadIndex(Reader, Summary);
			Import.ObjectName = ReadName(Reader, Names);
			Import.PackageName = bPackageName ? ReadName(Reader, Names) : FNameRef{};
			Import.bHasPackageName = bPackageName && !Reader.Failed() && !Names.IsNone(Import.PackageName);
			Import.bOptional = bOptional && Reader.Bool32();
			return Import;
		});
}

TResult<std::vector<FPackageExport>> ReadExports(
	FBytes Header, const FPackageSummary& Summary, const FPackageNames& Names)
{
	return ReadTable<FPackageExport>(Header, Summary.Exports, Summary.ExportBytes(), "exports",
		[&](FByteReader& Reader) { return ReadExport(Reader, Summary, Names); });
}

std::string FPackageSoftPath::SubPathText() const
{
	const auto* Text = reinterpret_cast<const char*>(SubPath.Bytes.data());
	return bUtf8 ? std::string(Text, SubPath.Bytes.size()) : SubPath.ToUtf8();
}

TResult<std::vector<FPackageSoftPath>> ReadSoftObjectPaths(
	FBytes Header, const FPackageSummary& Summary, const FPackageNames& Names)
{
	constexpr std::size_t SmallestPath = 20;
	const bool bUtf8 = HasUtf8SubPaths(Summary);
	return ReadTable<FPackageSoftPath>(Header, Summary.SoftObjectPaths, SmallestPath, "soft object paths",
		[&](FByteReader& Reader)
		{
			FPackageSoftPath Path;
			Path.Package = ReadName(Reader, Names);
			Path.Asset = ReadName(Reader, Names);
			Path.SubPath =
				bUtf8 ? FStringView{Reader.Take(static_cast<std::uint64_t>(Reader.Count(1)))} : Reader.String();
			Path.bUtf8 = bUtf8;
			return Path;
		});
}

TResult<std::vector<FNameRef>> ReadSoftPackageReferences(
	FBytes Header, const FPackageSummary& Summary, FPackageNames& Names)
{
	const bool bNames = Summary.IsAtLeast(EUE4Version::SoftPackageNames);
	return ReadTable<FNameRef>(Header, Summary.SoftPackageReferences, bNames ? 8 : 4, "soft package references",
		[&](FByteReader& Reader) { return bNames ? ReadName(Reader, Names) : Names.AddForeign(Reader.String()); });
}
} // namespace QVFormats
