// SPDX-License-Identifier: MIT
#include "Core/QVDateTime.h"

#include <gtest/gtest.h>

TEST(DateTime, PrintsInEveryForm)
{
	const struct
	{
		std::int64_t UnixSeconds;
		const char* Text;
		const char* Iso;
		const char* Stamp;
		const char* Display;
	} Cases[] = {
		{1795280709, "2026.11.21-17.05.09", "2026-11-21T17:05:09.000Z", "20261121_170509", "Nov 21, 2026, 5:05:09 PM"},
		{0, "1970.01.01-00.00.00", "1970-01-01T00:00:00.000Z", "19700101_000000", "Jan 1, 1970, 12:00:00 AM"},
		{1709208000, "2024.02.29-12.00.00", "2024-02-29T12:00:00.000Z", "20240229_120000", "Feb 29, 2024, 12:00:00 PM"},
		{951868799, "2000.02.29-23.59.59", "2000-02-29T23:59:59.000Z", "20000229_235959", "Feb 29, 2000, 11:59:59 PM"},
		{4107542400, "2100.03.01-00.00.00", "2100-03-01T00:00:00.000Z", "21000301_000000", "Mar 1, 2100, 12:00:00 AM"},
		{-1, "1969.12.31-23.59.59", "1969-12-31T23:59:59.000Z", "19691231_235959", "Dec 31, 1969, 11:59:59 PM"},
		{-62135596800, "0001.01.01-00.00.00", "0001-01-01T00:00:00.000Z", "00010101_000000", "Jan 1, 1, 12:00:00 AM"},
	};
	for (const auto& Case : Cases)
	{
		const FQVDateTime Time = FQVDateTime::FromUnixSeconds(Case.UnixSeconds);
		EXPECT_EQ(Time.ToString(), Case.Text);
		EXPECT_EQ(Time.ToIso8601(), Case.Iso);
		EXPECT_EQ(Time.ToFileStamp(), Case.Stamp);
		EXPECT_EQ(Time.ToDisplayText(), Case.Display);
		FQVDateTime Back;
		EXPECT_TRUE(FQVDateTime::ParseIso8601(Case.Iso, Back));
		EXPECT_EQ(Back, Time) << Case.Iso;
	}
	EXPECT_EQ(FQVDateTime().ToIso8601(), "0001-01-01T00:00:00.000Z");
	EXPECT_EQ(FQVDateTime::FromUnixSeconds(5, 123'999'999).ToIso8601(), "1970-01-01T00:00:05.123Z");
	EXPECT_LT(FQVDateTime::FromUnixSeconds(5), FQVDateTime::FromUnixSeconds(5, 100));
}

TEST(DateTime, ParsesFractionsAndZones)
{
	const struct
	{
		const char* Text;
		const char* Utc;
	} Cases[] = {
		{"2026-11-21", "2026-11-21T00:00:00.000Z"},
		{"2026-11-21T17:05:09", "2026-11-21T17:05:09.000Z"},
		{"2026-11-21T17:05:09Z", "2026-11-21T17:05:09.000Z"},
		{"2026-11-21T17:05:09.5", "2026-11-21T17:05:09.500Z"},
		{"2026-11-21T17:05:09.123456789123Z", "2026-11-21T17:05:09.123Z"},
		{"2026-11-21T17:05:09+02:00", "2026-11-21T15:05:09.000Z"},
		{"2026-11-21T17:05:09.25-0530", "2026-11-21T22:35:09.250Z"},
		{"2024-03-01T00:30:00+01", "2024-02-29T23:30:00.000Z"},
		{"2023-12-31T23:30:00-01:00", "2024-01-01T00:30:00.000Z"},
	};
	for (const auto& Case : Cases)
	{
		FQVDateTime Time;
		EXPECT_TRUE(FQVDateTime::ParseIso8601(Case.Text, Time)) << Case.Text;
		EXPECT_EQ(Time.ToIso8601(), Case.Utc) << Case.Text;
	}
	for (const char* Text : {"", "2026", "2026-11", "2026-11-2", "2026-13-01", "2026-00-01", "2025-02-29", "2026-04-31",
			 "2026-11-21 17:05:09", "2026-11-21T17:05", "2026-11-21T24:00:00", "2026-11-21T17:60:00",
			 "2026-11-21T17:05:09 ", "2026-11-21T17:05:09Zx", "2026-11-21T17:05:09+", "2026-11-21T17:05:09+0",
			 "-026-11-21", "20x6-11-21", "2026/11/21", "2026-11-21T-1:05:09", "yesterday"})
	{
		FQVDateTime Time = FQVDateTime::FromUnixSeconds(7);
		EXPECT_FALSE(FQVDateTime::ParseIso8601(Text, Time)) << Text;
		EXPECT_EQ(Time, FQVDateTime::FromUnixSeconds(7)) << Text;
	}
}
