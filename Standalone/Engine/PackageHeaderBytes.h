// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Engine/HeaderFile.h"
#include "Standalone/Formats/Package/PackageHeader.h"

#include <utility>
#include <vector>

namespace QVStandalone
{
/**
 * Reads of a package's file what the registry wants, and little else: names, imports, soft package references and the
 * registry section; not exports and thumbnails where leaving them out saves reading. One for each thread; the buffer
 * is kept from file to file.
 */
class FPackageHeaderReader
{
public:
	/** The error is said without the file's name. What comes back is good until the next call; no exports in it. */
	QVFormats::TResult<QVFormats::FPackageHeader> Read(const std::string& Path);
	/** What was read of the last file: offset and count. */
	const std::vector<std::pair<std::uint64_t, std::size_t>>& LastReads() const { return Reads; }

private:
	std::vector<std::byte> Buffer;
	std::vector<std::pair<std::uint64_t, std::size_t>> Reads;

	QVFormats::FStatus ReadPart(const FHeaderFile& File, std::size_t Begin, std::size_t End);
	QVFormats::TResult<std::size_t> ReadStart(const FHeaderFile& File);
	QVFormats::TResult<QVFormats::FPackageHeader> ReadTables(
		const FHeaderFile& File, QVFormats::FPackageSummary Summary);
};
} // namespace QVStandalone
