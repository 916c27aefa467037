// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Engine/PackageScan.h"
#include "Standalone/Formats/Base/ByteReader.h"
#include "Standalone/Formats/Base/Result.h"

namespace QVStandalone
{
/**
 * What a scan found, kept in a file for the next start. The file is worth nothing but time: it is checked as a whole,
 * and one that is cut, damaged, or of another version is refused with a sentence.
 */
QVFormats::TResult<FScannedPackagesRef> LoadPackageCache(const std::string& Path);
/** The same with the file's bytes; errors without its name. */
QVFormats::TResult<FScannedPackagesRef> ReadPackageCache(QVFormats::FBytes Bytes);

/** Makes the folder, and replaces the file as a whole. */
QVFormats::FStatus SavePackageCache(const std::string& Path, const FScannedPackages& Packages);
} // namespace QVStandalone
