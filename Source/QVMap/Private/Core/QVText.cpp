// SPDX-License-Identifier: MIT
#include "Core/QVText.h"

#include "Core/QVPrintf.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace
{
std::string Group(std::string_view Digits)
{
	std::string Result;
	for (std::size_t Index = 0; Index < Digits.size(); ++Index)
	{
		if (Index > 0 && (Digits.size() - Index) % 3 == 0)
		{
			Result.push_back(',');
		}
		Result.push_back(Digits[Index]);
	}
	return Result;
}

struct FRenderer
{
	std::string operator()(const std::string& Text) const { return Text; }
	std::string operator()(std::int64_t Number) const { return FQVText::AsNumber(Number); }
	std::string operator()(double Number) const { return FQVText::AsNumber(Number); }
	std::string operator()(const std::shared_ptr<const FQVText>& Text) const { return Text->ToString(); }
};

const FQVTextArgument* FindArgument(std::string_view Name, const std::vector<FQVTextArgument>& Arguments)
{
	std::size_t Position = 0;
	const auto [End, Error] = std::from_chars(Name.data(), Name.data() + Name.size(), Position);
	if (Error == std::errc() && End == Name.data() + Name.size())
	{
		return Position < Arguments.size() ? &Arguments[Position] : nullptr;
	}
	const auto Found = std::find_if(
		Arguments.begin(), Arguments.end(), [Name](const FQVTextArgument& Argument) { return Argument.Name == Name; });
	return Found != Arguments.end() && !Name.empty() ? &*Found : nullptr;
}
} // namespace

FQVTextArgument::FQVTextArgument(FQVText InText)
	: Value(std::make_shared<const FQVText>(std::move(InText)))
{
}

FQVText FQVText::FromString(std::string_view Text)
{
	return FQVText({}, {}, "{0}", Text);
}

std::string FQVText::Format(std::string_view Pattern, const std::vector<FQVTextArgument>& Arguments)
{
	std::string Result;
	while (!Pattern.empty())
	{
		const std::size_t Open = std::min(Pattern.find('{'), Pattern.size());
		Result.append(Pattern.substr(0, Open));
		Pattern.remove_prefix(Open);
		const std::size_t Close = Pattern.find('}');
		if (Pattern.empty() || Close == std::string_view::npos)
		{
			break;
		}
		const FQVTextArgument* Argument = FindArgument(Pattern.substr(1, Close - 1), Arguments);
		Result.append(
			Argument != nullptr ? std::visit(FRenderer(), Argument->Value) : std::string(Pattern.substr(0, Close + 1)));
		Pattern.remove_prefix(Close + 1);
	}
	return Result.append(Pattern);
}

std::string FQVText::AsNumber(std::int64_t Number)
{
	const std::string Text = QVPrintf("%d", Number);
	const std::size_t Sign = Number < 0 ? 1 : 0;
	return Text.substr(0, Sign).append(Group(std::string_view(Text).substr(Sign)));
}

std::string FQVText::AsNumber(double Number)
{
	// nearbyint rounds ties to even in the default mode, and the tie is judged on the decimal number that was meant
	const double Rounded = std::nearbyint(std::abs(Number) * 1000.0) / 1000.0;
	std::string Text = QVPrintf("%.3f", Rounded);
	const std::size_t Point = Text.find('.');
	const std::string Whole = Group(std::string_view(Text).substr(0, Point));
	std::string Decimals = Point == std::string::npos ? std::string() : Text.substr(Point);
	while (!Decimals.empty() && (Decimals.back() == '0' || Decimals.back() == '.'))
	{
		Decimals.pop_back();
	}
	const bool bNegative = Number < 0 && Rounded != 0.0;
	return (bNegative ? "-" : "") + Whole + Decimals;
}
