// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

enum class EQVPipeWrite
{
	Written,
	/** Nobody listens, or whoever does is busy with somebody else. */
	NotOpened,
	Failed
};

/** The user's desktop, and the programs that run on it. Game thread. */
class IQVShell
{
public:
	virtual ~IQVShell() = default;

	/**
	 * Opens a URL, or a file, with the program that the desktop has for it. Above 32 when that was accepted, otherwise
	 * the number of an error.
	 */
	virtual int Open(std::string_view UrlOrFile) = 0;
	/** Shows a folder, or the one that a file lies in. */
	virtual void ExploreFolder(std::string_view Path) = 0;
	/**
	 * The bytes of one message to the named pipe of another program ("\\.\pipe\Name"), in one write; closed when this
	 * returns. Waits for nobody.
	 */
	virtual EQVPipeWrite WriteToPipe(std::string_view PipeName, std::string_view Message) = 0;
};
