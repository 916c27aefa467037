// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Pak/PakRecordWriter.h"

#include <algorithm>

namespace QVFormats
{
namespace
{
/** Small files are handed out in lots of about this much, large ones in pieces of exactly this. */
constexpr std::uint64_t JobBytes = 4 * PakBlockBytes;
/** All of a lot are open at once. */
constexpr std::size_t MostFilesInJob = 32;
constexpr std::size_t SlotsForThread = 4;
/** How far ahead of the piece at hand the disk is asked for the next. */
constexpr std::uint64_t ReadAheadBytes = 16 * JobBytes;
constexpr std::uint64_t PlainHeadBytes = PakRecordHeadBytes(0, 0);
} // namespace

FPakRecordWriter::FPakRecordWriter(
	const FPakPlan& InPlan, FOutputFile& InOut, unsigned Threads, FOnFile InOnFile, std::function<bool()> InShouldStop)
	: Plan(InPlan)
	, Out(InOut)
	, OnFile(std::move(InOnFile))
	, ShouldStop(std::move(InShouldStop))
	, Jobs(PlanJobs(InPlan))
	, Makers(ThreadCount(Threads, Jobs.size()))
	, Ordered(static_cast<unsigned>(Makers.size()), Makers.size() * SlotsForThread)
	, Stored(InPlan.Files.size())
{
	for (const FPlannedFile& File : Plan.Files)
	{
		Storage.push_back(!File.bCompress			  ? EStorage::Plain
						  : File.bLooksIncompressible ? EStorage::GuessPlain
													  : EStorage::GuessCompressed);
	}
}

std::vector<FPakRecordWriter::FJob> FPakRecordWriter::PlanJobs(const FPakPlan& Plan)
{
	std::vector<FJob> Result;
	std::uint64_t LotBytes = 0;
	for (std::size_t Number = 0; Number < Plan.Files.size(); ++Number)
	{
		const std::uint64_t Size = Plan.Files[Number].Size;
		const bool bLarge = Size > PakPieceworkBytes;
		for (std::uint64_t Begin = 0; bLarge && Begin < Size; Begin += JobBytes)
		{
			Result.push_back({Number, 0, Begin});
		}
		if (bLarge)
		{
			continue;
		}
		const bool bJoins = !Result.empty() && Result.back().Count > 0 && Result.back().Count < MostFilesInJob &&
							LotBytes + Size <= JobBytes;
		LotBytes = bJoins ? LotBytes + Size : Size;
		if (bJoins)
		{
			++Result.back().Count;
			continue;
		}
		Result.push_back({Number, 1, 0});
	}
	return Result;
}

FStatus FPakRecordWriter::Run()
{
	for (std::size_t First = 0; First < Jobs.size();)
	{
		Again.reset();
		Ordered.Run(
			First, Jobs.size(),
			[this](unsigned Worker, std::size_t Job, FSlot& Slot)
			{
				const FStatus Status = Jobs[Job].Count > 0 ? MakeFiles(Makers[Worker], Jobs[Job], Slot)
														   : MakePiece(Makers[Worker], Jobs[Job], Slot);
				Slot.Error = Status ? std::nullopt : std::optional(Status.Error());
			},
			[this](std::size_t Job, FSlot& Slot) { return Finish(Jobs[Job], Slot); });
		if (Error)
		{
			return *Error;
		}
		const auto IsAgain = [this](const FJob& Job) { return Again && Job.First == *Again && Job.Count == 0; };
		First = static_cast<std::size_t>(std::find_if(Jobs.begin(), Jobs.end(), IsAgain) - Jobs.begin());
	}
	return Success();
}

FStatus FPakRecordWriter::MakeFiles(FPakRecordMaker& Maker, const FJob& Job, FSlot& Slot) const
{
	std::uint64_t Most = 0;
	for (std::size_t Number = Job.First; Number < Job.First + Job.Count; ++Number)
	{
		Most += PlainHeadBytes + Plan.Files[Number].Size;
	}
	const std::span<std::byte> Room = Slot.Buffer.Take(static_cast<std::size_t>(Most));
	std::vector<FInputFile> Inputs;
	for (std::size_t Number = Job.First; Number < Job.First + Job.Count; ++Number)
	{
		TResult<FInputFile> Input = OpenPakSource(Plan.Files[Number]);
		if (!Input)
		{
			return Input.Error();
		}
		Inputs.push_back(std::move(*Input));
		Inputs.back().WillRead(0, Plan.Files[Number].Size);
	}
	Slot.Used = 0;
	Slot.Files.assign(Job.Count, {});
	for (std::size_t Index = 0; Index < Job.Count; ++Index)
	{
		FPakStoredFile& Result = Slot.Files[Index];
		Result.Offset = Slot.Used;
		const FPlannedFile& File = Plan.Files[Job.First + Index];
		if (FStatus Status = Maker.MakeRecord(File, Inputs[Index], Room.subspan(Slot.Used), Result); !Status)
		{
			return Status;
		}
		Slot.Used += static_cast<std::size_t>(Result.HeadBytes() + Result.Size);
	}
	return Success();
}

FStatus FPakRecordWriter::MakePiece(FPakRecordMaker& Maker, const FJob& Job, FSlot& Slot) const
{
	const FPlannedFile& File = Plan.Files[Job.First];
	const EStorage How = Storage[Job.First];
	const bool bStoresPlain = How == EStorage::Plain || How == EStorage::GuessPlain;
	TResult<FInputFile> Input = OpenPakSource(File);
	if (!Input)
	{
		return Input.Error();
	}
	Input->WillRead(Job.Begin == 0 ? 0 : Job.Begin + ReadAheadBytes, Job.Begin == 0 ? ReadAheadBytes : JobBytes);
	Slot.Used = static_cast<std::size_t>(std::min(JobBytes, File.Size - Job.Begin));
	const std::span<std::byte> Plain = (bStoresPlain ? Slot.Buffer : Maker.Input).Take(Slot.Used);
	FStatus Status = ReadPakSource(File, *Input, Job.Begin, Plain);
	if (!Status || How == EStorage::Plain)
	{
		return Status;
	}
	constexpr std::size_t MostBlocks = JobBytes / PakBlockBytes;
	const std::span<std::byte> Compressed =
		(bStoresPlain ? Maker.Output : Slot.Buffer).Take(MostBlocks * CompressedBound(PakBlockBytes));
	Slot.BlockLengths.clear();
	Slot.CompressedBytes = 0;
	Status = Maker.Compress(File, Plain, Compressed, Slot.BlockLengths, Slot.CompressedBytes);
	if (!bStoresPlain)
	{
		Slot.Used = static_cast<std::size_t>(Slot.CompressedBytes);
	}
	return Status;
}

bool FPakRecordWriter::Finish(const FJob& Job, FSlot& Slot)
{
	if (!Slot.Error && ShouldStop && ShouldStop())
	{
		Slot.Error = FError{"the work was stopped before the pak was done"};
	}
	if (Slot.Error)
	{
		Error = std::move(Slot.Error);
		return false;
	}
	const FStatus Status = Job.Count > 0 ? FinishFiles(Job, Slot) : FinishPiece(Job, Slot);
	if (!Status)
	{
		Error = Status.Error();
	}
	return Status && !Again;
}

FStatus FPakRecordWriter::FinishFiles(const FJob& Job, FSlot& Slot)
{
	FStatus Status = Out.WriteAt(Position, FBytes(Slot.Buffer.Data.get(), Slot.Used));
	for (std::size_t Index = 0; Status && Index < Job.Count; ++Index)
	{
		Slot.Files[Index].Offset += Position;
		Stored[Job.First + Index] = std::move(Slot.Files[Index]);
		ReportFile();
	}
	Position += Slot.Used;
	return Status;
}

FStatus FPakRecordWriter::FinishPiece(const FJob& Job, FSlot& Slot)
{
	const std::size_t Number = Job.First;
	const FPlannedFile& File = Plan.Files[Number];
	FPakStoredFile& Result = Stored[Number];
	if (Job.Begin == 0)
	{
		Result = {};
		Result.Offset = Position;
		Result.UncompressedSize = File.Size;
		Result.bCompressed = Storage[Number] == EStorage::Compressed || Storage[Number] == EStorage::GuessCompressed;
		Position += PakRecordHeadBytes(Result.bCompressed ? 1 : 0, PakBlockCount(File.Size, PakBlockBytes));
		LargeHash = {};
		LargeCompressedBytes = 0;
	}
	const FBytes Bytes(Slot.Buffer.Data.get(), Slot.Used);
	LargeHash.Update(Bytes);
	const FStatus Status = Out.WriteAt(Position, Bytes);
	Position += Bytes.size();
	Result.Size += Bytes.size();
	LargeCompressedBytes += Slot.CompressedBytes;
	if (Result.bCompressed)
	{
		Result.BlockLengths.insert(Result.BlockLengths.end(), Slot.BlockLengths.begin(), Slot.BlockLengths.end());
	}
	return Status && Job.Begin + JobBytes >= File.Size ? FinishLargeFile(Number) : Status;
}

FStatus FPakRecordWriter::FinishLargeFile(std::size_t Number)
{
	FPakStoredFile& Result = Stored[Number];
	const bool bGuessed = Storage[Number] == EStorage::GuessPlain || Storage[Number] == EStorage::GuessCompressed;
	if (bGuessed && Result.bCompressed != PakCompressionPays(Result.UncompressedSize, LargeCompressedBytes))
	{
		BeginAgain(Number);
		return Success();
	}
	Result.Hash = LargeHash.Finish();
	FByteWriter Head;
	Result.Record(0).Write(Head);
	FStatus Status = Out.WriteAt(Result.Offset, Head.Bytes());
	ReportFile();
	return Status;
}

void FPakRecordWriter::BeginAgain(std::size_t Number)
{
	Storage[Number] = Stored[Number].bCompressed ? EStorage::Plain : EStorage::Compressed;
	Position = Stored[Number].Offset;
	Again = Number;
}

void FPakRecordWriter::ReportFile()
{
	++FilesDone;
	if (OnFile)
	{
		OnFile(FilesDone);
	}
}
} // namespace QVFormats
