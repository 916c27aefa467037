// SPDX-License-Identifier: MIT
#include "Standalone/Engine/ConfigFile.h"

#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Standalone/Engine/Files.h"

namespace QVStandalone
{
namespace
{
struct FLayer
{
	bool bOfEngine;
	std::string_view Path;
};

/** What is changed in the editor's own settings lies in the last. */
constexpr FLayer GameLayers[] = {{true, "Config/BaseGame.ini"}, {true, "Config/Windows/WindowsGame.ini"},
	{false, "Config/DefaultGame.ini"}, {false, "Config/Windows/WindowsGame.ini"},
	{false, "Saved/Config/WindowsEditor/Game.ini"}};

std::string_view Trimmed(std::string_view Text)
{
	constexpr std::string_view Blanks = " \t\r";
	const std::size_t First = Text.find_first_not_of(Blanks);
	return First == Text.npos ? std::string_view() : Text.substr(First, Text.find_last_not_of(Blanks) - First + 1);
}

std::string_view WithoutQuotes(std::string_view Value)
{
	const bool bQuoted = Value.size() >= 2 && Value.starts_with('"') && Value.ends_with('"');
	return bQuoted ? Value.substr(1, Value.size() - 2) : Value;
}
} // namespace

std::optional<std::string> FindConfigValue(std::string_view Text, std::string_view Section, std::string_view Key)
{
	std::optional<std::string> Found;
	bool bInSection = false;
	for (const std::string_view Each : FQVString::NonEmptyLines(Text))
	{
		const std::string_view Line = Trimmed(Each);
		const std::size_t Equals = Line.find('=');
		if (Line.starts_with('[') && Line.ends_with(']'))
		{
			bInSection = FQVString::EqualsIgnoreCase(Line.substr(1, Line.size() - 2), Section);
		}
		else if (bInSection && Equals != Line.npos && FQVString::EqualsIgnoreCase(Trimmed(Line.substr(0, Equals)), Key))
		{
			Found = WithoutQuotes(Trimmed(Line.substr(Equals + 1)));
		}
	}
	return Found;
}

std::optional<std::string> ReadGameConfig(
	const std::string& ProjectDir, const std::string& EngineDir, std::string_view Section, std::string_view Key)
{
	const FFiles Files;
	std::optional<std::string> Found;
	for (const FLayer& Layer : GameLayers)
	{
		const std::string Path = FQVPath::Combine(Layer.bOfEngine ? EngineDir : ProjectDir, Layer.Path);
		std::string Text;
		if (!Files.FileExists(Path) || !Files.LoadFileToString(Text, Path))
		{
			continue;
		}
		if (std::optional<std::string> Here = FindConfigValue(Text, Section, Key))
		{
			Found = std::move(Here);
		}
	}
	return Found;
}
} // namespace QVStandalone
