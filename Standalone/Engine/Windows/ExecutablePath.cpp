// SPDX-License-Identifier: MIT
#include "Standalone/Engine/ExecutablePath.h"

#include "Standalone/Engine/OsPath.h"
#include "Standalone/Formats/Windows/Win32.h"

namespace QVStandalone
{
std::string ExecutablePath()
{
	std::wstring Name(MAX_PATH, L'\0');
	DWORD Length = 0;
	while ((Length = ::GetModuleFileNameW(nullptr, Name.data(), static_cast<DWORD>(Name.size()))) == Name.size())
	{
		Name.resize(Name.size() * 2);
	}
	Name.resize(Length);
	return FromOsPath(Name);
}
} // namespace QVStandalone
