// SPDX-License-Identifier: MIT
#include "Engine/QVRegistryFile.h"
#include "Standalone/Engine/OsPath.h"
#include "Tests/Support/ToolkitTest.h"
#include "Workspace/QVMapPaths.h"

#include <atomic>
#include <barrier>

using namespace QVTest;
using FBaseReleaseTest = FToolkitTest;

namespace
{
constexpr std::string_view Development = FTestProject::DevelopmentRegistry;
constexpr std::string_view Runtime = "Releases/1.0/Windows/AssetRegistry.bin";
const std::string LogStart = "QVMap: Base release registry <Project>/";

class FCountingRegistryFile : public IQVRegistryFile
{
public:
	mutable std::atomic<int> Loads{0};

	bool LoadFromDisk(std::string_view, std::int32_t& OutPackageCount) const override
	{
		++Loads;
		OutPackageCount = 5;
		return true;
	}
};

std::string Unreadable(std::string_view Registry)
{
	return QVPrintf("The base release asset registry at <Project>/%s could not be read. It is likely corrupt or was "
					"written by a different engine version. Rebuild the base release.",
		Registry);
}
} // namespace

TEST_F(FBaseReleaseTest, SaysWhatMakesAReleaseUnusable)
{
	const std::string Three = FTestProject::RegistryBytes(3);
	const struct
	{
		const char* What;
		std::vector<std::pair<std::string_view, std::string>> Written;
		/** Release folder, development and runtime registry there, readable. */
		const char* Flags;
		int Packages;
		std::string_view Chosen;
		std::string Error;
	} Cases[] = {
		{"nothing", {}, "----", 0, "", "No base release found at <Project>/Releases/1.0."},
		{"a folder", {{"Releases/1.0/Windows/x", ""}}, "R---", 0, "",
			"The base release at <Project>/Releases/1.0 is incomplete - "
			"<Project>/Releases/1.0/Windows/Metadata/DevelopmentAssetRegistry.bin is missing. This usually means a "
			"previous 'Build Base Release' was interrupted or failed."},
		{"both", {{Development, Three}, {Runtime, "broken"}}, "RDGr", 3, Development, ""},
		{"the runtime registry only", {{Runtime, Three}}, "R-Gr", 3, Runtime, ""},
		{"a broken one of development wins all the same", {{Development, "broken"}, {Runtime, Three}}, "RDG-", 0,
			Development, Unreadable(Development)},
		{"an empty file", {{Runtime, ""}}, "R-G-", 0, Runtime, Unreadable(Runtime)},
		{"a file that was cut", {{Development, Three.substr(0, Three.size() - 1)}}, "RD--", 0, Development,
			Unreadable(Development)},
		{"no packages", {{Development, FTestProject::RegistryBytes(0)}}, "RD-r", 0, Development,
			"The base release at <Project>/Releases/1.0 contains no packages, so a DLC cook based on it would fail. "
			"Rebuild the base release."},
	};
	for (const auto& Case : Cases)
	{
		SCOPED_TRACE(Case.What);
		Project.Remove("Releases");
		for (const auto& [Path, Bytes] : Case.Written)
		{
			Project.Write(Path, Bytes);
		}
		FQVBaseReleaseStatus Status;
		Status.ErrorMessage = "of another check";
		Status.PackageCount = 99;
		EXPECT_EQ(FQVMapPaths::CheckBaseRelease(Status), Case.Error.empty());
		EXPECT_EQ(FQVMapPaths::IsBaseReleaseValid(), Case.Error.empty());
		const std::string Flags{Status.bReleaseDirExists ? 'R' : '-', Status.bHasDevelopmentRegistry ? 'D' : '-',
			Status.bHasRuntimeRegistry ? 'G' : '-', Status.bRegistryReadable ? 'r' : '-'};
		EXPECT_EQ(Flags, Case.Flags);
		EXPECT_EQ(Status.PackageCount, Case.Packages);
		EXPECT_EQ(Project.Mask(Status.ErrorMessage), Case.Error);
		const bool bLoaded = !Case.Chosen.empty();
		EXPECT_EQ(Status.RegistryPath, bLoaded ? Project.At(Case.Chosen) : "");
		EXPECT_EQ(Status.RegistrySizeBytes, bLoaded ? Project.Read(Case.Chosen).size() : 0);
		EXPECT_EQ(Status.RegistryTimestamp, bLoaded ? Files.GetTimeStamp(Project.At(Case.Chosen)).GetTicks() : 0);
		const std::string Line = LogStart + QVPrintf("%s -- %s, %d package(s), %lld bytes\n", Case.Chosen,
												Status.bRegistryReadable ? "readable" : "UNREADABLE", Case.Packages,
												Status.RegistrySizeBytes);
		EXPECT_EQ(Logged(), bLoaded ? Line : "") << "loaded once, though asked twice";
	}
}

TEST_F(FBaseReleaseTest, LoadsARegistryAgainOnlyWhenTheFileChanged)
{
	FCountingRegistryFile Registry;
	Engine.Interfaces.RegistryFile = &Registry;
	Project.AddBaseRelease();
	const std::filesystem::path File = QVStandalone::ToOsPath(Project.At(Development));
	const auto Written = std::filesystem::last_write_time(File);
	const auto ChecksLoad = [&](int Loads)
	{
		Registry.Loads = 0;
		return FQVMapPaths::IsBaseReleaseValid() && FQVMapPaths::IsBaseReleaseValid() && Registry.Loads == Loads;
	};
	EXPECT_TRUE(ChecksLoad(1));
	EXPECT_TRUE(ChecksLoad(0));
	std::filesystem::last_write_time(File, Written + std::chrono::seconds(1));
	EXPECT_TRUE(ChecksLoad(1)) << "another time stamp, same content";
	Project.Write(Development, Project.Read(Development) + "x");
	std::filesystem::last_write_time(File, Written + std::chrono::seconds(1));
	EXPECT_TRUE(ChecksLoad(1)) << "another size, same time stamp";
	Project.Write(Runtime, "");
	Project.Remove(Development);
	EXPECT_TRUE(ChecksLoad(1)) << "another path";
	EXPECT_EQ(FQVString::NonEmptyLines(Logged()).size(), 4u);
}

TEST_F(FBaseReleaseTest, CallersAtTheSameTimeLoadAFileOnce)
{
	FCountingRegistryFile Registry;
	Engine.Interfaces.RegistryFile = &Registry;
	Project.AddBaseRelease();
	constexpr int Threads = 4;
	std::barrier Start(Threads);
	std::atomic<int> Usable{0};
	std::vector<std::thread> Callers;
	for (int Thread = 0; Thread < Threads; ++Thread)
	{
		Callers.emplace_back(
			[&]
			{
				Start.arrive_and_wait();
				FQVBaseReleaseStatus Status;
				Usable += FQVMapPaths::CheckBaseRelease(Status) && Status.PackageCount == 5 ? 1 : 0;
			});
	}
	for (std::thread& Caller : Callers)
	{
		Caller.join();
	}
	EXPECT_EQ(Usable, Threads);
	EXPECT_EQ(Registry.Loads, 1);
}
