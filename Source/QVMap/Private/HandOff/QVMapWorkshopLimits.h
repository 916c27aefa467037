// SPDX-License-Identifier: MIT
#pragma once

#include "HandOff/QVMapWorkshopConfig.h"

#include <cstddef>

/**
 * How long the texts of a Workshop item may be, in bytes of UTF-8: the constants of Steamworks' header
 * isteamremotestorage.h, some of which count the byte that ends a text. What is longer is only warned of, since Steam
 * has the last word.
 */
struct FQVMapWorkshopLimits
{
	/** k_cchPublishedDocumentTitleMax (128 + 1) */
	static constexpr std::size_t MostTitleBytes = 128;
	/** k_cchPublishedDocumentDescriptionMax */
	static constexpr std::size_t MostDescriptionBytes = 8000;
	/** k_cchPublishedDocumentChangeDescriptionMax */
	static constexpr std::size_t MostChangeNoteBytes = 8000;
	/** k_cchTagListMax (1024 + 1): all tags with the commas between them */
	static constexpr std::size_t MostTagListBytes = 1024;

	/** A sentence for each text that is too long. */
	static std::vector<std::string> FindTooLong(const FQVWorkshopConfig& Config);
};
