// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVShell.h"
#include "Standalone/Cli/Session.h"

namespace QVCli
{
/** Stands in front of the engine's shell while it lives, and remembers by which way the game was reached. */
class FLaunchWatch : public IQVShell
{
public:
	explicit FLaunchWatch(FSession& InSession);
	~FLaunchWatch() override;
	FLaunchWatch(const FLaunchWatch&) = delete;
	FLaunchWatch& operator=(const FLaunchWatch&) = delete;

	/** Some way to the game was tried. */
	bool WasAsked() const { return bAsked; }
	/** `pipe`, `steam`, `executable`, `deep link`; `none` if no way went through. */
	std::string_view GetWay() const;
	/** Tells the user; false if there is nothing good to tell. */
	bool Tell() const;

	int Open(std::string_view UrlOrFile) override;
	void ExploreFolder(std::string_view Path) override { Inner.ExploreFolder(Path); }
	EQVPipeWrite WriteToPipe(std::string_view PipeName, std::string_view Message) override;

private:
	FSession& Session;
	IQVShell& Inner;
	bool bAsked = false;
	bool bPipe = false;
	std::string Opened;
};
} // namespace QVCli
