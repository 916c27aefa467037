// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/Unicode.h"
#include "Standalone/Formats/Package/PackageDependencies.h"
#include "Standalone/Formats/Package/PackageSections.h"
#include "Standalone/Formats/Package/SamplePackages.h"
#include "Standalone/Formats/Registry/AssetRegistry.h"
#include "Tests/Formats/TestContent.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

using namespace QVFormats;
using namespace QVTest;

namespace
{
FWorldPackageSpec HallSpec()
{
	return {"/Game/Maps/Hall",
		{{"/Game/Meshes/Rock", "/Script/Engine", "StaticMesh", "Rock"},
			{"/Game/Meshes/Rock_2", "/Script/Engine", "StaticMesh", "Rock_2"},
			{"/Game/Tools/Rig", "/Script/Engine", "Texture2D", "Rig", false}, {"/Game/Räume/Tür", "", "", ""}},
		{"/Game/Maps/Part", "/Game/Tools/Rig", "/Game/Meshes/Rock", "/Game/Maps/Part"}, true};
}

FAssetPackageSpec RockSpec()
{
	return {
		"/Game/Meshes/Rock", "/Script/Engine.StaticMesh", {{"/Game/M", "/Script/Engine", "Material", "M"}}, {}, 100, 7};
}

std::string ErrorOf(FBytes File)
{
	const TResult<FPackageHeader> Header = ReadPackageHeader(File);
	return Header ? "" : Header.Error().Message;
}

/** `hard game /Game/M`, in order. */
std::vector<std::string> DescribeDependencies(const FPackageHeader& Header)
{
	std::vector<std::string> Lines;
	for (const FPackageDependency& Each : PackageDependencies(Header))
	{
		Lines.push_back(std::string(Each.bHard ? "hard " : "soft ") + (Each.bGame ? "game " : "editor ") +
						Header.Names.Text(Each.Package));
	}
	std::sort(Lines.begin(), Lines.end());
	return Lines;
}

/** `Class Outer.Name`, for each export. */
std::vector<std::string> DescribeExports(const FPackageHeader& Header)
{
	std::vector<std::string> Lines;
	for (const FPackageExport& Export : Header.Exports)
	{
		const std::string Outer =
			Export.Outer.IsExport() ? Header.Names.Text(Header.Exports[Export.Outer.ToExport()].ObjectName) + "." : "";
		Lines.push_back(Header.ClassPathOf(Export) + " " + Outer + Header.Names.Text(Export.ObjectName));
	}
	return Lines;
}

void ExpectSectionsEndToEnd(const FPackageHeader& Header)
{
	const TResult<std::vector<FPackageSection>> Sections = LocateSections(Header);
	ASSERT_TRUE(Sections) << Sections.Error().Message;
	std::size_t End = 0;
	for (const FPackageSection& Section : *Sections)
	{
		EXPECT_EQ(Section.Begin, End) << "section " << static_cast<int>(Section.Kind);
		End = Section.End;
	}
	EXPECT_EQ(End, Header.Bytes.size());
}

void ExpectNameHashesRight(const FPackageHeader& Header)
{
	FByteReader Reader(Header.Bytes);
	Reader.Seek(Header.Summary.Names.Offset);
	for (std::int32_t Left = Header.Summary.Names.Count; Left > 0; --Left)
	{
		const FStringView Name = Reader.String();
		EXPECT_EQ(Reader.Read<FNameHashes>(), ComputeNameHashes(Name)) << Name.ToUtf8();
	}
}

/** Exports lie end to end from the header's end to where bulk data begins. */
void ExpectExportsEndToEnd(const FPackageHeader& Header)
{
	std::int64_t End = Header.Summary.TotalHeaderSize;
	for (const FPackageExport& Export : Header.Exports)
	{
		EXPECT_EQ(Export.SerialOffset, End);
		EXPECT_LE(Export.ScriptEnd, Export.SerialSize);
		End += Export.SerialSize;
	}
	EXPECT_EQ(End, Header.Summary.BulkDataStart);
}

/** Every field holds the value that was read of it, at the place where it was read. */
void ExpectOffsetFieldsInPlace(const FPackageHeader& Header)
{
	const TResult<std::vector<FOffsetField>> Fields = LocateOffsetFields(Header);
	ASSERT_TRUE(Fields) << Fields.Error().Message;
	for (const FOffsetField& Field : *Fields)
	{
		FByteReader Reader(Header.Bytes);
		Reader.Seek(static_cast<std::int64_t>(Field.Position));
		EXPECT_EQ(Field.Width == 8 ? Reader.I64() : Reader.I32(), Field.Value) << Field.Position;
	}
}

std::vector<std::string> Split(const std::string& Text, char Separator)
{
	std::vector<std::string> Parts;
	std::istringstream Stream(Text);
	for (std::string Part; std::getline(Stream, Part, Separator);)
	{
		Parts.push_back(Part);
	}
	return Parts;
}

/** A row of the content's list of files, which another script made from the same bytes. */
enum EColumn
{
	Path,
	Size,
	Legacy,
	UE4,
	UE5,
	Flags,
	Kind,
	PackageName,
	Names,
	Imports,
	Exports,
	SoftPaths,
	SoftPackages,
	HeaderSize,
	SavedBy,
	AssetExports
};

std::string AssetExportsOf(const FPackageHeader& Header)
{
	std::vector<std::string> Assets;
	for (const FPackageExport& Export : Header.Exports)
	{
		const std::string Class = Header.ClassPathOf(Export);
		if (Export.bAsset)
		{
			Assets.push_back(Class.substr(Class.rfind('.') + 1) + " " + Header.Names.Text(Export.ObjectName));
		}
	}
	std::sort(Assets.begin(), Assets.end());
	std::string Text;
	for (const std::string& Asset : Assets)
	{
		Text += (Text.empty() ? "" : ";") + Asset;
	}
	return Text;
}

void ExpectAsListed(const FPackageHeader& Header, const std::vector<std::string>& Row)
{
	const FPackageSummary& Summary = Header.Summary;
	std::vector<std::string> AssetExportsListed = Split(Row[AssetExports], ';');
	std::sort(AssetExportsListed.begin(), AssetExportsListed.end());
	std::string Listed;
	for (const std::string& Asset : AssetExportsListed)
	{
		Listed += (Listed.empty() ? "" : ";") + Asset;
	}
	EXPECT_EQ(std::to_string(Summary.LegacyVersion), Row[Legacy]);
	EXPECT_EQ(std::to_string(Summary.FileVersionUE4), Row[UE4]);
	EXPECT_EQ(std::to_string(Summary.FileVersionUE5), Row[UE5]);
	EXPECT_EQ(Summary.Flags, std::stoul(Row[Flags], nullptr, 16));
	EXPECT_EQ(Summary.PackageName.ToUtf8(), Row[PackageName]);
	EXPECT_EQ(std::to_string(Summary.Names.Count), Row[Names]);
	EXPECT_EQ(std::to_string(Header.Imports.size()), Row[Imports]);
	EXPECT_EQ(std::to_string(Header.Exports.size()), Row[Exports]);
	EXPECT_EQ(Summary.IsAtLeast(EUE5Version::SoftObjectPathList) ? std::to_string(Header.SoftObjectPaths.size()) : "",
		Row[SoftPaths]);
	EXPECT_EQ(std::to_string(Header.SoftPackageReferences.size()), Row[SoftPackages]);
	EXPECT_EQ(std::to_string(Summary.TotalHeaderSize), Row[HeaderSize]);
	EXPECT_EQ(Summary.SavedBy.ToText(), Row[SavedBy]);
	EXPECT_EQ(AssetExportsOf(Header), Listed);
}

/** The dependencies of one package as a set for each other package, names in small letters. */
using FDependencyMap = std::map<std::string, FDependencySet>;

std::map<std::string, FDependencyMap> DependenciesInRegistry(const FAssetRegistryState& State)
{
	constexpr int PackageOnly = 1;
	std::map<std::string, FDependencyMap> Result;
	for (const FRegistryNode& Node : State.Nodes)
	{
		FDependencyMap& Dependencies = Result[ToLowerAscii(State.Text(Node.Package))];
		for (const FRegistryDependency& Each : Node.Packages)
		{
			const FRegistryNode& Other = State.Nodes[static_cast<std::size_t>(Each.Node)];
			if (Other.Parts == PackageOnly)
			{
				Dependencies[ToLowerAscii(State.Text(Other.Package))] = Each.Set;
			}
		}
	}
	return Result;
}

FDependencyMap DependenciesInHeader(const FPackageHeader& Header)
{
	FDependencyMap Result;
	for (const FPackageDependency& Each : PackageDependencies(Header))
	{
		Result[ToLowerAscii(Header.Names.Text(Each.Package))].Add(FDependencySet::Of(Each.bHard, Each.bGame));
	}
	return Result;
}
} // namespace

TEST(PackageTest, BuiltMapReadsBack)
{
	const std::vector<std::byte> File = BuildWorldPackage(HallSpec());
	EXPECT_EQ(File, BuildWorldPackage(HallSpec()));
	const TResult<FPackageHeader> Header = ReadPackageHeader(File);
	ASSERT_TRUE(Header) << Header.Error().Message;
	EXPECT_EQ(Header->Summary.PackageName.ToUtf8() + " " + DescribeEngine(Header->Summary),
		"/Game/Maps/Hall UE 5.4.4-35576357");
	EXPECT_EQ(Header->Summary.Flags, 0x20000u);
	const std::vector<std::string> Exports = {"/Script/Engine.World Hall", "/Script/Engine.Level Hall.PersistentLevel",
		"/Script/Engine.WorldSettings PersistentLevel.WorldSettings",
		"/Script/Engine.PlayerStart PersistentLevel.PlayerStart_0"};
	EXPECT_EQ(DescribeExports(*Header), Exports);
	// Rig is hard for the editor only and soft for the game, so it is there twice; Rock is hard for the game anyway.
	const std::vector<std::string> Dependencies = {"hard editor /Game/Tools/Rig", "hard game /Game/Meshes/Rock",
		"hard game /Game/Meshes/Rock_2", "hard game /Game/Räume/Tür", "hard game /Script/Engine",
		"soft game /Game/Maps/Part", "soft game /Game/Tools/Rig"};
	EXPECT_EQ(DescribeDependencies(*Header), Dependencies);
	ASSERT_EQ(Header->Registry.Assets.size(), 1u);
	const FPackageAsset& Asset = Header->Registry.Assets[0];
	EXPECT_EQ(Asset.ObjectPath.ToUtf8() + " " + Asset.Class.ToUtf8(), "Hall /Script/Engine.World");
	EXPECT_EQ(Header->Registry.TagsOf(Asset)[1].Value.ToUtf8(), "Map");
	EXPECT_EQ(Header->SoftPackageReferences.size(), 3u) << "each package once";
	ExpectSectionsEndToEnd(*Header);
	ExpectExportsEndToEnd(*Header);
	ExpectNameHashesRight(*Header);
	ExpectOffsetFieldsInPlace(*Header);
}

TEST(PackageTest, BuiltMapHoldsALevel)
{
	const std::vector<std::byte> File = BuildWorldPackage(HallSpec());
	const FPackageHeader Header = *ReadPackageHeader(File);
	const auto Native = [&File, &Header](std::size_t Export)
	{
		FByteReader Reader(File);
		Reader.Seek(Header.Exports[Export].SerialOffset + Header.Exports[Export].ScriptEnd);
		EXPECT_FALSE(Reader.Bool32()) << "object guid";
		return Reader;
	};
	FByteReader World = Native(0);
	EXPECT_EQ(World.I32(), FPackageIndex::Export(1).Value);
	ASSERT_EQ(World.I32(), 3);
	const FPackageIndex Rock{World.I32()};
	EXPECT_EQ(Header.Names.Text(Header.Imports[Rock.ToImport()].ObjectName), "Rock");
	FByteReader Level = Native(1);
	EXPECT_EQ(Level.I32(), 2);
	EXPECT_EQ(Level.I32(), FPackageIndex::Export(2).Value) << "the settings come first";
	EXPECT_EQ(Level.I32(), FPackageIndex::Export(3).Value);
	EXPECT_EQ(Level.String().ToUtf8(), "unreal");
	EXPECT_TRUE(Level.String().IsEmpty()) << "host";
	EXPECT_EQ(Level.String().ToUtf8(), "/Game/Maps/Hall");
	EXPECT_EQ(Native(2).I32(), 0);
	// The trailer closes the file and says how long it is.
	FByteReader End(File);
	End.Seek(static_cast<std::int64_t>(File.size()) - 12);
	EXPECT_EQ(End.I64(), static_cast<std::int64_t>(File.size()) - Header.Summary.PayloadTocOffset);
	EXPECT_EQ(End.U32(), PackageTag);
}

TEST(PackageTest, BuiltAssetReadsBack)
{
	const std::vector<std::byte> File = BuildAssetPackage(RockSpec());
	const TResult<FPackageHeader> Header = ReadPackageHeader(File);
	ASSERT_TRUE(Header) << Header.Error().Message;
	EXPECT_EQ(DescribeExports(*Header), std::vector<std::string>{"/Script/Engine.StaticMesh Rock"});
	const std::vector<std::string> Dependencies = {"hard game /Game/M", "hard game /Script/Engine"};
	EXPECT_EQ(DescribeDependencies(*Header), Dependencies);
	EXPECT_EQ(Header->Exports[0].SerialSize, Header->Exports[0].ScriptEnd + 4 + 100);
	FAssetPackageSpec Other = RockSpec();
	Other.PayloadSeed = 8;
	EXPECT_NE(BuildAssetPackage(Other), File);
	ExpectSectionsEndToEnd(*Header);
	ExpectExportsEndToEnd(*Header);
	// A scan has only the header's bytes, and gets them in two steps.
	const TResult<FHeaderSize> Unknown = PeekHeaderSize(FBytes(File).first(40));
	ASSERT_TRUE(Unknown && !Unknown->bKnown);
	const TResult<FHeaderSize> Known = PeekHeaderSize(FBytes(File).first(Unknown->Bytes));
	ASSERT_TRUE(Known && Known->bKnown);
	EXPECT_EQ(ErrorOf(FBytes(File).first(Known->Bytes)), "");
}

TEST(PackageTest, RefusesWhatIsNoPackage)
{
	const std::vector<std::byte> Good = BuildAssetPackage(RockSpec());
	const auto With = [&Good](std::size_t At, std::int32_t Value)
	{
		std::vector<std::byte> Bytes = Good;
		std::memcpy(Bytes.data() + At, &Value, sizeof(Value));
		const std::string Message = ErrorOf(Bytes);
		const TResult<FHeaderSize> Size = PeekHeaderSize(Bytes);
		EXPECT_TRUE(Size || Size.Error().Message == Message);
		return Message;
	};
	const FPackageHeader Header = *ReadPackageHeader(Good);
	const std::string Size = std::to_string(Header.Bytes.size());
	const std::string NamesAt = std::to_string(Header.Summary.Names.Offset);
	const std::size_t CountsAt = Header.Summary.PackageNameAt + 4 + Header.Summary.PackageName.Bytes.size() + 1 + 4;
	EXPECT_EQ(ErrorOf({}), "is empty, expected an Unreal package");
	EXPECT_EQ(
		ErrorOf(ToBytes("PNG, perhaps")), "is not an Unreal package: begins with 0x2C474E50, expected 0x9E2A83C1");
	EXPECT_EQ(ErrorOf(ToBytes("version https://git-lfs.github.com/spec/v1\n")),
		"is a Git LFS pointer: fetch the file with git lfs pull");
	EXPECT_EQ(With(0, static_cast<std::int32_t>(SwappedPackageTag)),
		"is a package of a big-endian platform; only little-endian ones are read");
	EXPECT_EQ(With(4, -6),
		"was saved by an engine older than 4.15 (legacy version -6, file version 522); open and save it "
		"in a newer editor");
	EXPECT_EQ(With(4, -10), "was saved by an engine newer than 5.8 (legacy version -10, file version 1012); known are "
							"versions up to 1018");
	EXPECT_EQ(With(16, 1019), "was saved by an engine newer than 5.8 (legacy version -8, file version 1019); known are "
							  "versions up to 1018");
	EXPECT_EQ(ErrorOf(FBytes(Good).first(Header.Bytes.size() - 1)),
		"is cut short: its header has " + Size + " bytes, there are " + std::to_string(Header.Bytes.size() - 1));
	EXPECT_EQ(ErrorOf(FBytes(Good).first(100)), "is cut short or damaged in its summary (100 bytes)");
	EXPECT_EQ(With(CountsAt, 0x7FFFFFFF),
		"is damaged: 2147483647 names do not fit between " + NamesAt + " and the header's end at " + Size);
	EXPECT_EQ(With(CountsAt + 4, 7), "is damaged: its summary ends at " + NamesAt +
										 ", where the names should begin, and they are said to begin at 7");
}

TEST(PackageTest, SurvivesDamage)
{
	for (const std::vector<std::byte>& Good : {BuildWorldPackage(HallSpec()), BuildAssetPackage(RockSpec())})
	{
		const std::size_t HeaderBytes = ReadPackageHeader(Good)->Bytes.size();
		ForEachTruncation(Good,
			[HeaderBytes](FBytes Cut)
			{
				EXPECT_EQ(ErrorOf(Cut).empty(), Cut.size() >= HeaderBytes) << Cut.size();
				(void)PeekHeaderSize(Cut);
			});
		// Whatever is still readable has to be safe to walk.
		ForEachWildField(FBytes(Good).first(HeaderBytes),
			[](FBytes Wild)
			{
				const TResult<FPackageHeader> Header = ReadPackageHeader(Wild);
				if (Header)
				{
					DescribeDependencies(*Header);
					DescribeExports(*Header);
					(void)LocateSections(*Header);
					(void)LocateOffsetFields(*Header);
				}
			});
	}
}

TEST(PackageTest, ReadsAllThatEditorsSaved)
{
	const std::filesystem::path Content = ContentFolder();
	if (Content.empty())
	{
		GTEST_SKIP() << "QVMAP_TEST_CONTENT is not set";
	}
	std::istringstream List(ReadText(Content / "files.tsv"));
	std::string Line;
	std::getline(List, Line);
	int Read = 0;
	int Refused = 0;
	while (std::getline(List, Line))
	{
		std::vector<std::string> Row = Split(Line, '\t');
		Row.resize(AssetExports + 1);
		SCOPED_TRACE(Row[Path]);
		const std::vector<std::byte> File = ToBytes(ReadText(Content / Row[Path]));
		const TResult<FPackageHeader> Header = ReadPackageHeader(File);
		// The list says which have a legacy version that this reader does not know.
		ASSERT_EQ(Header.IsOk(), std::stoi(Row[Legacy]) <= -7) << (Header ? "read" : Header.Error().Message);
		Header ? ++Read : ++Refused;
		if (!Header)
		{
			continue;
		}
		constexpr std::size_t Prefix = 4096;
		const TResult<FHeaderSize> Peeked = PeekHeaderSize(FBytes(File).first(std::min(Prefix, File.size())));
		ASSERT_TRUE(Peeked && Peeked->bKnown);
		EXPECT_EQ(Peeked->Bytes, Header->Bytes.size());
		EXPECT_EQ(ErrorOf(FBytes(File).first(Peeked->Bytes)), "");
		if (!Row[PackageName].empty()) // the script gave up on the newest layouts after six numbers
		{
			ExpectAsListed(*Header, Row);
		}
		ExpectSectionsEndToEnd(*Header);
		ExpectExportsEndToEnd(*Header);
		ExpectNameHashesRight(*Header);
		ExpectOffsetFieldsInPlace(*Header);
	}
	// 837 rows, three of them with -5 or -6: counted in the list.
	EXPECT_EQ(std::pair(Read, Refused), std::pair(834, 3));
}

TEST(PackageTest, DependsOnWhatTheEnginesRegistrySays)
{
	const std::filesystem::path Content = ContentFolder();
	if (Content.empty())
	{
		GTEST_SKIP() << "QVMAP_TEST_CONTENT is not set";
	}
	const std::filesystem::path Folder = Content / "a3/Content";
	const std::vector<std::byte> Bytes =
		ToBytes(ReadText(Content / "a3/Saved/Cooked/Windows/MyProject/Metadata/DevelopmentAssetRegistry.bin"));
	const FAssetRegistryState State = *ReadAssetRegistry(Bytes);
	const std::map<std::string, FDependencyMap> Registry = DependenciesInRegistry(State);
	std::map<std::string, FPackageGuid> Guids;
	for (const FRegistryPackage& Package : State.Packages)
	{
		std::memcpy(&Guids[ToLowerAscii(State.Text(Package.Name))], Package.Guid.data(), sizeof(FPackageGuid));
	}
	int Same = 0;
	int LeftOut = 0;
	for (const auto& Entry : std::filesystem::recursive_directory_iterator(Folder))
	{
		std::filesystem::path Path = Entry.path();
		if (Path.extension() != ".uasset" && Path.extension() != ".umap")
		{
			continue;
		}
		const std::vector<std::byte> File = ToBytes(ReadText(Path));
		const FPackageHeader Header = *ReadPackageHeader(File);
		const std::string Name =
			ToLowerAscii("/Game/" + std::filesystem::relative(Path, Folder).replace_extension().generic_string());
		SCOPED_TRACE(Name);
		// The project went on after its cook: only a save that the registry knows by its guid can be compared.
		if (!Registry.contains(Name) || !(Guids[Name] == Header.Summary.Guid))
		{
			continue;
		}
		const FDependencyMap& Expected = Registry.at(Name);
		const FDependencyMap Found = DependenciesInHeader(Header);
		for (const auto& [Package, Set] : Found)
		{
			const auto Known = Expected.find(Package);
			if (Known == Expected.end())
			{
				// A development registry leaves out most code packages and what only the editor uses.
				EXPECT_TRUE(Package.starts_with("/script/") || !Set.IsGame()) << Package;
				++LeftOut;
				continue;
			}
			EXPECT_TRUE(Known->second == Set) << Package;
			++Same;
		}
		for (const auto& [Package, Set] : Expected)
		{
			EXPECT_TRUE(Found.contains(Package)) << Package;
		}
	}
	EXPECT_GT(Same, 0);
	RecordProperty("Same", Same);
	RecordProperty("LeftOut", LeftOut);
}
