// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace QVTest
{
/**
 * Remembers of files and folders what is on the disk for sure, and can make it what they are. Told before each change;
 * a file's data is known for good when it was flushed, a name when its folder was. Paths are full, without links.
 */
class FPowerCut
{
public:
	/** Shadow: a folder of its own on the same disk. */
	explicit FPowerCut(std::string InShadow)
		: Shadow(std::move(InShadow))
	{
	}

	void BeforeData(int File);
	/** The file may not be there. */
	void BeforeData(const std::string& Path);
	/** The path comes, goes or becomes another file. */
	void BeforeName(const std::string& Path);
	void BeforeRename(const std::string& From, const std::string& To);
	void Flushed(int File);
	/** Data is lost, and names too if strict. What could not be undone is in Troubles. */
	void Strike(bool bStrict);

	std::vector<std::string> Troubles;

private:
	using FFileId = std::pair<dev_t, ino_t>;
	struct FData
	{
		/** The file itself, and a copy of what it holds for sure. */
		int File = -1;
		int Copy = -1;
	};
	struct FEntry
	{
		enum class EState
		{
			Absent,
			File,
			Folder,
			/** A folder that now has another name. */
			Moved
		};
		std::string Path;
		EState State = EState::Absent;
		mode_t Mode = 0;
		/** File: a link to it. Moved: where it is now. */
		std::string Other;
	};

	const std::string Shadow;
	int Names = 0;
	std::map<FFileId, FData> Unflushed;
	/** What was there before names were first changed, in the order of the changes. */
	std::vector<FEntry> Entries;

	std::string NewName() { return Shadow + "/" + std::to_string(++Names); }
	void FlushedNames(const std::string& Folder);
	void Undo(const FEntry& Entry);
	bool Clear(const std::string& Path);
	void Expect(bool bGood, const char* What, const std::string& Path);
};
} // namespace QVTest
