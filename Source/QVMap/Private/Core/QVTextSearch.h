// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

/**
 * Looks for many texts in bytes at once, in one pass: as UTF-8, and those with characters above 127 as UTF-16 too. Fast
 * where all texts begin alike, as names below one folder do. Case counts. Searching is safe on any thread.
 */
class FQVTextSearch
{
public:
	/** Texts must not be empty. */
	explicit FQVTextSearch(std::span<const std::string> Texts);

	/** Replaces Out: the places in Texts of those that the bytes hold, each once, ascending. */
	void Find(std::span<const std::byte> Bytes, std::vector<std::size_t>& Out) const;

private:
	struct FPattern
	{
		std::string Bytes;
		std::size_t Text = 0;
	};
	/** Sorted, and what they all begin with; the letter in it that is looked for first. */
	struct FGroup
	{
		std::vector<FPattern> Patterns;
		std::string Prefix;
		std::size_t RarestAt = 0;

		void Prepare();
		void Find(std::string_view Bytes, std::vector<bool>& Found) const;
		void MatchAt(std::string_view Bytes, std::vector<bool>& Found) const;
	};

	FGroup Narrow;
	FGroup Wide;
	std::size_t Count;
};
