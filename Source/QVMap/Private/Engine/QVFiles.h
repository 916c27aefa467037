// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVDateTime.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/** A lock that is held as long as this lives. */
struct IQVFileLock
{
	virtual ~IQVFileLock() = default;
};

struct FQVFileCopy
{
	std::string To;
	std::string From;
};

/**
 * The platform file, the file manager and the file helper. Paths are UTF-8, absolute, with either slash. Every
 * operation may be called on any thread. A failure is a false or an empty result; the engine logs its reason. What an
 * operation on the disk has reported as done is not undone by a power cut.
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
	/** A file that is marked read-only may be refused, as the system has it, unless it is to go even so. */
	virtual bool DeleteFile(std::string_view Path, bool bEvenReadOnly = false) = 0;
	/** A file to a new place, replacing a file that is there. A read-only file is not moved. */
	virtual bool Move(std::string_view To, std::string_view From) = 0;
	/**
	 * Replaces what is there, even if that is read-only; marks of From are not taken over, those of what is replaced
	 * stay. Appears whole or not at all. The folder has to be there.
	 */
	virtual bool Copy(std::string_view To, std::string_view From) = 0;

	/*
	 * The same for many files, none of them twice, for each as if it were alone: a failure stops no other. An engine
	 * may work on several at once, so the order is open. Gives for each, in the order given, whether it succeeded.
	 */

	virtual std::vector<bool> CopyFiles(std::span<const FQVFileCopy> Copies)
	{
		std::vector<bool> Done;
		for (const FQVFileCopy& Each : Copies)
		{
			Done.push_back(Copy(Each.To, Each.From));
		}
		return Done;
	}
	/**
	 * For a From that nobody changes any more and that goes once all are back: until then an engine may let it and To
	 * be one file of two names, so that no bytes are copied.
	 */
	virtual std::vector<bool> PutFilesBack(std::span<const FQVFileCopy> Copies) { return CopyFiles(Copies); }
	/** One that is not there succeeds. */
	virtual std::vector<bool> DeleteFiles(std::span<const std::string> Paths, bool bEvenReadOnly = false)
	{
		std::vector<bool> Done;
		for (const std::string& Path : Paths)
		{
			Done.push_back(!FileExists(Path) || DeleteFile(Path, bEvenReadOnly));
		}
		return Done;
	}

	/** Bytes are those of the file at this place; none if it cannot be read. They last as long as the call. */
	using FReader = std::function<void(std::size_t Place, std::optional<std::span<const std::byte>> Bytes)>;
	/** Reads many files. The reader is called once for each, in no order, on any thread, several at once. */
	virtual void LoadFiles(std::span<const std::string> Paths, const FReader& Reader) const
	{
		std::vector<std::byte> Bytes;
		for (std::size_t Place = 0; Place < Paths.size(); ++Place)
		{
			const bool bRead = LoadFileToArray(Bytes, Paths[Place]);
			Reader(Place, bRead ? std::optional<std::span<const std::byte>>(Bytes) : std::nullopt);
		}
	}

	/** Any of the encodings that the engine's text files come in, as UTF-8; a bad byte becomes U+FFFD. */
	virtual bool LoadFileToString(std::string& OutText, std::string_view Path) const = 0;
	/** Bytes of a file into a buffer whose memory is used again. */
	virtual bool LoadFileToArray(std::vector<std::byte>& OutBytes, std::string_view Path) const = 0;
	/** The default encoding: single bytes for ASCII, else UTF-16 with a mark. The file appears whole or not at all. */
	virtual bool SaveStringToFile(std::string_view Text, std::string_view Path) = 0;

	/**
	 * Held by one program at a time, by one owner in it; the system lets go of it when the program dies. Null if
	 * somebody else holds it, or if the file cannot be made. The file goes with the lock.
	 */
	virtual std::unique_ptr<IQVFileLock> TryLock(std::string_view Path) = 0;
};
