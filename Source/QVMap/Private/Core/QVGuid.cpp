// SPDX-License-Identifier: MIT
#include "Core/QVGuid.h"

#include "Core/QVPrintf.h"

std::string FQVGuid::ToDigits() const
{
	return QVPrintf("%08X%08X%08X%08X", Parts[0], Parts[1], Parts[2], Parts[3]);
}
