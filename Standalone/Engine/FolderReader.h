// SPDX-License-Identifier: MIT
#pragma once

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>

namespace QVStandalone
{
/** One folder open for listing, for scans over many thousands: what the listing tells is not asked for again. */
class FFolderReader
{
public:
	explicit FFolderReader(const std::string& Path);
	FFolderReader(const FFolderReader&) = delete;
	FFolderReader& operator=(const FFolderReader&) = delete;
	~FFolderReader();

	/** Two ways to one folder give the same. */
	struct FIdentity
	{
		std::uint64_t Disk = 0;
		std::uint64_t Number = 0;

		auto operator<=>(const FIdentity&) const = default;
	};
	/** False, and why in the problem. */
	bool Identify(FIdentity& Out);

	enum class EKind
	{
		Folder,
		LinkToFolder,
		File,
		/** Not yet known: a link, or a disk that tells no kinds. */
		Unknown,
		/** A device, or what cannot be examined. */
		Problem
	};
	struct FDetails
	{
		EKind Kind = EKind::Unknown;
		/** In bytes. */
		std::int64_t Size = 0;
		/** Nanoseconds since 1970. */
		std::int64_t Time = 0;
		std::string Problem;
	};

	/** The next entry, `.` and `..` not among them; false at the end, or when there is a problem. */
	bool Next();
	/** Of the entry that was reached; valid until the next. */
	std::string_view Name() const { return EntryName; }
	/** As far as the listing tells it: a folder, a file or unknown. */
	EKind Kind() const { return EntryKind; }
	/** The entry that was reached, links followed. Never unknown. */
	FDetails Examine() const;

	bool IsOpen() const { return bOpen; }
	/** It is not there, so nothing is wrong. */
	bool IsMissing() const { return bMissing; }
	/** Why it cannot be read, or not on; empty if nothing is wrong. */
	const std::string& Problem() const { return Reason; }

private:
	struct FState;

	FState* State = nullptr;
	bool bOpen = false;
	bool bMissing = false;
	std::string_view EntryName;
	EKind EntryKind = EKind::Unknown;
	std::string Reason;
};
} // namespace QVStandalone
