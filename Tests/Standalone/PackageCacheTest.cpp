// SPDX-License-Identifier: MIT
#include "Standalone/Engine/PackageCache.h"
#include "Standalone/Engine/PackageCacheLayout.h"
#include "Standalone/Formats/Base/CityHash.h"
#include "Tests/Formats/TestContent.h"
#include "Tests/Standalone/RegistrySession.h"
#include "Tests/Support/TestPrograms.h"

using namespace QVTest;
using namespace QVStandalone;
using namespace QVFormats;
namespace fs = std::filesystem;

namespace
{
const std::string CacheFile(FAssetRegistry::CacheFile);

struct PackageCache : FRegistryTest
{
	PackageCache()
	{
		const FQVName Spelled("/GAME/Odd/PIN");
		PutMesh("Content/Odd/Pin.uasset", "/Game/Odd/Pin");
		PutWorld("Content/Hall.umap",
			{"/Game/Hall", {{"/Game/Odd/Pin", "/Script/Engine", "StaticMesh", "Pin", false}}, {"/Game/X"}, false});
		Project.Write("Content/Broken.uasset", "broken");
	}

	/** What a start on the cache, and one without, must both find. */
	void ExpectAll()
	{
		FRegistrySession Session(Project);
		EXPECT_EQ(Session.Assets(""), (FTexts{"/Game/Hall.Hall World", "/GAME/Odd/PIN.Pin StaticMesh"}));
		EXPECT_EQ(Session.Dependencies("/Game/Hall"), (FTexts{"hard editor /GAME/Odd/PIN", "soft game /Game/X"}));
		EXPECT_EQ(Session.Referencers("/Game/X"), FTexts{"/Game/Hall"});
		EXPECT_EQ(Project.Mask(Session.Registry.GetPackageFile(FQVName("/Game/Odd/Pin"))),
			"<Project>/Content/Odd/Pin.uasset");
		EXPECT_EQ(Session.Unreadable().size(), 1U);
	}

	/** Another content of the same size and time. */
	void Swap(const char* File) const
	{
		const fs::file_time_type Time = fs::last_write_time(OsPath(File));
		Project.Write(File, std::string(Project.Read(File).size(), '\0'));
		fs::last_write_time(OsPath(File), Time);
	}
};
} // namespace

TEST_F(PackageCache, LetsTheNextStartReadNoPackage)
{
	QV_SKIP_ON_WINDOWS("the standard library tells and sets times by the second only here");
	ExpectAll();
	ASSERT_TRUE(Project.Exists(CacheFile));
	const fs::file_time_type Written = fs::last_write_time(OsPath(CacheFile));
	Swap("Content/Odd/Pin.uasset");
	Swap("Content/Hall.umap");
	Swap("Content/Broken.uasset");
	Log.Take();
	ExpectAll();
	EXPECT_EQ(fs::last_write_time(OsPath(CacheFile)), Written); // nothing was new

	// one file is another now: it alone is read
	fs::last_write_time(OsPath("Content/Hall.umap"), Written + std::chrono::hours(1));
	{
		FRegistrySession Session(Project);
		EXPECT_EQ(Session.Assets(""), FTexts{"/GAME/Odd/PIN.Pin StaticMesh"});
		EXPECT_EQ(Session.Unreadable().size(), 2U);
	}
	EXPECT_GT(fs::last_write_time(OsPath(CacheFile)), Written);
	// a plugin's folder of the same look is not the one that was read
	fs::rename(OsPath("Content"), OsPath("Moved"));
	fs::create_directory(OsPath("Content"));
	PutPlugin("Plugins/Cave");
	fs::remove_all(OsPath("Plugins/Cave/Content"));
	fs::rename(OsPath("Moved"), OsPath("Plugins/Cave/Content"));
	EXPECT_EQ(FRegistrySession(Project).Assets(""), FTexts{});
}

TEST_F(PackageCache, IsIgnoredWhenItIsOfNoUse)
{
	ExpectAll();
	const std::string Whole = Project.Read(CacheFile);
	const std::string Path = Project.At(CacheFile);
	for (const char* Case : {"cut", "a folder", "not to be written"})
	{
		SCOPED_TRACE(Case);
		Project.Remove("Saved");
		Case == std::string("a folder")			   ? Project.MakeFolder(CacheFile + "/x")
		: Case == std::string("not to be written") ? Project.Write("Saved", "a file in the folder's place")
												   : Project.Write(CacheFile, Whole.substr(0, Whole.size() / 2));
		Log.Take();
		ExpectAll();
		EXPECT_EQ(Logged(EQVLogVerbosity::Verbose).size(), Case == std::string("cut") ? 1U : 2U);
	}
	Project.Remove("Saved");
	ExpectAll();
	EXPECT_EQ(Project.Read(CacheFile).size(), Whole.size());
}

TEST_F(PackageCache, RefusesEveryDamage)
{
	{
		FRegistrySession Session(Project);
	}
	const std::vector<std::byte> Whole = ToBytes(Project.Read(CacheFile));
	ASSERT_TRUE(ReadPackageCache(Whole));
	ForEachTruncation(Whole, [](FBytes Bytes) { EXPECT_FALSE(ReadPackageCache(Bytes)) << Bytes.size(); });
	for (std::size_t At = 0; At < Whole.size(); ++At)
	{
		std::vector<std::byte> Bytes = Whole;
		Bytes[At] ^= std::byte{0x10};
		EXPECT_FALSE(ReadPackageCache(Bytes)) << At;
	}
	// numbers that make no sense under a check sum that does: nothing is asked but to survive them
	ForEachWildField(Whole,
		[](FBytes Wild)
		{
			std::vector<std::byte> Bytes(Wild.begin(), Wild.end());
			const std::uint64_t Hash = CityHash64(FBytes(Bytes).subspan(sizeof(FPackageCacheHead)));
			std::memcpy(Bytes.data() + offsetof(FPackageCacheHead, Hash), &Hash, sizeof(Hash));
			const TResult<FScannedPackagesRef> Read = ReadPackageCache(Bytes);
			EXPECT_TRUE(!Read || (*Read)->Graph.Num() <= 2);
		});
}
