// SPDX-License-Identifier: MIT
#pragma once

#include "Tests/Support/ContentProject.h"

#include <filesystem>
#include <map>
#include <string>
#include <vector>

namespace QVTest
{
/** Marks and bytes of each file that is the user's, by its path in the project. */
using FOwnFiles = std::map<std::string, std::string>;

/** What a user owns of a project: content, plugins without what is cooked there, settings, the project's file. */
FOwnFiles ReadOwnFiles(const std::filesystem::path& Project);

/** A copy of its own for each file, of the same time; the target must not be there. */
void CopyTree(const std::filesystem::path& From, const std::filesystem::path& To);

/**
 * A project whose mod Cave uses content of the project and of another plugin: hard, soft, by way of a redirector, two
 * that refer to one another, one in a folder below.
 */
class FCrashProject : public FContentTest
{
public:
	static constexpr const char* Mod = "Cave";
	/** Of the mod's maps the one that is packed; nothing is missing in it, so that no pack stops at a question. */
	static constexpr const char* Map = "Hall";
	/** Where its packs keep what they need to undo their changes. */
	static constexpr const char* Journals = "Saved/QVPak/Temp/ImportBackup";
	static constexpr const char* Manifest = "import.json";
	static constexpr const char* Copies = "Plugins/Cave/Content/_QVImported/";

	FCrashProject();
	std::filesystem::path Folder() const;
	static std::filesystem::path Journal(const std::filesystem::path& Project);

private:
	void TestBody() override {}
};
} // namespace QVTest
