// SPDX-License-Identifier: MIT
#include "Content/QVMapSecurityScanner.h"

#include "Core/QVString.h"

#include <algorithm>

bool FQVMapSecurityScanner::IsTrustedPackagePath(std::string_view PackagePath)
{
	static constexpr std::string_view TrustedRoots[] = {
		"/Script/", "/Engine/", "/Niagara/", "/Game/QUARVEL/", "/QUARVEL/"};
	return std::any_of(std::begin(TrustedRoots), std::end(TrustedRoots),
		[PackagePath](std::string_view Root) { return FQVString::StartsWithIgnoreCase(PackagePath, Root); });
}
