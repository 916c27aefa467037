// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/ByteReader.h"
#include "Standalone/Formats/Base/Result.h"

#include <filesystem>

namespace QVFormats
{
/**
 * A file that appears whole or not at all: it is written beside its place under another name, and Commit moves it
 * there. Without Commit nothing is left. What stood in its place is replaced; a link there is replaced, not followed.
 */
class FOutputFile
{
public:
	/** The folder must exist. */
	static TResult<FOutputFile> Create(const std::filesystem::path& Target);

	FOutputFile(FOutputFile&& Other) noexcept;
	FOutputFile& operator=(FOutputFile&& Other) noexcept;
	~FOutputFile();

	FStatus WriteAt(std::uint64_t Offset, FBytes Bytes);
	/** Cuts or grows the file to Size, closes it and gives it its name. The object is used up, also by a failure. */
	FStatus Commit(std::uint64_t Size);

private:
	FOutputFile(std::intptr_t InHandle, std::filesystem::path InTarget, std::filesystem::path InTemporary);
	void Discard();

	std::intptr_t Handle;
	std::filesystem::path Target;
	std::filesystem::path Temporary;
};
} // namespace QVFormats
