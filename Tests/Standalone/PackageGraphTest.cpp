// SPDX-License-Identifier: MIT
#include "Standalone/Engine/PackageGraphBuilder.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>

using namespace QVStandalone;

namespace
{
std::vector<std::string> Referencers(const FPackageGraph& Graph, const char* Package)
{
	std::vector<std::string> Names;
	for (const std::uint32_t Row : Graph.ReferencersOf(FQVName(Package)))
	{
		Names.push_back(Graph.NameAt(Row).ToString());
	}
	return Names;
}

std::vector<std::string> Below(const FPackageGraph& Graph, const char* Folder)
{
	std::vector<std::string> Names;
	const auto [First, Last] = Graph.RowsBelow(Folder);
	for (std::uint32_t Row = First; Row < Last; ++Row)
	{
		Names.push_back(Graph.NameAt(Row).ToString());
	}
	return Names;
}

using FNames = std::vector<std::string>;
} // namespace

TEST(PackageGraph, IsInOrderWhateverCameFirst)
{
	FPackageGraphBuilder Builder;
	Builder.AddPackage(FQVName("/Gr/b"), {7, 8, true});
	Builder.AddAsset({FQVName("b"), FQVName("/Script/Engine.World"), {}});
	Builder.AddReference({FQVName("/Gr/A"), true, false});
	Builder.AddReference({FQVName(), true, true});
	Builder.AddReference({FQVName("/Gr/Gone"), false, true});
	Builder.AddPackage(FQVName("/Gr/B/Inner"));
	Builder.AddPackage(FQVName("/Gr/b-x"));
	Builder.AddPackage(FQVName("/Gr/A"), {1, 2, false});
	Builder.AddReference({FQVName("/Gr/gone"), true, true});
	Builder.AddReference({FQVName("/Gr/gone"), false, false});
	Builder.AddPackage(FQVName("/Gr/B"), {3, 3, false}); // once more: nobody sees it
	Builder.AddReference({FQVName("/Gr/b-x"), true, true});
	Builder.AddPackage(FQVName("/Grown/X"));
	const FPackageGraph Graph = Builder.Build();

	EXPECT_EQ(Below(Graph, ""), (FNames{"/Gr/A", "/Gr/b", "/Gr/b-x", "/Gr/B/Inner", "/Grown/X"}));
	EXPECT_EQ(Below(Graph, "/gr"), (FNames{"/Gr/A", "/Gr/b", "/Gr/b-x", "/Gr/B/Inner"}));
	EXPECT_EQ(Below(Graph, "/Gr/B/"), FNames{"/Gr/B/Inner"});
	EXPECT_EQ(Below(Graph, "/Gro"), FNames{});
	const std::uint32_t Row = Graph.FindRow(FQVName("/gr/B"));
	ASSERT_EQ(Row, 1U);
	EXPECT_EQ(Graph.FileAt(Row), (FPackageFile{7, 8, true}));
	ASSERT_EQ(Graph.AssetsAt(Row).size(), 1U);
	EXPECT_EQ(Graph.AssetsAt(Row)[0].AssetName, FQVName("B"));
	ASSERT_EQ(Graph.ReferencesAt(Row).size(), 2U);
	EXPECT_TRUE(Graph.ReferencesAt(Row)[0].IsHard() && !Graph.ReferencesAt(Row)[0].IsUsedInGame());
	EXPECT_TRUE(!Graph.ReferencesAt(Row)[1].IsHard() && Graph.ReferencesAt(Row)[1].IsUsedInGame());
	EXPECT_EQ(Referencers(Graph, "/Gr/GONE"), (FNames{"/Gr/A", "/Gr/A", "/Gr/b"}));
	EXPECT_EQ(Referencers(Graph, "/Gr/b-x"), FNames{});
	EXPECT_EQ(Graph.FindRow(FQVName("/Gr/Gone")), FPackageGraph::NoRow);
	EXPECT_EQ(Graph.FindRow(FQVName("/Gr/never met before")), FPackageGraph::NoRow);
	EXPECT_EQ(Graph.FindRow(FQVName()), FPackageGraph::NoRow);
	EXPECT_EQ(Builder.Build().Num(), 0U);
}

/** Against maps and sets, with packages that refer to themselves and to what is not there. */
TEST(PackageGraph, AgreesWithAPlainOne)
{
	constexpr int Packages = 3000;
	constexpr int References = 12;
	std::mt19937 Random(5);
	std::map<std::string, std::multiset<std::string>> Forward;
	std::map<std::string, std::multiset<std::string>> Backward;
	FPackageGraphBuilder Builder;
	for (int Package = 0; Package < Packages; ++Package)
	{
		const std::string Name = "/Rnd/P" + std::to_string(Package * 7 % Packages);
		Builder.AddPackage(FQVName(Name));
		Builder.AddAsset({FQVName("P"), FQVName("/Script/Engine.StaticMesh"), {}});
		for (int Each = 0; Each < References; ++Each)
		{
			const std::string Target = "/Rnd/P" + std::to_string(Random() % (Packages + 100));
			Builder.AddReference({FQVName(Target), true, true});
			Forward[Name].insert(Target);
			Backward[Target].insert(Name);
		}
	}
	const FPackageGraph Graph = Builder.Build();
	ASSERT_EQ(Graph.Num(), static_cast<std::uint32_t>(Packages));
	ASSERT_EQ(Graph.NumReferences(), static_cast<std::size_t>(Packages * References));
	for (std::uint32_t Row = 0; Row < Graph.Num(); ++Row)
	{
		std::multiset<std::string> Found;
		for (const FPackedReference Reference : Graph.ReferencesAt(Row))
		{
			Found.insert(Reference.Package().ToString());
		}
		ASSERT_EQ(Found, Forward[Graph.NameAt(Row).ToString()]);
	}
	for (const auto& [Target, Expected] : Backward)
	{
		const FNames Found = Referencers(Graph, Target.c_str());
		ASSERT_EQ(std::multiset<std::string>(Found.begin(), Found.end()), Expected) << Target;
	}
	// what is promised; other tests' names stand in the flat table too
	constexpr std::size_t OtherNames = 100'000;
	EXPECT_LT(Graph.BytesUsed(), Packages * 100 + Packages * References * 12 + OtherNames * 4);
}
