// SPDX-License-Identifier: MIT
#include "Diagnostics/QVMapDiagnostics.h"

#include "Engine/QVEditor.h"
#include "Engine/QVWorld.h"
#include "Standalone/Engine/OsPath.h"
#include "Tests/Diagnostics/MapFacts.h"
#include "Tests/Support/TestPrograms.h"
#include "Tests/Support/ToolkitTest.h"

#include <algorithm>
#include <deque>
#include <set>

using namespace QVTest;
using namespace QVFormats;
namespace fs = std::filesystem;

namespace
{
struct FRealFolder
{
	const char* Name;
	const char* Mod;
	bool bPlugin = false;
};

/** All maps of a folder of the editor's files. */
struct FRealMaps : FToolkitTest, testing::WithParamInterface<FRealFolder>
{
	fs::path Content;
	std::string Root;

	/** A plugin's files are a mod; those of a project are the project's and, once more, those of a mod beside it. */
	std::string Use(const FRealFolder& Folder)
	{
		const std::string Mod = Folder.Mod;
		Content = ContentFolder() / Folder.Name / "Content";
		Root = Folder.bPlugin ? "/" + Mod : "/Game";
		Project.Write("Plugins/" + Mod + "/" + Mod + ".uplugin", R"({"FileVersion": 3, "CanContainContent": true})");
		ShowFolder(Content, QVStandalone::ToOsPath(Project.At("Plugins/" + Mod + "/Content")));
		if (!Folder.bPlugin)
		{
			ShowFolder(Content, QVStandalone::ToOsPath(Project.At("Content")));
		}
		Engine.GetAssetRegistry().StartScan();
		EXPECT_TRUE(Engine.GetAssetRegistry().FinishScan());
		return Mod;
	}
	std::vector<fs::path> Maps() const
	{
		std::vector<fs::path> Found;
		for (const fs::directory_entry& Entry : fs::recursive_directory_iterator(Content))
		{
			if (Entry.path().extension() == ".umap")
			{
				Found.push_back(Entry.path());
			}
		}
		std::sort(Found.begin(), Found.end());
		return Found;
	}
	std::string PackageOf(const fs::path& File) const
	{
		return Root + "/" + QVStandalone::FromOsPath(File.lexically_relative(Content).replace_extension());
	}
	/** Files of the actors that a map has outside its own. */
	std::deque<FMapFacts> ExternalActors(const fs::path& Map) const
	{
		std::deque<FMapFacts> Found;
		const fs::path Below = Content / "__ExternalActors__" / Map.lexically_relative(Content).replace_extension();
		std::error_code None;
		for (const fs::directory_entry& Entry : fs::recursive_directory_iterator(Below, None))
		{
			if (Entry.is_regular_file())
			{
				Found.emplace_back(Entry.path());
			}
		}
		return Found;
	}
	std::size_t CountStarts(const fs::path& Map) const
	{
		std::size_t Found = FMapFacts(Map).Count("PlayerStart");
		for (const FMapFacts& Actor : ExternalActors(Map))
		{
			Found += Actor.Count("PlayerStart");
		}
		return Found;
	}
	/** Files of the levels that a map streams in. It refers to no other map in the files that there are. */
	std::vector<fs::path> Sublevels(const fs::path& Own, const FMapFacts& Map) const
	{
		std::vector<fs::path> Found;
		const std::size_t Entries = Map.Count("LevelStreamingAlwaysLoaded") + Map.Count("LevelStreamingDynamic");
		const std::vector<std::string> Soft = Entries > 0 ? Map.SoftPackages() : std::vector<std::string>();
		for (const std::string& Package : std::set<std::string>(Soft.begin(), Soft.end()))
		{
			const fs::path File = Content / (Package.substr(std::min(Root.size() + 1, Package.size())) + ".umap");
			if (File != Own && fs::exists(File) && FMapFacts(File).HasWorld())
			{
				Found.push_back(File);
			}
		}
		EXPECT_EQ(Found.size(), Entries);
		return Found;
	}

	FQVDiagnosticReport Diagnose(const std::string& Mod)
	{
		FQVDiagnosticOptions Options = FQVDiagnosticOptions::Everything();
		Options.ModName = Mod;
		return FQVMapDiagnostics::RunDiagnostics(Options);
	}
	static const FQVDiagnosticFinding& Find(const FQVDiagnosticReport& Report, std::string_view Id)
	{
		static const FQVDiagnosticFinding None;
		const auto Found = std::find_if(Report.Findings.begin(), Report.Findings.end(),
			[&](const FQVDiagnosticFinding& Each) { return Each.Id == FQVName(Id); });
		return Found != Report.Findings.end() ? *Found : None;
	}
	static std::multiset<std::string> Violations(const FQVDiagnosticReport& Report, std::string_view Category)
	{
		std::multiset<std::string> Found;
		for (const FQVDiagnosticFinding& Child : Find(Report, "Content.Security").Children)
		{
			if (Child.Id == FQVName(QVPrintf("Content.Security.%s", Category)))
			{
				Found.insert(Child.Detail.ToString());
			}
		}
		return Found;
	}
	std::size_t OpenActors() const
	{
		std::vector<const IQVActor*> Actors;
		Engine.Interfaces.Editor->GetOpenWorld()->GetPersistentLevel()->GetActors(Actors);
		return static_cast<std::size_t>(
			std::count_if(Actors.begin(), Actors.end(), [](const IQVActor* Actor) { return Actor != nullptr; }));
	}

	void ExpectFacts(const fs::path& File, const FMapFacts& Facts, const FQVDiagnosticReport& Report);
	void CheckMap(const std::string& Mod, const fs::path& File);
	void ExpectLevelsOfTheMod(const FQVDiagnosticReport& Report, const std::string& Mod);
};
} // namespace

void FRealMaps::ExpectFacts(const fs::path& File, const FMapFacts& Facts, const FQVDiagnosticReport& Report)
{
	std::size_t Actors = Facts.CountActors();
	std::size_t Starts = CountStarts(File);
	for (const FMapFacts& Actor : ExternalActors(File))
	{
		Actors += Actor.HoldsActor() ? 1 : 0;
	}
	for (const fs::path& Sublevel : Sublevels(File, Facts))
	{
		Starts += CountStarts(Sublevel);
	}
	EXPECT_EQ(OpenActors(), Actors);
	EXPECT_EQ(Find(Report, "Content.PlayerStart").Detail.ToString(),
		Starts > 0 ? QVPrintf("%d PlayerStart(s) placed.", Starts) : "No PlayerStart in this map.");
	EXPECT_EQ(Violations(Report, "Level Blueprint"), Facts.ScriptViolations());
	EXPECT_EQ(Violations(Report, "World Partition").size(), Facts.HasTag("LevelIsPartitioned") ? 1U : 0U);
}

void FRealMaps::CheckMap(const std::string& Mod, const fs::path& File)
{
	SCOPED_TRACE(File.string());
	const FMapFacts Facts(File);
	const FStatus Opened = Engine.OpenMap(PackageOf(File));
	ASSERT_EQ(Opened.IsOk(), Facts.HasWorld()) << (Opened ? std::string() : Opened.Error().Message);
	const FQVDiagnosticReport Report = Diagnose(Mod);
	EXPECT_FALSE(Report.bCancelled);
	EXPECT_EQ(Find(Report, "Ref.Audit").Severity, EQVDiagSeverity::Pass);
	EXPECT_FALSE(Find(Report, "Export.Record").Id.IsNone());
	ExpectLevelsOfTheMod(Report, Mod);
	if (Opened)
	{
		ExpectFacts(File, Facts, Report);
	}
}

/** By the tags of all the mod's maps, opened or not. */
void FRealMaps::ExpectLevelsOfTheMod(const FQVDiagnosticReport& Report, const std::string& Mod)
{
	std::vector<std::string> Partitioned;
	std::vector<std::string> External;
	for (const fs::path& File : Maps())
	{
		const FMapFacts Facts(File);
		const std::string Name = QVStandalone::FromOsPath(File.stem());
		Facts.HasTag("LevelIsPartitioned") ? Partitioned.push_back(Name) : static_cast<void>(0);
		Facts.HasTag("LevelIsUsingExternalActors") ? External.push_back(Name) : static_cast<void>(0);
	}
	EXPECT_EQ(Find(Report, "Content.WorldPartition").Severity,
		Partitioned.empty() ? EQVDiagSeverity::Pass : EQVDiagSeverity::Error)
		<< Mod;
	if (!Partitioned.empty())
	{
		EXPECT_EQ(Find(Report, "Content.WorldPartition").Detail.ToString(),
			"World Partition map(s): " + FQVString::Join(Partitioned, ", "));
	}
	EXPECT_EQ(Find(Report, "Content.ExternalActors").Detail.ToString(),
		External.empty() ? "" : "Map(s) using One File Per Actor: " + FQVString::Join(External, ", "));
}

TEST_P(FRealMaps, FactsOfEachMapAreFound)
{
	if (ContentFolder().empty())
	{
		GTEST_SKIP() << "QVMAP_TEST_CONTENT is not set";
	}
	const std::string Mod = Use(GetParam());
	EXPECT_FALSE(Maps().empty());
	for (const fs::path& File : Maps())
	{
		CheckMap(Mod, File);
	}
}

INSTANTIATE_TEST_SUITE_P(Of, FRealMaps,
	testing::Values(FRealFolder{"orbis-maps", "Cave"}, FRealFolder{"mini4wd", "Cave"}, FRealFolder{"endless", "Cave"},
		FRealFolder{"als", "ALS", true}, FRealFolder{"learning01", "Cave"}, FRealFolder{"pcgex", "Cave"},
		FRealFolder{"a3", "Cave"}),
	[](const auto& Case) { return FQVString::ReplaceAll(Case.param.Name, "-", "_"); });
