// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/PackageProperties.h"

#include <algorithm>

namespace QVFormats
{
namespace
{
struct FKindName
{
	std::string_view Name;
	EPropertyKind Kind;
	/** Names of parameters in a tag of before 5.4. */
	int Parameters = 0;
};

constexpr FKindName KindNames[] = {{"BoolProperty", EPropertyKind::Bool}, {"Int8Property", EPropertyKind::Int8},
	{"Int16Property", EPropertyKind::Int16}, {"IntProperty", EPropertyKind::Int32},
	{"Int64Property", EPropertyKind::Int64}, {"UInt16Property", EPropertyKind::UInt16},
	{"UInt32Property", EPropertyKind::UInt32}, {"UInt64Property", EPropertyKind::UInt64},
	{"FloatProperty", EPropertyKind::Float}, {"DoubleProperty", EPropertyKind::Double},
	{"ByteProperty", EPropertyKind::Byte, 1}, {"EnumProperty", EPropertyKind::Enum, 1},
	{"NameProperty", EPropertyKind::Name}, {"StrProperty", EPropertyKind::String},
	{"ObjectProperty", EPropertyKind::Object}, {"ClassProperty", EPropertyKind::Object},
	{"WeakObjectProperty", EPropertyKind::Object}, {"InterfaceProperty", EPropertyKind::Object},
	{"SoftObjectProperty", EPropertyKind::SoftObject}, {"SoftClassProperty", EPropertyKind::SoftObject},
	{"StructProperty", EPropertyKind::Struct, 1}, {"ArrayProperty", EPropertyKind::Array, 1},
	{"SetProperty", EPropertyKind::Set, 1}, {"OptionalProperty", EPropertyKind::Optional, 1},
	{"MapProperty", EPropertyKind::Map, 2}};

/** Of complete type names: name and number of parameters. */
constexpr std::size_t TypeNodeBytes = 12;
constexpr std::size_t NameBytes = 8;
constexpr std::uint8_t OverrideControl = 0x02;

enum ETagFlags : std::uint8_t
{
	HasArrayIndex = 0x01,
	HasGuid = 0x02,
	HasExtension = 0x04,
	IsNative = 0x08,
	IsTrue = 0x10,
};

char Small(char Letter)
{
	return Letter >= 'A' && Letter <= 'Z' ? static_cast<char>(Letter - 'A' + 'a') : Letter;
}

const FKindName* FindKind(const FPackageNames& Names, FNameRef Name)
{
	const auto* Found = std::find_if(std::begin(KindNames), std::end(KindNames),
		[&](const FKindName& Each) { return NameIs(Names, Name, Each.Name); });
	return Found == std::end(KindNames) ? nullptr : Found;
}

EPropertyKind KindOf(const FPackageNames& Names, FNameRef Name)
{
	const FKindName* Kind = FindKind(Names, Name);
	return Kind == nullptr ? EPropertyKind::Other : Kind->Kind;
}

/** Passes a type with all its parameters, however deep they lie in each other. */
void SkipType(FByteReader& In, const FPackageNames& Names)
{
	for (std::uint64_t Left = 1; Left > 0 && !In.Failed(); --Left)
	{
		ReadName(In, Names);
		Left += static_cast<std::uint64_t>(In.Count(TypeNodeBytes));
	}
}

/** All is the data that In reads. */
FPropertyType ReadCompleteType(FByteReader& In, FBytes All, const FPackageNames& Names)
{
	FPropertyType Type;
	Type.bComplete = true;
	Type.Name = ReadName(In, Names);
	Type.ParameterCount = In.Count(TypeNodeBytes);
	const std::size_t Begin = In.Position();
	for (std::int32_t Left = Type.ParameterCount; Left > 0 && !In.Failed(); --Left)
	{
		SkipType(In, Names);
	}
	if (!In.Failed())
	{
		Type.Kind = KindOf(Names, Type.Name);
		Type.Parameters = All.subspan(Begin, In.Position() - Begin);
	}
	return Type;
}

bool IsImportData(const FPackageHeader& Header, const FPackageExport& Export)
{
	constexpr std::uint32_t DefaultObject = static_cast<std::uint32_t>(EObjectFlags::ClassDefaultObject);
	return !Header.Summary.Has(EPackageFlags::FilterEditorOnly) && (Export.ObjectFlags & DefaultObject) == 0 &&
		   Header.ClassPathOf(Export).ends_with("ImportData");
}

FError OutsideData(std::string_view What)
{
	return {"is damaged: the properties of an export " + std::string(What)};
}

/** The part of the data that holds the properties. */
TResult<FBytes> FindScriptData(const FPackageHeader& Header, const FPackageExport& Export, FBytes Data)
{
	if (Header.Summary.IsAtLeast(EUE5Version::ScriptOffsets))
	{
		const auto Size = static_cast<std::int64_t>(Data.size());
		if (Export.ScriptStart < 0 || Export.ScriptStart > Export.ScriptEnd || Export.ScriptEnd > Size)
		{
			return OutsideData("lie outside its data");
		}
		return Data.subspan(static_cast<std::size_t>(Export.ScriptStart),
			static_cast<std::size_t>(Export.ScriptEnd - Export.ScriptStart));
	}
	FByteReader In(Data);
	if (IsImportData(Header, Export))
	{
		In.String();
	}
	return In.Failed() ? TResult<FBytes>(OutsideData("begin behind its data")) : Data.subspan(In.Position());
}
} // namespace

bool NameIs(const FPackageNames& Names, FNameRef Name, std::string_view Text)
{
	if (!Names.Contains(Name) || Name.Number != 0)
	{
		return false;
	}
	const FStringView& Entry = Names.Entry(Name.Entry);
	return !Entry.bWide && std::equal(Entry.Bytes.begin(), Entry.Bytes.end(), Text.begin(), Text.end(),
							   [](std::byte A, char B) { return Small(std::to_integer<char>(A)) == Small(B); });
}

std::optional<FPropertyType> FPropertyType::Parameter(const FPackageNames& Names, std::int32_t Index) const
{
	if (Index < 0 || Index >= ParameterCount)
	{
		return std::nullopt;
	}
	FByteReader In(Parameters);
	for (std::int32_t Passed = 0; Passed < Index; ++Passed)
	{
		bComplete ? SkipType(In, Names) : In.Skip(NameBytes);
	}
	FPropertyType Type;
	if (bComplete)
	{
		Type = ReadCompleteType(In, Parameters, Names);
	}
	else
	{
		Type.Name = ReadName(In, Names);
		Type.Kind = KindOf(Names, Type.Name);
	}
	return In.Failed() ? std::nullopt : std::optional(Type);
}

void FPropertyReader::TagExtension()
{
	if ((In.U8() & OverrideControl) != 0)
	{
		In.Skip(1 + sizeof(std::uint32_t)); // override operation, and whether its logic is experimental
	}
}

/** Layouts of 5.4 on, behind the name. */
void FPropertyReader::CompleteTag(FPropertyTag& Tag)
{
	FPropertyValue& Value = Tag.Value;
	Value.Type = ReadCompleteType(In, Data, Header->Names);
	const std::int32_t Size = In.I32();
	const std::uint8_t Flags = In.U8();
	Tag.ArrayIndex = (Flags & HasArrayIndex) != 0 ? In.I32() : 0;
	In.Skip((Flags & HasGuid) != 0 ? sizeof(FPackageGuid) : 0);
	if ((Flags & HasExtension) != 0)
	{
		TagExtension();
	}
	Value.bNative = (Flags & IsNative) != 0;
	Value.bBool = (Flags & IsTrue) != 0;
	Value.Bytes = In.Take(static_cast<std::uint64_t>(Size)); // a negative one is far too large
}

/** Layouts before 5.4, behind the name. */
void FPropertyReader::PlainTag(FPropertyTag& Tag)
{
	FPropertyValue& Value = Tag.Value;
	Value.Type.Name = ReadName(In, Header->Names);
	const std::int32_t Size = In.I32();
	Tag.ArrayIndex = In.I32();
	const FKindName* Kind = FindKind(Header->Names, Value.Type.Name);
	Value.Type.Kind = Kind == nullptr ? EPropertyKind::Other : Kind->Kind;
	Value.bBool = Value.Type.Kind == EPropertyKind::Bool && In.U8() != 0;
	Value.Type.ParameterCount = Kind == nullptr ? 0 : Kind->Parameters;
	Value.Type.Parameters = In.Take(static_cast<std::uint64_t>(Value.Type.ParameterCount) * NameBytes);
	In.Skip(Value.Type.Kind == EPropertyKind::Struct ? sizeof(FPackageGuid) : 0);
	In.Skip(In.U8() != 0 ? sizeof(FPackageGuid) : 0);
	if (Header->Summary.IsAtLeast(EUE5Version::PropertyTagExtension))
	{
		TagExtension();
	}
	Value.Bytes = In.Take(static_cast<std::uint64_t>(Size));
}

bool FPropertyReader::Next(FPropertyTag& OutTag)
{
	if (bEnd || In.Failed())
	{
		return false;
	}
	OutTag = {};
	OutTag.Name = ReadName(In, Header->Names);
	if (In.Failed() || Header->Names.IsNone(OutTag.Name))
	{
		bEnd = !In.Failed();
		return false;
	}
	OutTag.Value.Depth = Depth;
	Header->Summary.IsAtLeast(EUE5Version::PropertyTagTypeNames) ? CompleteTag(OutTag) : PlainTag(OutTag);
	return !In.Failed();
}

TResult<FBytes> FindExportData(const FPackageExport& Export, FBytes File, std::int64_t FirstOffset)
{
	const bool bBefore = Export.SerialOffset < FirstOffset || FirstOffset < 0 || Export.SerialSize < 0;
	FByteReader In(File);
	In.Seek(bBefore ? -1 : Export.SerialOffset - FirstOffset);
	const FBytes Data = In.Take(static_cast<std::uint64_t>(Export.SerialSize));
	if (In.Failed())
	{
		return FError{"is cut short or damaged: an export's " + std::to_string(Export.SerialSize) + " bytes at " +
					  std::to_string(Export.SerialOffset) + " do not lie in it"};
	}
	return Data;
}

TResult<FPropertyReader> OpenProperties(const FPackageHeader& Header, const FPackageExport& Export, FBytes ExportData)
{
	if (Header.Summary.Has(EPackageFlags::UnversionedProperties))
	{
		return FError{
			"has unversioned properties (UnversionedProperties), as cooked packages have: they cannot be read "
			"without the classes that they are of"};
	}
	const TResult<FBytes> Data = FindScriptData(Header, Export, ExportData);
	if (!Data)
	{
		return Data.Error();
	}
	FPropertyReader Reader(Header, *Data);
	Reader.bEnd = Data->empty();
	if (!Reader.bEnd && Header.Summary.IsAtLeast(EUE5Version::PropertyTagExtension))
	{
		const std::uint8_t Control = Reader.In.U8();
		Reader.In.Skip((Control & OverrideControl) != 0 ? 1 : 0);
	}
	return Reader;
}

std::optional<FPropertyTag> FindProperty(const FPackageHeader& Header, FPropertyReader Reader, std::string_view Name)
{
	for (FPropertyTag Tag; Reader.Next(Tag);)
	{
		if (NameIs(Header.Names, Tag.Name, Name))
		{
			return Tag;
		}
	}
	return std::nullopt;
}

std::optional<FPropertyTag> FindProperty(
	const FPackageHeader& Header, const FPackageExport& Export, FBytes ExportData, std::string_view Name)
{
	const TResult<FPropertyReader> Reader = OpenProperties(Header, Export, ExportData);
	return Reader ? FindProperty(Header, *Reader, Name) : std::nullopt;
}
} // namespace QVFormats
