// SPDX-License-Identifier: MIT
#include "Standalone/Cli/NearestWord.h"

#include "Core/QVString.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace QVCli
{
namespace
{
/** Letters to add, drop or exchange to make one word of the other. */
std::size_t EditDistance(std::string_view A, std::string_view B)
{
	std::vector<std::size_t> Row(B.size() + 1);
	std::iota(Row.begin(), Row.end(), std::size_t{0});
	for (std::size_t I = 0; I < A.size(); ++I)
	{
		std::size_t Diagonal = std::exchange(Row[0], I + 1);
		for (std::size_t J = 0; J < B.size(); ++J)
		{
			const std::size_t Exchanged = Diagonal + (FQVString::ToLower(A[I]) == FQVString::ToLower(B[J]) ? 0 : 1);
			Diagonal = Row[J + 1];
			Row[J + 1] = std::min({Exchanged, Row[J] + 1, Row[J + 1] + 1});
		}
	}
	return Row.back();
}
} // namespace

std::string NearestWord(std::string_view Word, const std::vector<std::string>& Candidates)
{
	std::string Nearest;
	std::size_t Least = std::max<std::size_t>(2, Word.size() / 3) + 1;
	for (const std::string& Candidate : Candidates)
	{
		const std::size_t Distance = EditDistance(Word, Candidate);
		if (Distance < Least)
		{
			Least = Distance;
			Nearest = Candidate;
		}
	}
	return Nearest;
}
} // namespace QVCli
