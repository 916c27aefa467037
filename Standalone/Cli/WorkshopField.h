// SPDX-License-Identifier: MIT
#pragma once

#include "HandOff/QVMapWorkshopConfig.h"
#include "Workspace/QVMapScanner.h"

namespace QVCli
{
/** A field of the Workshop details, by its key in their file: a text, or a list of texts. */
struct FWorkshopField
{
	std::string_view Key;
	std::string FQVWorkshopConfig::*Text = nullptr;
	std::vector<std::string> FQVWorkshopConfig::*List = nullptr;
	/** What is to be stored for what was typed; empty OutError if it can be. */
	std::string (*Convert)(const FQVModInfo& Mod, const std::string& Typed, std::string& OutError) = nullptr;
};

/** In the order of the form; the lists alone if that is asked for. */
std::vector<std::string> WorkshopFieldKeys(bool bListsOnly);
/** Ignoring case, "-" for "_". Null, with what was probably meant in OutError, if there is none. */
const FWorkshopField* FindWorkshopField(const std::string& Typed, bool bListsOnly, std::string& OutError);
/** What to say behind a word that is none of these: the nearest, or all of them. */
std::string DidYouMean(const std::string& Typed, const std::vector<std::string>& Words);
} // namespace QVCli
