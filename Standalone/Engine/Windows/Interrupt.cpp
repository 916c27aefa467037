// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Interrupt.h"

#include "Standalone/Formats/Windows/Win32.h"

#include <atomic>

namespace QVStandalone
{
namespace
{
std::atomic<int> Requests{0};

/** On a thread of the system's. */
BOOL WINAPI OnControl(DWORD Event)
{
	Requests.fetch_add(1);
	if (Event != CTRL_C_EVENT && Event != CTRL_BREAK_EVENT)
	{
		// the console is closed or the user signs out: when this returns the program is ended, so it is left the time
		// that the system gives it to tidy up and end by itself
		::Sleep(INFINITE);
	}
	return TRUE;
}
} // namespace

void FInterrupt::Install()
{
	::SetConsoleCtrlHandler(nullptr, FALSE); // a parent may have had Ctrl-C ignored, which is inherited
	::SetConsoleCtrlHandler(&OnControl, TRUE);
}

int FInterrupt::Count()
{
	return Requests.load();
}

void FInterrupt::Raise()
{
	Requests.fetch_add(1);
}

void FInterrupt::Reset()
{
	Requests.store(0);
}
} // namespace QVStandalone
