// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Pak/PakPlan.h"

#include "Standalone/Formats/Base/Disk.h"
#include "Standalone/Formats/Base/InputFile.h"
#include "Standalone/Formats/Base/Parallel.h"
#include "Standalone/Formats/Base/PathText.h"
#include "Standalone/Formats/Base/Unicode.h"
#include "Standalone/Formats/Pak/CompressionProbe.h"
#include "Standalone/Formats/Pak/PakPaths.h"

#include <algorithm>
#include <optional>

namespace QVFormats
{
namespace
{
constexpr std::uint64_t SampleCount = 4;
constexpr std::size_t SampleBytes = 16 * 1024;

TResult<std::vector<FPlannedFile>> Normalized(std::span<const FPakSource> Sources)
{
	std::vector<FPlannedFile> Files;
	Files.reserve(Sources.size());
	for (const FPakSource& Source : Sources)
	{
		TResult<std::string> Destination = NormalizePakDestination(Source.Destination);
		if (!Destination)
		{
			return FError{PathText(Source.Source) + ": " + Destination.Error().Message};
		}
		FPlannedFile& File = Files.emplace_back();
		File.Source = Source.Source;
		File.Destination = std::move(*Destination);
		File.bCompress = Source.bCompress;
	}
	return Files;
}

void SortAndKeepLast(std::vector<FPlannedFile>& Files)
{
	std::stable_sort(Files.begin(), Files.end(),
		[](const FPlannedFile& A, const FPlannedFile& B) { return ComparePakPaths(A.Destination, B.Destination) < 0; });
	// From the back, std::unique keeps of equal ones the last.
	const auto First = std::unique(Files.rbegin(), Files.rend(),
		[](const FPlannedFile& A, const FPlannedFile& B)
		{ return ComparePakPaths(A.Destination, B.Destination) == 0; });
	Files.erase(Files.begin(), First.base());
}

FStatus SetMountPoint(FPakPlan& Plan)
{
	Plan.MountPoint = "/";
	if (Plan.Files.empty())
	{
		return Success();
	}
	// What the first and the last of sorted texts share, all share.
	const std::string_view Common = CommonPakFolder(Plan.Files.front().Destination, Plan.Files.back().Destination);
	if (!Common.empty())
	{
		Plan.MountPoint = Common;
	}
	for (FPlannedFile& File : Plan.Files)
	{
		File.MountLength = Common.size();
		if (!WhyUnsafeBelowFolder(File.Path()).empty())
		{
			return FError{"destinations \"" + Plan.Files.front().Destination + "\" and \"" +
						  Plan.Files.back().Destination + "\" have no common root; begin both with \"../../../\""};
		}
	}
	return Success();
}

bool LooksIncompressible(FInputFile& Input, std::uint64_t Size)
{
	std::vector<std::byte> Sample(SampleBytes);
	for (std::uint64_t Number = 0; Number < SampleCount; ++Number)
	{
		const TResult<std::size_t> Count = Input.ReadAt(Size / SampleCount * Number, Sample);
		if (!Count || *Count < Sample.size() || !IsSurelyIncompressible(Sample))
		{
			return false;
		}
	}
	return true;
}

std::optional<FError> LookAtSource(FPlannedFile& File)
{
	std::error_code Code;
	File.Size = FDisk::SizeOf(File.Source, Code);
	if (Code)
	{
		return FError{PathText(File.Source) + " could not be read: " + Code.message()};
	}
	if (File.bCompress && File.Size > PakPieceworkBytes)
	{
		TResult<FInputFile> Input = FInputFile::Open(File.Source);
		if (!Input)
		{
			return Input.Error();
		}
		File.bLooksIncompressible = LooksIncompressible(*Input, File.Size);
	}
	return std::nullopt;
}

FStatus LookAtSources(std::vector<FPlannedFile>& Files, unsigned Threads)
{
	std::vector<std::optional<FError>> Errors(Files.size());
	ParallelFor(ThreadCount(Threads, Files.size()), Files.size(),
		[&](unsigned, std::size_t Index) { Errors[Index] = LookAtSource(Files[Index]); });
	const auto Failed = std::find_if(Errors.begin(), Errors.end(), [](const auto& Error) { return Error.has_value(); });
	return Failed == Errors.end() ? Success() : FStatus(**Failed);
}
} // namespace

TResult<FPakPlan> FPakPlan::Make(std::span<const FPakSource> Sources, unsigned Threads)
{
	TResult<std::vector<FPlannedFile>> Files = Normalized(Sources);
	if (!Files)
	{
		return Files.Error();
	}
	FPakPlan Plan;
	Plan.Files = std::move(*Files);
	SortAndKeepLast(Plan.Files);
	FStatus Status = SetMountPoint(Plan);
	if (Status)
	{
		Status = LookAtSources(Plan.Files, Threads);
	}
	return Status ? TResult<FPakPlan>(std::move(Plan)) : TResult<FPakPlan>(Status.Error());
}
} // namespace QVFormats
