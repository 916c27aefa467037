// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

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
	std::filesystem::copy_file(BuiltProgram(Name), At); // a link could not be deleted while another test runs the file
#else
	std::filesystem::create_symlink(BuiltProgram(Name), At);
#endif
}

inline void PlaceTestChild(const std::filesystem::path& At)
{
	PlaceProgram("qvmap-test-child", At);
}

/** What is in a folder, at another place too: through a link where one may be made, else as a copy. */
inline void ShowFolder(const std::filesystem::path& Folder, const std::filesystem::path& At)
{
#ifdef _WIN32
	std::filesystem::copy(Folder, At, std::filesystem::copy_options::recursive);
#else
	std::filesystem::create_directory_symlink(Folder, At);
#endif
}

/** Whether names of files that differ in upper and lower case alone are two. */
#ifdef _WIN32
constexpr bool bNamesHeedCase = false;
#else
constexpr bool bNamesHeedCase = true;
#endif

/** The return codes of a test child that is ended by a signal, and of one that aborts. */
#ifdef _WIN32
constexpr int SignalCode(int Number)
{
	return Number;
}
constexpr int AbortCode = static_cast<int>(0xC0000005);
#else
constexpr int SignalCode(int Number)
{
	return 128 + Number;
}
constexpr int AbortCode = SignalCode(6);
#endif

/** Where the running game listens: in the folder for such things, or, on Windows, at the one place of the machine. */
inline std::string GamePipe([[maybe_unused]] const std::string& RuntimeFolder)
{
#ifdef _WIN32
	return R"(\\.\pipe\QUARVEL_PakLoader)";
#else
	return RuntimeFolder + "/QUARVEL_PakLoader";
#endif
}
} // namespace QVTest

/** At the start of a test, or of its part, that cannot be had on Windows. */
#ifdef _WIN32
#define QV_SKIP_ON_WINDOWS(Reason) GTEST_SKIP() << Reason
#else
#define QV_SKIP_ON_WINDOWS(Reason) static_cast<void>(0)
#endif
