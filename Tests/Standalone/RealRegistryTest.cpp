// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/Unicode.h"
#include "Standalone/Formats/Package/PackageDependencies.h"
#include "Standalone/Formats/Registry/AssetRegistry.h"
#include "Tests/Formats/TestContent.h"
#include "Tests/Standalone/RegistrySession.h"
#include "Tests/Support/TestPrograms.h"

#include <array>
#include <cstring>
#include <map>

using namespace QVTest;
using namespace QVStandalone;
using namespace QVFormats;
namespace fs = std::filesystem;

namespace
{
struct RealRegistry : FRegistryTest
{
	void SetUp() override
	{
		if (ContentFolder().empty())
		{
			GTEST_SKIP() << "QVMAP_TEST_CONTENT does not name a folder of real packages";
		}
	}
};

FTexts DescribeAll(const FPackageHeader& Header)
{
	FTexts Texts;
	for (const FPackageDependency& Each : PackageDependencies(Header))
	{
		Texts.push_back(
			ToLowerAscii(Header.Names.Text(Each.Package)) + (Each.bHard ? " hard" : "") + (Each.bGame ? " game" : ""));
	}
	std::sort(Texts.begin(), Texts.end());
	return Texts;
}

FTexts DescribeAll(const FAssetRegistry& Registry, FQVName Package)
{
	std::vector<FQVPackageDependency> Found;
	Registry.GetDependencies(Package, EQVDependencyQuery::All, Found);
	FTexts Texts;
	for (const FQVPackageDependency& Each : Found)
	{
		Texts.push_back(
			ToLowerAscii(Each.Package.ToView()) + (Each.bHard ? " hard" : "") + (Each.bUsedInGame ? " game" : ""));
	}
	std::sort(Texts.begin(), Texts.end());
	return Texts;
}
} // namespace

/** Against the whole headers, of which the registry reads only parts. */
TEST_F(RealRegistry, KnowsEveryPackageOfAPluginAsItsFileSays)
{
	ShowFolder(ContentFolder() / "als", OsPath("Plugins/ALS"));
	FRegistrySession Session(Project);
	EXPECT_EQ(Session.Registry.GetPackageCount(), 362U);
	EXPECT_EQ(Session.Unreadable(), FTexts{});
	std::size_t Files = 0;
	std::size_t Assets = 0;
	std::size_t References = 0;
	std::size_t Actors = 0;
	std::size_t ActorFiles = 0;
	const fs::path Content = ContentFolder() / "als/Content";
	for (const fs::directory_entry& Entry : fs::recursive_directory_iterator(Content))
	{
		if (!Entry.is_regular_file() || (Entry.path().extension() != ".uasset" && Entry.path().extension() != ".umap"))
		{
			continue;
		}
		const FQVName Package("/ALS/" + FromOsPath(Entry.path().lexically_relative(Content).replace_extension()));
		SCOPED_TRACE(Package.ToView());
		ActorFiles += Package.ToView().find("/__External") != std::string_view::npos ? 1 : 0;
		const std::vector<std::byte> Bytes = ToBytes(ReadText(Entry.path()));
		const TResult<FPackageHeader> Header = ReadPackageHeader(Bytes);
		ASSERT_TRUE(Header);
		auto Described = DescribeAll(Session.Registry, Package);
		if (Entry.path().extension() == ".umap") // its actors are its own by their place
		{
			Actors +=
				std::erase_if(Described, [](const std::string& Line) { return Line.starts_with("/als/__external"); });
		}
		EXPECT_EQ(Described, DescribeAll(*Header));
		std::vector<FQVAssetData> Found;
		Session.Registry.GetAssetsByPackageName(Package, Found);
		EXPECT_EQ(Found.size(), Header->Registry.Assets.size());
		EXPECT_EQ(Session.Registry.GetPackageSize(Package), static_cast<std::int64_t>(Bytes.size()));
		++Files;
		Assets += Found.size();
		References += PackageDependencies(*Header).size();
	}
	EXPECT_EQ(Files, 362U);
	EXPECT_EQ(Actors, ActorFiles) << "each belongs to one of the two maps";
	EXPECT_EQ(Session.Registry.GetGraph().NumReferences(), References);
	std::vector<FQVAssetData> All;
	Session.Registry.GetAssets({"/ALS", {}}, All);
	EXPECT_EQ(All.size(), Assets);
}

/** Against the registry that the engine itself wrote when it cooked the project. */
TEST_F(RealRegistry, AgreesWithTheEnginesOwn)
{
	Project.Remove("Content");
	ShowFolder(ContentFolder() / "a3/Content", OsPath("Content"));
	FRegistrySession Session(Project);
	const std::vector<std::byte> Bytes =
		ToBytes(ReadText(ContentFolder() / "a3/Saved/Cooked/Windows/MyProject/Metadata/DevelopmentAssetRegistry.bin"));
	const TResult<FAssetRegistryState> State = ReadAssetRegistry(Bytes);
	ASSERT_TRUE(State);
	int SameAssets = 0;
	for (const FRegistryAsset& Theirs : State->Assets)
	{
		const FQVName Package(State->Text(Theirs.PackageName));
		std::vector<FQVAssetData> Ours;
		Session.Registry.GetAssetsByPackageName(Package, Ours);
		const FQVName Name(State->Text(Theirs.AssetName));
		const FQVName Class(State->Text(Theirs.ClassPackage) + "." + State->Text(Theirs.ClassName));
		for (const FQVAssetData& Each : Ours)
		{
			if (Each.AssetName == Name)
			{
				EXPECT_EQ(Each.ClassPath.ToView(), Class.ToView()) << Package.ToView();
				++SameAssets;
			}
		}
	}
	std::map<FQVName, std::array<std::uint8_t, 16>> Guids;
	for (const FRegistryPackage& Each : State->Packages)
	{
		Guids[FQVName(State->Text(Each.Name))] = Each.Guid;
	}
	constexpr int PackageOnly = 1;
	int SameReferences = 0;
	int OtherReferences = 0;
	for (const FRegistryNode& Node : State->Nodes)
	{
		const FQVName Package(Node.Parts == PackageOnly ? State->Text(Node.Package) : std::string());
		std::vector<FQVPackageDependency> Ours;
		// the project went on after its cook: only the very save that was cooked can be compared
		const std::vector<std::byte> File = ToBytes(ReadText(ToOsPath(Session.Registry.GetPackageFile(Package))));
		const TResult<FPackageSummary> Summary = ReadPackageSummary(File);
		if (Summary && std::memcmp(&Summary->Guid, Guids[Package].data(), sizeof(Summary->Guid)) == 0)
		{
			Session.Registry.GetDependencies(Package, EQVDependencyQuery::All, Ours);
		}
		for (const FRegistryDependency& Each : Ours.empty() ? std::vector<FRegistryDependency>() : Node.Packages)
		{
			const FRegistryNode& Other = State->Nodes[static_cast<std::size_t>(Each.Node)];
			const FQVName Target(Other.Parts == PackageOnly ? State->Text(Other.Package) : std::string());
			const bool bFound = std::any_of(Ours.begin(), Ours.end(),
				[&](const FQVPackageDependency& Own) {
					return Own.Package == Target && Own.bHard == Each.Set.IsHard() &&
						   Own.bUsedInGame == Each.Set.IsGame();
				});
			++(bFound ? SameReferences : OtherReferences);
			EXPECT_TRUE(bFound) << Package.ToView() << " -> " << Target.ToView();
		}
	}
	RecordProperty("SameAssets", SameAssets);
	RecordProperty("SameReferences", SameReferences);
	RecordProperty("OtherReferences", OtherReferences);
	EXPECT_GT(SameAssets, 40);
	EXPECT_GT(SameReferences, 50);
	EXPECT_EQ(OtherReferences, 0);
}
