// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/ScriptReader.h"

namespace QVFormats
{
/** What the file of a map says of its world. All indices lie inside the header's tables. */
struct FMapWorld
{
	std::size_t World = 0;
	std::size_t PersistentLevel = 0;
	bool bPartitioned = false;
	/** The actors lie in files of their own, below `__ExternalActors__`; some may yet be listed here. */
	bool bExternalActors = false;
	/** In the level's order, each once. Null: an empty slot; an import: an actor in a file of its own. */
	std::vector<FPackageIndex> Actors;
	/** Null if the level has none. */
	FPackageIndex ScriptBlueprint;
	FPackageIndex ScriptActor;
	/** Of the script actor's class, as far as that lies in this file. */
	std::vector<FScriptFunction> ScriptFunctions;
	/** Long package names of the levels that are streamed in, in the world's order; empty for one that names none. */
	std::vector<std::string> StreamingLevels;
};

/**
 * Reads a map that the editor has saved, layouts of 4.27 to 5.6; a cooked one is refused. Header: of this file. Errors
 * are sentences to be put behind the file's name. Linear in the number of actors.
 */
TResult<FMapWorld> ReadMapWorld(const FPackageHeader& Header, FBytes File);
} // namespace QVFormats
