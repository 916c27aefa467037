// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/** What the test child asks of the operating system. Failures are thrown as std::runtime_error. */
namespace QVTest
{
/** In UTF-8; the first is the full path of the program, or how it was called. */
std::vector<std::string> ProgramWords(int Count, char** Words);

/** At a socket that is made there; on Windows at the pipe of that name. */
void Listen(const std::string& Path);
/** One message that comes there, until the sender has closed. */
std::string ReceiveMessage();

void CloseOutput();
/** A process that holds our output open for so long. */
void StartGrandchild(int Milliseconds);
/** Ends us as a crash does; on Windows the number is that of an exception. */
void RaiseSignal(int Number);
void Abort();
} // namespace QVTest
