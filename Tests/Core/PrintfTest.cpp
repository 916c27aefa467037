// SPDX-License-Identifier: MIT
#include "Core/QVGuid.h"
#include "Core/QVPrintf.h"
#include "Core/QVText.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{
template<class... Args>
consteval bool Fits(std::string_view Format)
{
	constexpr EQVPrintfKind Kinds[] = {QVPrintfDetail::KindOf<Args>()..., EQVPrintfKind::Unsupported};
	return QVPrintfDetail::Fits(Format, std::span(Kinds, sizeof...(Args)));
}

static_assert(Fits<>("nothing, 100%%"));
static_assert(Fits<int, std::size_t, long long>("%d %u %lld"));
static_assert(Fits<unsigned char, long>("%02x %08X"));
static_assert(Fits<float, double>("%.2f %g"));
static_assert(Fits<std::string, std::string_view, const char*, char[4]>("%s%s%s%s"));
static_assert(Fits<char, char32_t>("%c%c"));
static_assert(!Fits<>("%d"), "an argument is missing");
static_assert(!Fits<int, int>("%d"), "one is left over");
static_assert(!Fits<std::string>("%d") && !Fits<double>("%d") && !Fits<char>("%d"), "another type");
static_assert(!Fits<int>("%s") && !Fits<int>("%f") && !Fits<int>("%c"), "another type");
static_assert(!Fits<bool>("%d") && !Fits<bool>("%s"), "a bool is to be put in words");
static_assert(!Fits<void*>("%s") && !Fits<std::wstring>("%s"), "no text of ours");
static_assert(!Fits<int>("%n") && !Fits<int>("%p") && !Fits<int>("%i"), "conversions that nobody needs");
static_assert(!Fits<int>("%*d") && !Fits<std::string>("%10s"), "modifiers that are not carried out");
static_assert(!Fits<int>("%") && !Fits<>("%") && !Fits<int>("%5"), "a format that ends too early");
static_assert(!Fits<>("% %"), "not a percent sign");
} // namespace

TEST(Printf, PrintsEveryConversion)
{
	EXPECT_EQ(QVPrintf("%d|%5d|%-5d|%05d|%+d", 1, 2, 3, -4, 5), "1|    2|3    |-0004|+5");
	EXPECT_EQ(QVPrintf("%d %lld", std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::uint64_t>::max()),
		"-9223372036854775808 18446744073709551615");
	EXPECT_EQ(QVPrintf("%x %08X", 255u, 0xABCu), "ff 00000ABC");
	EXPECT_EQ(QVPrintf("%.2f %f %.17g", 2.0f / 3.0f, 1.5, 0.1), "0.67 1.500000 0.10000000000000001");
	EXPECT_EQ(QVPrintf("%s %s %s", "a", std::string("b%d"), std::string_view("Höhle")), "a b%d Höhle");
	EXPECT_EQ(QVPrintf("%c%c%c", 'x', U'ö', U'\U0001F600'), "xö\U0001F600");
	EXPECT_EQ(QVPrintf("%d%% of %s", 100, ""), "100% of ");
	const std::string WithZero("a\0b", 3);
	EXPECT_EQ(QVPrintf("<%s>", WithZero), "<" + WithZero + ">");
	EXPECT_EQ(QVPrintf("%s", std::string(100'000, 'y')).size(), 100'000u);
}

TEST(Text, GroupsNumbersAsInEnglish)
{
	const struct
	{
		std::int64_t Number;
		const char* Text;
	} Whole[] = {{0, "0"}, {7, "7"}, {999, "999"}, {1000, "1,000"}, {1'234'567, "1,234,567"}, {-999, "-999"},
		{-1000, "-1,000"}, {std::numeric_limits<std::int64_t>::min(), "-9,223,372,036,854,775,808"}};
	for (const auto& Case : Whole)
	{
		EXPECT_EQ(FQVText::AsNumber(Case.Number), Case.Text);
	}
	const struct
	{
		double Number;
		const char* Text;
	} Real[] = {{0.0, "0"}, {1.5, "1.5"}, {1234.25, "1,234.25"}, {0.0625, "0.062"}, {0.1875, "0.188"}, {2.0004, "2"},
		{2.9996, "3"}, {-0.0001, "0"}, {-1234.5678, "-1,234.568"}, {999'999.9999, "1,000,000"}, {0.0005, "0"},
		{1e15, "1,000,000,000,000,000"}};
	for (const auto& Case : Real)
	{
		EXPECT_EQ(FQVText::AsNumber(Case.Number), Case.Text) << Case.Number;
	}
}

TEST(Text, FillsItsPlaceholders)
{
	const FQVText Inner("QVMap", "Inner", "{0} maps", 1234);
	const FQVText Text(
		"QVMap", "Key", "{Mod}: {0}, {2} and {1}; {0}", "a{1}b", 1.25, Inner, FQVTextArgument::Named("Mod", "Cave"));
	EXPECT_EQ(Text.ToString(), "Cave: a{1}b, 1,234 maps and 1.25; a{1}b");
	EXPECT_EQ(Text.GetNamespace() + "/" + Text.GetKey(), "QVMap/Key");
	EXPECT_EQ(FQVText::Format("Karte {Mod}", Text.GetArguments()), "Karte Cave");
	for (const char* Unfilled : {"{7}", "{Nobody}", "{}", "open {0", "}", ""})
	{
		EXPECT_EQ(FQVText("N", "K", Unfilled).ToString(), Unfilled);
	}
	EXPECT_EQ(FQVText::FromString("{0} as it is").ToString(), "{0} as it is");
	EXPECT_EQ(FQVText().ToString(), "");
}

TEST(Guid, PrintsAsDigits)
{
	EXPECT_EQ((FQVGuid{{0xABCDEF12, 0x00000001, 0, 0xFFFFFFFF}}.ToDigits()), "ABCDEF120000000100000000FFFFFFFF");
}
