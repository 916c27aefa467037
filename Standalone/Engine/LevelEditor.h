// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVLevelEditor.h"
#include "Standalone/Engine/Packages.h"

namespace QVStandalone
{
/** Makes levels as files, whole or not at all, and opens them as the engine does that this belongs to. */
class FLevelEditor : public IQVLevelEditor
{
public:
	using FOpenMap = std::function<QVFormats::FStatus(std::string_view PackageName)>;

	/** Packages outlive it. */
	FLevelEditor(FPackages& InPackages, FOpenMap InOpenMap);

	/** No editor has opened such a level yet; there is nothing in it. A partitioned one is refused. */
	bool NewLevel(std::string_view PackageName, bool bIsPartitionedWorld) override;
	/**
	 * The template's file under the new name. Refused if its actors lie in files of their own, unless it is
	 * partitioned: then they are left behind, and it is for the caller to refuse the level.
	 */
	bool NewLevelFromTemplate(std::string_view PackageName, std::string_view TemplatePackageName) override;
	bool LoadLevel(std::string_view PackageName) override;

private:
	FPackages& Packages;
	const FOpenMap OpenMap;

	QVFormats::TResult<std::string> FileOfNewLevel(std::string_view PackageName) const;
	QVFormats::FStatus SaveEmpty(const std::string& PackageName);
	QVFormats::FStatus SaveFromTemplate(const std::string& PackageName, std::string_view TemplatePackageName);
	bool OpenNew(std::string_view PackageName, const QVFormats::FStatus& Saved);
};
} // namespace QVStandalone
