// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Editor.h"

namespace QVStandalone
{
IQVBlueprint* FEditor::GetLevelScriptBlueprint(const IQVLevel& Level, FQVText& OutRefusal)
{
	const bool bHasOne = World != nullptr && &Level == World->GetPersistentLevel() && World->HasLevelScriptBlueprint();
	if (bHasOne)
	{
		OutRefusal = FQVText::FromString(QVPrintf(
			"Only Unreal Editor can take the code out of a Level Blueprint: it has to be compiled again. Open %s "
			"there, choose Blueprints > Open Level Blueprint, delete all nodes of every graph, press Compile and "
			"save the map.",
			World->GetPackageName()));
	}
	return nullptr;
}
} // namespace QVStandalone
