// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

namespace QVTest
{
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
