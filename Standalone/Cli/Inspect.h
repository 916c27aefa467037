// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Cli/InspectReport.h"
#include "Standalone/Formats/Base/ByteReader.h"
#include "Standalone/Formats/Base/Result.h"

namespace QVCli
{
/** Each fills the report from a whole file. Errors begin with the report's file name. */
QVFormats::FStatus InspectPackage(QVFormats::FBytes File, FInspectReport& Report);
QVFormats::FStatus InspectRegistry(QVFormats::FBytes File, FInspectReport& Report);
QVFormats::FStatus InspectPak(QVFormats::FBytes File, FInspectReport& Report);
} // namespace QVCli
