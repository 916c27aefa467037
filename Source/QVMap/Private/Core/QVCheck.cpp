// SPDX-License-Identifier: MIT
#include "Core/QVCheck.h"

#include <cstdio>
#include <cstdlib>

namespace
{
void PrintAndAbort(std::string_view Condition, std::string_view File, int Line)
{
	std::fprintf(stderr, "QVMap: broken contract at %.*s:%d: %.*s\n", static_cast<int>(File.size()), File.data(), Line,
		static_cast<int>(Condition.size()), Condition.data());
	std::abort();
}

FQVCheck::FHandler CurrentHandler = &PrintAndAbort;
} // namespace

void FQVCheck::SetHandler(FHandler Handler)
{
	CurrentHandler = Handler != nullptr ? Handler : &PrintAndAbort;
}

void FQVCheck::Fail(std::string_view Condition, std::string_view File, int Line)
{
	CurrentHandler(Condition, File, Line);
	std::abort();
}
