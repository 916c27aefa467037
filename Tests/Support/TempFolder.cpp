// SPDX-License-Identifier: MIT
#include "Tests/Support/TempFolder.h"

#include <random>
#include <string>
#include <system_error>

namespace QVTest
{
void RemoveAll(const std::filesystem::path& Path)
{
#ifdef _WIN32
	std::error_code Ignored;
	std::filesystem::permissions(Path, std::filesystem::perms::owner_all, Ignored);
	for (const auto& Entry : std::filesystem::recursive_directory_iterator(Path, Ignored))
	{
		std::filesystem::permissions(Entry, std::filesystem::perms::owner_all, Ignored);
	}
#endif
	std::filesystem::remove_all(Path);
}

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
	try
	{
		RemoveAll(Root);
	}
	catch (const std::filesystem::filesystem_error&) // it is left behind
	{
	}
}
} // namespace QVTest
