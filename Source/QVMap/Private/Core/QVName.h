// SPDX-License-Identifier: MIT
#pragma once

#include <compare>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

/**
 * An interned name: four bytes, compared without case (A-Z only) by one integer comparison, printed as it was first
 * spelled anywhere in the process. Names are never freed. Making, comparing and printing are safe on every thread.
 */
class FQVName
{
public:
	/** No name: empty, unequal to every other. */
	FQVName() = default;
	explicit FQVName(std::string_view Text);

	bool IsNone() const { return Index == 0; }
	/** Lives as long as the process. */
	std::string_view ToView() const;
	std::string ToString() const { return std::string(ToView()); }
	/** For flat tables: names are numbered from 1 in the order in which they were first met. */
	std::uint32_t GetIndex() const { return Index; }

	friend bool operator==(FQVName A, FQVName B) { return A.Index == B.Index; }
	/** Fast and stable within one run of the program, but not alphabetical: see LexicalLess. */
	friend std::strong_ordering operator<=>(FQVName A, FQVName B) { return A.Index <=> B.Index; }
	/** Alphabetical, ignoring case. */
	static bool LexicalLess(FQVName A, FQVName B);

private:
	std::uint32_t Index = 0;
};

template<>
struct std::hash<FQVName>
{
	std::size_t operator()(FQVName Name) const noexcept { return Name.GetIndex() * std::size_t{0x9E3779B97F4A7C15}; }
};
