// SPDX-License-Identifier: MIT
#pragma once

#include <concepts>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>

/** What an argument of QVPrintf is; which conversions take it is in QVPrintfDetail::Accepts. */
enum class EQVPrintfKind
{
	Integer,
	Real,
	Text,
	Character,
	Unsupported
};

/** One argument, type and value. Holds a view of a text: not to be kept. */
struct FQVPrintfArgument
{
	EQVPrintfKind Kind = EQVPrintfKind::Integer;
	bool bSigned = true;
	unsigned long long Integer = 0;
	double Real = 0.0;
	std::string_view Text;
};

namespace QVPrintfDetail
{
template<class T>
consteval EQVPrintfKind KindOf()
{
	using Plain = std::remove_cvref_t<T>;
	if constexpr (std::is_same_v<Plain, bool>)
	{
		return EQVPrintfKind::Unsupported; // "1" or "true"? say which: FQVString::BoolWord
	}
	else if constexpr (std::is_same_v<Plain, char> || std::is_same_v<Plain, char32_t>)
	{
		return EQVPrintfKind::Character;
	}
	else if constexpr (std::integral<Plain>)
	{
		return EQVPrintfKind::Integer;
	}
	else if constexpr (std::floating_point<Plain>)
	{
		return EQVPrintfKind::Real;
	}
	else if constexpr (std::is_convertible_v<const Plain&, std::string_view>)
	{
		return EQVPrintfKind::Text;
	}
	else
	{
		return EQVPrintfKind::Unsupported;
	}
}

constexpr bool IsDigit(char Letter)
{
	return Letter >= '0' && Letter <= '9';
}

/** A conversion: %, flags, width, precision, length (ll, l, z: read over), letter. */
struct FConversion
{
	std::string_view Modifiers; // between % and the length
	char Letter = '\0';			// '\0' when the format ends too early
	std::size_t Length = 0;		// of the whole, from the %
};

constexpr FConversion ParseConversion(std::string_view FromPercent)
{
	std::size_t Index = 1;
	while (
		Index < FromPercent.size() &&
		(IsDigit(FromPercent[Index]) || std::string_view("-+ #.").find(FromPercent[Index]) != std::string_view::npos))
	{
		++Index;
	}
	const std::string_view Modifiers = FromPercent.substr(1, Index - 1);
	while (Index < FromPercent.size() && (FromPercent[Index] == 'l' || FromPercent[Index] == 'z'))
	{
		++Index;
	}
	return Index < FromPercent.size() ? FConversion{Modifiers, FromPercent[Index], Index + 1}
									  : FConversion{Modifiers, '\0', Index};
}

constexpr bool Accepts(const FConversion& Conversion, EQVPrintfKind Kind)
{
	switch (Conversion.Letter)
	{
	case 'd':
	case 'u':
	case 'x':
	case 'X':
		return Kind == EQVPrintfKind::Integer;
	case 'f':
	case 'g':
		return Kind == EQVPrintfKind::Real;
	case 's':
		return Kind == EQVPrintfKind::Text && Conversion.Modifiers.empty();
	case 'c':
		return Kind == EQVPrintfKind::Character && Conversion.Modifiers.empty();
	default:
		return false;
	}
}

constexpr bool Fits(std::string_view Format, std::span<const EQVPrintfKind> Kinds)
{
	std::size_t Used = 0;
	for (std::size_t Index = Format.find('%'); Index != std::string_view::npos; Index = Format.find('%', Index))
	{
		const FConversion Conversion = ParseConversion(Format.substr(Index));
		Index += Conversion.Length;
		if (Conversion.Letter == '%' && Conversion.Length == 2)
		{
			continue;
		}
		if (Used >= Kinds.size() || Conversion.Modifiers.size() > 12 || !Accepts(Conversion, Kinds[Used]))
		{
			return false;
		}
		++Used;
	}
	return Used == Kinds.size();
}

/** Not constexpr: reaching it while compiling is the error message. */
void TheFormatDoesNotFitItsArguments();

template<class T>
FQVPrintfArgument MakeArgument(const T& Value)
{
	FQVPrintfArgument Argument;
	Argument.Kind = KindOf<T>();
	if constexpr (KindOf<T>() == EQVPrintfKind::Integer)
	{
		Argument.bSigned = std::is_signed_v<T>;
		Argument.Integer = static_cast<unsigned long long>(Value);
	}
	else if constexpr (KindOf<T>() == EQVPrintfKind::Character)
	{
		Argument.Integer = static_cast<char32_t>(static_cast<std::make_unsigned_t<T>>(Value));
	}
	else if constexpr (KindOf<T>() == EQVPrintfKind::Real)
	{
		Argument.Real = static_cast<double>(Value);
	}
	else
	{
		Argument.Text = Value;
	}
	return Argument;
}
} // namespace QVPrintfDetail

/** A printf format that was compared with its arguments while compiling. */
template<class... Args>
struct TQVFormat
{
	template<std::size_t Size>
	consteval TQVFormat(const char (&InText)[Size])
		: Text(InText, Size - 1)
	{
		constexpr EQVPrintfKind Kinds[] = {QVPrintfDetail::KindOf<Args>()..., EQVPrintfKind::Unsupported};
		if (!QVPrintfDetail::Fits(Text, std::span(Kinds, sizeof...(Args))))
		{
			QVPrintfDetail::TheFormatDoesNotFitItsArguments();
		}
	}

	std::string_view Text;
};

/** The work behind QVPrintf, for a format that fits. */
std::string QVPrintfFormat(std::string_view Format, std::span<const FQVPrintfArgument> Arguments);

/**
 * printf with types: %d %u %x take any integer of any width, %f %g any real, %s anything that views as a string, %c a
 * character. A format that does not fit its arguments does not compile. The decimal sign is always a point.
 */
template<class... Args>
std::string QVPrintf(TQVFormat<std::type_identity_t<Args>...> Format, const Args&... Arguments)
{
	const FQVPrintfArgument List[] = {QVPrintfDetail::MakeArgument(Arguments)..., FQVPrintfArgument{}};
	return QVPrintfFormat(Format.Text, std::span(List, sizeof...(Args)));
}
