// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <system_error>
#include <vector>

namespace QVFormats
{
/**
 * The questions that std::filesystem answers, and its small changes, for paths of any length: on Windows its own calls
 * end at 260 letters. Links are followed. Any thread.
 */
struct FDisk
{
	/** The path as streams and the system's calls take it. */
	static std::filesystem::path SystemPath(const std::filesystem::path& Path);

	/** False for what cannot be examined, too. */
	static bool Exists(const std::filesystem::path& Path);
	static bool IsFile(const std::filesystem::path& Path);
	static bool IsFolder(const std::filesystem::path& Path);
	/** The entry itself is a link. */
	static bool IsLink(const std::filesystem::path& Path);
	/** Of a file. */
	static std::uint64_t SizeOf(const std::filesystem::path& Path, std::error_code& OutError);
	/** When it was last changed, in nanoseconds since 1970. */
	static std::int64_t TimeOf(const std::filesystem::path& Path, std::error_code& OutError);
	/** A path below a folder, as the folders list its names: where names heed no case, others find the same file. */
	static std::filesystem::path Spelled(const std::filesystem::path& Folder, const std::filesystem::path& Below);
	/** Absolute, without links. */
	static std::filesystem::path RealPath(const std::filesystem::path& Path, std::error_code& OutError);

	struct FEntry
	{
		std::filesystem::path Path;
		bool bIsFolder = false;
	};
	/** In no order; nothing of a folder that cannot be read. */
	static std::vector<FEntry> List(const std::filesystem::path& Folder);

	/** True if it was made; no error if it was there. */
	static bool MakeFolder(const std::filesystem::path& Folder, std::error_code& OutError);
	/** With all that lead to it. */
	static bool MakeFolders(const std::filesystem::path& Folder, std::error_code& OutError);
	/** Over a file that is there. */
	static void Rename(const std::filesystem::path& From, const std::filesystem::path& To, std::error_code& OutError);
};
} // namespace QVFormats
