// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/ByteWriter.h"
#include "Standalone/Formats/Base/CityHash.h"
#include "Standalone/Formats/Base/Unicode.h"
#include "Standalone/Formats/Registry/AssetRegistryBuilder.h"
#include "Standalone/Formats/Registry/RegistryLayout.h"
#include "Tests/Formats/TestContent.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>

using namespace QVFormats;
using namespace QVTest;

namespace
{
std::string ErrorOf(FBytes File)
{
	const TResult<FAssetRegistryState> State = ReadAssetRegistry(File);
	const TResult<FRegistryCount> Count = CountPackages(File);
	EXPECT_EQ(State.IsOk(), Count.IsOk());
	EXPECT_TRUE(State.IsOk() || State.Error().Message == Count.Error().Message);
	return State ? "" : State.Error().Message;
}

std::size_t CountNames(const FAssetRegistryState& State)
{
	std::set<std::string> Names;
	for (const FRegistryAsset& Asset : State.Assets)
	{
		Names.insert(ToLowerAscii(State.Text(Asset.PackageName)));
	}
	return Names.size();
}

/** Two packages, one with two assets, one spelled in two ways and with a number; a soft and a hard dependency. */
FAssetRegistryState MakeSmallState(bool bFilterEditorOnly)
{
	FAssetRegistryBuilder Builder(bFilterEditorOnly);
	Builder.AddAsset({"/Game/Maps/Hall_2", "Hall_2", {}, "/Script/Engine.World", {{"Kind", "Map"}, {"Author", "Zoë"}},
		{3}, 0x80022200});
	Builder.AddAsset(
		{"/Game/Maps/HALL_2", "Hall_2_C", {}, "/Script/Engine.BlueprintGeneratedClass", {}, {}, 0x80022200});
	Builder.AddAsset({"/Game/Räume/Rock", "Rock", {}, "/Script/Engine.StaticMesh", {{"Kind", "Map"}}, {}, 0x80002200});
	if (!bFilterEditorOnly)
	{
		Builder.AddDependency("/Game/Maps/Hall_2", "/Game/Räume/Rock", FDependencySet::Of(true, false));
		Builder.AddDependency("/Game/Maps/Hall_2", "/Game/Räume/Rock", FDependencySet::Of(false, true));
		Builder.AddDependency("/Game/Räume/Rock", "/Script/Engine", FDependencySet::Of(true, true));
		FRegistryPackage Package;
		Package.Name = Builder.Name("/Game/Maps/Hall_2");
		Package.SizeOnDisk = 1234;
		Package.Guid[3] = 7;
		Package.bCookedHash = true;
		Package.CookedHash[15] = 9;
		Package.ChunkHashes.emplace_back()[31] = 1;
		Package.FileVersionUE4 = 522;
		Package.FileVersionUE5 = 1012;
		Package.CustomVersions = {{{1, 2, 3, 4}, 5}};
		Package.ImportedClasses = {Builder.Name("/Script/Engine.World")};
		Package.Extension = ".umap";
		Builder.AddPackage(Package);
	}
	return Builder.Finish();
}

/** Version 12 by hand, with all that the writer never writes: older tag store, numberless lists, names of one part. */
std::vector<std::byte> MakeOlderRegistry()
{
	enum : std::uint32_t
	{
		None,
		Game,
		GameRock,
		Rock,
		RockPath,
		Mesh,
		Key
	};
	const std::string_view Names[] = {"None", "/Game", "/Game/Rock", "Rock", "/Game/Rock.Rock", "StaticMesh", "Key"};
	FByteWriter Out;
	FByteWriter Strings;
	Out.Write(RegistryLayout::Guid);
	Out.I32(12);
	Out.U32(7);
	std::for_each(
		std::begin(Names), std::end(Names), [&](auto Name) { Strings.Append(std::as_bytes(std::span(Name))); });
	Out.U32(static_cast<std::uint32_t>(Strings.Position()));
	Out.U64(1); // not the known way to hash, so the hashes are not to be believed
	Out.Zeros(7 * 8);
	for (const std::string_view Name : Names)
	{
		Out.U8(0);
		Out.U8(static_cast<std::uint8_t>(Name.size()));
	}
	Out.Append(Strings.Bytes());
	const auto Write = [&Out](std::initializer_list<std::uint32_t> Fields)
	{ std::for_each(Fields.begin(), Fields.end(), [&Out](std::uint32_t Field) { Out.U32(Field); }); };
	Write({0x12345678, 1, 1, 1, 1, 1, 1, 1, 3, 2, 5, 2});
	Write({Rock});									// numberless names
	Write({0x80000000u | Rock, 4});					// names
	Write({Mesh, Rock, GameRock});					// numberless paths
	Write({None, 0x80000000u | Rock, 1, GameRock}); // paths
	Out.String("NSLOCTEXT(\"a\", \"b\", \"c\")");
	Write({0, 0}); // offsets
	Out.Append(std::as_bytes(std::span("ab")));
	Out.Append(std::as_bytes(std::span(u"\u00E4")));
	Write({Key, 0, Key, 1, Key, 2, Key, 3, Key, 4}); // numberless pairs: kind in the low bits, index 0
	Write({0x80000000u | Key, 1, 5, Key, 6});		 // pairs
	Out.U32(RegistryLayout::TagStoreEnd);
	Out.I32(2);
	Write({RockPath, Game, Mesh, GameRock, Rock, 0, 0x80000005, 0, 0, 0x80002200});
	Write({RockPath, Game, Mesh, GameRock, Rock, 0, 2, 0, 0, 0x80002200});
	Write({4, 0, 0, 0});
	return Out.Release();
}
} // namespace

TEST(RegistryTest, HashesNamesAsTheEngineDoes)
{
	// Taken from a registry that the engine's own cooker wrote, one for each branch of the hash.
	const std::pair<std::string_view, std::uint64_t> Known[] = {{"Map", 0x52EDC3D9361D6B44},
		{"Plane", 0x611A639239C63ED6}, {"S_TriggerBox", 0x238D9DC3888D33A8},
		{"DefaultGizmoLibraryNormalized", 0xD09C3042F8FB683A},
		{"/Engine/EngineSky/VolumetricClouds/m_SimpleVolumetricCloud", 0x96E83D985236533B},
		{"/Engine/EngineMaterials/Widget3DPassThrough_Translucent_OneSided", 0x3D056826BD30F199},
		{"/Engine/Functions/Engine_MaterialFunctions02/Texturing/ScreenAlignedPixelToPixelUVs", 0x3E31CA3F9523EFE8}};
	for (const auto& [Name, Hash] : Known)
	{
		EXPECT_EQ(CityHash64Folded({std::as_bytes(std::span(Name))}), Hash) << Name;
	}
}

TEST(RegistryTest, SplitsNumbersOffNames)
{
	const std::tuple<std::string_view, std::string_view, std::uint32_t> Cases[] = {{"Rock", "Rock", 0},
		{"Rock_0", "Rock", 1}, {"Rock_7", "Rock", 8}, {"Rock_02", "Rock_02", 0}, {"Rock_00", "Rock_00", 0},
		{"Rock_", "Rock_", 0}, {"Rock7", "Rock7", 0}, {"7", "7", 0}, {"Rock_1_2", "Rock_1", 3},
		{"Rock_2147483646", "Rock", 2147483647}, {"Rock_2147483647", "Rock_2147483647", 0},
		{"Rock_99999999999", "Rock_99999999999", 0}};
	for (const auto& [Text, Entry, Number] : Cases)
	{
		const FSplitName Split = SplitNameNumber(Text);
		EXPECT_EQ(std::tuple(Split.Entry, Split.Number), std::tuple(Entry, Number)) << Text;
		std::string Joined(Split.Entry);
		AppendNameNumber(Joined, Split.Number);
		EXPECT_EQ(Joined, Text);
	}
}

TEST(RegistryTest, KeepsSetsOfDependencies)
{
	for (std::uint32_t Code = 0; Code < 19; ++Code)
	{
		ASSERT_TRUE(FDependencySet::FromCode(Code).has_value());
		FDependencySet Set;
		Set.Add(*FDependencySet::FromCode(Code));
		EXPECT_EQ(Set.ToCode(), Code) << "a set that another member covers is none of the 19";
	}
	EXPECT_FALSE(FDependencySet::FromCode(19).has_value());
	FDependencySet Set = FDependencySet::Of(true, false);
	Set.Add(FDependencySet::Of(false, true));
	EXPECT_EQ(Set.ToCode(), 16u);
	EXPECT_TRUE(Set.IsHard() && Set.IsGame() && Set.IsBuild());
	Set.Add(FDependencySet::Of(true, true));
	EXPECT_EQ(Set.ToCode(), 7u);
	EXPECT_FALSE(FDependencySet::Of(false, true).IsHard());
	EXPECT_FALSE(FDependencySet::Of(true, false).IsGame());
}

TEST(RegistryTest, WrittenStateReadsBack)
{
	for (const bool bFilterEditorOnly : {false, true})
	{
		FAssetRegistryState State = MakeSmallState(bFilterEditorOnly);
		const TResult<std::vector<std::byte>> Bytes = WriteAssetRegistry(State);
		ASSERT_TRUE(Bytes) << Bytes.Error().Message;
		EXPECT_EQ(*Bytes, *WriteAssetRegistry(State));
		const TResult<FAssetRegistryState> Read = ReadAssetRegistry(*Bytes);
		ASSERT_TRUE(Read) << Read.Error().Message;
		if (!bFilterEditorOnly)
		{
			State.Names.emplace_back("None"); // the writer's own, for the outer paths that no asset has
		}
		EXPECT_TRUE(*Read == State);
		const TResult<FRegistryCount> Count = CountPackages(*Bytes);
		ASSERT_TRUE(Count) << Count.Error().Message;
		EXPECT_EQ(std::tuple(Count->Version, Count->Packages, Count->Assets, Count->PackageData),
			std::tuple(17, 2, 3, bFilterEditorOnly ? 0 : 1));
		EXPECT_EQ(CountNames(*Read), 2u);
	}
	const FAssetRegistryState State = MakeSmallState(false);
	const FRegistryAsset& Hall = State.Assets[0];
	EXPECT_EQ(State.Text(Hall.PackageName) + " " + State.Text(Hall.PackagePath), "/Game/Maps/Hall_2 /Game/Maps");
	EXPECT_EQ(State.ValueText(State.Tags[0]) + " " + State.ValueText(State.Tags[1]), "Zoë Map") << "sorted by name";
	// Nodes in the order of first mention: Rock, Hall_2, Engine.
	EXPECT_EQ(State.Nodes[1].Packages, (std::vector<FRegistryDependency>{{0, *FDependencySet::FromCode(16)}}));
	EXPECT_EQ(State.Nodes[0].Referencers, std::vector<std::int32_t>{1});
	EXPECT_TRUE(State.Nodes[1].Referencers.empty());
}

TEST(RegistryTest, ReadsWhatItNeverWrites)
{
	const std::vector<std::byte> File = MakeOlderRegistry();
	const TResult<FAssetRegistryState> State = ReadAssetRegistry(File);
	ASSERT_TRUE(State) << State.Error().Message;
	std::vector<std::string> Values;
	for (const FRegistryAsset& Asset : State->Assets)
	{
		for (std::uint32_t Tag = 0; Tag < Asset.TagCount; ++Tag)
		{
			const FRegistryTag& Each = State->Tags[Asset.FirstTag + Tag];
			Values.push_back(State->Text(Each.Key) + "=" + State->ValueText(Each));
		}
	}
	// Kinds 0 to 4 in the first asset's numberless pairs, 5 and 6 in the second's.
	const std::vector<std::string> Expected = {"Key=ab", "Key=ä", "Key=Rock", "Key=Rock_3",
		"Key=StaticMesh'/Game/Rock.Rock'", "Key_0=/Game/Rock.Rock_0", "Key=NSLOCTEXT(\"a\", \"b\", \"c\")"};
	EXPECT_EQ(Values, Expected);
	const TResult<FRegistryCount> Count = CountPackages(File);
	ASSERT_TRUE(Count) << Count.Error().Message;
	EXPECT_EQ(std::tuple(Count->Version, Count->Packages, Count->Assets), std::tuple(12, 1, 2));
	const TResult<std::vector<std::byte>> Newer = WriteAssetRegistry(*State);
	ASSERT_TRUE(Newer) << Newer.Error().Message;
	FAssetRegistryState Expect = *State;
	Expect.Version = 17;
	EXPECT_TRUE(*ReadAssetRegistry(*Newer) == Expect);
	ForEachTruncation(File, [](FBytes Cut) { EXPECT_NE(ErrorOf(Cut), "") << Cut.size(); });
}

TEST(RegistryTest, RefusesWhatIsNotReadable)
{
	const std::vector<std::byte> Good = *WriteAssetRegistry(MakeSmallState(false));
	const auto WithVersion = [&Good](std::int32_t Version)
	{
		std::vector<std::byte> Bytes = Good;
		std::memcpy(Bytes.data() + 16, &Version, sizeof(Version));
		return ErrorOf(Bytes);
	};
	std::vector<std::byte> WrongGuid = Good;
	WrongGuid[5] ^= std::byte{1};
	const std::string Size = std::to_string(Good.size());
	EXPECT_EQ(ErrorOf({}), "is empty, expected an asset registry");
	EXPECT_EQ(ErrorOf(WrongGuid), "is not an asset registry: it does not begin with the guid of one");
	EXPECT_EQ(ErrorOf(ToBytes("version https://git-lfs.github.com/spec/v1\noid sha256:00\n")),
		"is a Git LFS pointer: fetch the file with git lfs pull");
	EXPECT_EQ(WithVersion(2), "is an asset registry of version 2, which no engine reads any more; cook it again");
	EXPECT_EQ(WithVersion(7),
		"is an asset registry of version 7, written by UE 4; versions 8 to 24 are read. Cook it again with UE 5");
	EXPECT_EQ(WithVersion(25), "is an asset registry of version 25, newer than this program knows (24)");
	EXPECT_EQ(ErrorOf(FBytes(Good).first(Good.size() - 1)),
		"is cut short or damaged in its package data (asset registry of version 17, " +
			std::to_string(Good.size() - 1) + " bytes)");
}

TEST(RegistryTest, SurvivesDamage)
{
	for (const bool bFilterEditorOnly : {false, true})
	{
		const std::vector<std::byte> Good = *WriteAssetRegistry(MakeSmallState(bFilterEditorOnly));
		ForEachTruncation(Good, [](FBytes Cut) { EXPECT_NE(ErrorOf(Cut), "") << Cut.size(); });
		// A wild field may be a number that is allowed to be anything; then what was read has to hold together.
		ForEachWildField(Good,
			[](FBytes Wild)
			{
				(void)CountPackages(Wild);
				const TResult<FAssetRegistryState> State = ReadAssetRegistry(Wild);
				EXPECT_TRUE(!State || WriteAssetRegistry(*State).IsOk());
			});
	}
	FAssetRegistryState Bad = MakeSmallState(false);
	Bad.Assets[0].PackageName.Entry = 99;
	EXPECT_EQ(WriteAssetRegistry(Bad).Error().Message,
		"cannot be written as an asset registry: a name points at entry 99 of " + std::to_string(Bad.Names.size()));
}

TEST(RegistryTest, ReadsRealRegistries)
{
	const std::filesystem::path Content = ContentFolder();
	if (Content.empty())
	{
		GTEST_SKIP() << "QVMAP_TEST_CONTENT is not set";
	}
	for (const char* File : {"a3/Saved/Cooked/Windows/MyProject/AssetRegistry.bin",
			 "a3/Saved/Cooked/Windows/MyProject/Metadata/DevelopmentAssetRegistry.bin",
			 "simple2d/Releases/1.0/Windows/AssetRegistry.bin",
			 "simple2d/Releases/1.0/Windows/Metadata/DevelopmentAssetRegistry.bin"})
	{
		SCOPED_TRACE(File);
		const std::vector<std::byte> Bytes = ToBytes(ReadText(Content / File));
		const TResult<FAssetRegistryState> State = ReadAssetRegistry(Bytes);
		ASSERT_TRUE(State) << State.Error().Message;
		const TResult<FRegistryCount> Count = CountPackages(Bytes);
		ASSERT_TRUE(Count) << Count.Error().Message;
		// The walk compares hashes; the state is asked for its texts.
		EXPECT_EQ(static_cast<std::size_t>(Count->Packages), CountNames(*State));
		EXPECT_EQ(static_cast<std::size_t>(Count->Assets), State->Assets.size());
		EXPECT_EQ(static_cast<std::size_t>(Count->PackageData), State->Packages.size());
		EXPECT_EQ(State->bFilterEditorOnly, std::string_view(File).find("Development") == std::string_view::npos);
		const TResult<std::vector<std::byte>> Written = WriteAssetRegistry(*State);
		ASSERT_TRUE(Written) << Written.Error().Message;
		EXPECT_TRUE(*ReadAssetRegistry(*Written) == *State);
		EXPECT_EQ(CountPackages(*Written)->Packages, Count->Packages);
	}
}

TEST(RegistryTest, AgreesWithTheCookerAboutHashesReferencersAndFiles)
{
	const std::filesystem::path Content = ContentFolder();
	if (Content.empty())
	{
		GTEST_SKIP() << "QVMAP_TEST_CONTENT is not set";
	}
	const std::filesystem::path Cooked = Content / "a3/Saved/Cooked/Windows/MyProject";
	const std::vector<std::byte> Bytes = ToBytes(ReadText(Cooked / "Metadata/DevelopmentAssetRegistry.bin"));
	RegistryLayout::FInput In(Bytes);
	ASSERT_TRUE(RegistryLayout::ReadStart(In));
	const RegistryLayout::FNameBatch Batch = RegistryLayout::ReadNameBatch(In);
	FByteReader Hashes(Batch.Hashes);
	EXPECT_TRUE(RegistryLayout::ForEachName(
		Batch, [&Hashes](FStringView Name) { EXPECT_EQ(CityHash64Folded(Name), Hashes.U64()) << Name.ToUtf8(); }));

	FAssetRegistryState State = *ReadAssetRegistry(Bytes);
	FAssetRegistryState Linked = State;
	LinkReferencers(Linked);
	for (std::size_t Index = 0; Index < State.Nodes.size(); ++Index)
	{
		std::sort(State.Nodes[Index].Referencers.begin(), State.Nodes[Index].Referencers.end());
		EXPECT_EQ(Linked.Nodes[Index].Referencers, State.Nodes[Index].Referencers) << Index;
	}

	// The cooked files beside it are some of those it was written for: each is listed with its size and extension.
	std::map<std::string, const FRegistryPackage*> Packages;
	for (const FRegistryPackage& Package : State.Packages)
	{
		Packages[State.Text(Package.Name) + Package.Extension] = &Package;
	}
	int Found = 0;
	for (const auto& Entry : std::filesystem::recursive_directory_iterator(Cooked / "Content"))
	{
		std::filesystem::path Path = Entry.path();
		if (Path.extension() == ".uasset" || Path.extension() == ".umap")
		{
			const std::string Name = "/Game/" + std::filesystem::relative(Path, Cooked / "Content").generic_string();
			ASSERT_TRUE(Packages.contains(Name)) << Name;
			std::uintmax_t Size = 0;
			for (const auto* Extension : {".uasset", ".umap", ".uexp", ".ubulk"})
			{
				Path.replace_extension(Extension);
				Size += std::filesystem::exists(Path) ? std::filesystem::file_size(Path) : 0;
			}
			EXPECT_EQ(Packages[Name]->SizeOnDisk, static_cast<std::int64_t>(Size)) << Name;
			++Found;
		}
	}
	EXPECT_EQ(Found, 50) << "as many as the folder's list of files has";
}
