// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVShell.h"

#include <chrono>

namespace QVStandalone
{
/**
 * The desktop's own opener, and pipes of native programs: sockets of the pipe's last name in the user's runtime folder
 * (`XDG_RUNTIME_DIR`). Why something was refused is in the log.
 */
class FShell : public IQVShell
{
public:
	/** An opener that still runs after the patience has accepted: some are the program that they open. */
	explicit FShell(std::chrono::milliseconds InOpenerPatience = std::chrono::seconds(5))
		: OpenerPatience(InOpenerPatience)
	{
	}

	int Open(std::string_view UrlOrFile) override;
	void ExploreFolder(std::string_view Path) override;
	EQVPipeWrite WriteToPipe(std::string_view PipeName, std::string_view Message) override;

private:
	std::chrono::milliseconds OpenerPatience;
};
} // namespace QVStandalone
