// SPDX-License-Identifier: MIT
#include "QVMapModule.h"

#include "Core/QVLog.h"
#include "Engine/QVEngine.h"
#include "Engine/QVInterface.h"
#include "Export/QVMapImportRestore.h"
#include "HandOff/QVMapUpdateCheck.h"
#include "Interface/QVMapCommands.h"
#include "Interface/QVMapDiagnosticsTab.h"
#include "Interface/QVMapStyle.h"
#include "Interface/QVMapTemplateGuard.h"
#include "Interface/QVMapToolbar.h"
#include "Interface/QVMapWorkshopTab.h"
#include "Interface/SQVMapSetupWindow.h"

void FQVMapModule::StartupModule()
{
	QVLog(EQVLogVerbosity::Log, "QVMap v%s loaded", FQVMapUpdateCheck::ToolkitVersion);
	std::vector<std::string> Recovered; // told in the log
	FQVMapImportRestore::RecoverInterruptedImports(Recovered);
	FQVMapStyle::Initialize();
	FQVMapCommands::Register();
	FQVEngine::Get().Interface->LoadModuleChecked("LevelEditor");
	FQVMapToolbar::Register();
	FQVMapSetupWindow::Register();
	FQVMapDiagnosticsTab::Register();
	FQVMapWorkshopTab::Register();
	FQVMapTemplateGuard::Register();
}

void FQVMapModule::ShutdownModule()
{
	FQVMapTemplateGuard::Unregister();
	FQVMapWorkshopTab::Unregister();
	FQVMapDiagnosticsTab::Unregister();
	FQVMapSetupWindow::Unregister();
	FQVMapStyle::Shutdown();
	FQVMapCommands::Unregister();
}

IQVModuleInterface* InitializeModule()
{
	return new FQVMapModule;
}
