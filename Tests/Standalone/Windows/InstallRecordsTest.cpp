// SPDX-License-Identifier: MIT
#include "Standalone/Engine/EngineLocator.h"
#include "Standalone/Formats/Windows/Win32.h"
#include "Tests/Standalone/TestFiles.h"
#include "Tests/Support/ScopedEnvironment.h"

#include <gtest/gtest.h>

using namespace QVStandalone;
using QVFormats::ToWide;

namespace
{
constexpr const wchar_t* Builds = LR"(Software\Epic Games\Unreal Engine\Builds)";
const std::string Identifier = "{QVMap-test-" + std::to_string(::GetCurrentProcessId()) + "}";

/** An engine that was built from source, as the registry has it. */
struct FRecordedBuild
{
	explicit FRecordedBuild(const std::string& Root)
	{
		const std::wstring Text = ToWide(Root);
		EXPECT_EQ(::RegSetKeyValueW(HKEY_CURRENT_USER, Builds, ToWide(Identifier).c_str(), REG_SZ, Text.c_str(),
					  static_cast<DWORD>((Text.size() + 1) * sizeof(wchar_t))),
			ERROR_SUCCESS);
	}
	FRecordedBuild(const FRecordedBuild&) = delete;
	FRecordedBuild& operator=(const FRecordedBuild&) = delete;
	~FRecordedBuild() { ::RegDeleteKeyValueW(HKEY_CURRENT_USER, Builds, ToWide(Identifier).c_str()); }
};

std::string Find(const FTestFiles& Files, const std::string& Association)
{
	FEngineSearch Search;
	Search.ProjectFile = Files.Put("My Maps/My Maps.uproject", R"({"EngineAssociation": ")" + Association + R"("})");
	return Files.Mask(FindEngine(Search).EngineDir);
}
} // namespace

TEST(InstallRecords, EnginesAreFoundByTheRegistryAndTheLaunchersFile)
{
	const FTestFiles Files;
	const QVTest::FScopedEnvironment ProgramData("ProgramData", Files("data"));
	for (const char* Engine : {"Höhle 5.4/Engine", "UE 5.4/Engine"})
	{
		std::filesystem::create_directories(Files.OsPath(Engine) / "Binaries/Win64");
	}
	const FRecordedBuild Build(FQVString::ReplaceAll(Files("Höhle 5.4"), "/", "\\"));
	Files.Put("data/Epic/UnrealEngineLauncher/LauncherInstalled.dat",
		R"({"InstallationList": [{"InstallLocation": ")" + FQVString::ReplaceAll(Files("UE 5.4"), "/", "\\\\") +
			R"(", "AppName": "UE_97.4"}]})");
	EXPECT_EQ(Find(Files, Identifier), "Höhle 5.4/Engine");
	EXPECT_EQ(Find(Files, "97.4"), "UE 5.4/Engine");
	EXPECT_EQ(Find(Files, "97.5"), "");
}
