// SPDX-License-Identifier: MIT
#include "Core/QVJson.h"
#include "Core/QVPrintf.h"

namespace
{
std::string Quoted(std::string_view Text)
{
	std::string Result = "\"";
	for (const char Letter : Text)
	{
		switch (Letter)
		{
		case '"':
			Result += "\\\"";
			break;
		case '\\':
			Result += "\\\\";
			break;
		case '\b':
			Result += "\\b";
			break;
		case '\f':
			Result += "\\f";
			break;
		case '\n':
			Result += "\\n";
			break;
		case '\r':
			Result += "\\r";
			break;
		case '\t':
			Result += "\\t";
			break;
		default:
			Result += static_cast<unsigned char>(Letter) < 0x20 ? QVPrintf("\\u%04X", static_cast<int>(Letter))
																: std::string(1, Letter);
		}
	}
	return Result + "\"";
}

/** The engine's pretty printing, whose line rules differ between objects, strings and plain values (see each function).
 */
class FPrettyWriter
{
public:
	std::string Text;

	void Value(const FQVJson& Json)
	{
		if (Json.IsObject())
		{
			Object(*Json.AsObject());
		}
		else if (Json.AsArray() != nullptr)
		{
			Array(*Json.AsArray());
		}
		else
		{
			Text += Scalar(Json);
		}
	}

private:
	int Depth = 0;

	static std::string Scalar(const FQVJson& Json)
	{
		if (const std::string* String = Json.AsString())
		{
			return Quoted(*String);
		}
		if (const double* Number = Json.AsNumber())
		{
			return QVPrintf("%.17g", *Number);
		}
		return Json.AsBool() == nullptr ? "null" : *Json.AsBool() ? "true" : "false";
	}

	void NewLine()
	{
		Text += "\r\n";
		Text.append(static_cast<std::size_t>(Depth), '\t');
	}

	/** An object as a value starts on a line of its own, at its key's depth; anything else stays on the key's line. */
	void Object(const FQVJson::FObject& Members)
	{
		Text += "{";
		++Depth;
		for (std::size_t Index = 0; Index < Members.size(); ++Index)
		{
			Text += Index == 0 ? "" : ",";
			NewLine();
			Text += Quoted(Members[Index].Key) + ":";
			if (Members[Index].Value.IsObject())
			{
				NewLine();
			}
			else
			{
				Text += " ";
			}
			Value(Members[Index].Value);
		}
		--Depth;
		NewLine();
		Text += "}";
	}

	/** Objects, arrays and strings stand on lines of their own; numbers, booleans and nulls stay on the line. */
	void Array(const FQVJson::FArray& Elements)
	{
		Text += "[";
		++Depth;
		bool bOnOwnLine = false;
		for (std::size_t Index = 0; Index < Elements.size(); ++Index)
		{
			const FQVJson& Element = Elements[Index];
			bOnOwnLine = Element.IsObject() || Element.AsArray() != nullptr || Element.AsString() != nullptr;
			Text += Index == 0 ? "" : ",";
			if (bOnOwnLine)
			{
				NewLine();
			}
			else
			{
				Text += " ";
			}
			Value(Element);
		}
		--Depth;
		if (bOnOwnLine)
		{
			NewLine();
		}
		else if (!Elements.empty())
		{
			Text += " ";
		}
		Text += "]";
	}
};
} // namespace

std::string FQVJson::ToPrettyString() const
{
	FPrettyWriter Writer;
	Writer.Value(*this);
	return std::move(Writer.Text);
}
