// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace QVStandalone
{
/** Whether bytes hold a package's name, as single bytes or as UTF-16, in whatever case and not as a part of a longer
 * name. */
class FNameSearch
{
public:
	explicit FNameSearch(std::string_view Name);

	bool IsIn(std::string_view Bytes) const { return IsIn(Bytes, Narrow, 1) || IsIn(Bytes, Wide, 2); }

private:
	std::string Narrow;
	std::string Wide;

	static bool IsIn(std::string_view Bytes, std::string_view Wanted, std::size_t UnitBytes);
};
} // namespace QVStandalone
