// SPDX-License-Identifier: MIT
#include "Core/QVPrintf.h"

#include "Core/QVUnicode.h"

#include <cstdio>

namespace
{
template<class T>
void AppendNumber(std::string& Out, std::string_view Modifiers, const char* LengthAndLetter, T Value)
{
	const std::string Conversion = std::string("%").append(Modifiers).append(LengthAndLetter);
	char Buffer[512];
	const int Length = std::snprintf(Buffer, sizeof(Buffer), Conversion.c_str(), Value);
	Out.append(Buffer, Length > 0 ? std::min(static_cast<std::size_t>(Length), sizeof(Buffer) - 1) : 0);
}

void AppendInteger(std::string& Out, const QVPrintfDetail::FConversion& Conversion, const FQVPrintfArgument& Argument)
{
	if (Conversion.Letter == 'x' || Conversion.Letter == 'X')
	{
		AppendNumber(Out, Conversion.Modifiers, Conversion.Letter == 'x' ? "llx" : "llX", Argument.Integer);
	}
	else if (Argument.bSigned)
	{
		AppendNumber(Out, Conversion.Modifiers, "lld", static_cast<long long>(Argument.Integer));
	}
	else
	{
		AppendNumber(Out, Conversion.Modifiers, "llu", Argument.Integer);
	}
}

void AppendArgument(std::string& Out, const QVPrintfDetail::FConversion& Conversion, const FQVPrintfArgument& Argument)
{
	switch (Argument.Kind)
	{
	case EQVPrintfKind::Text:
		Out.append(Argument.Text);
		break;
	case EQVPrintfKind::Character:
		FQVUnicode::Append(Out, static_cast<char32_t>(Argument.Integer));
		break;
	case EQVPrintfKind::Real:
		AppendNumber(Out, Conversion.Modifiers, Conversion.Letter == 'f' ? "f" : "g", Argument.Real);
		break;
	default:
		AppendInteger(Out, Conversion, Argument);
	}
}
} // namespace

std::string QVPrintfFormat(std::string_view Format, std::span<const FQVPrintfArgument> Arguments)
{
	std::string Result;
	Result.reserve(Format.size() + 32);
	std::size_t Used = 0;
	while (!Format.empty())
	{
		const std::size_t Plain = std::min(Format.find('%'), Format.size());
		Result.append(Format.substr(0, Plain));
		Format.remove_prefix(Plain);
		if (Format.empty())
		{
			break;
		}
		const QVPrintfDetail::FConversion Conversion = QVPrintfDetail::ParseConversion(Format);
		Format.remove_prefix(Conversion.Length);
		if (Conversion.Letter == '%')
		{
			Result.push_back('%');
			continue;
		}
		AppendArgument(Result, Conversion, Arguments[Used++]);
	}
	return Result;
}
