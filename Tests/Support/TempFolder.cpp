// SPDX-License-Identifier: MIT
#include "Tests/Support/TempFolder.h"

#include <random>
#include <string>
#include <system_error>

namespace QVTest
{
FTempFolder::FTempFolder()
{
	std::random_device Random;
	// Tests run side by side in many processes: only making the folder tells whether its name was free.
	do
	{
		Root = std::filesystem::temp_directory_path() / ("QVMap-" + std::to_string(Random()));
	} while (!std::filesystem::create_directory(Root));
	Folder = Root / std::filesystem::path(u8"Кар та") / std::filesystem::path(u8"ひらがな");
	std::filesystem::create_directories(Folder);
}

FTempFolder::~FTempFolder()
{
	std::error_code Ignored;
	std::filesystem::remove_all(Root, Ignored);
}
} // namespace QVTest
