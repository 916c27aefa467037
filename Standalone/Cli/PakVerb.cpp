// SPDX-License-Identifier: MIT
#include "Core/QVText.h"
#include "Standalone/Cli/CommandLine.h"
#include "Standalone/Engine/Interrupt.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/EngineTools/PakCreation.h"
#include "Standalone/Formats/Base/Disk.h"
#include "Standalone/Formats/Pak/PakExtract.h"
#include "Standalone/Formats/Pak/PakVerify.h"

#include <algorithm>

namespace QVCli
{
using namespace QVFormats;
using QVStandalone::FromOsPath;
using QVStandalone::ToOsPath;

namespace
{
struct FPakOptions
{
	std::string Pak;
	std::string Source;
	std::string Folder;
	std::string Mount = "../../../";
	bool bCompress = false;
};

std::string Number(std::uint64_t Value)
{
	return FQVText::AsNumber(static_cast<std::int64_t>(Value));
}

std::string FileCount(std::uint64_t Count)
{
	return Number(Count) + (Count == 1 ? " file" : " files");
}

/** Zero, with the error told, if the pak cannot be opened. */
std::optional<FPakReader> OpenPak(FConsole& Console, const std::string& Path, EPakIndexHashes Hashes)
{
	TResult<FPakReader> Reader = FPakReader::Open(ToOsPath(Path), Hashes);
	if (!Reader)
	{
		Console.Fail(Reader.Error().Message);
		return std::nullopt;
	}
	return std::move(*Reader);
}

FQVJson FindingsJson(const std::vector<FPakFinding>& Findings)
{
	FQVJson Json = FQVJson::Array();
	for (const FPakFinding& Finding : Findings)
	{
		Json.Add(FQVJson::Object().Set("path", Finding.Path).Set("message", Finding.Message));
	}
	return Json;
}

std::string FindingLine(const FPakFinding& Finding)
{
	return Finding.Path.empty() ? Finding.Message : Finding.Path + ": " + Finding.Message;
}

FQVJson ListJson(const FPakReader& Reader)
{
	FQVJson Files = FQVJson::Array();
	for (const FPakEntry& Entry : Reader.Entries())
	{
		Files.Add(FQVJson::Object()
					  .Set("path", Entry.Path())
					  .Set("bytes", Entry.UncompressedSize)
					  .Set("stored_bytes", Entry.Size)
					  .Set("compression", Reader.MethodName(Entry))
					  .Set("encrypted", Entry.bEncrypted));
	}
	return FQVJson::Object()
		.Set("schema_version", 1)
		.Set("pak", Reader.Name())
		.Set("version", static_cast<int>(Reader.Version()))
		.Set("mount_point", Reader.MountPoint())
		.Set("files", std::move(Files));
}

void ListText(FConsole& Console, const FPakReader& Reader)
{
	constexpr std::size_t SizeWidth = 14;
	constexpr std::size_t UsualLineBytes = 96;
	std::string Text;
	Text.reserve(Reader.Entries().size() * UsualLineBytes);
	std::uint64_t Bytes = 0;
	std::uint64_t Stored = 0;
	for (const FPakEntry& Entry : Reader.Entries())
	{
		const std::string Size = Number(Entry.UncompressedSize);
		Text.append(Size.size() < SizeWidth ? SizeWidth - Size.size() : 0, ' ').append(Size).append("  ");
		Text.append(Entry.Folder).append(Entry.Name).append(Entry.bEncrypted ? "  (encrypted)\n" : "\n");
		Bytes += Entry.UncompressedSize;
		Stored += Entry.Size;
	}
	Console.Result(
		Text + QVPrintf("%s, %s bytes, %s stored; version %d, mounted at %s", FileCount(Reader.Entries().size()),
				   Number(Bytes), Number(Stored), static_cast<int>(Reader.Version()), Reader.MountPoint()));
}

EExitCode List(FCommandLine& Line, const FPakOptions& Options)
{
	const std::optional<FPakReader> Reader = OpenPak(Line.Console, Options.Pak, EPakIndexHashes::Check);
	if (!Reader)
	{
		return EExitCode::Failed;
	}
	if (Line.Options.bJson)
	{
		Line.Console.Document(ListJson(*Reader));
	}
	else
	{
		ListText(Line.Console, *Reader);
	}
	return EExitCode::Done;
}

FQVJson VerifyJson(const FPakReader& Reader, const FPakVerifyReport& Report)
{
	return FQVJson::Object()
		.Set("schema_version", 1)
		.Set("pak", Reader.Name())
		.Set("sound", Report.IsSound())
		.Set("files", Report.Files)
		.Set("hashed_bytes", Report.HashedBytes)
		.Set("inflated_bytes", Report.InflatedBytes)
		.Set("problems", FindingsJson(Report.Problems))
		.Set("notes", FindingsJson(Report.Notes));
}

EExitCode Verify(FCommandLine& Line, const FPakOptions& Options)
{
	const std::optional<FPakReader> Reader = OpenPak(Line.Console, Options.Pak, EPakIndexHashes::Check);
	if (!Reader)
	{
		return EExitCode::Failed;
	}
	const FPakVerifyReport Report = VerifyPak(*Reader);
	if (Line.Options.bJson)
	{
		Line.Console.Document(VerifyJson(*Reader, Report));
		return Report.IsSound() ? EExitCode::Done : EExitCode::Failed;
	}
	for (const FPakFinding& Problem : Report.Problems)
	{
		Line.Console.Result("damaged: " + FindingLine(Problem));
	}
	for (const FPakFinding& Note : Report.Notes)
	{
		Line.Console.Result("note: " + FindingLine(Note));
	}
	Line.Console.Result(
		QVPrintf("%s: %s, %s bytes hashed, %s bytes inflated: %s", Reader->Name(), FileCount(Report.Files),
			Number(Report.HashedBytes), Number(Report.InflatedBytes), Report.IsSound() ? "sound" : "DAMAGED"));
	return Report.IsSound() ? EExitCode::Done : EExitCode::Failed;
}

/** One failure, however many files it struck: a full disk strikes them all. */
void TellExtractProblems(FConsole& Console, const FPakReader& Reader, const std::vector<FPakFinding>& Problems)
{
	constexpr std::size_t Most = 10;
	if (Problems.empty())
	{
		return;
	}
	Console.Fail(QVPrintf("%s: %s of %s files could not be extracted", Reader.Name(), Number(Problems.size()),
		Number(Reader.Entries().size())));
	for (std::size_t Index = 0; Index < std::min(Most, Problems.size()); ++Index)
	{
		Console.Say("  " + FindingLine(Problems[Index]));
	}
	if (Problems.size() > Most)
	{
		Console.Say(QVPrintf("  ... and %s more: --format json lists them all", Number(Problems.size() - Most)));
	}
}

EExitCode Extract(FCommandLine& Line, const FPakOptions& Options)
{
	const std::optional<FPakReader> Reader = OpenPak(Line.Console, Options.Pak, EPakIndexHashes::Check);
	if (!Reader)
	{
		return EExitCode::Failed;
	}
	if (FDisk::Exists(ToOsPath(Options.Folder)) && !FDisk::IsFolder(ToOsPath(Options.Folder)))
	{
		Line.Console.Fail(QVPrintf("%s is a file: name a folder", Options.Folder));
		return EExitCode::Failed;
	}
	const FPakExtractReport Report = ExtractPak(*Reader, ToOsPath(Options.Folder));
	TellExtractProblems(Line.Console, *Reader, Report.Problems);
	if (Line.Options.bJson)
	{
		Line.Console.Document(FQVJson::Object()
								  .Set("schema_version", 1)
								  .Set("folder", Options.Folder)
								  .Set("files", Report.Files)
								  .Set("bytes", Report.Bytes)
								  .Set("problems", FindingsJson(Report.Problems)));
	}
	else
	{
		Line.Console.Result(
			QVPrintf("%s, %s bytes into %s", FileCount(Report.Files), Number(Report.Bytes), Options.Folder));
	}
	return Report.Problems.empty() ? EExitCode::Done : EExitCode::Failed;
}

EExitCode Create(FCommandLine& Line, const FPakOptions& Options)
{
	FConsole& Console = Line.Console;
	const auto Sources = QVEngineTools::CollectPakSources(Options.Source, Options.Mount, Options.bCompress);
	if (!Sources)
	{
		Console.Fail(Sources.Error().Message);
		return EExitCode::Failed;
	}
	if (Sources->empty())
	{
		Console.Fail(QVPrintf("%s holds no files: there is nothing to pack", Options.Source));
		return EExitCode::Failed;
	}
	FPakWriteOptions WriteOptions;
	WriteOptions.OnFile = [&Console](const FPakWriteProgress& Progress)
	{
		const float Fraction = static_cast<float>(Progress.FilesDone) / static_cast<float>(Progress.Files);
		Console.Progress("packing", Fraction, QVPrintf("%d of %d files", Progress.FilesDone, Progress.Files));
	};
	WriteOptions.ShouldStop = &QVStandalone::FInterrupt::IsRaised;
	const TResult<FPakWriteSummary> Summary = WritePak(ToOsPath(Options.Pak), *Sources, WriteOptions);
	if (!Summary)
	{
		if (!QVStandalone::FInterrupt::IsRaised())
		{
			Console.Fail(Summary.Error().Message);
		}
		return EExitCode::Failed;
	}
	if (Line.Options.bJson)
	{
		Console.Document(FQVJson::Object()
							 .Set("schema_version", 1)
							 .Set("pak", Options.Pak)
							 .Set("files", Summary->Files)
							 .Set("bytes_in", Summary->BytesIn)
							 .Set("bytes", Summary->BytesOut));
	}
	else
	{
		Console.Result(QVPrintf("%s: %s, %s bytes in, %s bytes out", Options.Pak, FileCount(Summary->Files),
			Number(Summary->BytesIn), Number(Summary->BytesOut)));
	}
	return EExitCode::Done;
}
} // namespace

void AddPakVerb(FCommandLine& Line)
{
	const auto Options = std::make_shared<FPakOptions>();
	CLI::App* Group =
		Line.AddGroup("pak", "Looks into .pak files and makes them", "qvmap pak verify Harbor_1a2b3c4d.pak");
	CLI::App* ListVerb = Line.AddVerb(*Group, "list", "What a pak holds", "qvmap pak list Harbor_1a2b3c4d.pak",
		[&Line, Options] { return List(Line, *Options); });
	CLI::App* ExtractVerb = Line.AddVerb(*Group, "extract", "Writes a pak's files into a folder, and never outside it",
		"qvmap pak extract Harbor_1a2b3c4d.pak unpacked", [&Line, Options] { return Extract(Line, *Options); });
	CLI::App* VerifyVerb = Line.AddVerb(*Group, "verify", "Checks every hash and every compressed block of a pak",
		"qvmap pak verify Harbor_1a2b3c4d.pak --format json", [&Line, Options] { return Verify(Line, *Options); });
	CLI::App* CreateVerb = Line.AddVerb(*Group, "create", "Makes a pak from a folder, or from a response file",
		"qvmap pak create Harbor.pak cooked --mount ../../../Harbor/Content/ --compress",
		[&Line, Options] { return Create(Line, *Options); });
	for (CLI::App* Verb : {ListVerb, ExtractVerb, VerifyVerb, CreateVerb})
	{
		Verb->add_option("pak", Options->Pak, "The .pak file")->required()->type_name("PAK");
		Line.AddFormat(*Verb);
	}
	ExtractVerb->add_option("folder", Options->Folder, "Where to")->required()->type_name("FOLDER");
	CreateVerb
		->add_option("source", Options->Source, "A folder, or a response file of \"source\" \"destination\" lines")
		->required()
		->type_name("SOURCE");
	CreateVerb->add_option("--mount", Options->Mount, "Where a folder's files go in the pak")->capture_default_str();
	CreateVerb->add_flag("--compress", Options->bCompress, "Compress what compression makes smaller");
}
} // namespace QVCli
