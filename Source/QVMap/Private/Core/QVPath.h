// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

/** Paths as text: none of these asks the disk. Results have forward slashes. */
struct FQVPath
{
	/** The parts joined by one slash; an empty part adds nothing. */
	template<class... Parts>
	static std::string Combine(std::string_view First, const Parts&... Others)
	{
		std::string Result(First);
		(AppendPart(Result, Others), ...);
		return Result;
	}

	/** "Maps/Hall.umap" gives "Hall.umap". */
	static std::string_view GetCleanFilename(std::string_view Path);
	/** The clean file name without what follows its last dot: "Maps/Hall.old.umap" gives "Hall.old". */
	static std::string_view GetBaseFilename(std::string_view Path);
	/** What stands before the last slash; empty if there is none. */
	static std::string_view GetPath(std::string_view Path);
	/** The whole path without the file name's extension and its dot. */
	static std::string_view WithoutExtension(std::string_view Path);

	/** Backslashes become slashes. */
	static std::string NormalizeFilename(std::string_view Path);
	/** Absolute, normalized, without ".", ".." and a closing slash; a relative path counts from Base. */
	static std::string ConvertRelativePathToFull(std::string_view Base, std::string_view Path);
	static bool IsAbsolute(std::string_view Path);

	/**
	 * Path as seen from the folder of RelativeTo, which is a folder itself only if it ends in a slash. False, and Path
	 * untouched, when the two have no common root. Folders compare ignoring case, as in the engine.
	 */
	static bool MakePathRelativeTo(std::string& Path, std::string_view RelativeTo);

private:
	static void AppendPart(std::string& Result, std::string_view Part);
};
