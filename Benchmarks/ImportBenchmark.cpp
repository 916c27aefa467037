// SPDX-License-Identifier: MIT
// Bringing outside content into a mod, verifying it and putting all back, against copying or reading the same bytes
// with nothing else done, side by side in one run. Usage: import-benchmark [work folder] [rounds]. The work folder is
// removed afterwards.
#include "Benchmarks/Timing.h"
#include "Export/QVMapAssetImporter.h"
#include "Export/QVMapImportRestore.h"
#include "Export/QVMapImportVerification.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Engine/StandaloneEngine.h"
#include "Standalone/Formats/Package/SamplePackages.h"

#include <fcntl.h>

namespace
{
using namespace QVBench;
using namespace QVFormats;
using namespace QVStandalone;
namespace fs = std::filesystem;
using FBytesOfFile = std::vector<std::byte>;

constexpr std::size_t Count = 500;
constexpr std::size_t BytesOfEach = 400'000;

std::string OutsideAt(std::size_t Number)
{
	return "/Game/F" + std::to_string(Number / 50) + "/SM_Harbour_wall_" + std::to_string(Number);
}

std::string OwnAt(std::size_t Number)
{
	return "/Cave/F" + std::to_string(Number / 50) + "/SM_Cave_wall_" + std::to_string(Number);
}

fs::path FileOf(const fs::path& Project, const std::string& Package)
{
	const char* Content = Package.starts_with("/Cave/") ? "Plugins/Cave/Content" : "Content";
	return Project / Content / (Package.substr(6) + (Package.ends_with("Hall") ? ".umap" : ".uasset"));
}

void PutText(const fs::path& File, std::string_view Text)
{
	WriteFile(File, std::as_bytes(std::span(Text)));
}

FHardReference Mesh(const std::string& Package)
{
	return {Package, "/Script/Engine", "StaticMesh", Package.substr(Package.rfind('/') + 1)};
}

void PutMesh(const fs::path& Project, const std::string& Package, std::vector<FHardReference> References)
{
	static std::uint64_t Seed = 0;
	const FAssetPackageSpec Spec{Package, "/Script/Engine.StaticMesh", std::move(References), {}, BytesOfEach, ++Seed};
	WriteFile(FileOf(Project, Package), BuildAssetPackage(Spec));
}

void PutMap(const fs::path& Project, std::vector<FHardReference> References)
{
	WriteFile(FileOf(Project, "/Cave/Hall"), BuildWorldPackage({"/Cave/Hall", std::move(References), {}, false}));
	PutText(Project / "MapWork.uproject", "{\"FileVersion\":3}");
	PutText(Project / "Plugins/Cave/Cave.uplugin", "{\"FileVersion\":3,\"CanContainContent\":true}");
}

/** The map uses 500 packages of the project, which use one another. */
void MakeOutside(const fs::path& Project)
{
	std::vector<FHardReference> All;
	for (std::size_t Number = 0; Number < Count; ++Number)
	{
		PutMesh(
			Project, OutsideAt(Number), {Mesh(OutsideAt((Number + 1) % Count)), Mesh(OutsideAt(Number * 7 % Count))});
		All.push_back(Mesh(OutsideAt(Number)));
	}
	PutMap(Project, std::move(All));
}

/** 500 packages of the mod, which the map uses, use one of the project. */
void MakeOwn(const fs::path& Project)
{
	PutMesh(Project, OutsideAt(0), {});
	std::vector<FHardReference> All;
	for (std::size_t Number = 0; Number < Count; ++Number)
	{
		PutMesh(Project, OwnAt(Number), {Mesh(OutsideAt(0))});
		All.push_back(Mesh(OwnAt(Number)));
	}
	PutMap(Project, std::move(All));
}

FBytesOfFile ReadAll(const fs::path& File)
{
	FBytesOfFile Bytes(fs::file_size(File));
	const int Handle = ::open(File.c_str(), O_RDONLY);
	for (std::size_t Done = 0; Done < Bytes.size();)
	{
		const ssize_t Some = ::read(Handle, Bytes.data() + Done, Bytes.size() - Done);
		if (Some <= 0)
		{
			Fail("reading failed: " + File.string());
		}
		Done += static_cast<std::size_t>(Some);
	}
	::close(Handle);
	return Bytes;
}

/** Bare work: what copying and flushing these files to a folder takes. */
void CopyAndFlush(const std::vector<fs::path>& Files, const fs::path& Folder)
{
	fs::create_directories(Folder);
	std::size_t Number = 0;
	for (const fs::path& File : Files)
	{
		const fs::path Copy = Folder / std::to_string(Number++);
		const int From = ::open(File.c_str(), O_RDONLY);
		const int To = ::open(Copy.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
		ssize_t Some = 0;
		while ((Some = ::copy_file_range(From, nullptr, To, nullptr, BytesOfEach * 2, 0)) > 0)
		{
		}
		if (Some < 0 || ::fsync(To) != 0)
		{
			Fail("copying failed: " + Copy.string());
		}
		::close(From);
		::close(To);
	}
}

std::vector<fs::path> FilesOf(const fs::path& Project, std::string (*NameOf)(std::size_t))
{
	std::vector<fs::path> Files;
	for (std::size_t Number = 0; Number < Count; ++Number)
	{
		Files.push_back(FileOf(Project, NameOf(Number)));
	}
	return Files;
}

FTime Least(const FTime& A, const FTime& B)
{
	return {std::min(A.Wall, B.Wall), std::min(A.Cpu, B.Cpu)};
}

struct FTimes
{
	FTime Import;
	FTime Verify;
	FTime Restore;
	FTime Copy;
	FTime Read;
};

/** One round, with an engine of its own. */
void RunOnce(const fs::path& Project, const std::vector<fs::path>& Files, FTimes& Best)
{
	FStandaloneEngine Engine(FromOsPath(Project / "MapWork.uproject"), FromOsPath(Project / "Engine"));
	Engine.GetAssetRegistry().StartScan();
	Engine.GetAssetRegistry().FinishScan();
	FQVImportResult Result;
	const FTime Import = TimeOf([&] { Result = FQVMapAssetImporter::BringInExternalAssets("Cave"); });
	if (!Result.bSuccess)
	{
		Fail(Result.ErrorMessage);
	}
	std::string Error;
	const FTime Verify = TimeOf([&] { Error = FQVMapImportVerification::VerifyImportedReferences(Result); });
	std::vector<fs::path> Saved;
	for (const FQVImportedPackage& Copy : Result.Imported)
	{
		Saved.push_back(ToOsPath(Copy.File));
	}
	for (const FQVImportBackup& Backup : Result.Backups)
	{
		Saved.push_back(ToOsPath(Backup.Original));
	}
	const FTime Read = TimeOf(
		[&]
		{
			for (const fs::path& File : Saved)
			{
				ReadAll(File);
			}
		});
	std::string RestoreError;
	const FTime Restore = TimeOf([&] { FQVMapImportRestore::RestoreAfterPacking("Cave", Result, RestoreError); });
	if (!Error.empty() || !RestoreError.empty())
	{
		Fail(Error + RestoreError);
	}
	const FTime Copy = TimeOf([&] { CopyAndFlush(Files, Project / "Bare"); });
	fs::remove_all(Project / "Bare");
	Best = {Least(Best.Import, Import), Least(Best.Verify, Verify), Least(Best.Restore, Restore),
		Least(Best.Copy, Copy), Least(Best.Read, Read)};
}

FTimes Run(const fs::path& Project, const std::vector<fs::path>& Files, int Rounds)
{
	::sync(); // of what was just made nothing is to be written out while we measure
	FTimes Best;
	for (int Round = 0; Round < Rounds; ++Round)
	{
		RunOnce(Project, Files, Best);
	}
	return Best;
}
} // namespace

int main(int ArgumentCount, char** Words)
{
	const FArguments Arguments("ImportBenchmark", ArgumentCount, Words, 3);
	std::printf("the best of %d rounds; %zu packages of %zu bytes\n", Arguments.Rounds, Count, BytesOfEach);
	MakeOutside(Arguments.Folder / "Outside");
	const FTimes Outside =
		Run(Arguments.Folder / "Outside", FilesOf(Arguments.Folder / "Outside", OutsideAt), Arguments.Rounds);
	PrintTime("bring them in, audit and verification with it", Outside.Import);
	PrintRatio("copy and flush the same files", Outside.Import, Outside.Copy);
	PrintTime("verify them", Outside.Verify);
	PrintRatio("read the same files", Outside.Verify, Outside.Read);
	MakeOwn(Arguments.Folder / "Own");
	const FTimes Own = Run(Arguments.Folder / "Own", FilesOf(Arguments.Folder / "Own", OwnAt), Arguments.Rounds);
	PrintTime("put as many rewritten packages back", Own.Restore);
	PrintRatio("copy and flush the same files", Own.Restore, Own.Copy);
	return 0;
}
