// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/NameRef.h"

#include <map>
#include <set>
#include <vector>

namespace QVFormats
{
/** The entries of a name table to be: those of export data first and in place, the rest sorted without case. */
class FNameTableBuilder
{
public:
	explicit FNameTableBuilder(const std::vector<std::string>& DataNames)
		: Entries(DataNames)
		, DataCount(DataNames.size())
	{
	}
	void Add(std::string_view Name) { Others.emplace(SplitNameNumber(Name).Entry); }
	void Finish();
	FNameRef Find(std::string_view Name) const;

	std::vector<std::string> Entries;
	std::size_t DataCount;

private:
	std::set<std::string> Others;
	std::map<std::string, std::uint32_t, std::less<>> Positions;
};
} // namespace QVFormats
