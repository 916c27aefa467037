// SPDX-License-Identifier: MIT
#include "Diagnostics/QVMapDiagnostics.h"

#include "Tests/Diagnostics/DiagnosticsTestSupport.h"

namespace
{
/** The whole diagnostics over what may be open in an editor when nobody says which map is meant. */
struct FOpenMapSituations : QVTest::FDiagnosticsTest
{
	QVTest::FBareWorld World;

	FOpenMapSituations()
	{
		Project.AddMod("Cave", {"Maps/Hall"});
		Project.AddMod("QUARVEL", {"Templates/DefaultMapTemplate"});
		Scan();
		Editor.World = &World;
	}

	/** The mod, then the findings of the map's groups that are not passes: "Error Content.MapSaved". */
	std::string Run()
	{
		constexpr std::string_view Severities[] = {"Pass", "Info", "Warning", "Error"};
		const FQVDiagnosticReport Report = FQVMapDiagnostics::RunDiagnostics(FQVDiagnosticOptions::Everything());
		EXPECT_NE(Describe(Report.Findings, "Env.UnrealPak"), "");
		EXPECT_NE(Describe(Report.Findings, "Export.Record"), "");
		std::string Text = "'" + Report.ModName + "'";
		for (const FQVDiagnosticFinding& Each : Report.Findings)
		{
			const bool bOfMap =
				Each.Category == EQVDiagCategory::ModContent || Each.Category == EQVDiagCategory::References;
			if (bOfMap && Each.Severity >= EQVDiagSeverity::Warning)
			{
				Text += QVPrintf(", %s %s", Severities[static_cast<std::size_t>(Each.Severity)], Each.Id.ToView());
			}
		}
		return Text;
	}
};

/** What the rules of actors say of a world without any. */
constexpr const char* NoActors =
	", Warning Content.AnyCheckpoint, Error Content.PlayerStart, Warning Content.LevelDoor";
} // namespace

TEST_F(FOpenMapSituations, OnlyAMapOfAModIsOne)
{
	const std::string NoMap = "'', Warning Content.MapInPlugin";
	EXPECT_EQ(Run(), std::string("'Cave'") + NoActors);
	for (const char* Path : {"/Temp/Untitled_1.Untitled", "/Game/Maps/Hall.Hall", "/Engine/Maps/Entry.Entry",
			 "/QUARVEL/Templates/DefaultMapTemplate.DefaultMapTemplate", "/Gone/Maps/Hall.Hall", ""})
	{
		World.Path = Path;
		EXPECT_EQ(Run(), NoMap) << Path;
	}
	Editor.World = nullptr;
	EXPECT_EQ(Run(), NoMap);
	Engine.Interfaces.Editor = nullptr;
	EXPECT_EQ(Run(), NoMap);
}

TEST_F(FOpenMapSituations, AMapThatIsNotSavedOrHasLostItsDescriptor)
{
	World.bDirty = true;
	EXPECT_EQ(Run(), std::string("'Cave', Warning Content.MapSaved") + NoActors);
	World.bDirty = false;
	Project.Remove("Plugins/Cave/Cave.uplugin");
	EXPECT_EQ(Run(), "'', Warning Content.MapInPlugin");
}
