// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVName.h"

#include <initializer_list>
#include <vector>

/**
 * A set of names: one bit for each name of the process, and the members in the order in which they came. Made for
 * walks over graphs of a million packages. Not safe for writing on two threads.
 */
class FQVNameSet
{
public:
	FQVNameSet() = default;
	FQVNameSet(std::initializer_list<FQVName> Names)
	{
		for (const FQVName Name : Names)
		{
			Add(Name);
		}
	}

	/** True if the name was not in it. No name is never in it. */
	bool Add(FQVName Name)
	{
		const std::size_t Word = Name.GetIndex() / 64;
		if (Word >= Bits.size())
		{
			Bits.resize(Word + Word / 2 + 16);
		}
		const std::uint64_t Bit = std::uint64_t{1} << (Name.GetIndex() % 64);
		if (Name.IsNone() || (Bits[Word] & Bit) != 0)
		{
			return false;
		}
		Bits[Word] |= Bit;
		Members.push_back(Name);
		return true;
	}

	bool Contains(FQVName Name) const
	{
		const std::size_t Word = Name.GetIndex() / 64;
		return Word < Bits.size() && (Bits[Word] >> (Name.GetIndex() % 64) & 1) != 0;
	}

	std::size_t Num() const { return Members.size(); }
	bool IsEmpty() const { return Members.empty(); }
	auto begin() const { return Members.begin(); }
	auto end() const { return Members.end(); }

private:
	std::vector<std::uint64_t> Bits;
	std::vector<FQVName> Members;
};
