// SPDX-License-Identifier: MIT
#include "Export/QVMapExportResult.h"

#include "Core/QVPrintf.h"

#include <algorithm>

bool FQVPakContentSummary::HasProblem() const
{
	return MapFiles == 0 || PayloadFiles == 0 || !UnpackableFiles.empty();
}

std::string FQVPakContentSummary::Describe() const
{
	return QVPrintf("%d file(s) packed, %.2f MB.", FileCount, static_cast<double>(PakBytes) * 9.5367431640625e-07);
}

std::string FQVPakContentSummary::DescribeProblems() const
{
	constexpr std::size_t Most = 6;
	std::string Text;
	if (MapFiles == 0)
	{
		Text += "  - The pak contains no map file at all.\n";
	}
	else if (PayloadFiles == 0)
	{
		Text += "  - The pak contains the map and nothing else - no meshes, materials, textures or shaders.\n";
	}
	if (!UnpackableFiles.empty())
	{
		Text +=
			QVPrintf("  - %d asset(s) this map uses were cooked but could not be packed, because they live outside the "
					 "map's own folder:\n",
				UnpackableFiles.size());
		for (std::size_t Index = 0; Index < std::min(Most, UnpackableFiles.size()); ++Index)
		{
			Text += QVPrintf("      %s\n", UnpackableFiles[Index]);
		}
		if (UnpackableFiles.size() > Most)
		{
			Text += QVPrintf("      ... and %d more\n", UnpackableFiles.size() - Most);
		}
		Text += "    They will be missing on the player's machine.\n";
	}
	if (ShaderArchives == 0)
	{
		Text += "  - The cook produced no shader archive.\n";
	}
	return Text;
}
