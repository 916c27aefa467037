// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/Sha1.h"

#include <array>
#include <atomic>
#include <optional>

namespace QVFormats
{
/** The hashes of an index's tables, which are compared while the tables are already being read. */
class FPakIndexHashes
{
public:
	/** At most three; not once Work has begun. */
	void Add(const char* What, FBytes Bytes, const FSha1Hash& Expected);
	/** Whether there is so much to hash that a second thread is worth starting. */
	bool AreLarge() const;
	/** Hashes what nobody has begun; from many threads at once. */
	void Work();
	/** After Work has returned everywhere: what is wrong with the first that differs. */
	std::optional<std::string> Mismatch() const;

private:
	struct FPart
	{
		const char* What = nullptr;
		FBytes Bytes;
		FSha1Hash Expected{};
		FSha1Hash Found{};
	};

	std::array<FPart, 3> Parts;
	std::size_t Count = 0;
	std::atomic<std::size_t> Next{0};
};
} // namespace QVFormats
