// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVPrintf.h"

#include <cstdio>

namespace QVEngineTools
{
/**
 * What the engine's programs print: `LogCook: Display: ...`, each line written at once, since another program watches.
 * Counts what went wrong; not for more than one thread.
 */
class FToolLog
{
public:
	template<class... Args>
	void Display(std::string_view Category, TQVFormat<std::type_identity_t<Args>...> Format, const Args&... Arguments)
	{
		Print(Category, "Display", QVPrintf<Args...>(Format, Arguments...));
	}
	template<class... Args>
	void Warning(std::string_view Category, TQVFormat<std::type_identity_t<Args>...> Format, const Args&... Arguments)
	{
		++WarningCount;
		Print(Category, "Warning", QVPrintf<Args...>(Format, Arguments...));
	}
	template<class... Args>
	void Error(std::string_view Category, TQVFormat<std::type_identity_t<Args>...> Format, const Args&... Arguments)
	{
		++ErrorCount;
		Print(Category, "Error", QVPrintf<Args...>(Format, Arguments...));
	}

	int Errors() const { return ErrorCount; }
	int Warnings() const { return WarningCount; }

private:
	int ErrorCount = 0;
	int WarningCount = 0;

	static void Print(std::string_view Category, std::string_view Verbosity, std::string_view Text)
	{
		const std::string Line = QVPrintf("%s: %s: %s\n", Category, Verbosity, Text);
		std::fwrite(Line.data(), 1, Line.size(), stdout);
		std::fflush(stdout);
	}
};
} // namespace QVEngineTools
