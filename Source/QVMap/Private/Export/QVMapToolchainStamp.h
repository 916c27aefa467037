// SPDX-License-Identifier: MIT
#pragma once

#include <string>

/** How the base release's record of its toolchain compares with what is installed. */
struct FQVToolchainCheck
{
	/** The record exists and all content plugins match. */
	bool bUpToDate = false;
	/** The record is missing, unreadable, or names no content plugins. */
	bool bRecordUnusable = false;
	/** There is no usable base release, so nothing was compared. */
	bool bNoBaseRelease = false;
	/** Why the release is out of date: a sentence, or a line for each difference. */
	std::string Reason;
};

/** The record of the plugin versions that the base release was cooked with. Any thread. */
struct FQVMapToolchainStamp
{
	static std::string GetStampPath();
	/** Replaces the record; false with the reason in OutError. */
	static bool WriteToolchainStamp(std::string& OutError);
	static FQVToolchainCheck CheckToolchain();
	/** `VersionName` of the installed plugin; empty if there is none. */
	static std::string GetInstalledPluginVersion(const std::string& PluginName);
};
