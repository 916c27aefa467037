// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/LevelReader.h"

#include "Standalone/Formats/Package/ObjectData.h"

#include <algorithm>

namespace QVFormats
{
namespace
{
constexpr std::string_view EngineModule = "/Script/Engine";
constexpr FPackageGuid ReleaseKey{{0x9C54D522, 0xA8264FBE, 0x94210746, 0x61B482D0}};
constexpr std::int32_t NoOwnerOfActors = 3;

/** The editor's last four bytes, and before them what the summary says of the end: what is there is all there. */
bool EndsAsPackage(const FPackageSummary& Summary, FBytes File)
{
	const bool bLongEnough = File.size() >= sizeof(PackageTag);
	return bLongEnough && FByteReader(File.last(sizeof(PackageTag))).U32() == PackageTag &&
		   Summary.PayloadTocOffset < static_cast<std::int64_t>(File.size());
}

FError Damaged(std::string_view What)
{
	return {"is damaged: " + std::string(What)};
}

/** No two objects have bytes in common, so what is read of all of them is never more than the file. */
bool ClaimMoreThanThereIs(const FPackageHeader& Header, FBytes File)
{
	std::int64_t Left = static_cast<std::int64_t>(File.size());
	for (const FPackageExport& Export : Header.Exports)
	{
		const std::int64_t Claim = std::max<std::int64_t>(Export.SerialSize, 0);
		if (Claim > Left)
		{
			return true;
		}
		Left -= Claim;
	}
	return false;
}

/** An object that comes again becomes an empty entry: what is in a list twice is there once. */
void EmptyRepeated(std::vector<FPackageIndex>& Indices, const FPackageHeader& Header)
{
	std::vector<bool> Exports(Header.Exports.size());
	std::vector<bool> Imports(Header.Imports.size());
	for (FPackageIndex& Index : Indices)
	{
		if (!Index.IsNull())
		{
			auto Met = Index.IsExport() ? Exports[Index.ToExport()] : Imports[Index.ToImport()];
			Index = Met ? FPackageIndex() : Index;
			Met = true;
		}
	}
}

class FMapReader
{
public:
	FMapReader(const FPackageHeader& InHeader, FBytes InFile)
		: Header(InHeader)
		, File(InFile)
	{
	}

	/** Each step stands on those before it. */
	TResult<FMapWorld> Read()
	{
		FStatus (FMapReader::*const Steps[])() = {&FMapReader::FindWorld, &FMapReader::ReadWorld,
			&FMapReader::ReadLevel, &FMapReader::ReadWorldSettings, &FMapReader::ReadStreamingLevels,
			&FMapReader::ReadScript};
		for (const auto Step : Steps)
		{
			if (const FStatus Status = (this->*Step)(); !Status)
			{
				return Status.Error();
			}
		}
		return std::move(Map);
	}

private:
	const FPackageHeader& Header;
	const FBytes File;
	FMapWorld Map;
	FPackageIndex WorldSettings;
	std::vector<FPackageIndex> StreamingObjects;

	const FPackageExport& ExportAt(std::size_t Index) const { return Header.Exports[Index]; }
	bool PropertyIs(const FPropertyTag& Tag, std::string_view Name) const
	{
		return NameIs(Header.Names, Tag.Name, Name);
	}

	FStatus FindWorld();
	FStatus ReadWorld();
	FStatus ReadLevel();
	void ReadLevelProperty(const FPropertyTag& Tag);
	FStatus ReadActors(FByteReader& In);
	FStatus ReadWorldSettings();
	FStatus ReadStreamingLevels();
	FStatus ReadScript();
};

FStatus FMapReader::FindWorld()
{
	for (std::size_t Index = 0; Index < Header.Exports.size(); ++Index)
	{
		if (ExportAt(Index).Outer.IsNull() && IsClass(Header, ExportAt(Index).Class, EngineModule, "World"))
		{
			Map.World = Index;
			return Success();
		}
	}
	return FError{"holds no world: a map that was moved leaves such a file behind, which only leads to the new one"};
}

FStatus FMapReader::ReadWorld()
{
	TResult<FByteReader> In = ReadObject(Header, ExportAt(Map.World), File);
	if (!In)
	{
		return In.Error();
	}
	const FPackageIndex Level = ReadObjectIndex(*In, Header);
	ReadObjectIndices(*In, Header); // extra referenced objects
	StreamingObjects = ReadObjectIndices(*In, Header);
	EmptyRepeated(StreamingObjects, Header);
	if (In->Failed() || !Level.IsExport() || !IsClass(Header, ExportAt(Level.ToExport()).Class, EngineModule, "Level"))
	{
		return Damaged("its world has no persistent level, or the lists behind that are cut off");
	}
	Map.PersistentLevel = Level.ToExport();
	return Success();
}

void FMapReader::ReadLevelProperty(const FPropertyTag& Tag)
{
	if (PropertyIs(Tag, "WorldSettings"))
	{
		WorldSettings = ToObject(Header, Tag.Value).value_or(FPackageIndex());
	}
	else if (PropertyIs(Tag, "bIsPartitioned"))
	{
		Map.bPartitioned = ToBool(Tag.Value).value_or(false);
	}
	else if (PropertyIs(Tag, "bUseExternalActors"))
	{
		Map.bExternalActors = ToBool(Tag.Value).value_or(false);
	}
}

FStatus FMapReader::ReadLevel()
{
	TResult<FByteReader> In = ReadObject(
		Header, ExportAt(Map.PersistentLevel), File, [this](const FPropertyTag& Tag) { ReadLevelProperty(Tag); });
	return In ? ReadActors(*In) : FStatus(In.Error());
}

FStatus FMapReader::ReadActors(FByteReader& In)
{
	const std::int32_t Release = Header.Summary.CustomVersion(ReleaseKey);
	In.Skip(Release >= 0 && Release < NoOwnerOfActors ? sizeof(FPackageIndex) : 0);
	Map.Actors = ReadObjectIndices(In, Header);
	EmptyRepeated(Map.Actors, Header);
	for (int Text = 0; Text < 4; ++Text)
	{
		In.String(); // protocol, host, map, portal
	}
	for (std::int32_t Left = In.Count(sizeof(std::int32_t)); Left > 0 && !In.Failed(); --Left)
	{
		In.String(); // options
	}
	In.Skip(2 * sizeof(std::int32_t)); // port, valid
	ReadObjectIndex(In, Header);	   // model
	ReadObjectIndices(In, Header);	   // its components
	if (!Header.Summary.Has(EPackageFlags::FilterEditorOnly))
	{
		Map.ScriptBlueprint = ReadObjectIndex(In, Header);
	}
	Map.ScriptActor = ReadObjectIndex(In, Header);
	return In.Failed() ? FStatus(Damaged("the actors of its level, or what follows them, cannot be read")) : Success();
}

FStatus FMapReader::ReadWorldSettings()
{
	if (!WorldSettings.IsExport())
	{
		return Success();
	}
	const TResult<FByteReader> In = ReadObject(Header, ExportAt(WorldSettings.ToExport()), File,
		[this](const FPropertyTag& Tag)
		{
			if (PropertyIs(Tag, "WorldPartition"))
			{
				Map.bPartitioned |= !ToObject(Header, Tag.Value).value_or(FPackageIndex()).IsNull();
			}
		});
	return In ? Success() : FStatus(In.Error());
}

FStatus FMapReader::ReadStreamingLevels()
{
	for (const FPackageIndex Object : StreamingObjects)
	{
		if (!Object.IsExport())
		{
			continue; // an empty entry
		}
		std::string Package;
		const TResult<FByteReader> In = ReadObject(Header, ExportAt(Object.ToExport()), File,
			[&](const FPropertyTag& Tag)
			{
				if (PropertyIs(Tag, "WorldAsset"))
				{
					Package = ToSoftPath(Header, Tag.Value).value_or(FSoftObjectPath()).Package;
				}
			});
		if (!In)
		{
			return In.Error();
		}
		Map.StreamingLevels.push_back(std::move(Package));
	}
	return Success();
}

FStatus FMapReader::ReadScript()
{
	const FPackageIndex Class =
		Map.ScriptActor.IsExport() ? ExportAt(Map.ScriptActor.ToExport()).Class : FPackageIndex();
	if (!Class.IsExport())
	{
		return Success();
	}
	TResult<std::vector<FScriptFunction>> Functions = ReadScriptFunctions(Header, File, Class.ToExport());
	if (!Functions)
	{
		return Functions.Error();
	}
	Map.ScriptFunctions = std::move(*Functions);
	return Success();
}
} // namespace

TResult<FMapWorld> ReadMapWorld(const FPackageHeader& Header, FBytes File)
{
	if (Header.Summary.Has(EPackageFlags::Cooked))
	{
		return FError{"is a cooked map: only what the editor has saved can be read as a world"};
	}
	if (!EndsAsPackage(Header.Summary, File))
	{
		return FError{"is cut short or damaged: it does not end as a package does"};
	}
	if (ClaimMoreThanThereIs(Header, File))
	{
		return Damaged("its objects claim more bytes than it has");
	}
	return FMapReader(Header, File).Read();
}
} // namespace QVFormats
