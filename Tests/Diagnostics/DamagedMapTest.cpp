// SPDX-License-Identifier: MIT
#include "Content/QVMapSecurityScanner.h"
#include "Diagnostics/QVMapDiagnostics.h"
#include "Diagnostics/QVMapRequiredActors.h"
#include "Engine/QVEditor.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Formats/Package/LevelPackages.h"
#include "Tests/Support/ContentProject.h"

#include <algorithm>
#include <filesystem>

using namespace QVTest;
using namespace QVFormats;
namespace fs = std::filesystem;

namespace
{
constexpr const char* HallFile = "Plugins/Cave/Content/Maps/Hall.umap";

/** A small map with a bit of everything, whose file is damaged and checked again and again. */
struct FDamagedMap : FContentTest
{
	std::string Whole;
	std::size_t Refused = 0;
	std::size_t Unreadable = 0;

	FDamagedMap()
	{
		Project.AddMod("Cave", {});
		FLevelPackageSpec Spec{.PackageName = "/Cave/Maps/Hall"};
		Spec.Actors = {{"Start_0", "/Script/Engine.PlayerStart"}, {"Note_0", "/Script/Engine.Note", false, true},
			{"Gate_7", "/Cave/BP_Gate.BP_Gate_C", false, false, "Type", "ECheckpointType::Start"}};
		Spec.bScript = true;
		Spec.Functions = {{"ReceiveBeginPlay", 22}};
		Spec.StreamingLevels = {"/Cave/Maps/Far"};
		Spec.Meshes = {"/Cave/Rock"};
		Whole = ToText(BuildLevelPackage(Spec));
		PutMesh("/Cave/Rock");
		Project.Write(FileOf("/Cave/Maps/Far", ".umap"), ToText(BuildLevelPackage({.PackageName = "/Cave/Maps/Far"})));
		const FClassPackageSpec Gate{.PackageName = "/Cave/BP_Gate", .ParentPath = "/Script/Engine.Actor"};
		Project.Write(FileOf(Gate.PackageName), ToText(BuildClassPackage(Gate)));
		Scan();
	}

	static std::string ToText(const std::vector<std::byte>& Bytes)
	{
		return {reinterpret_cast<const char*>(Bytes.data()), Bytes.size()};
	}
	std::string HallPath() const { return Project.At(HallFile); }

	/** What looks into the map itself. False if it cannot be opened; that is told with file and reason. */
	bool CheckLevel(const std::string& Bytes)
	{
		Project.Remove(HallFile); // some file systems wait for the disk where a file is overwritten
		Project.Write(HallFile, Bytes);
		const FStatus Opened = Engine.OpenMap("/Cave/Maps/Hall");
		if (!Opened)
		{
			++Refused;
			const std::string& Message = Opened.Error().Message;
			EXPECT_TRUE(Message.starts_with(HallPath() + " ") && Message.size() > HallPath().size() + 10) << Message;
		}
		const IQVWorld* World = Engine.Interfaces.Editor->GetOpenWorld();
		EXPECT_EQ(World != nullptr, Opened.IsOk());
		EXPECT_EQ(FQVMapRequiredActors::EvaluateRequiredActors(World).bEvaluated, Opened.IsOk());
		FQVMapSecurityScanner::ScanForMapEligibility("Cave", World, {});
		Recording.Take();
		return Opened.IsOk();
	}

	/** All groups. */
	bool CheckAll(const std::string& Bytes)
	{
		const bool bOpened = CheckLevel(Bytes);
		// files of one size and time are not read again
		fs::last_write_time(QVStandalone::ToOsPath(HallPath()), fs::file_time_type(std::chrono::hours(++Written)));
		Engine.GetAssetRegistry().ScanPathsSynchronous(Project.At("Plugins/Cave/Content"));
		FQVDiagnosticOptions Options = FQVDiagnosticOptions::Everything();
		Options.ModName = "Cave";
		ExpectWholeReport(FQVMapDiagnostics::RunDiagnostics(Options), bOpened);
		Recording.Take();
		return bOpened;
	}

private:
	int Written = 0;

	static std::size_t CountOf(const FQVDiagnosticReport& Report, std::string_view Prefix)
	{
		return static_cast<std::size_t>(std::count_if(Report.Findings.begin(), Report.Findings.end(),
			[&](const FQVDiagnosticFinding& Each) { return Each.Id.ToView().starts_with(Prefix); }));
	}
	static const FQVDiagnosticFinding* Find(const FQVDiagnosticReport& Report, std::string_view Id)
	{
		const auto Found = std::find_if(Report.Findings.begin(), Report.Findings.end(),
			[&](const FQVDiagnosticFinding& Each) { return Each.Id == FQVName(Id); });
		return Found != Report.Findings.end() ? &*Found : nullptr;
	}

	/** Each group has said what it always says; actors were counted if there is a world. */
	void ExpectWholeReport(const FQVDiagnosticReport& Report, bool bOpened)
	{
		EXPECT_EQ(CountOf(Report, "Env."), 8U);
		EXPECT_EQ(CountOf(Report, "Export."), 1U);
		EXPECT_NE(Find(Report, "Content.Security"), nullptr);
		EXPECT_NE(Find(Report, "Ref.Audit"), nullptr);
		EXPECT_EQ(Find(Report, "Content.MapSaved") != nullptr, bOpened);
		EXPECT_EQ(Find(Report, "Content.PlayerStart") != nullptr, bOpened);
		const FQVDiagnosticFinding* Packages = Find(Report, "Ref.Unreadable");
		ASSERT_NE(Packages, nullptr);
		if (Packages->Severity != EQVDiagSeverity::Pass)
		{
			++Unreadable;
			ASSERT_EQ(Packages->Children.size(), 1U);
			EXPECT_EQ(Packages->Severity, EQVDiagSeverity::Error);
			EXPECT_EQ(Packages->Children[0].Title.ToString(), HallPath());
			EXPECT_GT(Packages->Children[0].Detail.ToString().size(), std::string("The file .").size());
		}
	}
};
} // namespace

/** Each byte by two patterns. All groups run for every eighth, so that it stays a matter of seconds. */
TEST_F(FDamagedMap, AnyByteMayBeWrong)
{
	ASSERT_TRUE(CheckAll(Whole));
	ASSERT_EQ(Unreadable, 0U);
	for (std::size_t At = 0; At < Whole.size(); ++At)
	{
		for (const int Pattern : {0xFF, 0x01})
		{
			std::string Bad = Whole;
			Bad[At] = static_cast<char>(Bad[At] ^ Pattern);
			At % 8 == 0 ? CheckAll(Bad) : CheckLevel(Bad);
			ASSERT_FALSE(HasFailure()) << "byte " << At << " by " << Pattern;
		}
	}
	EXPECT_GT(Refused, Whole.size() / 5);
	EXPECT_GT(Unreadable, Whole.size() / 40);
}

/** Each length. All groups run for every eighth, and for the shortest and the longest. */
TEST_F(FDamagedMap, AnyLengthMayBeMissing)
{
	for (std::size_t Size = 0; Size < Whole.size(); ++Size)
	{
		const bool bAll = Size % 8 == 0 || Size < 32 || Whole.size() - Size < 32;
		EXPECT_FALSE(bAll ? CheckAll(Whole.substr(0, Size)) : CheckLevel(Whole.substr(0, Size)));
		ASSERT_FALSE(HasFailure()) << "cut to " << Size;
	}
	EXPECT_GT(Unreadable, 64U);
}
