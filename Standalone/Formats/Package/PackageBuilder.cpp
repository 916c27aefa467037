// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/PackageBuilder.h"

#include "Standalone/Formats/Base/ByteWriter.h"
#include "Standalone/Formats/Package/NameTableBuilder.h"
#include "Standalone/Formats/Package/SummaryWriter.h"

#include <algorithm>

namespace QVFormats
{
namespace
{
namespace Trailer
{
constexpr std::uint64_t HeaderTag = 0xD1C43B2E80A5F697;
constexpr std::uint64_t FooterTag = 0x29BFCA045138DE76;
constexpr std::int32_t Version = 2;
constexpr std::uint32_t EmptyHeaderBytes = 28;
constexpr std::uint64_t EmptyBytes = EmptyHeaderBytes + 20;
} // namespace Trailer

/** Each package of the soft paths once, with whether any of its paths is used in game. */
std::vector<std::pair<std::string, bool>> SoftPackages(const FPackageSpec& Spec)
{
	std::vector<std::pair<std::string, bool>> Packages;
	for (const FSoftPathSpec& Path : Spec.SoftPaths)
	{
		const auto Known = std::find_if(
			Packages.begin(), Packages.end(), [&Path](const auto& Each) { return Each.first == Path.Package; });
		if (Known != Packages.end())
		{
			Known->second |= Path.bUsedInGame;
		}
		else if (!Path.Package.empty() && Path.Package != "None")
		{
			Packages.emplace_back(Path.Package, Path.bUsedInGame);
		}
	}
	return Packages;
}

class FPackageWriter
{
public:
	explicit FPackageWriter(const FPackageSpec& InSpec);
	std::vector<std::byte> Write();

private:
	std::vector<std::byte> Summary() const { return WriteSummary(Spec, Offsets, Counts()); }
	FSummaryCounts Counts() const { return {Names.Entries.size(), Names.DataCount, Soft.size()}; }
	void NameEntries();
	void SoftObjectPaths();
	void Imports();
	void Exports();
	void Depends();
	void Registry();
	void Bits(const std::vector<bool>& Values);
	void ExportData();
	void Ending();
	void Name(std::string_view Text) { Out.Write(Names.Find(Text)); }
	std::int32_t Here() const { return static_cast<std::int32_t>(Out.Position()); }

	const FPackageSpec& Spec;
	FNameTableBuilder Names;
	std::vector<std::pair<std::string, bool>> Soft;
	FSectionOffsets Offsets;
	FByteWriter Out;
	std::vector<std::size_t> SerialOffsetFields;
};

FPackageWriter::FPackageWriter(const FPackageSpec& InSpec)
	: Spec(InSpec)
	, Names(InSpec.DataNames)
	, Soft(SoftPackages(InSpec))
{
	Names.Add("None");
	for (const FImportSpec& Import : Spec.Imports)
	{
		Names.Add(Import.ClassPackage);
		Names.Add(Import.ClassName);
		Names.Add(Import.ObjectName);
	}
	for (const FExportSpec& Export : Spec.Exports)
	{
		Names.Add(Export.ObjectName);
	}
	for (const FSoftPathSpec& Path : Spec.SoftPaths)
	{
		Names.Add(Path.Package);
		Names.Add(Path.Asset);
	}
	Names.Finish();
}

void FPackageWriter::NameEntries()
{
	for (const std::string& Entry : Names.Entries)
	{
		const std::size_t Begin = Out.Position();
		Out.String(Entry);
		FByteReader Written(Out.Bytes().subspan(Begin));
		Out.Write(ComputeNameHashes(Written.String()));
	}
}

void FPackageWriter::SoftObjectPaths()
{
	for (const FSoftPathSpec& Path : Spec.SoftPaths)
	{
		Name(Path.Package);
		Name(Path.Asset);
		Out.String(Path.SubPath);
	}
}

void FPackageWriter::Imports()
{
	for (const FImportSpec& Import : Spec.Imports)
	{
		Name(Import.ClassPackage);
		Name(Import.ClassName);
		Out.I32(Import.Outer.Value);
		Name(Import.ObjectName);
		Name("None"); // package name
		Out.Bool32(false);
	}
}

void FPackageWriter::Exports()
{
	for (const FExportSpec& Export : Spec.Exports)
	{
		Out.I32(Export.Class.Value);
		Out.I32(Export.Super.Value);
		Out.I32(0); // template
		Out.I32(Export.Outer.Value);
		Name(Export.ObjectName);
		Out.U32(Export.ObjectFlags);
		Out.I64(static_cast<std::int64_t>(Export.Data.size()));
		SerialOffsetFields.push_back(Out.Position());
		Out.I64(0);
		Out.Bool32(false);					  // forced
		Out.Bool32(Export.bEditorOnly);		  // not for client
		Out.Bool32(Export.bEditorOnly);		  // not for server
		Out.Zeros(3 * sizeof(std::uint32_t)); // inherited, flags, not always loaded
		Out.Bool32(Export.bAsset);
		Out.Bool32(false); // public hash
		Out.I32(-1);	   // no preload dependencies
		Out.Zeros(4 * sizeof(std::int32_t));
		Out.I64(0);
		Out.I64(Export.ScriptEnd);
	}
}

void FPackageWriter::Depends()
{
	for (const FExportSpec& Export : Spec.Exports)
	{
		Out.I32(static_cast<std::int32_t>(Export.DependsOn.size()));
		Out.Append(std::as_bytes(std::span(Export.DependsOn)));
	}
}

void FPackageWriter::Bits(const std::vector<bool>& Values)
{
	std::vector<std::uint32_t> Words((Values.size() + 31) / 32);
	for (std::size_t Index = 0; Index < Values.size(); ++Index)
	{
		Words[Index / 32] |= (Values[Index] ? 1u : 0u) << (Index % 32);
	}
	Out.I32(static_cast<std::int32_t>(Values.size()));
	Out.Append(std::as_bytes(std::span(Words)));
}

void FPackageWriter::Registry()
{
	const std::size_t DependencyOffsetAt = Out.Position();
	Out.I64(0);
	Out.I32(static_cast<std::int32_t>(Spec.Assets.size()));
	for (const FAssetSpec& Asset : Spec.Assets)
	{
		Out.String(Asset.ObjectPath);
		Out.String(Asset.ClassPath);
		Out.I32(static_cast<std::int32_t>(Asset.Tags.size()));
		for (const auto& [Key, Value] : Asset.Tags)
		{
			Out.String(Key);
			Out.String(Value);
		}
	}
	Out.PatchAt(DependencyOffsetAt, static_cast<std::int64_t>(Out.Position()));
	std::vector<bool> ImportBits;
	for (const FImportSpec& Import : Spec.Imports)
	{
		ImportBits.push_back(Import.bUsedInGame);
	}
	std::vector<bool> SoftBits;
	for (const auto& [Package, bUsedInGame] : Soft)
	{
		SoftBits.push_back(bUsedInGame);
	}
	Bits(ImportBits);
	Bits(SoftBits);
}

void FPackageWriter::ExportData()
{
	for (std::size_t Index = 0; Index < Spec.Exports.size(); ++Index)
	{
		Out.PatchAt(SerialOffsetFields[Index], static_cast<std::int64_t>(Out.Position()));
		Out.Append(Spec.Exports[Index].Data);
	}
}

void FPackageWriter::Ending()
{
	Offsets.BulkData = static_cast<std::int64_t>(Out.Position());
	Out.U32(PackageTag);
	Offsets.Trailer = static_cast<std::int64_t>(Out.Position());
	Out.U64(Trailer::HeaderTag);
	Out.I32(Trailer::Version);
	Out.U32(Trailer::EmptyHeaderBytes);
	Out.U64(0); // payload bytes
	Out.I32(0); // payloads
	Out.U64(Trailer::FooterTag);
	Out.U64(Trailer::EmptyBytes);
	Out.U32(PackageTag);
}

std::vector<std::byte> FPackageWriter::Write()
{
	Out.Zeros(Summary().size());
	Offsets.Names = Here();
	NameEntries();
	Offsets.SoftPaths = Here();
	SoftObjectPaths();
	Offsets.GatherableText = Here();
	Offsets.Imports = Here();
	Imports();
	Offsets.Exports = Here();
	Exports();
	Offsets.Depends = Here();
	Depends();
	Offsets.SoftPackages = Here();
	for (const auto& [Package, bUsedInGame] : Soft)
	{
		Name(Package);
	}
	Offsets.SearchableNames = Here();
	Out.I32(0);
	Offsets.AssetRegistry = Here();
	Registry();
	Offsets.HeaderSize = Here();
	ExportData();
	Ending();
	// The summary has the same size whatever the offsets are.
	const std::vector<std::byte> Start = Summary();
	std::vector<std::byte> Bytes = Out.Release();
	std::copy(Start.begin(), Start.end(), Bytes.begin());
	return Bytes;
}
} // namespace

std::vector<std::byte> BuildPackage(const FPackageSpec& Spec)
{
	return FPackageWriter(Spec).Write();
}
} // namespace QVFormats
