// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Engine/Classes.h"
#include "Standalone/Formats/Package/PackageHeader.h"

namespace QVStandalone
{
/** Which actors of one package a game does not get. What is given outlives the rule. */
class FEditorOnlyRule
{
public:
	/** File: all of it. */
	FEditorOnlyRule(const QVFormats::FPackageHeader& InHeader, QVFormats::FBytes InFile);

	bool Applies(const QVFormats::FPackageExport& Export, const FClass& Class) const;

private:
	const QVFormats::FPackageHeader& Header;
	const QVFormats::FBytes File;
	/** Most packages do not even have the name. */
	const bool bPropertyUsed;

	bool IsMarked(const QVFormats::FPackageExport& Export) const;
};
} // namespace QVStandalone
