// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/** Operations on UTF-8 text. "Ignoring case" folds A-Z and a-z only and never asks a locale. */
struct FQVString
{
	static char ToLower(char Letter)
	{
		return Letter >= 'A' && Letter <= 'Z' ? static_cast<char>(Letter + ('a' - 'A')) : Letter;
	}
	static std::string ToLower(std::string_view Text);

	static bool EqualsIgnoreCase(std::string_view A, std::string_view B);
	/** Negative, zero or positive, byte by byte after folding. */
	static int CompareIgnoreCase(std::string_view A, std::string_view B);
	static bool LessIgnoreCase(std::string_view A, std::string_view B) { return CompareIgnoreCase(A, B) < 0; }
	static bool StartsWithIgnoreCase(std::string_view Text, std::string_view Prefix);
	static bool EndsWithIgnoreCase(std::string_view Text, std::string_view Suffix);
	/** Position of the first or last occurrence, or npos. */
	static std::size_t FindIgnoreCase(std::string_view Text, std::string_view Needle);
	static std::size_t FindLastIgnoreCase(std::string_view Text, std::string_view Needle);
	static bool ContainsIgnoreCase(std::string_view Text, std::string_view Needle);

	static std::string ReplaceAll(std::string_view Text, std::string_view From, std::string_view To);
	/** As ReplaceAll, finding From ignoring case. */
	static std::string ReplaceAllIgnoreCase(std::string_view Text, std::string_view From, std::string_view To);
	/** Without blanks, tabs and line ends around it. */
	static std::string_view Trim(std::string_view Text);
	static std::string Join(std::span<const std::string> Parts, std::string_view Separator);
	/** The pieces between separators; empty ones are dropped. Views into Text. */
	static std::vector<std::string_view> Split(std::string_view Text, char Separator);
	/** Without the white space at its ends, Unicode's too. A view into Text. */
	static std::string_view TrimStartAndEnd(std::string_view Text);
	/** The lines of a text, ended by LF or CRLF; empty ones are dropped. Views into Text. */
	static std::vector<std::string_view> NonEmptyLines(std::string_view Text);
	/** The last Count characters (code points, not bytes) of a text; all of it if it is shorter. */
	static std::string_view LastCharacters(std::string_view Text, std::size_t Count);
	static std::string_view BoolWord(bool bValue) { return bValue ? "true" : "false"; }
};
