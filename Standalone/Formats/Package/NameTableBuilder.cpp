// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/NameTableBuilder.h"

#include "Standalone/Formats/Base/Unicode.h"

#include <algorithm>

namespace QVFormats
{
namespace
{
bool LessWithoutCase(const std::string& A, const std::string& B)
{
	const std::string SmallA = ToLowerAscii(A);
	const std::string SmallB = ToLowerAscii(B);
	return SmallA != SmallB ? SmallA < SmallB : A < B;
}

} // namespace

void FNameTableBuilder::Finish()
{
	for (const std::string& Name : Entries)
	{
		Others.erase(Name);
	}
	Entries.insert(Entries.end(), Others.begin(), Others.end());
	std::sort(Entries.begin() + static_cast<std::ptrdiff_t>(DataCount), Entries.end(), LessWithoutCase);
	for (std::size_t Index = 0; Index < Entries.size(); ++Index)
	{
		Positions.emplace(Entries[Index], static_cast<std::uint32_t>(Index));
	}
}

FNameRef FNameTableBuilder::Find(std::string_view Name) const
{
	const FSplitName Split = SplitNameNumber(Name);
	return {Positions.find(Split.Entry)->second, Split.Number};
}
} // namespace QVFormats
