// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/ByteReader.h"
#include "Standalone/Formats/Base/Result.h"

#include <filesystem>

namespace QVFormats
{
/** A whole file mapped read-only. Movable; unmaps when it goes. An empty file gives empty bytes, not an error. */
class FMappedFile
{
public:
	static TResult<FMappedFile> Open(const std::filesystem::path& Path);

	FMappedFile() = default;
	FMappedFile(FMappedFile&& Other) noexcept;
	FMappedFile& operator=(FMappedFile&& Other) noexcept;
	~FMappedFile();

	FBytes Bytes() const { return View; }
	/** From here to the file's end is needed soon: the system reads it in one go, not page by page as it is met. */
	void WillRead(std::uint64_t Offset) const;

private:
	FBytes View;
};
} // namespace QVFormats
