// SPDX-License-Identifier: MIT
#include "Interface/QVMapCommands.h"

#include "Engine/QVEngine.h"
#include "Engine/QVInterface.h"
#include "HandOff/QVMapPlaytest.h"
#include "Interface/QVMapWorkshopTab.h"
#include "Workspace/QVMapConfig.h"

namespace
{
void PackOpenMap()
{
	FQVPlayRequest Request;
	if (FQVMapPlaytest::ResolveOpenMap(Request.ModName, Request.MapName, Request.GamePath))
	{
		FQVMapPlaytest::RunExport(Request);
	}
}

void ToggleVerbose()
{
	FQVMapConfig::SetVerboseLogging(!FQVMapConfig::GetVerboseLogging());
}

FQVCommand MakeCommand(
	const std::string& Name, std::string_view Label, std::string_view Tooltip, std::function<void()> Execute)
{
	FQVCommand Command;
	Command.Name = Name;
	Command.Label = {FQVMapCommands::TextNamespace, Name, Label};
	Command.Tooltip = {FQVMapCommands::TextNamespace, Name + "_ToolTip", Tooltip};
	Command.Execute = std::move(Execute);
	return Command;
}
} // namespace

void FQVMapCommands::Register()
{
	FQVCommandContext Context;
	Context.Name = ContextName;
	Context.Description = FQVText::FromString("QVMap Plugin");
	Context.StyleSet = "QVMap";
	Context.Commands = {
		MakeCommand("BrandCommand", "QVMap", "QVMap - Quarvel Mapping Tools", {}),
		MakeCommand("PlayCommand", "Play", "Pack current map's plugin and launch game", FQVMapPlaytest::PlayOpenMap),
		MakeCommand("PackageCommand", "Package", "Package PAK file (no launch)", PackOpenMap),
		MakeCommand("SettingsCommand", "Settings", "Configure QVMap export settings", {}),
		MakeCommand("ToggleVerboseCommand", "Verbose Logging", "Toggle detailed packing logs", ToggleVerbose),
		MakeCommand("WorkshopCommand", "Workshop", "Open Workshop upload panel", FQVMapWorkshopTab::Open),
	};
	FQVEngine::Get().Interface->RegisterCommands(std::move(Context));
}

void FQVMapCommands::Unregister()
{
	FQVEngine::Get().Interface->UnregisterCommands(ContextName);
}
