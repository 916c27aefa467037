// SPDX-License-Identifier: MIT
#include "Standalone/EngineTools/RawFile.h"

#include "Core/QVPrintf.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Formats/Base/Disk.h"

#include <cerrno>
#include <fstream>
#include <system_error>

namespace QVEngineTools
{
QVFormats::FStatus WriteRawFile(const std::string& Path, QVFormats::FBytes Bytes)
{
	const std::filesystem::path Target = QVStandalone::ToOsPath(Path);
	std::error_code Error;
	QVFormats::FDisk::MakeFolders(Target.parent_path(), Error);
	errno = 0;
	std::ofstream File(QVFormats::FDisk::SystemPath(Target), std::ios::binary | std::ios::trunc);
	File.write(reinterpret_cast<const char*>(Bytes.data()), static_cast<std::streamsize>(Bytes.size()));
	File.close();
	if (!File)
	{
		const std::error_code Reason =
			Error ? Error : std::error_code(errno != 0 ? errno : EIO, std::generic_category());
		return QVFormats::FError{QVPrintf("%s could not be written: %s", Path, Reason.message())};
	}
	return QVFormats::Success();
}
} // namespace QVEngineTools
