// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace QVCli
{
/** What is wrong with a file that is to hold a JSON object, with its path; empty if it is missing or good. The toolkit
 * itself would go on with defaults, and write over it. */
std::string JsonFileProblem(const std::string& Path);
} // namespace QVCli
