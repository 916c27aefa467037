// SPDX-License-Identifier: MIT
#include "Engine/QVEngine.h"

#include "Core/QVCheck.h"

namespace
{
const FQVEngine* Installed = nullptr;
}

const FQVEngine& FQVEngine::Get()
{
	QV_CHECK(Installed != nullptr);
	return *Installed;
}

void FQVEngine::Install(const FQVEngine* Engine)
{
	Installed = Engine;
}
