// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

/** What a look at the base release found. */
struct FQVBaseReleaseStatus
{
	bool bReleaseDirExists = false;
	bool bHasDevelopmentRegistry = false;
	bool bHasRuntimeRegistry = false;
	/** The chosen registry could be loaded. */
	bool bRegistryReadable = false;
	std::int32_t PackageCount = 0;
	std::int64_t RegistrySizeBytes = 0;
	/** Modification time, in ticks. */
	std::int64_t RegistryTimestamp = 0;
	/** The chosen registry. */
	std::string RegistryPath;
	/** Why the release is not usable; empty if it is. */
	std::string ErrorMessage;
};
