// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVDateTime.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

/**
 * The platform file, the file manager and the file helper. Paths are UTF-8, absolute, with either slash. Every
 * operation may be called on any thread. A failure is a false or an empty result; the engine logs its reason.
 */
class IQVFiles
{
public:
	virtual ~IQVFiles() = default;

	/** Called with the full path of an entry; false ends the walk. */
	using FVisitor = std::function<bool(std::string_view Path, bool bIsDirectory)>;

	virtual bool FileExists(std::string_view Path) const = 0;
	virtual bool DirectoryExists(std::string_view Path) const = 0;
	/** In bytes; -1 if there is no such file. */
	virtual std::int64_t FileSize(std::string_view Path) const = 0;
	/** When the file was last changed, in UTC; zero ticks if there is no such file. */
	virtual FQVDateTime GetTimeStamp(std::string_view Path) const = 0;

	/** Entries of a folder in no order; a folder that cannot be read gives none. */
	virtual void IterateDirectory(std::string_view Path, const FVisitor& Visitor) const = 0;
	/** The same with everything below. A folder that is reached by two links is walked once. */
	virtual void IterateDirectoryRecursively(std::string_view Path, const FVisitor& Visitor) const = 0;

	/** The folder and all that lead to it; true if it exists afterwards. */
	virtual bool CreateDirectoryTree(std::string_view Path) = 0;
	/** The folder and all below it; true if it is gone afterwards. */
	virtual bool DeleteDirectory(std::string_view Path) = 0;
	virtual bool DeleteFile(std::string_view Path) = 0;
	/** A file to a new place, replacing a file that is there. A read-only file is not moved. */
	virtual bool Move(std::string_view To, std::string_view From) = 0;

	/** Any of the encodings that the engine's text files come in, as UTF-8; a bad byte becomes U+FFFD. */
	virtual bool LoadFileToString(std::string& OutText, std::string_view Path) const = 0;
	/** The default encoding: single bytes for ASCII, else UTF-16 with a mark. The file appears whole or not at all. */
	virtual bool SaveStringToFile(std::string_view Text, std::string_view Path) = 0;
};
