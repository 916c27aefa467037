// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

class IQVClass;

/** The classes that the engine knows. They belong to it. Game thread. */
class IQVClasses
{
public:
	virtual ~IQVClasses() = default;

	/** A class that is loaded, by its path `/Script/Engine.PlayerStart`; null if there is none. */
	virtual const IQVClass* FindClass(std::string_view ClassPath) = 0;
	/** The same for a class of a content package, `/Cave/BP_Door.BP_Door_C`, which is loaded if need be. */
	virtual const IQVClass* LoadClass(std::string_view ClassPath) = 0;
};
