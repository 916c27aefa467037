// SPDX-License-Identifier: MIT
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Formats/Package/RedirectorPackage.h"
#include "Standalone/Formats/Package/SamplePackages.h"
#include "Tests/Cli/CliTest.h"
#include "Tests/Support/TestPrograms.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>

using namespace QVFormats;
using namespace QVTest;
namespace fs = std::filesystem;
using FJson = nlohmann::json;

namespace
{
/** Whatever a picture or a terminal could take for its own. */
const std::string Hostile = "/Game/Odd/\"><script>&amp;\\n\x1b[31m<\xE2\x80\xAE";

FHardReference Mesh(const std::string& Package)
{
	return {Package, "/Script/Engine", "StaticMesh", Package.substr(Package.rfind('/') + 1)};
}

/** A sample project whose mod Cave has a map of our own. */
class FReferences : public FCliTest
{
protected:
	void SetUp() override { EnterSample(); }

	void PutMap(std::vector<FHardReference> Hard, std::vector<std::string> Soft = {}) const
	{
		WriteBytes(Folder / "Plugins/Cave/Content/Maps/Hall.umap",
			BuildWorldPackage({"/Cave/Maps/Hall", std::move(Hard), std::move(Soft), false}));
	}
	void PutMesh(
		const fs::path& File, const std::string& Package, std::vector<FHardReference> Hard, std::size_t Bytes = 0) const
	{
		FAssetPackageSpec Spec;
		Spec.PackageName = Package;
		Spec.ClassPath = "/Script/Engine.StaticMesh";
		Spec.HardReferences = std::move(Hard);
		Spec.PayloadBytes = Bytes;
		fs::create_directories((Folder / File).parent_path());
		WriteBytes(Folder / File, BuildAssetPackage(Spec));
	}

	/** Two packages of the game's project are missing in the game, one of them behind a leftover redirector. */
	void PutFindings() const
	{
		PutMap({Mesh("/Cave/Rock"), Mesh("/Game/Old")}, {"/Game/Nowhere"});
		PutMesh("Plugins/Cave/Content/Rock.uasset", "/Cave/Rock",
			{Mesh("/Cave/Rock"), Mesh("/Game/Shared/Crate"), Mesh("/Engine/BasicShapes/Cube"), Mesh("/Cave/Back")});
		PutMesh("Plugins/Cave/Content/Back.uasset", "/Cave/Back", {Mesh("/Cave/Rock"), Mesh("/QUARVEL/Props/Lantern")});
		PutMesh("Content/New.uasset", "/Game/New", {}, 1'000'000);
		PutRedirector();
	}
	void PutRedirector() const;

	FProgramEnd References(const FWords& More) const
	{
		FWords Words = {"references", "Cave"};
		Words.insert(Words.end(), More.begin(), More.end());
		FProgramEnd End = Run(Words);
		EXPECT_EQ(End.Code, 0) << End.Err;
		End.Err = WithoutProgress(End.Err);
		return End;
	}
};

std::size_t Count(std::string_view Text, std::string_view Needle)
{
	std::size_t Found = 0;
	for (std::size_t At = Text.find(Needle); At != std::string_view::npos; At = Text.find(Needle, At + 1))
	{
		++Found;
	}
	return Found;
}

bool HasControls(std::string_view Text)
{
	return std::any_of(Text.begin(), Text.end(),
		[](char Letter) { return static_cast<unsigned char>(Letter) < 0x20 && Letter != '\n' && Letter != '\t'; });
}

/** One statement in each line, with its quotes in pairs. */
void ExpectSoundDot(const std::string& Dot)
{
	ASSERT_TRUE(Dot.starts_with("digraph references {\n") && Dot.ends_with("\n}\n"));
	std::istringstream Lines(Dot);
	for (std::string Line; std::getline(Lines, Line);)
	{
		bool bQuoted = false;
		for (std::size_t At = 0; At < Line.size(); ++At)
		{
			const bool bEscape = bQuoted && Line[At] == '\\';
			At += bEscape ? 1 : 0;
			bQuoted ^= !bEscape && Line[At] == '"';
		}
		EXPECT_FALSE(bQuoted) << Line;
	}
}

/** All that XML asks of a document of tags and text: each tag closed in its turn, no letter that has to be escaped. */
void ExpectSoundXml(std::string_view Xml)
{
	FWords Open;
	EXPECT_TRUE(Xml.starts_with("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"));
	for (std::size_t At = Xml.find("<svg"); At != std::string_view::npos; At = Xml.find('<', At + 1))
	{
		const std::size_t End = Xml.find('>', At);
		ASSERT_NE(End, std::string_view::npos);
		const std::string_view Tag = Xml.substr(At + 1, End - At - 1);
		ASSERT_EQ(Tag.find('<'), std::string_view::npos) << Tag;
		EXPECT_EQ(Count(Tag, "\"") % 2, 0U) << Tag;
		if (Tag.starts_with('/'))
		{
			ASSERT_FALSE(Open.empty());
			EXPECT_EQ(Tag.substr(1), Open.back());
			Open.pop_back();
		}
		else if (!Tag.ends_with('/'))
		{
			Open.emplace_back(Tag.substr(0, Tag.find(' ')));
		}
	}
	EXPECT_TRUE(Open.empty());
	EXPECT_EQ(Count(Xml, "&"), Count(Xml, "&amp;") + Count(Xml, "&lt;") + Count(Xml, "&gt;") + Count(Xml, "&quot;"));
	EXPECT_FALSE(HasControls(Xml));
}
} // namespace

void FReferences::PutRedirector() const
{
	WriteBytes(Folder / "Content/Old.uasset",
		BuildRedirectorPackage({"/Game/Old", "/Game/New", "/Script/Engine", "StaticMesh"}));
}

TEST_F(FReferences, ReportForAPerson)
{
	PutFindings();
	const FProgramEnd End = References({});
	EXPECT_EQ(End.Out,
		R"(Cave: 1 map, 3 packages of the mod reached, 3 missing in the game (1.00 MB), 1 leftover redirector, 2 in every game

missing in the game, largest first
     0.95 MB  hard  StaticMesh  /Game/New
              by  /Cave/Maps/Hall > /Game/Old > /Game/New
     0.05 MB  hard  StaticMesh  /Game/Shared/Crate
              by  /Cave/Maps/Hall > /Cave/Rock > /Game/Shared/Crate
           ?  soft  (unknown)   /Game/Nowhere
              by  /Cave/Maps/Hall > /Game/Nowhere

leftover redirectors
  /Game/Old  to  /Game/New
              by  /Cave/Maps/Hall > /Game/Old

in every game
  /Engine  1 package
  /QUARVEL  1 package
)");
	EXPECT_EQ(End.Err, "  fix: qvmap redirectors fix Cave\n"
					   "  fix: move what is missing in the game below /Cave/\n");
	const std::string All = References({"--all"}).Out;
	EXPECT_TRUE(All.ends_with("\nin every game\n  /Engine/BasicShapes/Cube\n  /QUARVEL/Props/Lantern\n"
							  "\nof the mod\n  /Cave/Maps/Hall\n  /Cave/Rock\n  /Cave/Back\n"))
		<< All;
	const FProgramEnd Quiet = Run({"-q", "references", "/cave/maps/hall"});
	EXPECT_EQ(Quiet.Out, End.Out);
	EXPECT_EQ(Quiet.Err, "");
}

TEST_F(FReferences, EverythingIsInTheDocument)
{
	PutFindings();
	const FJson Json = FJson::parse(References({"--format", "json"}).Out);
	EXPECT_EQ(
		Json, FJson::parse(
				  R"({"schema_version": 1, "mod": "Cave", "maps": 1, "redirector_hops": 1, "untrusted_bytes": 1050015,
"internal": [
{"package": "/Cave/Maps/Hall", "class": "World", "bytes": 1980},
{"package": "/Cave/Rock", "class": "StaticMesh", "bytes": 1408},
{"package": "/Cave/Back", "class": "StaticMesh", "bytes": 1181}],
"untrusted": [
{"package": "/Game/New", "asset": "New", "class": "StaticMesh", "hard": true, "bytes": 1000931, "redirector": false,
"redirector_target": "", "internal_referencer": "/Cave/Maps/Hall", "chain": ["/Cave/Maps/Hall", "/Game/Old", "/Game/New"]},
{"package": "/Game/Shared/Crate", "asset": "Crate", "class": "StaticMesh", "hard": true, "bytes": 49084,
"redirector": false, "redirector_target": "", "internal_referencer": "/Cave/Rock",
"chain": ["/Cave/Maps/Hall", "/Cave/Rock", "/Game/Shared/Crate"]},
{"package": "/Game/Nowhere", "asset": "", "class": "", "hard": false, "bytes": 0, "redirector": false,
"redirector_target": "", "internal_referencer": "/Cave/Maps/Hall", "chain": ["/Cave/Maps/Hall", "/Game/Nowhere"]}],
"leftover_redirectors": [
{"package": "/Game/Old", "asset": "Old", "class": "ObjectRedirector", "hard": true, "bytes": 1148, "redirector": true,
"redirector_target": "/Game/New", "internal_referencer": "/Cave/Maps/Hall", "chain": ["/Cave/Maps/Hall", "/Game/Old"]}],
"trusted": [
{"package": "/Engine/BasicShapes/Cube", "asset": "", "class": "", "hard": true, "bytes": 0, "redirector": false,
"redirector_target": "", "internal_referencer": "/Cave/Rock",
"chain": ["/Cave/Maps/Hall", "/Cave/Rock", "/Engine/BasicShapes/Cube"]},
{"package": "/QUARVEL/Props/Lantern", "asset": "Lantern", "class": "StaticMesh", "hard": true, "bytes": 65100,
"redirector": false, "redirector_target": "", "internal_referencer": "/Cave/Back",
"chain": ["/Cave/Maps/Hall", "/Cave/Rock", "/Cave/Back", "/QUARVEL/Props/Lantern"]}],
"unreadable": []})"));
	Put("cave.json", "an older one");
	EXPECT_EQ(References({"--format", "json", "-o", "cave.json"}).Out, "");
	EXPECT_EQ(FJson::parse(Get("cave.json")), Json);
}

TEST_F(FReferences, GraphAsDotAndAsPicture)
{
	PutFindings();
	const std::string Dot = References({"--format", "dot"}).Out;
	ExpectSoundDot(Dot);
	EXPECT_EQ(Count(Dot, " -> "), 9U);
	EXPECT_EQ(Count(Dot, "style=dashed"), 1U);
	EXPECT_EQ(Count(Dot, "label=\"/Engine (1)\""), 1U);
	EXPECT_NE(Dot.find("tooltip=\"/Game/Old refers to /Game/New\""), std::string::npos);
	const std::string AllDot = References({"--format", "dot", "--all"}).Out;
	EXPECT_NE(AllDot.find("tooltip=\"/Engine/BasicShapes/Cube\""), std::string::npos);

	const std::string Svg = References({"--format", "svg", "--layout", "own"}).Out;
	ExpectSoundXml(Svg);
	EXPECT_EQ(Count(Svg, " rx=\"4\""), 9U); // one box for each node
	EXPECT_EQ(Count(Svg, " refers to "), 9U);
	EXPECT_EQ(Count(Svg, "url(#cycle)"), 1U);
	EXPECT_EQ(Count(Svg, "href"), 0U);
	EXPECT_EQ(References({"--format", "svg", "--layout", "own"}).Out, Svg);
}

TEST_F(FReferences, HostileNamesStayText)
{
	PutMap({Mesh(Hostile)});
	for (const char* Format : {"text", "dot", "svg"})
	{
		const std::string Out = References({"--format", Format, "--layout", "own"}).Out;
		EXPECT_FALSE(HasControls(Out)) << Out;
		EXPECT_EQ(Count(Out, "\xE2\x80\xAE"), 0U);
		EXPECT_NE(Out.find("\\x1b[31m"), std::string::npos) << Out;
	}
	ExpectSoundDot(References({"--format", "dot"}).Out);
	const std::string Svg = References({"--format", "svg", "--layout", "own"}).Out;
	ExpectSoundXml(Svg);
	EXPECT_NE(Svg.find("/Game/Odd/&quot;&gt;&lt;script&gt;&amp;amp;"), std::string::npos) << Svg;
	const FJson Json = FJson::parse(References({"--format", "json"}).Out);
	EXPECT_EQ(Json["untrusted"][0]["package"], Hostile);
}

TEST_F(FReferences, GraphvizDrawsWhereItIsFound)
{
	const fs::path Programs = Temp.Path() / "programs";
	fs::create_directories(Programs);
	Environment["PATH"] = Programs.string();
	const FWords Forced = {"references", "Cave", "--format", "svg", "--layout", "graphviz"};
	ExpectFailure(
		Forced, "error: Graphviz' program 'dot' is in none of the folders of PATH: install it, or use --layout own\n");
	EXPECT_NE(References({"--format", "svg"}).Out.find("url(#line)"), std::string::npos);

	const std::string Program = QVStandalone::FromOsPath(Programs / BuiltProgram("dot").filename());
	PlaceTestChild(QVStandalone::ToOsPath(Program));
	const auto Script = [&](const std::string& Commands)
	{ Put(QVStandalone::ToOsPath(Program + ".script"), Commands); };
	Script("arguments seen\ncopy {4}|drawn.dot\n"
		   "write {3}|<?xml?><!DOCTYPE svg PUBLIC \"http://x\"><svg>drawn</svg>\\n\n");
	EXPECT_EQ(References({"--format", "svg"}).Out, "<?xml?><svg>drawn</svg>\n");
	EXPECT_TRUE(Get("seen").starts_with("-Tsvg\n-o\n")) << Get("seen");
	ExpectSoundDot(Get("drawn.dot"));
	EXPECT_EQ(Run(Forced).Out, "<?xml?><svg>drawn</svg>\n");
	Script("print no fonts\nexit 3\n");
	const FProgramEnd End = Run(Forced);
	EXPECT_EQ(End.Code, 1);
	EXPECT_NE(End.Err.find(Mask(Program) + " ended with code 3: no fonts"), std::string::npos) << End.Err;
	EXPECT_FALSE(fs::exists(Folder / "Saved/QVPak/Temp/references.dot"));
}

TEST_F(FReferences, WhatCannotBeReadIsNamed)
{
	Put("Plugins/Cave/Content/Broken.uasset", "version https://git-lfs.github.com/spec/v1\n");
	const FProgramEnd End = References({});
	EXPECT_EQ(End.Err, "note: 1 package could not be read: what it refers to is not known\n"
					   "warning: <T>/Пример 1/Plugins/Cave/Content/Broken.uasset is a Git LFS pointer: fetch the file "
					   "with git lfs pull\n");
	const FJson Json = FJson::parse(References({"--format", "json"}).Out);
	ASSERT_EQ(Json["unreadable"].size(), 1U);
	EXPECT_EQ(Json["unreadable"][0]["file"], "<T>/Пример 1/Plugins/Cave/Content/Broken.uasset");
}

TEST_F(FReferences, WhatCannotBeDoneFails)
{
	ExpectFailure({"references", "Cavern"}, "error: there is no mod or map 'Cavern': see qvmap maps\n"
											"  did you mean 'Cave'?\n");
	Put("Plugins/Cave/Content/Maps/Hall.umap", "no map");
	const FProgramEnd End = Run({"references", "Cave", "--format", "json"});
	EXPECT_EQ(End.Code, 1);
	EXPECT_EQ(FJson::parse(End.Out)["error"], "No maps found in plugin: Cave");
	EXPECT_EQ(Run({"references", "Cave", "--format", "png"}).Code, 2);
}
