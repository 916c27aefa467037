// SPDX-License-Identifier: MIT
#pragma once

#include "Content/QVMapReferenceAudit.h"
#include "Core/QVJson.h"
#include "Standalone/Engine/PackageScan.h"

namespace QVCli
{
/** A mod's reference audit, with what is to be told beside it. */
struct FReferenceReport
{
	std::string Mod;
	FQVReferenceAudit Audit;
	/** What these refer to is not known. */
	std::vector<QVStandalone::FUnreadablePackage> Unreadable;
};

/** For a person. With bAll also every package of the mod, and every trusted one. */
std::string ToText(const FReferenceReport& Report, bool bAll);
/** All of it. */
FQVJson ToJson(const FReferenceReport& Report);
} // namespace QVCli
