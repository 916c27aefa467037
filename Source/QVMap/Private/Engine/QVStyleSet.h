// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <map>
#include <string>

/** Red, green, blue and alpha, 0 to 1. */
using FQVColor = std::array<float, 4>;

/** In Slate's units. */
struct FQVMargin
{
	float Left = 0;
	float Top = 0;
	float Right = 0;
	float Bottom = 0;
};

struct FQVImageBrush
{
	/** Full path. */
	std::string File;
	/** As it is drawn, in Slate's units. */
	int Width = 0;
	int Height = 0;
	FQVColor Tint = {1, 1, 1, 1};
};

/** A toolbar style: a copy of one of the editor's, with a button part in other colours. */
struct FQVToolbarStyle
{
	/** Name of the editor's style. */
	std::string CopyOf;
	FQVColor Normal = {};
	FQVColor Hovered = {};
	FQVColor Pressed = {};
	/** Of the button in its normal and in its pressed state. */
	FQVMargin Padding;
};

/** Looks under names of their own. */
struct FQVStyleSet
{
	std::string Name;
	/** Folder of its images; empty if the plugin that has them is not known. */
	std::string ContentRoot;
	std::map<std::string, FQVImageBrush, std::less<>> Images;
	std::map<std::string, FQVToolbarStyle, std::less<>> Toolbars;

	/** Null: there is none of that name. */
	const FQVImageBrush* FindImage(std::string_view ImageName) const
	{
		const auto Found = Images.find(ImageName);
		return Found == Images.end() ? nullptr : &Found->second;
	}
	const FQVToolbarStyle* FindToolbar(std::string_view StyleName) const
	{
		const auto Found = Toolbars.find(StyleName);
		return Found == Toolbars.end() ? nullptr : &Found->second;
	}
};
