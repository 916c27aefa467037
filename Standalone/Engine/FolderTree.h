// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Engine/PackageFileWalk.h"

#include <memory>

namespace QVStandalone
{
/** A folder on the way from the disk to a list in alphabetical order. */
struct FFolderNode
{
	/** A file by `hall`, a folder by `maps/`: so they sort as the packages' names do. */
	struct FEntry
	{
		std::string Key;
		FWalkedFile File;
		std::unique_ptr<FFolderNode> Inner;
	};

	/** Of which root it is a part. */
	std::size_t Root = 0;
	FWalkedFolder Folder;
	std::vector<FEntry> Entries;

	std::unique_ptr<FFolderNode> MakeInner(std::string_view Name) const;
	void Sort();
	/** Moves all files, those of inner folders too, to the end of the lists. */
	void Flatten(FPackageWalk& Out);
};
} // namespace QVStandalone
