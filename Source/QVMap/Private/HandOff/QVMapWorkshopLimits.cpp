// SPDX-License-Identifier: MIT
#include "HandOff/QVMapWorkshopLimits.h"

#include "Core/QVPrintf.h"
#include "Core/QVString.h"

std::vector<std::string> FQVMapWorkshopLimits::FindTooLong(const FQVWorkshopConfig& Config)
{
	const struct
	{
		std::string_view Name;
		std::size_t Bytes;
		std::size_t Most;
	} Texts[] = {
		{"title", Config.Title.size(), MostTitleBytes},
		{"description", Config.Description.size(), MostDescriptionBytes},
		{"change note", Config.ChangeNote.size(), MostChangeNoteBytes},
		{"list of tags", FQVString::Join(Config.Tags, ",").size(), MostTagListBytes},
	};
	std::vector<std::string> Sentences;
	for (const auto& Text : Texts)
	{
		if (Text.Bytes > Text.Most)
		{
			Sentences.push_back(
				QVPrintf("the %s has %d bytes, and Steam takes %d at most", Text.Name, Text.Bytes, Text.Most));
		}
	}
	return Sentences;
}
