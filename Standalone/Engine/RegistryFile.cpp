// SPDX-License-Identifier: MIT
#include "Standalone/Engine/RegistryFile.h"

#include "Standalone/Engine/EngineLog.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Formats/Base/MappedFile.h"
#include "Standalone/Formats/Registry/AssetRegistry.h"

namespace QVStandalone
{
bool FRegistryFile::LoadFromDisk(std::string_view Path, std::int32_t& OutPackageCount) const
{
	const auto File = QVFormats::FMappedFile::Open(ToOsPath(Path));
	if (!File)
	{
		LogEngine(EQVLogVerbosity::Warning, "%s", File.Error().Message);
		return false;
	}
	const auto Count = QVFormats::CountPackages(File->Bytes());
	if (!Count)
	{
		LogEngine(EQVLogVerbosity::Warning, "%s %s", Path, Count.Error().Message);
		return false;
	}
	OutPackageCount = Count->Packages;
	return true;
}
} // namespace QVStandalone
