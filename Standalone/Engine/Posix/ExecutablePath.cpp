// SPDX-License-Identifier: MIT
#include "Standalone/Engine/ExecutablePath.h"

#include "Standalone/Engine/OsPath.h"

namespace QVStandalone
{
std::string ExecutablePath()
{
	std::error_code Error;
	return FromOsPath(std::filesystem::read_symlink("/proc/self/exe", Error));
}
} // namespace QVStandalone
