// SPDX-License-Identifier: MIT
#include "Standalone/Engine/LevelScriptFile.h"

#include "Core/QVPrintf.h"
#include "Standalone/Formats/Package/ObjectData.h"

#include <algorithm>

namespace QVStandalone
{
using namespace QVFormats;

TResult<FLevelScriptFile> FLevelScriptFile::Read(std::string_view PackageName, const std::string& File)
{
	auto Opened = OpenPackage(std::string(PackageName), File);
	if (!Opened)
	{
		return Opened.Error();
	}
	TResult<FMapWorld> Map = ReadMapWorld((*Opened)->Header, (*Opened)->Bytes);
	if (!Map)
	{
		return FError{File + " " + Map.Error().Message};
	}
	return FLevelScriptFile{std::move(*Opened), std::move(*Map)};
}

std::string FLevelScriptFile::GetBlueprintPath() const
{
	if (!Map.ScriptBlueprint.IsExport())
	{
		return {};
	}
	return QVPrintf("%s.%s:%s.%s", Package->Name, GetName(Map.World), GetName(Map.PersistentLevel),
		GetName(Map.ScriptBlueprint.ToExport()));
}

std::vector<std::size_t> FLevelScriptFile::GetGraphs() const
{
	std::vector<std::size_t> Graphs;
	const FPackageHeader& Header = Package->Header;
	for (std::size_t Index = 0; Index < Header.Exports.size(); ++Index)
	{
		const FPackageExport& Export = Header.Exports[Index];
		if (!Export.Outer.IsNull() && Export.Outer == Map.ScriptBlueprint &&
			IsClass(Header, Export.Class, "/Script/Engine", "EdGraph"))
		{
			Graphs.push_back(Index);
		}
	}
	return Graphs;
}

std::vector<std::size_t> FLevelScriptFile::GetNodes(std::size_t Graph) const
{
	std::vector<std::size_t> Nodes;
	for (std::size_t Index = 0; Index < Package->Header.Exports.size(); ++Index)
	{
		if (Package->Header.Exports[Index].Outer == FPackageIndex::Export(Graph))
		{
			Nodes.push_back(Index);
		}
	}
	return Nodes;
}

std::string FLevelScriptFile::GetName(std::size_t Export) const
{
	return Package->Header.Names.Text(Package->Header.Exports[Export].ObjectName);
}

std::vector<std::string> FLevelScriptFile::GetFunctions() const
{
	std::vector<std::string> Names;
	for (const FScriptFunction& Function : Map.ScriptFunctions)
	{
		Names.push_back(Package->Header.Names.Text(Function.Name));
	}
	return Names;
}

std::vector<std::string> FLevelScriptFile::GetActors() const
{
	std::vector<std::string> Names;
	for (const FPackageIndex Actor : Map.Actors)
	{
		if (Actor.IsExport() && Actor != Map.ScriptActor)
		{
			Names.push_back(GetName(Actor.ToExport()));
		}
	}
	std::sort(Names.begin(), Names.end());
	return Names;
}
} // namespace QVStandalone
