// SPDX-License-Identifier: MIT
#include "Standalone/Engine/ArgumentString.h"

#include <algorithm>

namespace QVStandalone
{
namespace
{
bool IsBlank(char Letter)
{
	return Letter == ' ' || Letter == '\t';
}

/** Takes one argument from the front of Rest, which begins with no blank. */
std::string TakeArgument(std::string_view& Rest)
{
	std::string Argument;
	bool bGrouped = false;
	while (!Rest.empty() && (bGrouped || !IsBlank(Rest.front())))
	{
		const std::size_t Backslashes = std::min(Rest.find_first_not_of('\\'), Rest.size());
		const bool bQuoteFollows = Backslashes < Rest.size() && Rest[Backslashes] == '"';
		Argument.append(bQuoteFollows ? Backslashes / 2 : Backslashes, '\\');
		Rest.remove_prefix(Backslashes);
		if (!bQuoteFollows)
		{
			if (Backslashes == 0)
			{
				Argument.push_back(Rest.front());
				Rest.remove_prefix(1);
			}
			continue;
		}
		Rest.remove_prefix(1);
		const bool bDoubled = bGrouped && Rest.starts_with('"');
		if (Backslashes % 2 != 0 || bDoubled)
		{
			Argument.push_back('"');
			Rest.remove_prefix(Backslashes % 2 == 0 ? 1 : 0);
		}
		else
		{
			bGrouped = !bGrouped;
		}
	}
	return Argument;
}
} // namespace

std::vector<std::string> SplitArguments(std::string_view Arguments)
{
	std::vector<std::string> Result;
	while (true)
	{
		while (!Arguments.empty() && IsBlank(Arguments.front()))
		{
			Arguments.remove_prefix(1);
		}
		if (Arguments.empty())
		{
			return Result;
		}
		Result.push_back(TakeArgument(Arguments));
	}
}
} // namespace QVStandalone
