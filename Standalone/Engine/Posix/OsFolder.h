// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Engine/OsFile.h"

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace QVStandalone
{
inline std::error_code LastError()
{
	return {errno, std::generic_category()};
}

/** An open file of the system, closed with this. */
class FDescriptor
{
public:
	explicit FDescriptor(int InNumber)
		: Number(InNumber)
	{
	}
	FDescriptor(const FDescriptor&) = delete;
	FDescriptor& operator=(const FDescriptor&) = delete;
	~FDescriptor() { Close(); }

	bool IsValid() const { return Number >= 0; }
	int Get() const { return Number; }
	/** A disk may tell only now that it could not write. */
	std::error_code Close()
	{
		const int Closed = Number;
		Number = -1;
		return Closed >= 0 && ::close(Closed) != 0 ? LastError() : std::error_code();
	}

private:
	int Number;
};

/** The names in the folder that an entry lies, or lay, in are on the disk afterwards, or once Later has flushed it. */
std::error_code FlushFolderOf(const std::filesystem::path& Entry, FFolderFlushes* Later = nullptr);
} // namespace QVStandalone
