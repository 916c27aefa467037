// SPDX-License-Identifier: MIT
#include "Tests/Cli/CliTest.h"

#include "Core/QVString.h"
#include "Standalone/Engine/OsFile.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Formats/Base/Disk.h"
#include "Standalone/Formats/Base/PathText.h"
#include "Standalone/Formats/Windows/Win32.h"

using namespace QVTest;
using namespace QVFormats;
namespace fs = std::filesystem;

namespace
{
class FOnWindows : public FCliTest
{
protected:
	std::string Text(const fs::path& Path) const { return QVStandalone::FromOsPath(Path); }
	std::string Backslashes(const fs::path& Path) const { return FQVString::ReplaceAll(Text(Path), "/", "\\"); }
};
} // namespace

TEST_F(FOnWindows, AnyLettersComeInAndGoOutAsPlainUtf8)
{
	Folder = Temp.Path();
	const FProgramEnd Sample = Run({"sample", "Zoë 東京 Ω"});
	EXPECT_EQ(Sample.Code, 0) << Sample.Err;
	EXPECT_TRUE(fs::exists(Temp.Path() / fs::path(u8"Zoë 東京 Ω"))) << "the name was damaged on its way in";
	const FProgramEnd End = Run({"maps", "--project", "Zoë 東京 Ω/no such.uproject"});
	EXPECT_NE(End.Err.find("Zoë 東京 Ω/no such.uproject"), std::string::npos) << End.Err;
	EXPECT_EQ((Sample.Out + Sample.Err + End.Err).find('\r'), std::string::npos);
}

TEST_F(FOnWindows, BackslashesAndEitherCaseOfTheDrivesLetterAreTheSame)
{
	EnterSample();
	const fs::path Project = Folder;
	std::string Swapped = Backslashes(Project);
	ASSERT_EQ(Swapped[1], ':');
	Swapped[0] = static_cast<char>(Swapped[0] ^ 0x20);
	Folder = Temp.Path();
	const FProgramEnd Plain = Run({"maps", "--project", Text(Project)});
	EXPECT_EQ(Plain.Code, 0) << Plain.Err;
	EXPECT_NE(Plain.Out.find("Cave"), std::string::npos);
	for (const std::string& Name : {Backslashes(Project), Swapped})
	{
		const FProgramEnd End = Run({"maps", "--project", Name});
		EXPECT_EQ(End.Code, 0) << End.Err;
		EXPECT_EQ(End.Out, Plain.Out) << Name;
	}
}

TEST_F(FOnWindows, APakThatTheGameHasOpenStaysAndTheLogTellsSo)
{
	EnterSample();
	BuildRelease();
	ASSERT_EQ(Run({"-q", "pack", "Docks"}).Code, 0);
	ASSERT_EQ(Paks().size(), 1);
	const fs::path Old = Paks()[0];
	{
		const FWinHandle Game(
			::CreateFileW(WidePath(Old).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
		ASSERT_TRUE(Game.IsValid());
		Put("Plugins/Harbor/Content/note.txt", "so that the next pak is another one");
		const FProgramEnd End = Run({"-v", "pack", "Docks"});
		EXPECT_EQ(End.Code, 0) << End.Err;
		EXPECT_NE(End.Err.find("QVMap: Could not delete old PAK (likely locked): "), std::string::npos) << End.Err;
		EXPECT_TRUE(fs::exists(Old));
	}
	EXPECT_EQ(Run({"-q", "pack", "Docks"}).Code, 0);
	EXPECT_FALSE(fs::exists(Old));
	EXPECT_EQ(Paks().size(), 1);
}

TEST_F(FOnWindows, AModOfAnyNameAndAReadOnlyDescriptorArePacked)
{
	EnterSample();
	const fs::path Descriptor = Folder / "Plugins/Harbor/Harbor.uplugin";
	::SetFileAttributesW(WidePath(Descriptor).c_str(), FILE_ATTRIBUTE_READONLY);
	const std::string Was = Get(Descriptor);
	const FProgramEnd Release = Run({"-q", "base-release", "build"});
	EXPECT_EQ(Release.Code, 1) << "the mod could not be set aside, so it would be part of the release";
	EXPECT_NE(Release.Err.find("Harbor.uplugin"), std::string::npos) << Release.Err;
	EXPECT_EQ(Get(Descriptor), Was);
	::SetFileAttributesW(WidePath(Descriptor).c_str(), FILE_ATTRIBUTE_NORMAL);
	BuildRelease();
	::SetFileAttributesW(WidePath(Descriptor).c_str(), FILE_ATTRIBUTE_READONLY);
	EXPECT_EQ(Run({"-q", "pack", "Docks"}).Code, 0);
	::SetFileAttributesW(WidePath(Descriptor).c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(FOnWindows, AModFolderOfAnyLettersIsFoundAndNamed)
{
	EnterSample();
	const fs::path Mod = Folder / fs::path(u8"Plugins/Zoë 東京");
	fs::rename(Folder / "Plugins/Harbor", Mod);
	fs::rename(Mod / "Harbor.uplugin", Mod / fs::path(u8"Zoë 東京.uplugin"));
	Expect({"maps"}, 0,
		"Cave  (1 map)\n  /Cave/Maps/Hall\nZoë 東京  (2 maps)\n  /Zoë 東京/Maps/Docks\n  /Zoë 東京/Maps/Pier\n", "");
	BuildRelease();
	const FProgramEnd Pack = Run({"-q", "pack", "Docks"});
	EXPECT_EQ(Pack.Code, 1);
	EXPECT_NE(
		Pack.Err.find("Plugins/Zoë 東京/Content/Meshes/Boat.uasset has \" \" in its name, which no package may have"),
		std::string::npos)
		<< Pack.Err;
}

TEST_F(FOnWindows, AProjectBelowThreeHundredLettersIsPacked)
{
	const std::string Step = "eine sehr tiefe Höhle";
	std::string Project = Step;
	while (Text(Temp.Path()).size() + Project.size() < 300)
	{
		Project += "/" + Step;
	}
	for (const FWords& Words : {FWords{"sample", Project}, FWords{"base-release", "build", "--project", Project}})
	{
		const FProgramEnd End = Run(Words);
		EXPECT_EQ(End.Code, 0) << End.Err;
	}
	// the engine's own cook would not take such paths, of which the check warns
	const FProgramEnd Pack = Run({"-q", "pack", "Docks", "--yes", "--project", Project});
	EXPECT_EQ(Pack.Code, 0) << Pack.Err;
	const std::string Pak = Project + "/Saved/QVPak/Output/";
	const std::string OutHead = "pak  <T>/" + Pak;
	ASSERT_TRUE(Pack.Out.starts_with(OutHead)) << Pack.Out;
	const auto Found = FDisk::List(Temp.Path() / PathFromUtf8(Pak));
	ASSERT_EQ(Found.size(), 1);
	EXPECT_EQ(Run({"pak", "verify", Text(Found[0].Path)}).Code, 0);
	EXPECT_FALSE(QVStandalone::RemoveTree(Temp.Path() / PathFromUtf8(Step)));
}
