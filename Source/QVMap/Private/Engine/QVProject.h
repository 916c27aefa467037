// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

/** Where project and engine lie, and which engine it is. Full paths with forward slashes, no slash at the end. */
class IQVProject
{
public:
	virtual ~IQVProject() = default;

	virtual std::string ProjectDir() const = 0;
	/** The `.uproject` file. */
	virtual std::string GetProjectFilePath() const = 0;
	virtual std::string EngineDir() const = 0;
	/** Down to the patch component: "5.4.4". */
	virtual std::string EngineVersion() const = 0;
	/** File name of a release's development registry. */
	virtual std::string DevelopmentAssetRegistryFilename() const = 0;
	/** The editor's program runs without its windows: nobody can be asked anything. */
	virtual bool IsRunningCommandlet() const = 0;
	/** A value of the project's game configuration, what projects inherit from the engine included; nothing if unset.
	 */
	virtual std::optional<std::string> GetGameConfigString(std::string_view Section, std::string_view Key) const = 0;
};
