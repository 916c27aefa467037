// SPDX-License-Identifier: MIT
#pragma once

#include <cstdlib>
#include <optional>
#include <string>

namespace QVTest
{
/** A variable of our environment with another value as long as this lives. */
class FScopedEnvironment
{
public:
	/** Nothing: not set at all. */
	FScopedEnvironment(const char* InName, const std::optional<std::string>& Value)
		: Name(InName)
	{
		if (const char* Found = std::getenv(Name))
		{
			Old = Found;
		}
		Set(Value);
	}
	FScopedEnvironment(const FScopedEnvironment&) = delete;
	FScopedEnvironment& operator=(const FScopedEnvironment&) = delete;
	~FScopedEnvironment() { Set(Old); }

private:
	const char* Name;
	std::optional<std::string> Old;

	void Set(const std::optional<std::string>& Value) const
	{
#ifdef _WIN32
		::_putenv_s(Name, Value.value_or("").c_str());
#else
		if (Value)
		{
			::setenv(Name, Value->c_str(), 1);
		}
		else
		{
			::unsetenv(Name);
		}
#endif
	}
};
} // namespace QVTest
