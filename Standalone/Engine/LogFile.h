// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVLog.h"
#include "Standalone/Engine/OsPath.h"

#include <fstream>
#include <mutex>

namespace QVStandalone
{
/**
 * The program's log: every line goes to the project's log file, which is opened with the first line, and to a listener,
 * such as a console. Any thread.
 */
class FLogFile : public IQVLogSink
{
public:
	/** The listener is not owned; null for none. */
	explicit FLogFile(IQVLogSink* InListener = nullptr)
		: Listener(InListener)
	{
	}

	/** Where to write from the next line on. A file that has grown large is set aside as `<name>-backup.log`. */
	void SetPath(const std::filesystem::path& InPath);
	void Write(std::string_view Category, EQVLogVerbosity Verbosity, std::string_view Text) override;

private:
	std::mutex Lock;
	IQVLogSink* Listener;
	std::filesystem::path Path;
	std::ofstream File;

	/** False, said once, if the file cannot be had. */
	bool EnsureOpen();
};
} // namespace QVStandalone
