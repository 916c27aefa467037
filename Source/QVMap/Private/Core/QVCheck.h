// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

/**
 * Contracts: a broken one is a mistake of ours, never of the user or of a file. The handler must not return; the
 * default prints and aborts. An engine may install one that writes a crash report, a test runner one that fails the
 * test.
 */
struct FQVCheck
{
	using FHandler = void (*)(std::string_view Condition, std::string_view File, int Line);

	/** Not thread-safe: called once, at the start of a program. */
	static void SetHandler(FHandler Handler);
	[[noreturn]] static void Fail(std::string_view Condition, std::string_view File, int Line);
};

#define QV_CHECK(Condition)                                                                                            \
	do                                                                                                                 \
	{                                                                                                                  \
		if (!(Condition))                                                                                              \
		{                                                                                                              \
			FQVCheck::Fail(#Condition, __FILE__, __LINE__);                                                            \
		}                                                                                                              \
	} while (false)
