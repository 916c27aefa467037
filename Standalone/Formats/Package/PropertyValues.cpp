// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/PropertyValues.h"

#include <algorithm>
#include <utility>

namespace QVFormats
{
namespace
{
/** A struct that is written as its fields alone. */
struct FNativeStruct
{
	std::string_view Name;
	/** With Reals 0 too: they differ from value to value. */
	std::size_t Bytes = 0;
	/** Numbers that have been doubles since 5.0. */
	std::size_t Reals = 0;
};
constexpr FNativeStruct NativeStructs[] = {{"Vector", 0, 3}, {"Rotator", 0, 3}, {"Quat", 0, 4}, {"Vector2D", 0, 2},
	{"Vector4", 0, 4}, {"Plane", 0, 4}, {"Matrix", 0, 16}, {"Box", 1, 6}, {"Box2D", 1, 4}, {"Guid", 16, 0},
	{"LinearColor", 16, 0}, {"Color", 4, 0}, {"IntPoint", 8, 0}, {"IntVector", 12, 0}, {"DateTime", 8, 0},
	{"Timespan", 8, 0}, {"FrameNumber", 4, 0}, {"SoftObjectPath", 0, 0}, {"SoftClassPath", 0, 0},
	{"GameplayTagContainer", 0, 0}, {"RichCurveKey", 27, 0}, {"ColorMaterialInput", 0, 0},
	{"ScalarMaterialInput", 0, 0}, {"VectorMaterialInput", 0, 0}, {"Vector2MaterialInput", 0, 0},
	{"ExpressionInput", 0, 0}, {"EdGraphPinType", 0, 0}, {"RawAnimSequenceTrack", 0, 0}, {"SmartName", 0, 0},
	{"PerPlatformBool", 0, 0}, {"PerPlatformInt", 0, 0}, {"PerPlatformFloat", 0, 0}, {"Vector2f", 8, 0},
	{"Vector3f", 12, 0}};

const FNativeStruct* FindNative(const FPackageHeader& Header, const FPropertyValue& Value)
{
	const std::optional<FNameRef> Name = StructNameOf(Header, Value);
	const auto* Found = std::find_if(std::begin(NativeStructs), std::end(NativeStructs),
		[&](const FNativeStruct& Each) { return Name && NameIs(Header.Names, *Name, Each.Name); });
	return Found == std::end(NativeStructs) ? nullptr : Found;
}

std::size_t RealBytes(const FPackageHeader& Header)
{
	return Header.Summary.IsAtLeast(EUE5Version::LargeWorldCoordinates) ? sizeof(double) : sizeof(float);
}

template<class T>
std::optional<T> ReadWhole(FBytes Bytes)
{
	return Bytes.size() == sizeof(T) ? std::optional(FByteReader(Bytes).Read<T>()) : std::nullopt;
}

template<class T>
std::optional<std::int64_t> ReadInteger(FBytes Bytes)
{
	const std::optional<T> Number = ReadWhole<T>(Bytes);
	if (!Number || !std::in_range<std::int64_t>(*Number))
	{
		return std::nullopt;
	}
	return static_cast<std::int64_t>(*Number);
}

template<std::size_t Size>
std::optional<std::array<double, Size>> ToReals(
	const FPackageHeader& Header, const FPropertyValue& Value, std::string_view Struct)
{
	if (!IsStruct(Header, Value, Struct) || !IsNativeStruct(Header, Value) ||
		Value.Bytes.size() != Size * RealBytes(Header))
	{
		return std::nullopt;
	}
	std::array<double, Size> Numbers{};
	FByteReader In(Value.Bytes);
	for (double& Number : Numbers)
	{
		Number = RealBytes(Header) == sizeof(double) ? In.Read<double>() : static_cast<double>(In.Read<float>());
	}
	return Numbers;
}

std::string TextOrEmpty(const FPackageHeader& Header, FNameRef Name)
{
	return Header.Names.IsNone(Name) ? std::string() : Header.Names.Text(Name);
}

/** From 5.1 on a position in the header's list. */
std::optional<FSoftObjectPath> ReadListedPath(const FPackageHeader& Header, FBytes Bytes)
{
	const std::optional<std::int32_t> Index = ReadWhole<std::int32_t>(Bytes);
	if (!Index || *Index < 0 || static_cast<std::size_t>(*Index) >= Header.SoftObjectPaths.size())
	{
		return std::nullopt;
	}
	const FPackageSoftPath& Path = Header.SoftObjectPaths[static_cast<std::size_t>(*Index)];
	return FSoftObjectPath{TextOrEmpty(Header, Path.Package), TextOrEmpty(Header, Path.Asset), Path.SubPathText()};
}

} // namespace

std::optional<bool> ToBool(const FPropertyValue& Value)
{
	return Value.Type.Kind == EPropertyKind::Bool ? std::optional(Value.bBool) : std::nullopt;
}

std::optional<std::int64_t> ToInteger(const FPropertyValue& Value)
{
	switch (Value.Type.Kind)
	{
	case EPropertyKind::Int8:
		return ReadInteger<std::int8_t>(Value.Bytes);
	case EPropertyKind::Int16:
		return ReadInteger<std::int16_t>(Value.Bytes);
	case EPropertyKind::Int32:
		return ReadInteger<std::int32_t>(Value.Bytes);
	case EPropertyKind::Int64:
		return ReadInteger<std::int64_t>(Value.Bytes);
	case EPropertyKind::Byte:
		return ReadInteger<std::uint8_t>(Value.Bytes);
	case EPropertyKind::UInt16:
		return ReadInteger<std::uint16_t>(Value.Bytes);
	case EPropertyKind::UInt32:
		return ReadInteger<std::uint32_t>(Value.Bytes);
	case EPropertyKind::UInt64:
		return ReadInteger<std::uint64_t>(Value.Bytes);
	default:
		return std::nullopt;
	}
}

std::optional<double> ToReal(const FPropertyValue& Value)
{
	if (Value.Type.Kind == EPropertyKind::Float)
	{
		return ReadWhole<float>(Value.Bytes);
	}
	return Value.Type.Kind == EPropertyKind::Double ? ReadWhole<double>(Value.Bytes) : std::nullopt;
}

std::optional<FNameRef> ToName(const FPackageHeader& Header, const FPropertyValue& Value)
{
	const EPropertyKind Kind = Value.Type.Kind;
	const bool bNamed = Kind == EPropertyKind::Name || Kind == EPropertyKind::Enum || Kind == EPropertyKind::Byte;
	if (!bNamed || Value.Bytes.size() != sizeof(FNameRef))
	{
		return std::nullopt;
	}
	FByteReader In(Value.Bytes);
	const FNameRef Name = ReadName(In, Header.Names);
	return In.Failed() ? std::nullopt : std::optional(Name);
}

std::optional<FStringView> ToStringView(const FPropertyValue& Value)
{
	FByteReader In(Value.Bytes);
	const FStringView Text = In.String();
	const bool bString = Value.Type.Kind == EPropertyKind::String && !In.Failed() && In.Remaining() == 0;
	return bString ? std::optional(Text) : std::nullopt;
}

std::optional<FPackageIndex> ToObject(const FPackageHeader& Header, const FPropertyValue& Value)
{
	const std::optional<std::int32_t> Index = ReadWhole<std::int32_t>(Value.Bytes);
	if (Value.Type.Kind != EPropertyKind::Object || !Index)
	{
		return std::nullopt;
	}
	const FPackageIndex Result{*Index};
	const bool bInside = Result.IsNull() || (Result.IsExport() ? Result.ToExport() < Header.Exports.size()
															   : Result.ToImport() < Header.Imports.size());
	return bInside ? std::optional(Result) : std::nullopt;
}

FSoftObjectPath ReadWrittenPath(FByteReader& In, const FPackageHeader& Header)
{
	FSoftObjectPath Path;
	Path.Package = TextOrEmpty(Header, ReadName(In, Header.Names));
	if (Header.Summary.IsAtLeast(EUE5Version::SoftPathAssetNames))
	{
		Path.Asset = TextOrEmpty(Header, ReadName(In, Header.Names));
	}
	else if (const std::size_t Point = Path.Package.find('.'); Point != std::string::npos)
	{
		Path.Asset = Path.Package.substr(Point + 1);
		Path.Package.erase(Point);
	}
	Path.SubPath = In.String().ToUtf8();
	return Path;
}

bool IsSoftPath(const FPackageHeader& Header, const FPropertyValue& Value)
{
	return Value.Type.Kind == EPropertyKind::SoftObject || IsStruct(Header, Value, "SoftObjectPath") ||
		   IsStruct(Header, Value, "SoftClassPath");
}

std::optional<FSoftObjectPath> ToSoftPath(const FPackageHeader& Header, const FPropertyValue& Value)
{
	if (!IsSoftPath(Header, Value))
	{
		return std::nullopt;
	}
	if (Header.Summary.IsAtLeast(EUE5Version::SoftObjectPathList) && Value.Bytes.size() == sizeof(std::int32_t))
	{
		return ReadListedPath(Header, Value.Bytes);
	}
	FByteReader In(Value.Bytes);
	FSoftObjectPath Path = ReadWrittenPath(In, Header);
	return In.Failed() || In.Remaining() != 0 ? std::nullopt : std::optional(std::move(Path));
}

std::optional<FNameRef> StructNameOf(const FPackageHeader& Header, const FPropertyValue& Value)
{
	const std::optional<FPropertyType> Struct =
		Value.Type.Kind == EPropertyKind::Struct ? Value.Type.Parameter(Header.Names, 0) : std::nullopt;
	return Struct ? std::optional(Struct->Name) : std::nullopt;
}

bool IsStruct(const FPackageHeader& Header, const FPropertyValue& Value, std::string_view Name)
{
	const std::optional<FNameRef> Struct = StructNameOf(Header, Value);
	return Struct && NameIs(Header.Names, *Struct, Name);
}

std::optional<std::array<double, 3>> ToVector(const FPackageHeader& Header, const FPropertyValue& Value)
{
	return ToReals<3>(Header, Value, "Vector");
}

std::optional<std::array<double, 3>> ToRotator(const FPackageHeader& Header, const FPropertyValue& Value)
{
	return ToReals<3>(Header, Value, "Rotator");
}

std::optional<std::array<double, 4>> ToQuat(const FPackageHeader& Header, const FPropertyValue& Value)
{
	return ToReals<4>(Header, Value, "Quat");
}

std::optional<std::array<float, 4>> ToLinearColor(const FPackageHeader& Header, const FPropertyValue& Value)
{
	const bool bColor = IsStruct(Header, Value, "LinearColor") && IsNativeStruct(Header, Value);
	return bColor ? ReadWhole<std::array<float, 4>>(Value.Bytes) : std::nullopt;
}

std::optional<FPackageGuid> ToGuid(const FPackageHeader& Header, const FPropertyValue& Value)
{
	const bool bGuid = IsStruct(Header, Value, "Guid") && IsNativeStruct(Header, Value);
	return bGuid ? ReadWhole<FPackageGuid>(Value.Bytes) : std::nullopt;
}

bool IsNativeStruct(const FPackageHeader& Header, const FPropertyValue& Value)
{
	return Value.Type.bComplete ? Value.bNative : FindNative(Header, Value) != nullptr;
}

std::size_t NativeStructBytes(const FPackageHeader& Header, const FPropertyValue& Value)
{
	const FNativeStruct* Known = IsNativeStruct(Header, Value) ? FindNative(Header, Value) : nullptr;
	return Known == nullptr ? 0 : Known->Bytes + Known->Reals * RealBytes(Header);
}

std::optional<FPropertyReader> OpenStruct(const FPackageHeader& Header, const FPropertyValue& Value)
{
	const bool bTagged = Value.Type.Kind == EPropertyKind::Struct && !IsNativeStruct(Header, Value);
	if (!bTagged || Value.Depth >= DeepestProperty)
	{
		return std::nullopt;
	}
	return FPropertyReader(Header, Value.Bytes, Value.Depth + 1);
}
} // namespace QVFormats
