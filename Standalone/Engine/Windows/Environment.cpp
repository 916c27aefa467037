// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Environment.h"

#include "Standalone/Formats/Windows/Win32.h"

#include <cstdio>
#include <fcntl.h>
#include <io.h>
#include <shellapi.h>

namespace QVStandalone
{
std::string EnvironmentValue(const char* Name)
{
	const std::wstring WideName = QVFormats::ToWide(Name);
	std::wstring Value(::GetEnvironmentVariableW(WideName.c_str(), nullptr, 0), L'\0');
	Value.resize(::GetEnvironmentVariableW(WideName.c_str(), Value.data(), static_cast<DWORD>(Value.size())));
	return QVFormats::FromWide(Value);
}

std::vector<std::string> BeginProgram(int /*Count*/, char** /*Words*/)
{
	::_setmode(::_fileno(stdout), _O_BINARY);
	::_setmode(::_fileno(stderr), _O_BINARY);
	// the words that main is given have lost what the machine's code page does not know
	int Count = 0;
	wchar_t** const Words = ::CommandLineToArgvW(::GetCommandLineW(), &Count);
	std::vector<std::string> Arguments;
	for (int Index = 1; Words != nullptr && Index < Count; ++Index)
	{
		Arguments.push_back(QVFormats::FromWide(Words[Index]));
	}
	::LocalFree(Words);
	return Arguments;
}
} // namespace QVStandalone
