// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/OrderedJobs.h"
#include "Standalone/Formats/Base/OutputFile.h"
#include "Standalone/Formats/Pak/PakRecordMaker.h"

#include <optional>

namespace QVFormats
{
/**
 * Writes the data records of a pak, which do not depend on how many threads took part. Small files go through one
 * thread each, several to a job; large ones in pieces, whose record head is written when all are known. Whether
 * compression pays is known at a large file's end only: where the guess was wrong, the file is written over.
 */
class FPakRecordWriter
{
public:
	using FOnFile = std::function<void(std::size_t FilesDone)>;

	FPakRecordWriter(const FPakPlan& InPlan, FOutputFile& InOut, unsigned Threads, FOnFile InOnFile,
		std::function<bool()> InShouldStop);

	FStatus Run();
	/** After Run: one for each file of the plan. */
	const std::vector<FPakStoredFile>& Files() const { return Stored; }
	/** After Run: where the records end. */
	std::uint64_t End() const { return Position; }

private:
	/** How a large file is being stored, and whether that may still turn out wrong. */
	enum class EStorage : std::uint8_t
	{
		GuessPlain,
		GuessCompressed,
		Plain,
		Compressed,
	};

	/** Whole files from First on, or, with no count, one piece of a large file. */
	struct FJob
	{
		std::size_t First = 0;
		std::size_t Count = 0;
		std::uint64_t Begin = 0;
	};

	/** What a job leaves to be written. */
	struct FSlot
	{
		FPakBuffer Buffer;
		std::size_t Used = 0;
		std::vector<FPakStoredFile> Files;
		std::vector<std::uint32_t> BlockLengths;
		/** What the piece takes or would take when compressed. */
		std::uint64_t CompressedBytes = 0;
		std::optional<FError> Error;
	};

	static std::vector<FJob> PlanJobs(const FPakPlan& Plan);
	FStatus MakeFiles(FPakRecordMaker& Maker, const FJob& Job, FSlot& Slot) const;
	FStatus MakePiece(FPakRecordMaker& Maker, const FJob& Job, FSlot& Slot) const;
	bool Finish(const FJob& Job, FSlot& Slot);
	FStatus FinishFiles(const FJob& Job, FSlot& Slot);
	FStatus FinishPiece(const FJob& Job, FSlot& Slot);
	FStatus FinishLargeFile(std::size_t Number);
	void BeginAgain(std::size_t Number);
	void ReportFile();

	const FPakPlan& Plan;
	FOutputFile& Out;
	FOnFile OnFile;
	std::function<bool()> ShouldStop;
	std::vector<FJob> Jobs;
	std::vector<EStorage> Storage;
	std::vector<FPakRecordMaker> Makers;
	TOrderedJobs<FSlot> Ordered;
	std::vector<FPakStoredFile> Stored;
	std::uint64_t Position = 0;
	std::size_t FilesDone = 0;
	/** Of the large file that is being finished. */
	FSha1 LargeHash;
	std::uint64_t LargeCompressedBytes = 0;
	std::optional<FError> Error;
	/** The file to be written over. */
	std::optional<std::size_t> Again;
};
} // namespace QVFormats
