// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

/**
 * Hands things to the game: by its pipe if it runs, else by starting it through Steam, its executable or a deep link.
 * The first way that goes through ends the chain, and a way that fails only leads to the next. The game answers on none
 * of them, so nobody learns whether it got anything. Game thread.
 */
struct FQVMapGameLaunch
{
	static constexpr std::string_view GamePipeName = R"(\\.\pipe\QUARVEL_PakLoader)";
	static constexpr std::string_view GameAppId = "7188263";
	static constexpr std::string_view DemoAppId = "7301146";

	/** Has the game load a pak and open a map of it; MapName as "Hall", GamePath as "/Game/Cave/Maps/Hall". */
	static void LaunchGameWithPak(
		std::string_view ModName, std::string_view PakPath, std::string_view MapName, std::string_view GamePath);
	/** Has the game publish what the upload record at the path says. */
	static void LaunchGameForWorkshopUpload(std::string_view ConfigPath);

	/** True when the text was handed to the pipe of a running game. */
	static bool SendToGamePipe(std::string_view Text);
	/** True when the shell took the URL; Label is the log's word for what is launched. */
	static bool LaunchViaSteamUrl(std::string_view AppId, std::string_view Arguments, std::string_view Label);
	/** Letters, digits and "-./:_~" stay; of all else each byte becomes "%XX". */
	static std::string UrlEncode(std::string_view Text);
};
