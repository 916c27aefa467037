// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/PackageBuilder.h"
#include "Tests/Formats/PackageEditSupport.h"
#include "Tests/Formats/TestContent.h"

using namespace QVFormats;
using namespace QVTest;

namespace
{
std::string Message(const TResult<FPackageEdit>& Edit)
{
	return Edit ? "" : Edit.Error().Message;
}

std::vector<std::string> Entries(FBytes File)
{
	const FPackageHeader Header = *ReadPackageHeader(File);
	std::vector<std::string> Texts;
	for (std::size_t Index = 0; Index < Header.Names.Num(); ++Index)
	{
		Texts.push_back(Header.Names.Entry(Index).ToUtf8());
	}
	return Texts;
}

FImportSpec PackageImport(std::string Name)
{
	return {"/Script/CoreUObject", "Package", std::move(Name), {}, true};
}

/** Imports of two packages whose names share an entry. */
FPackageSpec RocksSpec(std::vector<std::string> DataNames)
{
	FPackageSpec Spec;
	Spec.PackageName = "/Game/User";
	Spec.DataNames = std::move(DataNames);
	Spec.Imports = {PackageImport("/Game/Rock"), PackageImport("/Game/Rock_7"),
		{"/Script/Engine", "StaticMesh", "Rock", FPackageIndex::Import(0), true},
		{"/Script/Engine", "StaticMesh", "Rock_7", FPackageIndex::Import(1), true}};
	Spec.Exports = {{{}, {}, {}, "User", 0, true, ToBytes("data"), 0, {}}};
	Spec.Assets = {{"User", "/Script/Engine.Texture2D", {}}};
	return Spec;
}

/** A blueprint that speaks of itself, with an object inside that has the same name. */
FPackageSpec BlueprintSpec()
{
	FPackageSpec Spec;
	Spec.PackageName = "/Cave/Old/Rock";
	Spec.DataNames = {"None", "Rock"};
	const auto Top = FPackageIndex{};
	Spec.Exports = {{{}, {}, Top, "Rock", 0, true, ToBytes("a"), 0, {}}, {{}, {}, Top, "Rock_C", 0, true, {}, 0, {}},
		{{}, {}, Top, "Default__Rock_C", 0, false, {}, 0, {}},
		{{}, {}, FPackageIndex::Export(0), "Rock", 0, false, {}, 0, {}}};
	Spec.Imports = {PackageImport("/Cave/Old/ROCK"),
		{"/Cave/Old/Rock", "Rock_C", "Rock_C_4", FPackageIndex::Export(0), true},
		{"/Script/Engine", "BlueprintGeneratedClass", "Rock_C", FPackageIndex::Import(0), true},
		{"/Script/CoreUObject", "Object", "Rock_C", FPackageIndex::Import(2), true}};
	Spec.SoftPaths = {{"/Cave/Old/Rock", "Rock", "Rock.Rock", true}, {"None", "None", {}, true},
		{"/Cave/Old/Rock2", "Rock", {}, true}};
	Spec.Assets = {{"Rock_C", "/Script/Engine.BlueprintGeneratedClass", {{"PrimaryAssetName", "Rock_C"}}},
		{"Rock", "/Cave/Old/Rock.Rock_C", {{"GeneratedClass", "Class'/Cave/Old/Rock.Rock_C'"}, {"Title", "Rock"}}}};
	return Spec;
}
const FPackageRename RockToStone{"/Cave/Old/Rock", "/Cave/New/Stone", {{"Rock", "Stone"}, {"Rock_C", "Stone_C"}}};

std::vector<std::string> RegistryTexts(FBytes File)
{
	const FPackageHeader Header = *ReadPackageHeader(File);
	std::vector<std::string> Texts;
	for (const FPackageAsset& Asset : Header.Registry.Assets)
	{
		Texts.push_back(Asset.ObjectPath.ToUtf8());
		Texts.push_back(Asset.Class.ToUtf8());
		for (const FPackageTag& Tag : Header.Registry.TagsOf(Asset))
		{
			Texts.push_back(Tag.Value.ToUtf8());
		}
	}
	return Texts;
}
} // namespace

TEST(PackageEditorTest, FindsWholeNamesInTexts)
{
	const std::vector<FPackageRename> List{RockToStone, {"/Cave/Old/Räume(2)", "/Cave/Größe", {}}};
	const FPackageRenames Renames = *FPackageRenames::Make(List);
	const std::pair<std::string_view, std::string_view> Cases[] = {{"/Cave/Old/Rock", "/Cave/New/Stone"},
		{"/cave/OLD/rock.ROCK_c", "/Cave/New/Stone.Stone_C"},
		{"/Cave/Old/Rock.Rock:Rock.Rock", "/Cave/New/Stone.Stone:Rock.Rock"},
		{"Class'\"/Cave/Old/Rock.Default__Rock_C\"'", "Class'\"/Cave/New/Stone.Default__Stone_C\"'"},
		{"(A=/Cave/Old/Rock,B=(/Cave/Old/Rock.Other))", "(A=/Cave/New/Stone,B=(/Cave/New/Stone.Other))"},
		{"/Cave/Old/Räume(2).X;/Cave/Old/Rock", "/Cave/Größe.X;/Cave/New/Stone"},
		{"/None(/Cave/Old/Rock)", "/None(/Cave/New/Stone)"}, {"/Cave/Old/Rock2", ""}, {"/X/Cave/Old/Rock", ""},
		{"X/Cave/Old/Rock", ""}, {"/Cave/Old/Rock/Inner", ""}, {"/Cave/Old/Rock_C.Rock", ""}, {"/", ""}, {"", ""}};
	for (const auto& [Old, New] : Cases)
	{
		EXPECT_EQ(Renames.Text(Old).value_or(""), New) << Old;
	}
}

TEST(PackageEditorTest, SharedEntriesGoTheirOwnWays)
{
	const FPackageRename Stone{"/game/ROCK", "/Game/Stone", {{"rock", "Stone"}}};
	const FPackageRename Seven{"/Game/Rock_7", "/Game/Stone_7", {{"Rock_7", "Stone_7"}}};
	const FFile Apart = BuildPackage(RocksSpec({"None"}));
	const std::size_t Count = Entries(Apart).size();
	// One of two: a new entry for each new name; both old ones are still used.
	const FFile One = Renamed(Apart, "/Game/User", {Stone});
	std::vector<std::string> Expected = Entries(Apart);
	Expected.insert(Expected.end(), {"/Game/Stone", "Stone"});
	EXPECT_EQ(Entries(One), Expected);
	EXPECT_EQ(DependenciesOf(*ReadPackageHeader(One)), (std::set<std::string>{"/Game/Rock_7", "/Game/Stone"}));
	ExpectSoundAfter(Apart, One);
	EXPECT_EQ(Renamed(One, "/Game/User", {{"/Game/Stone", "/Game/Rock", {{"Stone", "Rock"}}}}), Apart);
	// Both, their numbers kept: in place.
	const FFile Both = Renamed(Apart, "/Game/User", {Stone, Seven});
	EXPECT_EQ(Entries(Both).size(), Count);
	EXPECT_FALSE(std::ranges::count(Entries(Both), "/Game/Rock") + std::ranges::count(Entries(Both), "Rock"));
	// An entry that export data uses: what is left behind has to be said.
	const FFile Data = BuildPackage(RocksSpec({"/Game/Rock", "None"}));
	const std::vector<FPackageRename> JustStone{Stone};
	EXPECT_EQ(RenameInPackage(Data, "/Game/User", JustStone)->PossiblyStale, std::vector<std::string>{"/Game/Rock"});
	const std::vector<FPackageRename> StoneAndSeven{Stone, Seven};
	EXPECT_EQ(RenameInPackage(Data, "/Game/User", StoneAndSeven)->PossiblyStale, std::vector<std::string>());
	// It names the package, and right behind it the object, whose name there stays.
	FPackageSpec BesideSpec = RocksSpec({"/Game/Rock", "None", "Rock"});
	BesideSpec.Exports[0].Data = ToBytes(std::string("\7\0\0\0\0\0\0\0\0\2\0\0\0\0\0\0\0", 17));
	const FFile Beside = BuildPackage(BesideSpec);
	const TResult<FPackageEdit> InPlace = RenameInPackage(Beside, "/Game/User", StoneAndSeven);
	EXPECT_EQ(InPlace->PossiblyStale, std::vector<std::string>{"/Game/Rock"}) << "the object's name beside it stays";
	EXPECT_EQ(InPlace->References, 4u);
	EXPECT_EQ(Entries(Joined(Data, *InPlace))[0], "/Game/Stone");
}

TEST(PackageEditorTest, ObjectsAndSelfReferencesFollow)
{
	const FFile File = BuildPackage(BlueprintSpec());
	const FFile New = Renamed(File, "/Cave/Old/rock", {RockToStone});
	ExpectSoundAfter(File, New);
	// Imports' class package, class, name and package; exports; soft paths; soft package references.
	const std::vector<std::string> Names = {"/Script/CoreUObject", "Package", "/Cave/New/Stone", "None",
		"/Cave/New/Stone", "Stone_C", "Rock_C_4", "None", "/Script/Engine", "BlueprintGeneratedClass", "Stone_C",
		"None", "/Script/CoreUObject", "Object", "Rock_C", "None", "Stone", "Stone_C", "Default__Stone_C", "Rock",
		"/Cave/New/Stone", "Stone", "None", "None", "/Cave/Old/Rock2", "Rock", "/Cave/New/Stone", "/Cave/Old/Rock2"};
	EXPECT_EQ(NamesIn(New), Names);
	const std::vector<std::string> Texts = {"Stone_C", "/Script/Engine.BlueprintGeneratedClass", "Stone_C", "Stone",
		"/Cave/New/Stone.Stone_C", "Class'/Cave/New/Stone.Stone_C'", "Rock"};
	EXPECT_EQ(RegistryTexts(New), Texts);
	const FPackageHeader Header = *ReadPackageHeader(New);
	EXPECT_EQ(Header.Summary.PackageName.ToUtf8(), "/Cave/New/Stone");
	EXPECT_EQ(Header.SoftObjectPaths[0].SubPathText(), "Rock.Rock");
	EXPECT_EQ(Entries(New)[1], "Rock") << "export data uses it for who knows what";
	// Under another name the same package is a stranger's: its exports and its name stay.
	const FPackageHeader Other = *ReadPackageHeader(Renamed(File, "/Cave/Copy", {RockToStone}));
	EXPECT_EQ(Other.Summary.PackageName.Bytes.size(), std::string_view("/Cave/Old/Rock").size());
	const std::vector<FPackageRename> Nothing{{"/Cave/Old", "/Cave/New", {{"Rock", "Stone"}}}};
	const TResult<FPackageEdit> Unchanged = RenameInPackage(File, "/Cave/Old/Rock", Nothing);
	EXPECT_FALSE(Unchanged->bChanged);
	EXPECT_EQ(Joined(File, *Unchanged), File);
}

TEST(PackageEditorTest, RefusesWhatCannotBeDone)
{
	const FFile File = BuildPackage(BlueprintSpec());
	const auto Try = [](FBytes Bytes, const std::vector<FPackageRename>& Renames)
	{ return Message(RenameInPackage(Bytes, "/Cave/Old/Rock", Renames)); };
	for (const std::string Bad :
		{"", "/", "Game/Rock", "/Game//Rock", "/Game/Rock/", "/Game/Ro.ck", "/Game/Ro ck", "/\xFF"})
	{
		EXPECT_EQ(Try(File, {{"/Cave/Old/Rock", Bad, {}}}),
			"cannot be edited: '" + Bad + "' is no long package name like /Game/Meshes/Rock");
	}
	EXPECT_EQ(Try(File, {{"/A/B", "/A/C", {{"Rock", "St.one"}}}}),
		"cannot be edited: an object of /A/B cannot go from the name 'Rock' to 'St.one'");
	EXPECT_EQ(Try(File, {{"/A/B", "/A/C", {}}, {"/a/b", "/A/D", {}}}), "cannot be edited: /a/b is to be renamed twice");
	EXPECT_EQ(
		Try(ToBytes("PNG, perhaps"), {}), "is not an Unreal package: begins with 0x2C474E50, expected 0x9E2A83C1");
	const FPackageHeader Header = *ReadPackageHeader(File);
	const auto With = [&File, &Header, &Try](std::int32_t OldValue, std::int32_t Value)
	{
		FFile Bytes = File;
		const auto Field = std::ranges::find(Header.Summary.OffsetFields, OldValue, &FOffsetField::Value);
		std::memcpy(Bytes.data() + Field->Position, &Value, sizeof(Value));
		return Try(Bytes, {RockToStone});
	};
	const std::int32_t Depends = Header.Summary.DependsOffset;
	EXPECT_EQ(
		With(Depends, 0), "cannot be edited: what its header holds at " + std::to_string(Depends) + " is not known");
	// It has no preload dependencies, so their offset can be anything.
	const std::size_t PreloadAt = Header.Summary.OffsetFields[Header.Summary.OffsetFields.size() - 3].Position;
	FFile Far = File;
	const std::int32_t Largest = 0x7FFFFFFF;
	std::memcpy(Far.data() + PreloadAt, &Largest, sizeof(Largest));
	EXPECT_EQ(Try(Far, {RockToStone}),
		"cannot be edited: an offset at " + std::to_string(PreloadAt) + " would go beyond 2147483647");
}

TEST(PackageEditorTest, SurvivesDamage)
{
	const FFile Good = BuildPackage(BlueprintSpec());
	const FBytes Header = FBytes(Good).first(ReadPackageHeader(Good)->Bytes.size());
	const std::vector<FPackageRename> Renames{RockToStone};
	int Edited = 0;
	ForEachWildField(Header,
		[&Renames, &Edited](FBytes Wild)
		{
			const TResult<FPackageEdit> Edit = RenameInPackage(Wild, "/Cave/Old/Rock", Renames);
			Edited += Edit ? 1 : 0;
			EXPECT_TRUE(!Edit || ReadPackageHeader(Edit->Header)) << "an edit that is not refused has to be readable";
		});
	EXPECT_GT(Edited, 0);
}
