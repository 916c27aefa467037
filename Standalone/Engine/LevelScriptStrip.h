// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Engine/LevelScriptFile.h"

#include <span>

namespace QVStandalone
{
/**
 * Takes the code out of a map's Level Blueprint: the editor's command program of the installed engine loads the map,
 * removes the graphs, compiles and saves; then we read what it has saved. Whatever is not as it should be by then, the
 * map's file is what it was before, byte for byte. Game thread, which is blocked for as long as the editor takes.
 */
class FLevelScriptStrip
{
public:
	/** What is given outlives it. */
	explicit FLevelScriptStrip(const FLevelScriptFile& InBefore);

	/** The engine in use is one that can be asked: not our own stand-in, nor one without its Python plugin. */
	static bool HasEngine();
	/** Why it need not be tried with this map, told before anything is changed; empty if nothing is known. */
	static std::string WhatPrevents(const FLevelScriptFile& File);

	/**
	 * Graphs: names. A copy of the map as it was stays in Saved/QVPak/Backup: that is the undo, and the log says where.
	 * The error has the last lines of the child, and says where the copy is if the file could not be put back.
	 */
	QVFormats::FStatus Run(std::span<const std::string> Graphs);

	/** The script for the editor, Python 3. */
	static std::string MakeScript(const FLevelScriptFile& File, std::span<const std::string> Graphs);

private:
	const FLevelScriptFile& Before;
	const std::string File;
	const std::string BackupDir;
	const std::string Copy;
	const std::string Script;

	std::string Prepare(std::span<const std::string> Graphs) const;
	std::string WhatIsWrong() const;
	std::string PutBack() const;
};
} // namespace QVStandalone
