// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVLog.h"

namespace QVStandalone
{
/** A line of the standalone engine itself: why an operation on disk or a process failed, before the toolkit says what.
 */
template<class... Args>
void LogEngine(EQVLogVerbosity Verbosity, TQVFormat<std::type_identity_t<Args>...> Format, const Args&... Arguments)
{
	const FQVPrintfArgument List[] = {QVPrintfDetail::MakeArgument(Arguments)..., FQVPrintfArgument{}};
	FQVLog::WriteAs("LogStandalone", Verbosity, QVPrintfFormat(Format.Text, std::span(List, sizeof...(Args))));
}
} // namespace QVStandalone
