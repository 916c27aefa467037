// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Pak/PakRecordWriter.h"

#include "Standalone/Formats/Base/InputFile.h"
#include "Standalone/Formats/Base/PathText.h"
#include "Standalone/Formats/Pak/CompressionProbe.h"

#include <algorithm>

namespace QVFormats
{
namespace
{
/** Small files are handed out in lots of about this much, large ones in pieces of exactly this. */
constexpr std::uint64_t JobBytes = 4 * PakBlockBytes;
constexpr std::size_t MostFilesInJob = 256;
constexpr std::size_t SlotsForThread = 4;
constexpr std::uint64_t PlainHeadBytes = PakRecordHeadBytes(0, 0);

FBytes BlockOf(FBytes Bytes, std::size_t Begin)
{
	return Bytes.subspan(Begin, std::min<std::size_t>(PakBlockBytes, Bytes.size() - Begin));
}

FError ChangedError(const FPlannedFile& File)
{
	return {PathText(File.Source) + " changed while it was being packed: it had " + std::to_string(File.Size) +
			" bytes before, and no longer does; pack again when nothing writes to it"};
}

/** Fills Out, and where it reaches the file's end, makes sure that it is the end. */
FStatus ReadExactly(const FPlannedFile& File, std::uint64_t Begin, std::span<std::byte> Out)
{
	TResult<FInputFile> Input = FInputFile::Open(File.Source);
	if (!Input)
	{
		return Input.Error();
	}
	if (Input->Size() != File.Size)
	{
		return ChangedError(File);
	}
	const TResult<std::size_t> Count = Input->ReadAt(Begin, Out);
	if (!Count)
	{
		return Count.Error();
	}
	return *Count == Out.size() ? Success() : FStatus(ChangedError(File));
}

void WriteHead(const FPakStoredFile& File, std::byte* Place)
{
	FByteWriter Head;
	File.Record(0).Write(Head);
	std::memcpy(Place, Head.Bytes().data(), Head.Bytes().size());
}

/** Compresses blocks one behind the other. */
class FBlockPacker
{
public:
	FBlockPacker(FZlibCompressor& InCompressor, FZlibCompressor& InStorer, std::span<std::byte> InOut)
		: Compressor(InCompressor)
		, Storer(InStorer)
		, Out(InOut)
	{
	}

	/** False when there is no memory for it. */
	bool Add(FBytes Block)
	{
		const std::size_t Length =
			(IsSurelyIncompressible(Block) ? Storer : Compressor).Compress(Block, Out.subspan(Used));
		Lengths.push_back(static_cast<std::uint32_t>(Length));
		Used += Length;
		return Length > 0;
	}

	FZlibCompressor& Compressor;
	FZlibCompressor& Storer;
	std::span<std::byte> Out;
	std::size_t Used = 0;
	std::vector<std::uint32_t> Lengths;
};

FError NoMemory(const FPlannedFile& File)
{
	return {PathText(File.Source) + " could not be compressed: not enough memory"};
}
} // namespace

std::uint32_t FPakStoredFile::BlockSize() const
{
	return bCompressed ? static_cast<std::uint32_t>(std::min<std::uint64_t>(PakBlockBytes, UncompressedSize)) : 0;
}

FPakRecord FPakStoredFile::Record(std::uint64_t OffsetField) const
{
	FPakRecord Result;
	Result.Offset = static_cast<std::int64_t>(OffsetField);
	Result.Size = static_cast<std::int64_t>(Size);
	Result.UncompressedSize = static_cast<std::int64_t>(UncompressedSize);
	Result.Method = bCompressed ? 1 : 0;
	Result.Hash = Hash;
	std::int64_t Start = static_cast<std::int64_t>(HeadBytes());
	for (const std::uint32_t Length : BlockLengths)
	{
		Result.Blocks.push_back({Start, Start + Length});
		Start += Length;
	}
	Result.BlockSize = BlockSize();
	return Result;
}

std::span<std::byte> FPakBuffer::Take(std::size_t Size)
{
	if (Size > Capacity)
	{
		Data = std::make_unique_for_overwrite<std::byte[]>(Size);
		Capacity = Size;
	}
	return {Data.get(), Size};
}

FPakRecordWriter::FPakRecordWriter(const FPakPlan& InPlan, FOutputFile& InOut, unsigned Threads, FOnFile InOnFile)
	: Plan(InPlan)
	, Out(InOut)
	, OnFile(std::move(InOnFile))
	, Jobs(PlanJobs(InPlan))
	, Workers(ThreadCount(Threads, Jobs.size()))
	, Ordered(static_cast<unsigned>(Workers.size()), Workers.size() * SlotsForThread)
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
				const FStatus Status = Jobs[Job].Count > 0 ? MakeFiles(Workers[Worker], Jobs[Job], Slot)
														   : MakePiece(Workers[Worker], Jobs[Job], Slot);
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

FStatus FPakRecordWriter::MakeFiles(FWorker& Worker, const FJob& Job, FSlot& Slot) const
{
	std::uint64_t Most = 0;
	for (std::size_t Number = Job.First; Number < Job.First + Job.Count; ++Number)
	{
		Most += PlainHeadBytes + Plan.Files[Number].Size;
	}
	const std::span<std::byte> Room = Slot.Buffer.Take(static_cast<std::size_t>(Most));
	Slot.Used = 0;
	Slot.Files.assign(Job.Count, {});
	for (std::size_t Index = 0; Index < Job.Count; ++Index)
	{
		FPakStoredFile& Result = Slot.Files[Index];
		Result.Offset = Slot.Used;
		const FStatus Status = MakeFile(Worker, Plan.Files[Job.First + Index], Room.subspan(Slot.Used), Result);
		if (!Status)
		{
			return Status;
		}
		Slot.Used += static_cast<std::size_t>(Result.HeadBytes() + Result.Size);
	}
	return Success();
}

/** Reads the file to where its plain payload belongs; what compression makes of it replaces it there if it pays. */
FStatus FPakRecordWriter::MakeFile(
	FWorker& Worker, const FPlannedFile& File, std::span<std::byte> Room, FPakStoredFile& Result)
{
	const std::span<std::byte> Plain = Room.subspan(PlainHeadBytes, static_cast<std::size_t>(File.Size));
	if (FStatus Status = ReadExactly(File, 0, Plain); !Status)
	{
		return Status;
	}
	Result.Size = Result.UncompressedSize = File.Size;
	if (File.bCompress && PakCompressionPays(File.Size, 0))
	{
		const auto Blocks = static_cast<std::size_t>(PakBlockCount(File.Size, PakBlockBytes));
		FBlockPacker Packer(
			Worker.Compressor, Worker.Storer, Worker.Output.Take(Blocks * CompressedBound(PakBlockBytes)));
		for (std::size_t Begin = 0; Begin < Plain.size() && PakCompressionPays(File.Size, Packer.Used);
			 Begin += PakBlockBytes)
		{
			if (!Packer.Add(BlockOf(Plain, Begin)))
			{
				return NoMemory(File);
			}
		}
		if (PakCompressionPays(File.Size, Packer.Used))
		{
			Result.bCompressed = true;
			Result.Size = Packer.Used;
			Result.BlockLengths = std::move(Packer.Lengths);
			// A saving of 1,024 bytes and 5 percent is more than the longer head takes, so it fits.
			std::memcpy(Room.data() + Result.HeadBytes(), Packer.Out.data(), Packer.Used);
		}
	}
	const FBytes Payload =
		Room.subspan(static_cast<std::size_t>(Result.HeadBytes()), static_cast<std::size_t>(Result.Size));
	Result.Hash = FSha1::Of(Payload);
	WriteHead(Result, Room.data());
	return Success();
}

FStatus FPakRecordWriter::MakePiece(FWorker& Worker, const FJob& Job, FSlot& Slot) const
{
	const FPlannedFile& File = Plan.Files[Job.First];
	const EStorage How = Storage[Job.First];
	const bool bStoresPlain = How == EStorage::Plain || How == EStorage::GuessPlain;
	const auto Size = static_cast<std::size_t>(std::min(JobBytes, File.Size - Job.Begin));
	const std::span<std::byte> Plain = (bStoresPlain ? Slot.Buffer : Worker.Input).Take(Size);
	if (FStatus Status = ReadExactly(File, Job.Begin, Plain); !Status)
	{
		return Status;
	}
	Slot.Used = Size;
	if (How == EStorage::Plain)
	{
		return Success();
	}
	constexpr std::size_t MostBlocks = JobBytes / PakBlockBytes;
	FBlockPacker Packer(Worker.Compressor, Worker.Storer,
		(bStoresPlain ? Worker.Output : Slot.Buffer).Take(MostBlocks * CompressedBound(PakBlockBytes)));
	for (std::size_t Begin = 0; Begin < Size; Begin += PakBlockBytes)
	{
		if (!Packer.Add(BlockOf(Plain, Begin)))
		{
			return NoMemory(File);
		}
	}
	Slot.CompressedBytes = Packer.Used;
	if (!bStoresPlain)
	{
		Slot.Used = Packer.Used;
		Slot.BlockLengths = std::move(Packer.Lengths);
	}
	return Success();
}

bool FPakRecordWriter::Finish(const FJob& Job, FSlot& Slot)
{
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
	const FStatus Status = Out.WriteAt(Position, FBytes(Slot.Buffer.Data.get(), Slot.Used));
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
	const FStatus Status = Out.WriteAt(Result.Offset, Head.Bytes());
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
