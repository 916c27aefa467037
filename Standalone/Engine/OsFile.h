// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <set>
#include <span>
#include <string_view>
#include <system_error>

namespace QVStandalone
{
/** Of a file, links followed. Judged by the mark on it, not by who asks: root may write anything. */
bool IsMarkedReadOnly(const std::filesystem::path& Path);

/*
 * Changes of files and folders that are on the disk when they are reported as done: what was written is flushed, and so
 * is the folder in which a name came, went or changed. A disk that cannot flush a folder is taken at its word.
 */

/**
 * Folders in which a batch has changed names. They are flushed once at its end instead of once for each file; until
 * then a power cut may leave the old names or the new ones. Any thread.
 */
class FFolderFlushes
{
public:
	/** How many files a batch works on at once: it waits for the disk, which gets more done so, not for the cores. */
	static constexpr unsigned FilesAtOnce = 4;

	/** The folder that this entry lies, or lay, in. */
	void Add(const std::filesystem::path& Entry);
	/** Flushes all. Folder: the one that could not be. */
	std::error_code Flush(std::filesystem::path& OutFolder);

private:
	std::mutex Lock;
	std::set<std::filesystem::path> Folders;
};

/**
 * Writes a whole file beside its target, flushes it to the disk and renames it over: a reader, a full disk or a crash
 * never leaves half a file. A target that is marked read-only is refused, a link is followed. Nothing is left on
 * failure. Here and below, Later: who flushes the folder instead.
 */
std::error_code ReplaceFile(const std::filesystem::path& Target, std::string_view Bytes);

/** The same with parts, one behind the other; they may be mapped from a file, even from the target. */
std::error_code ReplaceFile(
	const std::filesystem::path& Target, std::span<const std::string_view> Parts, FFolderFlushes* Later = nullptr);

/** The same with all of Source, over a target that is marked read-only too; it keeps that mark. */
std::error_code CopyFileOver(
	const std::filesystem::path& Target, const std::filesystem::path& Source, FFolderFlushes* Later = nullptr);

/**
 * The same without copying, where it can be: Target becomes another name of Source. So it must not matter that who
 * changes one in place changes both. A Source that has other names already, or another owner than what stands at
 * Target, is copied.
 */
std::error_code LinkOrCopyFileOver(
	const std::filesystem::path& Target, const std::filesystem::path& Source, FFolderFlushes* Later = nullptr);

/** Renames a file over another. A read-only source is refused, as it is where our users are. */
std::error_code MoveFileOver(const std::filesystem::path& Target, const std::filesystem::path& Source);

/** The folder and all that lead to it. */
std::error_code MakeFolders(const std::filesystem::path& Folder);

/**
 * What has no name any more afterwards: a file, a link, an empty folder. An error if there was nothing. Where the mark
 * of a read-only file keeps it from being deleted, it goes only if asked for.
 */
std::error_code RemoveEntry(const std::filesystem::path& Path, bool bEvenReadOnly, FFolderFlushes* Later = nullptr);
/** With all below it; links are not followed. No error if there was nothing. */
std::error_code RemoveTree(const std::filesystem::path& Folder);

/**
 * A file that one owner at a time has locked, in whatever program; made if it is not there, deleted when this goes. The
 * system lets go of it when the program dies, and the file that is left then is locked by the next one.
 */
class FOsFileLock
{
public:
	/** An error of resource_unavailable_try_again: somebody else has it. */
	static std::unique_ptr<FOsFileLock> TryLock(const std::filesystem::path& Path, std::error_code& OutError);
	FOsFileLock(std::intptr_t InHandle, std::filesystem::path InPath);
	FOsFileLock(const FOsFileLock&) = delete;
	FOsFileLock& operator=(const FOsFileLock&) = delete;
	~FOsFileLock();

private:
	const std::intptr_t Handle;
	const std::filesystem::path Path;
};
} // namespace QVStandalone
