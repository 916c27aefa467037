// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Pak/PakWriter.h"

#include "Standalone/Formats/Base/PathText.h"
#include "Standalone/Formats/Pak/PakFooter.h"
#include "Standalone/Formats/Pak/PakIndexWriter.h"

namespace QVFormats
{
namespace
{
FPakWriteSummary Summarize(const FPakPlan& Plan, const std::vector<FPakStoredFile>& Files)
{
	FPakWriteSummary Summary;
	Summary.MountPoint = Plan.MountPoint;
	Summary.Files = Files.size();
	for (const FPakStoredFile& File : Files)
	{
		Summary.CompressedFiles += File.bCompressed ? 1 : 0;
		Summary.BytesIn += File.UncompressedSize;
		Summary.PayloadBytes += File.Size;
	}
	return Summary;
}

std::vector<std::byte> FooterBytes(const FPakIndexBytes& Tables, std::uint64_t IndexOffset, bool bCompressed)
{
	FPakFooter Footer;
	Footer.IndexOffset = static_cast<std::int64_t>(IndexOffset);
	Footer.IndexSize = static_cast<std::int64_t>(Tables.Index.size());
	Footer.IndexHash = FSha1::Of(Tables.Index);
	if (bCompressed)
	{
		Footer.Methods.push_back("Zlib");
	}
	FByteWriter Out;
	Footer.Write(Out);
	return Out.Release();
}

FStatus WriteTables(FOutputFile& Out, const FPakIndexBytes& Tables, FPakWriteSummary& Summary, std::uint64_t Offset)
{
	const std::vector<std::byte> Footer = FooterBytes(Tables, Offset, Summary.CompressedFiles > 0);
	for (const auto* Part : {&Tables.Index, &Tables.PathHashIndex, &Tables.DirectoryIndex, &Footer})
	{
		FStatus Status = Out.WriteAt(Offset, *Part);
		if (!Status)
		{
			return Status;
		}
		Offset += Part->size();
	}
	Summary.BytesOut = Offset;
	Summary.IndexBytes = Tables.Index.size();
	Summary.PathHashIndexBytes = Tables.PathHashIndex.size();
	Summary.DirectoryIndexBytes = Tables.DirectoryIndex.size();
	return Out.Commit(Offset);
}
} // namespace

TResult<FPakWriteSummary> WritePak(
	const std::filesystem::path& Target, std::span<const FPakSource> Sources, const FPakWriteOptions& Options)
{
	const TResult<FPakPlan> Plan = FPakPlan::Make(Sources, Options.Threads);
	if (!Plan)
	{
		return Plan.Error();
	}
	TResult<FOutputFile> Out = FOutputFile::Create(Target);
	if (!Out)
	{
		return Out.Error();
	}
	FPakRecordWriter::FOnFile OnFile;
	if (Options.OnFile)
	{
		OnFile = [&](std::size_t FilesDone) {
			Options.OnFile({FilesDone, Plan->Files.size(), Plan->Files[FilesDone - 1].Destination});
		};
	}
	FPakRecordWriter Records(*Plan, *Out, Options.Threads, std::move(OnFile), Options.ShouldStop);
	if (FStatus Status = Records.Run(); !Status)
	{
		return Status.Error();
	}
	const std::uint64_t Seed = Options.PathHashSeed.value_or(PakPathHashSeed(PathText(Target.filename())));
	FPakWriteSummary Summary = Summarize(*Plan, Records.Files());
	const FPakIndexBytes Tables = FPakIndexBytes::Make(*Plan, Records.Files(), Records.End(), Seed);
	const FStatus Status = WriteTables(*Out, Tables, Summary, Records.End());
	return Status ? TResult<FPakWriteSummary>(std::move(Summary)) : TResult<FPakWriteSummary>(Status.Error());
}
} // namespace QVFormats
