// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVProject.h"

namespace QVStandalone
{
/** A mapping project and the engine it works with, both found beforehand. */
class FProject : public IQVProject
{
public:
	FProject(std::string InProjectFile, std::string InEngineDir);

	std::string ProjectDir() const override;
	std::string GetProjectFilePath() const override;
	std::string EngineDir() const override;
	/** From the engine's `Build/Build.version`; "5.4.0" where that cannot be read. */
	std::string EngineVersion() const override;
	std::string DevelopmentAssetRegistryFilename() const override;
	bool IsRunningCommandlet() const override { return false; }
	/** Read from the files at each call. */
	std::optional<std::string> GetGameConfigString(std::string_view Section, std::string_view Key) const override;

private:
	std::string ProjectFile;
	std::string Engine;
};
} // namespace QVStandalone
