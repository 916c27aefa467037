// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace QVTest
{
/** A file, or a folder with all that is in it, marked read-only or not; nothing happens if it is not there. */
void RemoveAll(const std::filesystem::path& Path);

/** A new folder for one test, removed with it. Its path has a blank and letters of other scripts in it. */
class FTempFolder
{
public:
	FTempFolder();
	~FTempFolder();
	FTempFolder(const FTempFolder&) = delete;
	FTempFolder& operator=(const FTempFolder&) = delete;

	const std::filesystem::path& Path() const { return Folder; }

private:
	std::filesystem::path Root;
	std::filesystem::path Folder;
};
} // namespace QVTest
