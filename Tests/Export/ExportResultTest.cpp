// SPDX-License-Identifier: MIT
#include "Export/QVMapExportResult.h"

#include <gtest/gtest.h>

TEST(PakContentSummary, DescribesItsProblems)
{
	const std::string NoMap = "  - The pak contains no map file at all.\n";
	const std::string OnlyMap =
		"  - The pak contains the map and nothing else - no meshes, materials, textures or shaders.\n";
	const std::string NoShaders = "  - The cook produced no shader archive.\n";
	const std::string Outside =
		" asset(s) this map uses were cooked but could not be packed, because they live outside "
		"the map's own folder:\n";
	const std::string Missing = "    They will be missing on the player's machine.\n";
	const std::string Six = "      a\n      b\n      c\n      d\n      e\n      f\n";
	const std::vector<std::string> Files = {"a", "b", "c", "d", "e", "f", "g", "h"};
	const struct
	{
		FQVPakContentSummary Content;
		bool bProblem;
		std::string Text;
	} Cases[] = {
		{{9, 1, 2, 1, 0, {}}, false, ""},
		{{9, 1, 2, 0, 0, {}}, false, NoShaders},
		{{1, 0, 0, 0, 0, {}}, true, NoMap + NoShaders},
		{{9, 0, 5, 1, 0, {}}, true, NoMap},
		{{2, 1, 0, 0, 0, {}}, true, OnlyMap + NoShaders},
		{{9, 1, 2, 1, 0, {"a"}}, true, "  - 1" + Outside + "      a\n" + Missing},
		{{9, 1, 2, 1, 0, {Files.begin(), Files.begin() + 6}}, true, "  - 6" + Outside + Six + Missing},
		{{9, 1, 0, 0, 0, Files}, true,
			OnlyMap + "  - 8" + Outside + Six + "      ... and 2 more\n" + Missing + NoShaders},
	};
	for (const auto& Case : Cases)
	{
		EXPECT_EQ(Case.Content.HasProblem(), Case.bProblem) << Case.Text;
		EXPECT_EQ(Case.Content.DescribeProblems(), Case.Text);
	}
	EXPECT_EQ((FQVPakContentSummary{12, 1, 1, 1, 3'565'158, {}}.Describe()), "12 file(s) packed, 3.40 MB.");
}
