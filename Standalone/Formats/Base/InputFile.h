// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/Result.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>

namespace QVFormats
{
/** A file open for reading; unlike a mapping it survives that somebody shortens the file meanwhile. */
class FInputFile
{
public:
	/** A folder or a device is refused. */
	static TResult<FInputFile> Open(const std::filesystem::path& Path);

	FInputFile(FInputFile&& Other) noexcept;
	FInputFile& operator=(FInputFile&& Other) noexcept;
	~FInputFile();

	/** Fills Out from Offset on; fewer bytes are given only where the file ends. */
	TResult<std::size_t> ReadAt(std::uint64_t Offset, std::span<std::byte> Out);
	/** Has the system fetch these bytes meanwhile, so that reading them later does not wait for the disk. */
	void WillRead(std::uint64_t Offset, std::uint64_t Count);
	/** The size when it was opened. */
	std::uint64_t Size() const { return OpenedSize; }

private:
	FInputFile(std::intptr_t InHandle, std::filesystem::path InPath);

	std::intptr_t Handle;
	std::uint64_t OpenedSize = 0;
	std::filesystem::path Path;
};
} // namespace QVFormats
