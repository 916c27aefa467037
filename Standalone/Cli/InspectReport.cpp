// SPDX-License-Identifier: MIT
#include "Standalone/Cli/InspectReport.h"

#include "Core/QVPrintf.h"
#include "Core/QVText.h"
#include "Core/QVUnicode.h"
#include "Standalone/Cli/TextColumns.h"

#include <algorithm>
#include <cmath>

namespace QVCli
{
namespace
{
constexpr std::string_view ColumnGap = "  ";
/** Longer cells push the rest of their row to the right: one long name shall not widen every row. */
constexpr std::size_t WidestColumn = 72;

bool IsControl(char16_t Unit)
{
	return Unit < 0x20 || (Unit >= 0x7F && Unit < 0xA0);
}

bool TurnsWriting(char16_t Unit)
{
	return (Unit >= 0x200E && Unit <= 0x200F) || (Unit >= 0x2028 && Unit <= 0x202E) ||
		   (Unit >= 0x2066 && Unit <= 0x2069);
}

/** Version numbers and small counts read better without a comma. */
std::string NumberText(std::int64_t Number)
{
	constexpr std::int64_t SmallestGrouped = 10'000;
	return Number < SmallestGrouped ? std::to_string(Number) : FQVText::AsNumber(Number);
}

std::string CellText(const FQVJson& Value);

std::string Joined(const FQVJson::FArray& Values)
{
	std::string Result;
	for (const FQVJson& Value : Values)
	{
		Result += (Result.empty() ? "" : ", ") + CellText(Value);
	}
	return Result;
}

/** `names 12, imports 3`. */
std::string Joined(const FQVJson::FObject& Members)
{
	std::string Result;
	for (const FQVJsonMember& Member : Members)
	{
		std::string Key = Member.Key;
		std::replace(Key.begin(), Key.end(), '_', ' ');
		Result += (Result.empty() ? "" : ", ") + Key + " " + CellText(Member.Value);
	}
	return Result;
}

std::string CellText(const FQVJson& Value)
{
	if (const std::string* Text = Value.AsString())
	{
		return EscapeControls(*Text);
	}
	if (const double* Number = Value.AsNumber())
	{
		return NumberText(static_cast<std::int64_t>(*Number));
	}
	if (const bool* bFlag = Value.AsBool())
	{
		return *bFlag ? "yes" : "no";
	}
	if (const FQVJson::FArray* Array = Value.AsArray())
	{
		return Joined(*Array);
	}
	const FQVJson::FObject* Object = Value.AsObject();
	return Object != nullptr ? Joined(*Object) : std::string();
}

/** A list of pairs stands in lines of its own below its row. */
bool IsPairList(const FQVJson& Value)
{
	const FQVJson::FArray* Array = Value.AsArray();
	return Array != nullptr && !Array->empty() && Array->front().Has("key");
}

std::string PairLines(const FQVJson& Value)
{
	std::string Lines;
	for (const FQVJson& Pair : *Value.AsArray())
	{
		Lines += "      " + CellText(*Pair.Find("key")) + " = " + CellText(*Pair.Find("value")) + "\n";
	}
	return Lines;
}

const FQVJson& CellOf(const FQVJson& Row, const FInspectColumn& Column)
{
	static const FQVJson None;
	const FQVJson* Member = Column.Key.empty() ? &Row : Row.Find(Column.Key);
	return Member == nullptr || IsPairList(*Member) ? None : *Member;
}

std::vector<std::size_t> ColumnWidths(const FInspectTable& Table)
{
	std::vector<std::size_t> Widths;
	for (const FInspectColumn& Column : Table.Columns)
	{
		std::size_t Width = CountColumns(Column.Label);
		for (const FQVJson& Row : *Table.Rows.AsArray())
		{
			Width = std::max(Width, std::min(CountColumns(CellText(CellOf(Row, Column))), WidestColumn));
		}
		Widths.push_back(Width);
	}
	return Widths;
}

/** Numbers stand at the right of their column. */
void AppendCell(std::string& Line, const std::string& Cell, std::size_t Width, bool bNumber)
{
	const std::size_t Taken = CountColumns(Cell);
	const std::string Blanks(Taken < Width ? Width - Taken : 0, ' ');
	Line.append(ColumnGap).append(bNumber ? Blanks + Cell : Cell + Blanks);
}

void FinishLine(std::string& Out, std::string& Line)
{
	Line.erase(Line.find_last_not_of(' ') + 1);
	Out.append(Line).append("\n");
	Line.clear();
}

bool IsNumberColumn(const FInspectTable& Table, const FInspectColumn& Column)
{
	const FQVJson::FArray& Rows = *Table.Rows.AsArray();
	return !Rows.empty() && CellOf(Rows.front(), Column).AsNumber() != nullptr;
}

void AppendHeading(std::string& Out, const FInspectTable& Table, const std::vector<std::size_t>& Widths)
{
	Out += QVPrintf(
		"\n%s (%s)\n", Table.Label, FQVText::AsNumber(static_cast<std::int64_t>(Table.Rows.AsArray()->size())));
	std::string Line;
	for (std::size_t Column = 0; Table.Columns.size() > 1 && Column < Table.Columns.size(); ++Column)
	{
		const FInspectColumn& Each = Table.Columns[Column];
		AppendCell(Line, Each.Label, Widths[Column], IsNumberColumn(Table, Each));
	}
	if (!Line.empty())
	{
		FinishLine(Out, Line);
	}
}

void AppendRow(std::string& Out, const FInspectTable& Table, const FQVJson& Row, const std::vector<std::size_t>& Widths)
{
	std::string Line;
	for (std::size_t Column = 0; Column < Table.Columns.size(); ++Column)
	{
		const FQVJson& Cell = CellOf(Row, Table.Columns[Column]);
		AppendCell(Line, CellText(Cell), Widths[Column], Cell.AsNumber() != nullptr);
	}
	FinishLine(Out, Line);
	for (const FInspectColumn& Column : Table.Columns)
	{
		const FQVJson* Member = Row.Find(Column.Key);
		Out += Member != nullptr && IsPairList(*Member) ? PairLines(*Member) : std::string();
	}
}

void AppendTable(std::string& Out, const FInspectTable& Table)
{
	if (Table.Rows.AsArray()->empty())
	{
		return;
	}
	const std::vector<std::size_t> Widths = ColumnWidths(Table);
	AppendHeading(Out, Table, Widths);
	for (const FQVJson& Row : *Table.Rows.AsArray())
	{
		AppendRow(Out, Table, Row, Widths);
	}
}
} // namespace

std::string HexText(std::uint32_t Value)
{
	return QVPrintf("0x%08X", Value);
}

std::string EscapeControls(std::string_view Text)
{
	const auto Suspicious = [](char Letter)
	{ return IsControl(static_cast<unsigned char>(Letter)) || (Letter & 0x80); };
	if (std::none_of(Text.begin(), Text.end(), Suspicious))
	{
		return std::string(Text);
	}
	std::u16string Result;
	for (const char16_t Unit : FQVUnicode::ToUtf16(Text))
	{
		const std::string Escape = IsControl(Unit)		? QVPrintf("\\x%02x", static_cast<unsigned>(Unit))
								   : TurnsWriting(Unit) ? QVPrintf("\\u%04x", static_cast<unsigned>(Unit))
														: std::string();
		Escape.empty() ? Result.append(1, Unit) : Result.append(Escape.begin(), Escape.end());
	}
	return FQVUnicode::ToUtf8(Result);
}

FInspectReport::FInspectReport(std::string InFile, std::string InKind, std::size_t FileBytes)
	: File(std::move(InFile))
	, Kind(std::move(InKind))
{
	constexpr std::size_t AlwaysAllowed = 64 * 1024 * 1024;
	constexpr std::size_t TextPerByte = 16;
	MostTextBytes = AlwaysAllowed + FileBytes * TextPerByte;
	Field("file_bytes", "file bytes", FileBytes);
}

void FInspectReport::Field(std::string Key, std::string Label, FQVJson Value)
{
	Fields.push_back({std::move(Key), std::move(Label), std::move(Value)});
}

void FInspectReport::Note(std::string Text)
{
	Notes.push_back(FQVUnicode::Repair(Text));
}

FQVJson FInspectReport::Text(std::string_view Raw)
{
	TextBytes += Raw.size();
	return IsTooMuch() ? FQVJson("") : FQVJson(FQVUnicode::Repair(Raw));
}

FQVJson FInspectReport::ToJson(bool bHeadOnly) const
{
	FQVJson Json = FQVJson::Object().Set("schema_version", 1).Set("file", FQVUnicode::Repair(File)).Set("kind", Kind);
	for (const FInspectField& Each : Fields)
	{
		Json.Set(Each.Key, Each.Value);
	}
	Json.Set("notes", FQVJson::Array(Notes));
	for (const FInspectTable& Each : Tables)
	{
		if (Each.bOfHead || !bHeadOnly)
		{
			Json.Set(Each.Key, Each.Rows);
		}
	}
	return Json;
}

std::string FInspectReport::ToText(bool bHeadOnly) const
{
	std::size_t Width = 0;
	for (const FInspectField& Each : Fields)
	{
		Width = std::max(Width, Each.Label.size());
	}
	std::string Out = EscapeControls(File) + ": " + Kind + "\n";
	for (const FInspectField& Each : Fields)
	{
		std::string Line;
		AppendCell(Line, Each.Label, Width, false);
		AppendCell(Line, CellText(Each.Value), 0, false);
		FinishLine(Out, Line);
	}
	for (const std::string& Each : Notes)
	{
		Out += "  note: " + EscapeControls(Each) + "\n";
	}
	for (const FInspectTable& Each : Tables)
	{
		if (Each.bOfHead || !bHeadOnly)
		{
			AppendTable(Out, Each);
		}
	}
	Out.pop_back(); // the console ends the line
	return Out;
}
} // namespace QVCli
