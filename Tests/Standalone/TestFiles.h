// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVString.h"
#include "Standalone/Engine/OsPath.h"
#include "Tests/Support/RecordingLog.h"
#include "Tests/Support/TempFolder.h"

#include <algorithm>
#include <fstream>
#include <sstream>

using FLines = std::vector<std::string>;

/** Files of a test's folder by their path in it, past the engine's own file operations, which are what is tested. */
class FTestFiles
{
public:
	/** Full path as the toolkit has it. */
	std::string operator()(std::string_view Path) const { return QVStandalone::FromOsPath(OsPath(Path)); }

	std::filesystem::path OsPath(std::string_view Path) const
	{
		return (Temp.Path() / QVStandalone::ToOsPath(Path)).lexically_normal();
	}

	/** Makes the folders on the way too; gives the full path. */
	std::string Put(std::string_view Path, std::string_view Bytes) const
	{
		std::filesystem::create_directories(OsPath(Path).parent_path());
		std::ofstream(OsPath(Path), std::ios::binary) << Bytes;
		return (*this)(Path);
	}

	std::string Get(std::string_view Path) const
	{
		std::ostringstream Text;
		Text << std::ifstream(OsPath(Path), std::ios::binary).rdbuf();
		return Text.str();
	}

	bool Has(std::string_view Path) const { return std::filesystem::exists(OsPath(Path)); }

	/** Paths of all files below a folder, as seen from it, sorted. */
	FLines Below(std::string_view Folder = "") const
	{
		FLines Found;
		std::error_code Missing;
		for (const auto& Entry : std::filesystem::recursive_directory_iterator(OsPath(Folder), Missing))
		{
			if (!Entry.is_directory())
			{
				Found.push_back(QVStandalone::FromOsPath(Entry.path().lexically_relative(OsPath(Folder))));
			}
		}
		std::sort(Found.begin(), Found.end());
		return Found;
	}

	/** The text with paths as seen from the test's folder. */
	std::string Mask(std::string_view Text) const { return FQVString::ReplaceAll(Text, (*this)(""), ""); }

	/** What was logged since the last call, masked: the engine's warnings bare, others as "LogQVMap: Error: text". */
	FLines Logged(QVTest::FRecordingLog& Log) const
	{
		FLines Lines;
		for (const QVTest::FLogLine& Line : Log.Take())
		{
			const std::string Head = Line.Category + ": " + std::string(FQVLog::Word(Line.Verbosity)) + ": ";
			Lines.push_back((Head == "LogStandalone: Warning: " ? "" : Head) + Mask(Line.Text));
		}
		return Lines;
	}

private:
	QVTest::FTempFolder Temp;
};
