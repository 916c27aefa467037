// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVAssetTools.h"
#include "Standalone/Engine/RedirectorFixup.h"

namespace QVStandalone
{
/** Asset tools over the files of a project. */
class FAssetTools : public IQVAssetTools
{
public:
	FAssetTools(FAssetRegistry& Registry, const FPackages& Packages, const std::string& InProjectDir);

	void FixupReferencers(std::span<const FQVAssetData> Redirectors) override;

	FRedirectorFixup& GetRedirectorFixup() { return Fixup; }
	/** What the last FixupReferencers did. */
	const FRedirectorPlan& GetLastFixup() const { return Last; }

private:
	const std::string ProjectDir;
	FRedirectorFixup Fixup;
	FRedirectorPlan Last;
};
} // namespace QVStandalone
