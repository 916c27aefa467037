// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/ScriptReader.h"

#include "Standalone/Formats/Package/ObjectData.h"

#include <algorithm>

namespace QVFormats
{
namespace
{
constexpr FPackageGuid FrameworkKey{{0xCFFC743F, 0x43B04480, 0x939114DF, 0x171D2073}};
constexpr std::int32_t NoNextField = 29;
constexpr FPackageGuid CoreKey{{0x375EC13C, 0x06E448FB, 0xB50084F0, 0x262A717E}};
constexpr std::int32_t PropertiesAreNoObjects = 4;

constexpr std::size_t IndexBytes = sizeof(FPackageIndex);
constexpr std::size_t NameBytes = 8;

/** What a declared property writes behind the part that is common to all. */
struct FFieldKind
{
	std::string_view Name;
	std::size_t Bytes = 0;
	/** Whole properties that follow. */
	std::uint64_t Inner = 0;
};
constexpr FFieldKind FieldKinds[] = {{"BoolProperty", 6, 0}, {"IntProperty", 0, 0}, {"FloatProperty", 0, 0},
	{"DoubleProperty", 0, 0}, {"ObjectProperty", IndexBytes, 0}, {"StructProperty", IndexBytes, 0},
	{"ByteProperty", IndexBytes, 0}, {"EnumProperty", IndexBytes, 1}, {"NameProperty", 0, 0}, {"StrProperty", 0, 0},
	{"TextProperty", 0, 0}, {"ArrayProperty", 0, 1}, {"SetProperty", 0, 1}, {"OptionalProperty", 0, 1},
	{"MapProperty", 0, 2}, {"ClassProperty", 2 * IndexBytes, 0}, {"SoftClassProperty", 2 * IndexBytes, 0},
	{"SoftObjectProperty", IndexBytes, 0}, {"WeakObjectProperty", IndexBytes, 0}, {"LazyObjectProperty", IndexBytes, 0},
	{"InterfaceProperty", IndexBytes, 0}, {"DelegateProperty", IndexBytes, 0},
	{"MulticastDelegateProperty", IndexBytes, 0}, {"MulticastInlineDelegateProperty", IndexBytes, 0},
	{"MulticastSparseDelegateProperty", IndexBytes, 0}, {"FieldPathProperty", NameBytes, 0}, {"Int8Property", 0, 0},
	{"Int16Property", 0, 0}, {"Int64Property", 0, 0}, {"UInt16Property", 0, 0}, {"UInt32Property", 0, 0},
	{"UInt64Property", 0, 0}};

/** Class, name, flags; dimension, size, property flags; replication. */
constexpr std::size_t LeastFieldBytes = 2 * NameBytes + 4 + 2 * 4 + 8 + 2 + NameBytes + 1;

void PassMetaData(FByteReader& In)
{
	for (std::int32_t Left = In.Bool32() ? In.Count(NameBytes + 4) : 0; Left > 0 && !In.Failed(); --Left)
	{
		In.Skip(NameBytes);
		In.String();
	}
}

/** Passes one declared property; gives how many whole ones follow as part of it. */
std::uint64_t PassField(FByteReader& In, const FPackageHeader& Header)
{
	const FNameRef Class = ReadName(In, Header.Names);
	if (In.Failed() || Header.Names.IsNone(Class))
	{
		return 0;
	}
	In.Skip(NameBytes + sizeof(std::uint32_t)); // name, flags
	if (!Header.Summary.Has(EPackageFlags::FilterEditorOnly) && !Header.Summary.Has(EPackageFlags::Cooked))
	{
		PassMetaData(In);
	}
	In.Skip(2 * sizeof(std::int32_t) + sizeof(std::uint64_t));		   // dimension, element size, property flags
	In.Skip(sizeof(std::uint16_t) + NameBytes + sizeof(std::uint8_t)); // replication
	const auto* Kind = std::find_if(std::begin(FieldKinds), std::end(FieldKinds),
		[&](const FFieldKind& Each) { return NameIs(Header.Names, Class, Each.Name); });
	if (Kind == std::end(FieldKinds))
	{
		In.Fail();
		return 0;
	}
	In.Skip(Kind->Bytes);
	return Kind->Inner;
}

void PassFields(FByteReader& In, const FPackageHeader& Header)
{
	const auto Count = static_cast<std::uint64_t>(In.Count(LeastFieldBytes));
	for (std::uint64_t Left = Count; Left > 0 && !In.Failed(); --Left)
	{
		Left += PassField(In, Header);
	}
}

FError Damaged(const FPackageHeader& Header, const FPackageExport& Export)
{
	return {"is damaged: the script of " + Header.Names.Text(Export.ObjectName) + " cannot be read"};
}

/** Passes what a struct, a class or a function begins with; gives its children. */
std::vector<FPackageIndex> ReadStructStart(FByteReader& In, const FPackageHeader& Header)
{
	const bool bList = Header.Summary.CustomVersion(FrameworkKey) >= NoNextField;
	In.Skip(bList ? 0 : IndexBytes); // next
	ReadObjectIndex(In, Header);	 // super
	return bList ? ReadObjectIndices(In, Header) : std::vector{ReadObjectIndex(In, Header)};
}

TResult<FScriptFunction> ReadFunction(const FPackageHeader& Header, const FPackageExport& Export, FBytes File)
{
	TResult<FByteReader> In = ReadObject(Header, Export, File);
	if (!In)
	{
		return In.Error();
	}
	ReadStructStart(*In, Header);
	if (Header.Summary.CustomVersion(CoreKey) >= PropertiesAreNoObjects)
	{
		PassFields(*In, Header);
	}
	FScriptFunction Function{Export.ObjectName, In->I32(), In->I32()};
	In->Take(static_cast<std::uint64_t>(Function.StoredBytes)); // a negative one is far too large
	const bool bAlike = (Function.ScriptBytes == 0) == (Function.StoredBytes == 0);
	return In->Failed() || Function.ScriptBytes < 0 || !bAlike ? TResult<FScriptFunction>(Damaged(Header, Export))
															   : Function;
}

bool IsFunction(const FPackageHeader& Header, const FPackageExport& Export)
{
	static constexpr std::string_view Kinds[] = {"Function", "DelegateFunction", "SparseDelegateFunction"};
	return std::any_of(std::begin(Kinds), std::end(Kinds),
		[&](std::string_view Kind) { return IsClass(Header, Export.Class, "/Script/CoreUObject", Kind); });
}

/** The class's functions as it lists them; then those of its objects that it does not, which none should be. */
TResult<std::vector<std::size_t>> FindFunctions(const FPackageHeader& Header, FBytes File, std::size_t ClassExport)
{
	TResult<FByteReader> In = ReadObject(Header, Header.Exports[ClassExport], File);
	if (!In)
	{
		return In.Error();
	}
	const std::vector<FPackageIndex> Children = ReadStructStart(*In, Header);
	if (In->Failed())
	{
		return Damaged(Header, Header.Exports[ClassExport]);
	}
	std::vector<bool> Taken(Header.Exports.size());
	std::vector<std::size_t> Functions;
	const auto Take = [&](std::size_t Index)
	{
		if (!Taken[Index] && IsFunction(Header, Header.Exports[Index]))
		{
			Taken[Index] = true;
			Functions.push_back(Index);
		}
	};
	for (const FPackageIndex Child : Children)
	{
		if (Child.IsExport())
		{
			Take(Child.ToExport());
		}
	}
	for (std::size_t Index = 0; Index < Header.Exports.size(); ++Index)
	{
		if (Header.Exports[Index].Outer == FPackageIndex::Export(ClassExport))
		{
			Take(Index);
		}
	}
	return Functions;
}
} // namespace

TResult<std::vector<FScriptFunction>> ReadScriptFunctions(
	const FPackageHeader& Header, FBytes File, std::size_t ClassExport)
{
	const TResult<std::vector<std::size_t>> Found = FindFunctions(Header, File, ClassExport);
	if (!Found)
	{
		return Found.Error();
	}
	std::vector<FScriptFunction> Functions;
	for (const std::size_t Index : *Found)
	{
		const TResult<FScriptFunction> Function = ReadFunction(Header, Header.Exports[Index], File);
		if (!Function)
		{
			return Function.Error();
		}
		Functions.push_back(*Function);
	}
	return Functions;
}
} // namespace QVFormats
