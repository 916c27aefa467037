// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

/** The part of the editor that makes and opens levels. What was open gives way; its changes are lost. Game thread. */
class IQVLevelEditor
{
public:
	virtual ~IQVLevelEditor() = default;

	/** An empty level, saved as that package and open then. False: the reason is in the log. */
	virtual bool NewLevel(std::string_view PackageName, bool bIsPartitionedWorld) = 0;
	/** The same with what another map holds. */
	virtual bool NewLevelFromTemplate(std::string_view PackageName, std::string_view TemplatePackageName) = 0;
	/** False: the reason is in the log. */
	virtual bool LoadLevel(std::string_view PackageName) = 0;
};
