// SPDX-License-Identifier: MIT
#include "Core/QVDateTime.h"

#include "Core/QVPrintf.h"

#include <charconv>
#include <chrono>

namespace
{
constexpr std::int64_t SecondsPerDay = 86'400;

struct FCalendar
{
	int Year = 1;
	unsigned Month = 1;
	unsigned Day = 1;
	std::int64_t Hour = 0;
	std::int64_t Minute = 0;
	std::int64_t Second = 0;
	std::int64_t Millisecond = 0;
};

std::int64_t FloorDivide(std::int64_t Value, std::int64_t By)
{
	const std::int64_t Quotient = Value / By;
	return Value % By < 0 ? Quotient - 1 : Quotient;
}

FCalendar ToCalendar(std::int64_t Ticks)
{
	const std::int64_t SinceEpoch = Ticks - FQVDateTime::UnixEpochTicks;
	const std::int64_t Seconds = FloorDivide(SinceEpoch, FQVDateTime::TicksPerSecond);
	const std::int64_t Days = FloorDivide(Seconds, SecondsPerDay);
	const std::int64_t OfDay = Seconds - Days * SecondsPerDay;
	const std::chrono::year_month_day Date{std::chrono::sys_days{std::chrono::days{Days}}};
	return {static_cast<int>(Date.year()), static_cast<unsigned>(Date.month()), static_cast<unsigned>(Date.day()),
		OfDay / 3600, OfDay / 60 % 60, OfDay % 60,
		(SinceEpoch - Seconds * FQVDateTime::TicksPerSecond) / (FQVDateTime::TicksPerSecond / 1000)};
}

/** Reads fixed-width numbers and marks from the front of a text. */
struct FScanner
{
	std::string_view Rest;
	bool bFailed = false;

	int Number(std::size_t Digits)
	{
		int Value = 0;
		const std::string_view Field = Rest.substr(0, Digits);
		const auto [End, Error] = std::from_chars(Field.data(), Field.data() + Field.size(), Value);
		bFailed = bFailed || Field.size() != Digits || Error != std::errc() || End != Field.data() + Digits ||
				  Field[0] == '-';
		Rest.remove_prefix(Field.size());
		return Value;
	}

	bool Mark(char Letter)
	{
		if (Rest.empty() || Rest.front() != Letter)
		{
			return false;
		}
		Rest.remove_prefix(1);
		return true;
	}

	void Expect(char Letter) { bFailed = !Mark(Letter) || bFailed; }

	/** Digits behind a point, in ticks. */
	std::int64_t Fraction()
	{
		std::int64_t Value = 0;
		std::int64_t Unit = FQVDateTime::TicksPerSecond;
		while (!Rest.empty() && Rest.front() >= '0' && Rest.front() <= '9')
		{
			Unit /= 10;
			Value += Unit * (Rest.front() - '0');
			Rest.remove_prefix(1);
		}
		return Value;
	}

	/** Z, +hh:mm, -hhmm or nothing; seconds that the text lies ahead of UTC. */
	std::int64_t Zone()
	{
		if (Rest.empty() || Mark('Z'))
		{
			return 0;
		}
		const bool bAhead = Mark('+');
		bFailed = bFailed || (!bAhead && !Mark('-'));
		const std::int64_t Hours = Number(2);
		Mark(':');
		const std::int64_t Minutes = Rest.empty() ? 0 : Number(2);
		return (bAhead ? 1 : -1) * (Hours * 3600 + Minutes * 60);
	}
};
} // namespace

FQVDateTime FQVDateTime::FromUnixSeconds(std::int64_t Seconds, std::int64_t Nanoseconds)
{
	return FQVDateTime(UnixEpochTicks + Seconds * TicksPerSecond + Nanoseconds / 100);
}

std::string FQVDateTime::ToString() const
{
	const FCalendar C = ToCalendar(Ticks);
	return QVPrintf("%04d.%02d.%02d-%02d.%02d.%02d", C.Year, C.Month, C.Day, C.Hour, C.Minute, C.Second);
}

std::string FQVDateTime::ToIso8601() const
{
	const FCalendar C = ToCalendar(Ticks);
	return QVPrintf(
		"%04d-%02d-%02dT%02d:%02d:%02d.%03dZ", C.Year, C.Month, C.Day, C.Hour, C.Minute, C.Second, C.Millisecond);
}

std::string FQVDateTime::ToFileStamp() const
{
	const FCalendar C = ToCalendar(Ticks);
	return QVPrintf("%04d%02d%02d_%02d%02d%02d", C.Year, C.Month, C.Day, C.Hour, C.Minute, C.Second);
}

std::string FQVDateTime::ToDisplayText() const
{
	constexpr std::string_view Months[] = {
		"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
	const FCalendar C = ToCalendar(Ticks);
	const std::int64_t Hour = C.Hour % 12 == 0 ? 12 : C.Hour % 12;
	return QVPrintf("%s %d, %d, %d:%02d:%02d %s", Months[C.Month - 1], C.Day, C.Year, Hour, C.Minute, C.Second,
		C.Hour < 12 ? "AM" : "PM");
}

bool FQVDateTime::ParseIso8601(std::string_view Text, FQVDateTime& Out)
{
	FScanner Scan{Text};
	const int Year = Scan.Number(4);
	Scan.Expect('-');
	const int Month = Scan.Number(2);
	Scan.Expect('-');
	const int Day = Scan.Number(2);
	int Time[3] = {};
	std::int64_t Fraction = 0;
	if (!Scan.Rest.empty())
	{
		Scan.Expect('T');
		Time[0] = Scan.Number(2);
		Scan.Expect(':');
		Time[1] = Scan.Number(2);
		Scan.Expect(':');
		Time[2] = Scan.Number(2);
		Fraction = Scan.Mark('.') ? Scan.Fraction() : 0;
	}
	const std::int64_t Zone = Scan.Zone();
	const std::chrono::year_month_day Date{std::chrono::year{Year}, std::chrono::month(static_cast<unsigned>(Month)),
		std::chrono::day(static_cast<unsigned>(Day))};
	if (Scan.bFailed || !Scan.Rest.empty() || !Date.ok() || Time[0] > 23 || Time[1] > 59 || Time[2] > 59)
	{
		return false;
	}
	const std::int64_t Days = std::chrono::sys_days{Date}.time_since_epoch().count();
	Out = FromUnixSeconds(Days * SecondsPerDay + Time[0] * INT64_C(3600) + Time[1] * INT64_C(60) + Time[2] - Zone);
	Out.Ticks += Fraction;
	return true;
}
