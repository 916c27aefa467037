// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <system_error>

namespace QVTest
{
/** Of a program that was built with the tests. */
inline std::filesystem::path BuiltProgram(std::filesystem::path Name)
{
#ifdef _WIN32
	Name += Name.has_extension() ? "" : ".exe";
#endif
	return std::filesystem::path(QVMAP_TEST_BIN) / Name;
}

/** The built program also under another name, by which it is then started. */
inline void PlaceProgram(const std::filesystem::path& Name, const std::filesystem::path& At)
{
#ifdef _WIN32
	std::error_code OtherDisk;
	std::filesystem::create_hard_link(BuiltProgram(Name), At, OtherDisk);
	if (OtherDisk)
	{
		std::filesystem::copy_file(BuiltProgram(Name), At);
	}
#else
	std::filesystem::create_symlink(BuiltProgram(Name), At);
#endif
}

inline void PlaceTestChild(const std::filesystem::path& At)
{
	PlaceProgram("qvmap-test-child", At);
}
} // namespace QVTest

/** At the start of a test that needs links, which not every system lets us make. */
#ifdef _WIN32
#define QV_SKIP_WITHOUT_LINKS() GTEST_SKIP() << "the standard library makes no links here"
#else
#define QV_SKIP_WITHOUT_LINKS() static_cast<void>(0)
#endif
