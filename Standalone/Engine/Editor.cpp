// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Editor.h"

#include "Engine/QVEngine.h"
#include "Engine/QVPackages.h"
#include "Standalone/Engine/EngineLog.h"
#include "Standalone/Engine/LevelScriptStrip.h"

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
/** Empty if it can be tried. */
std::string WhyNot(const TResult<FLevelScriptFile>& File)
{
	if (!FLevelScriptStrip::HasEngine())
	{
		return "Only Unreal Editor can take the code out of a Level Blueprint: it has to be compiled again";
	}
	const std::string Why = File ? FLevelScriptStrip::WhatPrevents(*File) : File.Error().Message;
	return Why.empty() ? Why
					   : QVPrintf("Unreal Editor cannot be made to take the code out of this Level Blueprint: %s", Why);
}
} // namespace

void FEditor::SetOpenWorld(std::unique_ptr<FWorld> NewWorld, FReadWorld ReadAgain)
{
	Blueprint.reset();
	World = NewWorld != nullptr ? std::make_unique<FEditorWorld>(std::move(NewWorld)) : nullptr;
	ReadWorld = std::move(ReadAgain);
	if (World != nullptr)
	{
		MapOpened.Broadcast();
	}
}

bool FEditor::SaveLevelAs(const IQVLevel&, std::string&)
{
	LogEngine(EQVLogVerbosity::Warning, "There is no window to ask for a place to save the level in");
	return false;
}

IQVBlueprint* FEditor::GetLevelScriptBlueprint(const IQVLevel& Level, FQVText& OutRefusal)
{
	const bool bHasOne = World != nullptr && &Level == World->GetPersistentLevel() && World->HasLevelScriptBlueprint();
	if (!bHasOne)
	{
		return nullptr;
	}
	const std::string Name = World->GetPackageName();
	std::string File;
	FQVEngine::Get().Packages->TryConvertLongPackageNameToFilename(Name, File, IQVPackages::MapPackageExtension);
	auto Opened = FLevelScriptFile::Read(Name, File);
	if (const std::string Why = WhyNot(Opened); !Why.empty())
	{
		OutRefusal = FQVText::FromString(QVPrintf("%s. Open %s there, choose Blueprints > Open Level Blueprint, delete "
												  "all nodes of every graph, press Compile and save the map.",
			Why, Name));
		return nullptr;
	}
	Blueprint = std::make_unique<FLevelScriptBlueprint>(std::move(*Opened),
		[this, File]
		{
			FQVEngine::Get().AssetRegistry->ScanModifiedAssetFiles({&File, 1});
			RenewOpenWorld();
		});
	return Blueprint.get();
}

void FEditor::RenewOpenWorld()
{
	if (World == nullptr)
	{
		return;
	}
	auto Reading = ReadWorld();
	if (!Reading)
	{
		LogEngine(EQVLogVerbosity::Error, "The open map is not shown as it was saved: %s", Reading.Error().Message);
		return;
	}
	World->Renew(std::move(*Reading));
}
} // namespace QVStandalone
