// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/LevelReader.h"
#include "Standalone/Formats/Package/PropertyValues.h"

using namespace QVFormats;

namespace
{
/** What is given of a file can be used as it is. */
void Demand(bool bHolds)
{
	if (!bHolds)
	{
		__builtin_trap();
	}
}

bool IsInside(const FPackageHeader& Header, FPackageIndex Index)
{
	return Index.IsNull() || (Index.IsExport() && Index.ToExport() < Header.Exports.size()) ||
		   (Index.IsImport() && Index.ToImport() < Header.Imports.size());
}

void UseActors(const FPackageHeader& Header, const FMapWorld& Map, FBytes File)
{
	// many entries can claim the same bytes: enough of them are looked at
	constexpr std::size_t Most = 64;
	for (std::size_t Place = 0; Place < Map.Actors.size(); ++Place)
	{
		Demand(IsInside(Header, Map.Actors[Place]));
		if (Place < Most && Map.Actors[Place].IsExport())
		{
			const FPackageExport& Export = Header.Exports[Map.Actors[Place].ToExport()];
			Header.ClassPathOf(Export);
			const TResult<FBytes> Data = FindExportData(Export, File);
			static_cast<void>(Data ? FindProperty(Header, Export, *Data, "Type") : std::nullopt);
		}
	}
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
	const FBytes File = std::as_bytes(std::span(Data, Size));
	const TResult<FPackageHeader> Header = ReadPackageHeader(File, {.bRegistrySection = false});
	if (!Header)
	{
		return 0;
	}
	const TResult<FMapWorld> Map = ReadMapWorld(*Header, File);
	if (!Map)
	{
		Demand(!Map.Error().Message.empty());
		return 0;
	}
	Demand(Map->World < Header->Exports.size() && Map->PersistentLevel < Header->Exports.size());
	Demand(IsInside(*Header, Map->ScriptBlueprint) && IsInside(*Header, Map->ScriptActor));
	Demand(Map->Actors.size() <= Size && Map->StreamingLevels.size() <= Size && Map->ScriptFunctions.size() <= Size);
	for (const FScriptFunction& Function : Map->ScriptFunctions)
	{
		Header->Names.Text(Function.Name);
		Demand(Function.ScriptBytes >= 0);
	}
	UseActors(*Header, *Map, File);
	return 0;
}
