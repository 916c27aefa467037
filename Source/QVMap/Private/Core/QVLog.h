// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVPrintf.h"

#include <string_view>

/** Error stops a run, Warning falls back, Log narrates, Verbose tells what is routinely skipped. */
enum class EQVLogVerbosity
{
	Error,
	Warning,
	Log,
	Verbose
};

/** The engine's end of the log. Called on any thread, several at a time. Text is one entry; it may hold line feeds. */
class IQVLogSink
{
public:
	virtual ~IQVLogSink() = default;
	virtual void Write(std::string_view Category, EQVLogVerbosity Verbosity, std::string_view Text) = 0;
};

/** The one category of the toolkit, and where its lines go. Without a sink they go nowhere. */
struct FQVLog
{
	static constexpr std::string_view Category = "LogQVMap";

	/** Gives back the sink that was installed before. The sink is not owned and must outlive all that log. */
	static IQVLogSink* SetSink(IQVLogSink* Sink);
	static bool HasSink();
	static void Write(EQVLogVerbosity Verbosity, std::string_view Text) { WriteAs(Category, Verbosity, Text); }
	/** For an engine's own lines, under a category of its own. */
	static void WriteAs(std::string_view LineCategory, EQVLogVerbosity Verbosity, std::string_view Text);
	/** The word for people and log files: "Error". */
	static std::string_view Word(EQVLogVerbosity Verbosity);
};

/** One line of LogQVMap: QVLog(EQVLogVerbosity::Log, "QVMap: Found %d map(s) in %s", Count, Mod). */
template<class... Args>
void QVLog(EQVLogVerbosity Verbosity, TQVFormat<std::type_identity_t<Args>...> Format, const Args&... Arguments)
{
	if (!FQVLog::HasSink())
	{
		return;
	}
	const FQVPrintfArgument List[] = {QVPrintfDetail::MakeArgument(Arguments)..., FQVPrintfArgument{}};
	FQVLog::Write(Verbosity, QVPrintfFormat(Format.Text, std::span(List, sizeof...(Args))));
}
