// SPDX-License-Identifier: MIT
#include "Standalone/Cli/Inspect.h"
#include "Standalone/Cli/InspectNames.h"
#include "Standalone/Formats/Package/PackageDependencies.h"

namespace QVCli
{
using namespace QVFormats;

namespace
{
/** Writes one package's header into a report, part by part. */
class FPackageInspection
{
public:
	FPackageInspection(const FPackageHeader& InHeader, FInspectReport& InReport)
		: Header(InHeader)
		, Summary(InHeader.Summary)
		, Report(InReport)
	{
	}

	void Versions();
	void Identity();
	void Counts();
	void CustomVersions();
	void Sections();
	void Names();
	void Imports();
	void Exports();
	void SoftReferences();
	void Dependencies();
	void Assets();

private:
	FQVJson NameText(FNameRef Name) { return Report.Text(Header.Names.Text(Name)); }
	std::string ObjectPath(FPackageIndex Index) const;
	FQVJson ImportRow(std::size_t Index);
	FQVJson ExportRow(std::size_t Index);
	FQVJson AssetRow(const FPackageAsset& Asset);

	const FPackageHeader& Header;
	const FPackageSummary& Summary;
	FInspectReport& Report;
	const std::vector<FPackageDependency> DependencyList = PackageDependencies(Header);
};

void FPackageInspection::Versions()
{
	Report.Field("engine", "engine", Report.Text(DescribeEngine(Summary)));
	Report.Field("file_version_ue4", "file version UE4", Summary.FileVersionUE4);
	Report.Field("file_version_ue5", "file version UE5", Summary.FileVersionUE5);
	Report.Field("file_version_licensee", "file version licensee", Summary.FileVersionLicensee);
	Report.Field("legacy_version", "legacy version", Summary.LegacyVersion);
	Report.Field("layout_ue4", "read as UE4", static_cast<std::int32_t>(Summary.LayoutUE4));
	Report.Field("layout_ue5", "read as UE5", static_cast<std::int32_t>(Summary.LayoutUE5));
	Report.Field("compatible_with", "compatible with", Report.Text(Summary.CompatibleWith.ToText()));
	Report.Field("branch", "branch", Report.Text(Summary.SavedBy.Branch.ToUtf8()));
}

void FPackageInspection::Identity()
{
	Report.Field("package_name", "package name as saved", Report.Text(Summary.PackageName.ToUtf8()));
	Report.Field("flags", "flags", FQVJson::Array(PackageFlagNames(Summary.Flags)));
	Report.Field("flags_hex", "flags as a number", HexText(Summary.Flags));
	Report.Field("cooked", "cooked", Summary.Has(EPackageFlags::Cooked));
	Report.Field("unversioned", "unversioned", Summary.IsUnversioned());
	Report.Field("unversioned_properties", "unversioned properties", Summary.Has(EPackageFlags::UnversionedProperties));
	Report.Field("editor_only_filtered", "editor-only data left out", Summary.Has(EPackageFlags::FilterEditorOnly));
	Report.Field("map", "a map", Summary.Has(EPackageFlags::ContainsMap));
	Report.Field("guid", "guid", GuidText(Summary.Guid));
	Report.Field("persistent_guid", "persistent guid", GuidText(Summary.PersistentGuid));
	Report.Field("header_bytes", "header bytes", Summary.TotalHeaderSize);
	Report.Field("bulk_data_start", "bulk data at", static_cast<double>(Summary.BulkDataStart));
}

void FPackageInspection::Counts()
{
	Report.Field("counts", "holds",
		FQVJson::Object()
			.Set("names", Summary.Names.Count)
			.Set("imports", Header.Imports.size())
			.Set("exports", Header.Exports.size())
			.Set("soft_object_paths", Header.SoftObjectPaths.size())
			.Set("soft_packages", Header.SoftPackageReferences.size())
			.Set("dependencies", DependencyList.size())
			.Set("assets", Header.Registry.Assets.size())
			.Set("custom_versions", Summary.CustomVersions.size() / CustomVersionBytes));
}

/** Names from the outermost object on; what a damaged table makes endless is cut at a depth that none has. */
std::string FPackageInspection::ObjectPath(FPackageIndex Index) const
{
	constexpr std::size_t DeepestObject = 256;
	constexpr std::size_t LongestPath = 64 * 1024;
	std::vector<std::string> Parts;
	std::size_t Length = 0;
	bool bOfImports = false;
	while (!Index.IsNull() && Parts.size() < DeepestObject && Length < LongestPath)
	{
		const bool bExport = Index.IsExport();
		bOfImports = !bExport;
		Parts.push_back(Header.Names.Text(
			bExport ? Header.Exports[Index.ToExport()].ObjectName : Header.Imports[Index.ToImport()].ObjectName));
		Length += Parts.back().size();
		Index = bExport ? Header.Exports[Index.ToExport()].Outer : Header.Imports[Index.ToImport()].Outer;
	}
	std::string Path;
	// a package comes first in a path that leads out of this one: then a point, a colon, and points from there on
	const std::size_t ColonAt = bOfImports ? 2 : 1;
	for (std::size_t Depth = 0; Depth < Parts.size(); ++Depth)
	{
		Path += Depth == 0 ? "" : Depth == ColonAt ? ":" : ".";
		Path += Parts[Parts.size() - 1 - Depth];
	}
	return Path;
}

void FPackageInspection::CustomVersions()
{
	FQVJson Rows = FQVJson::Array();
	FByteReader Reader(Summary.CustomVersions);
	while (Reader.Remaining() >= CustomVersionBytes)
	{
		const std::string Guid = GuidText(Reader.Read<FPackageGuid>());
		Rows.Add(FQVJson::Object().Set("guid", Guid).Set("version", Reader.I32()));
	}
	Report.Table({"custom_versions", "Custom versions", {{"guid", "guid"}, {"version", "version"}}, std::move(Rows)});
}

void FPackageInspection::Sections()
{
	const TResult<std::vector<FPackageSection>> Found = LocateSections(Header);
	if (!Found)
	{
		Report.Note("its sections cannot be told apart: it " + Found.Error().Message);
		return;
	}
	FQVJson Rows = FQVJson::Array();
	for (const FPackageSection& Section : *Found)
	{
		Rows.Add(FQVJson::Object()
					 .Set("section", SectionName(Section.Kind))
					 .Set("offset", Section.Begin)
					 .Set("bytes", Section.End - Section.Begin));
	}
	Report.Table({"sections", "Header sections", {{"section", "section"}, {"offset", "offset"}, {"bytes", "bytes"}},
		std::move(Rows)});
}

void FPackageInspection::Names()
{
	FQVJson Rows = FQVJson::Array();
	const auto Count = static_cast<std::size_t>(Summary.Names.Count); // others were added while reading
	for (std::size_t Index = 0; Index < Count && !Report.IsTooMuch(); ++Index)
	{
		Rows.Add(Report.Text(Header.Names.Entry(Index).ToUtf8()));
	}
	Report.Table({"names", "Names", {{"", ""}}, std::move(Rows)});
}

FQVJson FPackageInspection::ImportRow(std::size_t Index)
{
	const FPackageImport& Import = Header.Imports[Index];
	FNameRef Package;
	const bool bPackage = Header.FindPackageOf(Import, Package);
	return FQVJson::Object()
		.Set("class", Report.Text(Header.Names.Text(Import.ClassPackage) + "." + Header.Names.Text(Import.ClassName)))
		.Set("path", Report.Text(ObjectPath(FPackageIndex::Import(Index))))
		.Set("package", bPackage ? NameText(Package) : FQVJson(""))
		.Set("optional", Import.bOptional)
		.Set("used_in_game", Header.Registry.ImportUsedInGame.IsUsedInGame(Index));
}

void FPackageInspection::Imports()
{
	FQVJson Rows = FQVJson::Array();
	for (std::size_t Index = 0; Index < Header.Imports.size() && !Report.IsTooMuch(); ++Index)
	{
		Rows.Add(ImportRow(Index));
	}
	Report.Table({"imports", "Imports",
		{{"class", "class"}, {"path", "path"}, {"package", "package"}, {"optional", "optional"},
			{"used_in_game", "in game"}},
		std::move(Rows)});
}

FQVJson FPackageInspection::ExportRow(std::size_t Index)
{
	const FPackageExport& Export = Header.Exports[Index];
	const std::string Class = Header.ClassPathOf(Export);
	return FQVJson::Object()
		.Set("class", Report.Text(Class.empty() ? "/Script/CoreUObject.Class" : Class))
		.Set("name", NameText(Export.ObjectName))
		.Set("outer", Report.Text(ObjectPath(Export.Outer)))
		.Set("offset", static_cast<double>(Export.SerialOffset))
		.Set("bytes", static_cast<double>(Export.SerialSize))
		.Set("asset", Export.bAsset)
		.Set("not_for_client", Export.bNotForClient)
		.Set("not_for_server", Export.bNotForServer)
		.Set("flags", FQVJson::Array(ObjectFlagNames(Export.ObjectFlags)))
		.Set("flags_hex", HexText(Export.ObjectFlags));
}

void FPackageInspection::Exports()
{
	FQVJson Rows = FQVJson::Array();
	for (std::size_t Index = 0; Index < Header.Exports.size() && !Report.IsTooMuch(); ++Index)
	{
		Rows.Add(ExportRow(Index));
	}
	Report.Table({"exports", "Exports",
		{{"class", "class"}, {"name", "name"}, {"outer", "outer"}, {"offset", "offset"}, {"bytes", "bytes"},
			{"asset", "asset"}, {"not_for_client", "not for client"}, {"not_for_server", "not for server"},
			{"flags", "flags"}, {"flags_hex", ""}},
		std::move(Rows)});
}

void FPackageInspection::SoftReferences()
{
	FQVJson Paths = FQVJson::Array();
	for (const FPackageSoftPath& Path : Header.SoftObjectPaths)
	{
		const std::string Sub = Path.SubPathText();
		Paths.Add(Report.Text(
			Header.Names.Text(Path.Package) + "." + Header.Names.Text(Path.Asset) + (Sub.empty() ? "" : ":" + Sub)));
	}
	Report.Table({"soft_object_paths", "Soft object paths", {{"", ""}}, std::move(Paths)});
	FQVJson Packages = FQVJson::Array();
	for (std::size_t Index = 0; Index < Header.SoftPackageReferences.size() && !Report.IsTooMuch(); ++Index)
	{
		Packages.Add(FQVJson::Object()
						 .Set("package", NameText(Header.SoftPackageReferences[Index]))
						 .Set("used_in_game", Header.Registry.SoftPackageUsedInGame.IsUsedInGame(Index)));
	}
	Report.Table({"soft_packages", "Soft package references", {{"package", "package"}, {"used_in_game", "in game"}},
		std::move(Packages)});
}

void FPackageInspection::Dependencies()
{
	FQVJson Rows = FQVJson::Array();
	for (const FPackageDependency& Each : DependencyList)
	{
		Rows.Add(
			FQVJson::Object().Set("package", NameText(Each.Package)).Set("hard", Each.bHard).Set("game", Each.bGame));
	}
	Report.Table({"dependencies", "Depends on the packages",
		{{"package", "package"}, {"hard", "hard"}, {"game", "game"}}, std::move(Rows)});
}

FQVJson FPackageInspection::AssetRow(const FPackageAsset& Asset)
{
	FQVJson Tags = FQVJson::Array();
	for (const FPackageTag& Tag : Header.Registry.TagsOf(Asset))
	{
		Tags.Add(
			FQVJson::Object().Set("key", Report.Text(Tag.Key.ToUtf8())).Set("value", Report.Text(Tag.Value.ToUtf8())));
	}
	return FQVJson::Object()
		.Set("class", Report.Text(Asset.Class.ToUtf8()))
		.Set("path", Report.Text(Asset.ObjectPath.ToUtf8()))
		.Set("tags", std::move(Tags));
}

void FPackageInspection::Assets()
{
	FQVJson Rows = FQVJson::Array();
	for (const FPackageAsset& Asset : Header.Registry.Assets)
	{
		Rows.Add(AssetRow(Asset));
	}
	Report.Table({"assets", "Assets, with what the registry reads of them",
		{{"class", "class"}, {"path", "path"}, {"tags", ""}}, std::move(Rows)});
}
} // namespace

FStatus InspectPackage(FBytes File, FInspectReport& Report)
{
	const TResult<FPackageHeader> Header = ReadPackageHeader(File);
	if (!Header)
	{
		return FError{Report.FileName() + ": " + Header.Error().Message};
	}
	FPackageInspection Inspection(*Header, Report);
	Inspection.Versions();
	Inspection.Identity();
	Inspection.Counts();
	Inspection.Assets();
	Inspection.Dependencies();
	Inspection.Imports();
	Inspection.Exports();
	Inspection.SoftReferences();
	Inspection.Names();
	Inspection.CustomVersions();
	Inspection.Sections();
	return Success();
}
} // namespace QVCli
