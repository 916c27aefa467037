// SPDX-License-Identifier: MIT
#include "Standalone/Engine/LogFile.h"

#include "Standalone/Engine/Clock.h"
#include "Standalone/Formats/Base/Disk.h"

#include <cerrno>
#include <system_error>

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
constexpr std::uint64_t LargeLogBytes = std::uint64_t{8} << 20;

void SetAsideIfLarge(const std::filesystem::path& Path)
{
	std::error_code Error;
	const std::uint64_t Size = FDisk::SizeOf(Path, Error);
	if (!Error && Size > LargeLogBytes)
	{
		std::filesystem::path Backup = Path;
		Backup.replace_filename((Path.stem() += "-backup") += Path.extension());
		FDisk::Rename(Path, Backup, Error);
	}
}

/** `[2026.11.21-17.05.09]LogQVMap: Warning: text`; the word is left out for Log, as the engine does it. */
std::string FormatLine(std::string_view Category, EQVLogVerbosity Verbosity, std::string_view Text)
{
	const std::string Word =
		Verbosity == EQVLogVerbosity::Log ? std::string() : QVPrintf("%s: ", FQVLog::Word(Verbosity));
	return QVPrintf("[%s]%s: %s%s\n", FClock().Now().ToString(), Category, Word, Text);
}
} // namespace

void FLogFile::SetPath(const std::filesystem::path& InPath)
{
	const std::lock_guard Guard(Lock);
	Path = InPath;
	File.close();
	File.clear();
}

bool FLogFile::EnsureOpen()
{
	if (Path.empty() || File.is_open())
	{
		return File.is_open();
	}
	std::error_code Error;
	FDisk::MakeFolders(Path.parent_path(), Error);
	SetAsideIfLarge(Path);
	errno = 0;
	File.open(FDisk::SystemPath(Path), std::ios::binary | std::ios::app);
	if (!File.is_open())
	{
		const std::error_code Reason = Error ? Error : std::error_code(errno, std::generic_category());
		const std::string Message = QVPrintf("no log is kept: %s: %s", FromOsPath(Path), Reason.message());
		Path.clear();
		if (Listener != nullptr)
		{
			Listener->Write("LogStandalone", EQVLogVerbosity::Warning, Message);
		}
	}
	return File.is_open();
}

void FLogFile::Write(std::string_view Category, EQVLogVerbosity Verbosity, std::string_view Text)
{
	const std::lock_guard Guard(Lock);
	if (EnsureOpen())
	{
		File << FormatLine(Category, Verbosity, Text) << std::flush;
	}
	if (Listener != nullptr)
	{
		Listener->Write(Category, Verbosity, Text);
	}
}
} // namespace QVStandalone
