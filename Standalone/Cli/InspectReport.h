// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVJson.h"

#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace QVCli
{
struct FInspectField
{
	/** Of the document's member, and what a person reads in its place. */
	std::string Key;
	std::string Label;
	FQVJson Value;
};

struct FInspectColumn
{
	std::string Key;
	std::string Label;
};

/** Rows are objects with a member for each column, or bare values where there is one column without a key. */
struct FInspectTable
{
	std::string Key;
	std::string Label;
	std::vector<FInspectColumn> Columns;
	FQVJson Rows = FQVJson::Array();
	/** Shown with the head alone too. */
	bool bOfHead = false;
};

/**
 * What a file holds, told once and written as text or as a document. Texts come from files that nobody vouches for:
 * Text makes them valid UTF-8, and the written text has no control characters of theirs.
 */
class FInspectReport
{
public:
	/** Many rows can name one long text, so what they may come to is bounded by the file's size. */
	FInspectReport(std::string InFile, std::string InKind, std::size_t FileBytes);

	void Field(std::string Key, std::string Label, FQVJson Value);
	void Table(FInspectTable Table) { Tables.push_back(std::move(Table)); }
	const std::string& FileName() const { return File; }
	/** Something that a reader of the report should know. */
	void Note(std::string Text);

	/** For every text that is taken from the file. */
	FQVJson Text(std::string_view Raw);
	/** More text than files of this size hold: no row that comes now would be shown. */
	bool IsTooMuch() const { return TextBytes > MostTextBytes; }

	FQVJson ToJson(bool bHeadOnly) const;
	std::string ToText(bool bHeadOnly) const;

private:
	std::string File;
	std::string Kind;
	std::size_t TextBytes = 0;
	std::size_t MostTextBytes = 0;
	std::vector<FInspectField> Fields;
	std::vector<FInspectTable> Tables;
	std::vector<std::string> Notes;
};

/** `0x00020000`. */
std::string HexText(std::uint32_t Value);

/** Control characters, and marks that turn the direction of writing, as `\x1b` and `\u202e`; bad bytes as U+FFFD. */
std::string EscapeControls(std::string_view Text);
} // namespace QVCli
