// SPDX-License-Identifier: MIT
#include "Standalone/Engine/NameSearch.h"

#include "Core/QVString.h"
#include "Core/QVUnicode.h"

namespace QVStandalone
{
namespace
{
bool GoesOn(std::string_view Bytes, std::size_t At)
{
	constexpr std::string_view NameEnds = "\\:*?\"<>|' ,.&!~\n\r\t@#(){}[]=;";
	return At < Bytes.size() && Bytes[At] != 0 && NameEnds.find(Bytes[At]) == std::string_view::npos;
}
} // namespace

FNameSearch::FNameSearch(std::string_view Name)
	: Narrow(FQVString::ToLower(Name))
{
	for (const char16_t Unit : FQVUnicode::ToUtf16(Narrow))
	{
		Wide.push_back(static_cast<char>(Unit & 0xFF));
		Wide.push_back(static_cast<char>(Unit >> 8));
	}
}

bool FNameSearch::IsIn(std::string_view Bytes, std::string_view Wanted, std::size_t UnitBytes)
{
	for (std::size_t At = Bytes.find('/'); At != std::string_view::npos; At = Bytes.find('/', At + 1))
	{
		if (FQVString::EqualsIgnoreCase(Bytes.substr(At, Wanted.size()), Wanted) &&
			!GoesOn(Bytes, At + Wanted.size()) && (At < UnitBytes || !GoesOn(Bytes, At - UnitBytes)))
		{
			return true;
		}
	}
	return false;
}
} // namespace QVStandalone
