// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/Result.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace QVStandalone
{
/**
 * A file open for reading, for scans over many thousands: its path is taken as it is, since taking it apart costs as
 * much as opening. Errors are said without the file's name.
 */
class FHeaderFile
{
public:
	explicit FHeaderFile(const std::string& Path);
	FHeaderFile(const FHeaderFile&) = delete;
	FHeaderFile& operator=(const FHeaderFile&) = delete;
	~FHeaderFile();

	/** Success, or why it could not be opened; a folder or a device cannot. */
	const QVFormats::FStatus& Status() const { return Opened; }
	std::uint64_t Size() const { return FileSize; }
	/** Fewer bytes only where the file ends. */
	QVFormats::TResult<std::size_t> ReadAt(std::uint64_t Offset, std::span<std::byte> Out) const;

private:
	std::intptr_t Handle = -1;
	std::uint64_t FileSize = 0;
	QVFormats::FStatus Opened = QVFormats::Success();
};
} // namespace QVStandalone
