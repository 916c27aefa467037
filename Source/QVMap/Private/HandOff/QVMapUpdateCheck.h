// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <string_view>

/** What a check for a newer mapping project has found. */
struct FQVUpdateInfo
{
	/** False only in the stored copy until the first check ends. */
	bool bChecked = false;
	/** The published project is newer than the installed one; false when the installed version is unknown. */
	bool bUpdateAvailable = false;
	/** Of the mapping project as a whole. */
	std::string PublishedVersion;
	/** Empty if the project does not say it. */
	std::string InstalledVersion;
	std::string PublishedToolkit;
	std::string PublishedBridge;
	std::string InstalledToolkit;
	/** Empty without the bridge plugin. */
	std::string InstalledBridge;
	/** Both bridge versions are known and differ: the base release will have to be rebuilt. */
	bool bBridgeChanged = false;
	std::string DownloadUrl;
	/** Why there is no answer; empty on success. */
	std::string ErrorText;
};

/**
 * Asks the web host of the toolkit's maker whether a newer mapping project is published. Changes nothing on disk, and
 * runs only when asked. Game thread.
 */
struct FQVMapUpdateCheck
{
	using FOnComplete = std::function<void(const FQVUpdateInfo& Info)>;

	/** Version of this toolkit. */
	static constexpr std::string_view ToolkitVersion = "1.0.26";

	/** Starts a check, or joins the one that is under way. OnComplete may be empty. */
	static void CheckForUpdate(FOnComplete OnComplete);
	/** The last result; it stays until the next check ends. */
	static FQVUpdateInfo GetLastResult();
	/** Opens it in the browser; whether the desktop took it. */
	static bool OpenDownloadPage();
	/** The page that the last result names, else the maker's own; also if what it names is no page of the web. */
	static std::string GetDownloadPage();
	/** The maker's page, whatever was published. */
	static std::string GetDefaultDownloadPage();

	/** Whether version A is newer than B; "1.2" equals "1.2.0", and nothing is newer than an empty one. */
	static bool IsNewer(std::string_view A, std::string_view B);

	/**
	 * Scheme and name of the maker's web host, without a slash at the end: as the program we run in has set it, else
	 * `UpdateAddress` under `[QVMap]` of the project's game configuration, else as built. Empty if none says it.
	 */
	static std::string GetBaseAddress();
	/** For the program that we run in; an empty one leaves it to the others. */
	static void SetBaseAddress(std::string_view Address);
};
