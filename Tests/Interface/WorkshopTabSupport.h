// SPDX-License-Identifier: MIT
#pragma once

#include "Interface/SQVWorkshopTab.h"
#include "Tests/Support/ContentProject.h"
#include "Tests/Support/SampleImages.h"
#include "Tests/Support/ScriptedDialogs.h"
#include "Tests/Support/ScriptedShell.h"
#include "Workspace/QVMapReadiness.h"

#include <map>
#include <set>

namespace QVTest
{
/** A form that nobody sees: a test types into its boxes. */
struct FFormView : IQVWorkshopTabView
{
	std::map<EQVWorkshopRow, std::string> Boxes;
	std::vector<std::size_t> Selected;
	std::set<EQVWorkshopRow> Changed;

	std::string GetText(EQVWorkshopRow Box) const override
	{
		const auto Found = Boxes.find(Box);
		return Found == Boxes.end() ? std::string() : Found->second;
	}
	void SetText(EQVWorkshopRow Box, const std::string& Text) override { Boxes[Box] = Text; }
	std::vector<std::size_t> GetSelectedScreenshots() const override { return Selected; }
	void OnRowChanged(EQVWorkshopRow Row) override { Changed.insert(Row); }
};

/** Two mods, Cave with the maps Attic and Hall, and Harbor with Pier, and the tab over them. */
struct FWorkshopTabTest : FContentTest
{
	using enum EQVWorkshopRow;

	FScriptedDialogs Dialogs;
	std::vector<std::string> Calls;
	FScriptedShell Shell{Calls};
	FFormView View;
	std::unique_ptr<SQVWorkshopTab> Tab;
	const std::string CaveFile = "Plugins/Cave/workshop_config.json";

	FWorkshopTabTest()
	{
		Engine.Interfaces.Dialogs = &Dialogs;
		Engine.Interfaces.Shell = &Shell;
		Project.AddMod("Cave", {"Maps/Hall", "Maps/Attic"});
		Project.AddMod("Harbor", {"Deep/Er/Pier"});
		Scan();
	}

	void Open(const std::string& Map) { ASSERT_TRUE(Engine.OpenMap(Map)) << Map; }
	/** As the tab's button has it: a pack that a test ends when it likes. */
	std::string Packing;
	std::function<void(const FQVExportResult&)> Packed;
	bool bBuilding = false;

	void OpenTab()
	{
		Tab = std::make_unique<SQVWorkshopTab>(View,
			FQVWorkshopTabActions{[this] { return bBuilding; },
				[this](std::string& OutMod, std::string& OutMap, std::string& OutGamePath)
				{
					FQVText Error;
					const bool bResolved = FQVMapReadiness::ResolveOpenMap(OutMod, OutMap, Error, &OutGamePath);
					bResolved ? static_cast<void>(0) : Dialogs.ShowMessage(Error, {});
					return bResolved;
				},
				[this](const std::string& Mod, const std::string& Map, const std::string& GamePath, auto OnComplete)
				{
					Packing += QVPrintf("%s %s %s\n", Mod, Map, GamePath);
					Packed = std::move(OnComplete);
				}});
	}
	/** As a user does who then goes to another box. */
	void Enter(EQVWorkshopRow Box, const std::string& Text)
	{
		View.Boxes[Box] = Text;
		Tab->OnTextCommitted();
	}
	/** The path of a new image, filled up with zeros to so many bytes. */
	std::string PutImage(const std::string& Name, std::string Bytes, std::size_t Size = 0) const
	{
		Bytes.resize(std::max(Size, Bytes.size()));
		Project.Write(Name, Bytes);
		return Project.At(Name);
	}
	FQVWorkshopConfig Saved(const std::string& Mod = "Cave") const
	{
		FQVWorkshopConfig Config;
		EXPECT_TRUE(FQVMapWorkshopConfig::Load(Project.At("Plugins/" + Mod), Config));
		return Config;
	}
	/** All that was shown since the last call. */
	std::string Shown() { return Project.Mask(FQVString::Join(std::exchange(Dialogs.Shown, {}), "\n")); }
};
} // namespace QVTest
