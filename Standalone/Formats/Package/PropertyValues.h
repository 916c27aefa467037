// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/PackageProperties.h"

#include <array>

namespace QVFormats
{
// What a property's value says. Each gives nothing when the value is of another type, or cannot be read.

std::optional<bool> ToBool(const FPropertyValue& Value);
/** All widths, a Byte without an enum too; a UInt64 above the largest i64 gives nothing. */
std::optional<std::int64_t> ToInteger(const FPropertyValue& Value);
/** Float or Double. */
std::optional<double> ToReal(const FPropertyValue& Value);
/** A Name, an Enum, or a Byte of an enum: its text is `EType::Value`, or the value alone for old kinds of enums. */
std::optional<FNameRef> ToName(const FPackageHeader& Header, const FPropertyValue& Value);
std::optional<FStringView> ToStringView(const FPropertyValue& Value);
/** An index that leads outside the header's tables gives nothing. */
std::optional<FPackageIndex> ToObject(const FPackageHeader& Header, const FPropertyValue& Value);

struct FSoftObjectPath
{
	/** `/Game/Rock`, `Rock`, and what follows a colon. All empty for a path to nothing. */
	std::string Package;
	std::string Asset;
	std::string SubPath;

	bool operator==(const FSoftObjectPath&) const = default;
};
/** A soft object or class, or a struct SoftObjectPath or SoftClassPath. */
std::optional<FSoftObjectPath> ToSoftPath(const FPackageHeader& Header, const FPropertyValue& Value);

/** Nothing when the value is no struct, or does not say which. */
std::optional<FNameRef> StructNameOf(const FPackageHeader& Header, const FPropertyValue& Value);
bool IsStruct(const FPackageHeader& Header, const FPropertyValue& Value, std::string_view Name);

/** X Y Z of a Vector; Pitch Yaw Roll of a Rotator, in degrees. */
std::optional<std::array<double, 3>> ToVector(const FPackageHeader& Header, const FPropertyValue& Value);
std::optional<std::array<double, 3>> ToRotator(const FPackageHeader& Header, const FPropertyValue& Value);
/** X Y Z W. */
std::optional<std::array<double, 4>> ToQuat(const FPackageHeader& Header, const FPropertyValue& Value);
/** R G B A. */
std::optional<std::array<float, 4>> ToLinearColor(const FPackageHeader& Header, const FPropertyValue& Value);
std::optional<FPackageGuid> ToGuid(const FPackageHeader& Header, const FPropertyValue& Value);

/** The properties of a struct; nothing for one in native form, or nested deeper than DeepestProperty. */
std::optional<FPropertyReader> OpenStruct(const FPackageHeader& Header, const FPropertyValue& Value);

/** Whether a struct is written in its native form: only OpenStruct and the readers of known ones need to ask. */
bool IsNativeStruct(const FPackageHeader& Header, const FPropertyValue& Value);
/** Bytes of a known native struct; 0 when it is none, or they differ from value to value. */
std::size_t NativeStructBytes(const FPackageHeader& Header, const FPropertyValue& Value);
bool IsSoftPath(const FPackageHeader& Header, const FPropertyValue& Value);
/** Reads a path that is written in place, and moves behind it. */
FSoftObjectPath ReadWrittenPath(FByteReader& In, const FPackageHeader& Header);
} // namespace QVFormats
