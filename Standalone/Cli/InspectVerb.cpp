// SPDX-License-Identifier: MIT
#include "Core/QVPrintf.h"
#include "Standalone/Cli/CommandLine.h"
#include "Standalone/Cli/Inspect.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Formats/Base/MappedFile.h"
#include "Standalone/Formats/Package/PackageVersion.h"
#include "Standalone/Formats/Pak/PakFooter.h"
#include "Standalone/Formats/Registry/RegistryLayout.h"

#include <cstring>
#include <optional>

namespace QVCli
{
using namespace QVFormats;

namespace
{
struct FInspectOptions
{
	std::string File;
	bool bSummary = false;
};

struct FKind
{
	const char* Name;
	FStatus (*Inspect)(FBytes File, FInspectReport& Report);
};

bool IsPackage(FBytes File)
{
	const std::uint32_t Tag = FByteReader(File).U32();
	return Tag == PackageTag || Tag == SwappedPackageTag;
}

bool IsRegistry(FBytes File)
{
	return File.size() >= RegistryLayout::Guid.size() &&
		   std::memcmp(File.data(), RegistryLayout::Guid.data(), RegistryLayout::Guid.size()) == 0;
}

/** A footer's mark where any version has it. */
bool IsPak(FBytes File)
{
	const std::size_t From = File.size() < PakFrozenFooterBytes ? 0 : File.size() - PakFrozenFooterBytes;
	for (std::size_t At = From; At + sizeof(PakMagic) <= File.size(); ++At)
	{
		if (std::memcmp(File.data() + At, &PakMagic, sizeof(PakMagic)) == 0)
		{
			return true;
		}
	}
	return false;
}

std::optional<FKind> FindKind(FBytes File)
{
	return IsPackage(File)	  ? std::optional<FKind>({"package", &InspectPackage})
		   : IsRegistry(File) ? std::optional<FKind>({"asset registry", &InspectRegistry})
		   : IsPak(File)	  ? std::optional<FKind>({"pak", &InspectPak})
							  : std::nullopt;
}

bool EndsWithPackageTag(FBytes File)
{
	return File.size() >= sizeof(PackageTag) && FByteReader(File.last(sizeof(PackageTag))).U32() == PackageTag;
}

/** Of a file that is none of the kinds. */
std::string DescribeForeign(FBytes File)
{
	constexpr std::string_view LfsPointer = "version https://git-lfs";
	if (File.empty())
	{
		return "is empty";
	}
	if (File.size() >= LfsPointer.size() && std::memcmp(File.data(), LfsPointer.data(), LfsPointer.size()) == 0)
	{
		return "is a Git LFS pointer: fetch the file with git lfs pull";
	}
	if (EndsWithPackageTag(File))
	{
		return "is the data of a cooked package (.uexp): inspect the .uasset or .umap beside it";
	}
	return "is neither a package, nor an asset registry, nor a pak: neither its beginning nor its end has their marks";
}

TResult<FInspectReport> InspectBytes(const std::string& Name, FBytes File)
{
	const std::optional<FKind> Kind = FindKind(File);
	if (!Kind)
	{
		return FError{Name + ": " + DescribeForeign(File)};
	}
	FInspectReport Report(Name, Kind->Name, File.size());
	const FStatus Status = Kind->Inspect(File, Report);
	if (!Status)
	{
		return Status.Error();
	}
	return Report;
}

EExitCode Inspect(FCommandLine& Line, const FInspectOptions& Options)
{
	const TResult<FMappedFile> File = FMappedFile::Open(QVStandalone::ToOsPath(Options.File));
	if (!File)
	{
		Line.Console.Fail(File.Error().Message);
		return EExitCode::Failed;
	}
	const TResult<FInspectReport> Report = InspectBytes(Options.File, File->Bytes());
	if (!Report)
	{
		Line.Console.Fail(EscapeControls(Report.Error().Message));
		return EExitCode::Failed;
	}
	if (Report->IsTooMuch() && !Options.bSummary)
	{
		Line.Console.Fail(QVPrintf(
			"%s: its lists repeat so much text that they are not shown: see its head with --summary", Options.File));
		return EExitCode::Failed;
	}
	Line.Options.bJson ? Line.Console.Document(Report->ToJson(Options.bSummary))
					   : Line.Console.Result(Report->ToText(Options.bSummary));
	return EExitCode::Done;
}
} // namespace

void AddInspectVerb(FCommandLine& Line)
{
	const auto Options = std::make_shared<FInspectOptions>();
	CLI::App* Verb = Line.AddVerb(Line.App, "inspect", "What a package, an asset registry or a pak holds",
		"qvmap inspect Content/Maps/Hall.umap --format json", [&Line, Options] { return Inspect(Line, *Options); });
	Verb->add_option("file", Options->File, "A .uasset, .umap, AssetRegistry.bin or .pak; its content tells which")
		->required()
		->type_name("FILE");
	Verb->add_flag("--summary", Options->bSummary, "Only the head, without the long lists");
	Line.AddFormat(*Verb);
}
} // namespace QVCli
