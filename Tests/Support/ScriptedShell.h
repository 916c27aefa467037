// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVPrintf.h"
#include "Engine/QVShell.h"

#include <vector>

namespace QVTest
{
/** A desktop that opens nothing: it answers as it was told and adds what was asked to a list. */
class FScriptedShell : public IQVShell
{
public:
	explicit FScriptedShell(std::vector<std::string>& InCalls)
		: Calls(InCalls)
	{
	}

	EQVPipeWrite Pipe = EQVPipeWrite::NotOpened;
	/** The answer for URLs of Steam, and the one for all others. */
	int Steam = 33;
	int Other = 33;

	int Open(std::string_view UrlOrFile) override
	{
		Calls.push_back(QVPrintf("open %s", UrlOrFile));
		return UrlOrFile.starts_with("steam:") ? Steam : Other;
	}
	void ExploreFolder(std::string_view Path) override { Calls.push_back(QVPrintf("explore %s", Path)); }
	EQVPipeWrite WriteToPipe(std::string_view PipeName, std::string_view Message) override
	{
		Calls.push_back(QVPrintf("write %s %s", PipeName, Message));
		return Pipe;
	}

private:
	std::vector<std::string>& Calls;
};
} // namespace QVTest
