// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/PackageHeader.h"

#include <optional>

namespace QVFormats
{
enum class EPropertyKind : std::uint8_t
{
	/** A type of another name: a delegate, a text, a field path. Its value is bytes only. */
	Other,
	Bool,
	Int8,
	Int16,
	Int32,
	Int64,
	UInt16,
	UInt32,
	UInt64,
	Float,
	Double,
	Byte,
	Enum,
	Name,
	String,
	/** Objects, classes, weak objects and interfaces: a package index. */
	Object,
	SoftObject,
	Struct,
	Array,
	Set,
	Map,
	Optional,
};

/** A property's type in place: its name, and its parameters as they lie in the tag. */
struct FPropertyType
{
	FNameRef Name;
	EPropertyKind Kind = EPropertyKind::Other;
	/** The struct of a Struct, the enum of a Byte or Enum, what is in an Array, Set or Optional, a Map's two. */
	std::int32_t ParameterCount = 0;
	FBytes Parameters;
	/** Parameters are whole types with parameters of their own (5.4 on); else names alone. */
	bool bComplete = false;

	/** Nothing when there is no such parameter. */
	std::optional<FPropertyType> Parameter(const FPackageNames& Names, std::int32_t Index) const;
};

/** A value as it lies in the file: of a property, or of an element of an array. */
struct FPropertyValue
{
	FPropertyType Type;
	FBytes Bytes;
	/** The value of a Bool, which has no bytes in a tag. */
	bool bBool = false;
	/** A struct in its native form, not as tags; known from 5.4 on, before that from the struct's name. */
	bool bNative = false;
	/** How many structs and arrays it lies in. */
	int Depth = 0;
};

struct FPropertyTag
{
	FNameRef Name;
	/** Of a property that is a fixed row of values. */
	std::int32_t ArrayIndex = 0;
	FPropertyValue Value;
};

/**
 * Goes through the tagged properties of an object or of a struct, forward, without copying. A property that equals its
 * default is not in the file. Views point into the data and the header, which have to outlive it.
 */
class FPropertyReader
{
public:
	/** InData begins at the first tag. InDepth: of what the properties are in. */
	FPropertyReader(const FPackageHeader& InHeader, FBytes InData, int InDepth = 0)
		: Header(&InHeader)
		, Data(InData)
		, In(InData)
		, Depth(InDepth)
	{
	}

	/** False at the end and after a tag that cannot be true. */
	bool Next(FPropertyTag& OutTag);
	bool Failed() const { return In.Failed(); }
	/** The end mark was read; nothing is left to read. */
	bool IsAtEnd() const { return bEnd; }
	/** Where the next tag lies, in the data; behind the end mark once that was read. */
	std::size_t Position() const { return In.Position(); }

private:
	friend TResult<FPropertyReader> OpenProperties(
		const FPackageHeader& Header, const FPackageExport& Export, FBytes ExportData);

	void CompleteTag(FPropertyTag& Tag);
	void PlainTag(FPropertyTag& Tag);
	void TagExtension();

	const FPackageHeader* Header;
	FBytes Data;
	FByteReader In;
	int Depth = 0;
	bool bEnd = false;
};

/** Deeper structs and arrays are not opened: none are, and a made-up file shall not exhaust the stack. */
constexpr int DeepestProperty = 32;

/**
 * An export's data. File: the whole package; of a cooked one the .uexp, whose data goes on where the header ends, with
 * FirstOffset the header's size.
 */
TResult<FBytes> FindExportData(const FPackageExport& Export, FBytes File, std::int64_t FirstOffset = 0);

/**
 * The tagged properties of an export, layouts of 4.27 to 5.8. Refuses a package with unversioned properties, which
 * cannot be read without the classes' lists of them. Errors are sentences to be put behind the file's name.
 */
TResult<FPropertyReader> OpenProperties(const FPackageHeader& Header, const FPackageExport& Export, FBytes ExportData);

/** The first property of that name (without ASCII case); nothing when it is at its default or cannot be read. */
std::optional<FPropertyTag> FindProperty(
	const FPackageHeader& Header, const FPackageExport& Export, FBytes ExportData, std::string_view Name);
std::optional<FPropertyTag> FindProperty(const FPackageHeader& Header, FPropertyReader Reader, std::string_view Name);

/** Without making a text of the name; ASCII, without case. */
bool NameIs(const FPackageNames& Names, FNameRef Name, std::string_view Text);
} // namespace QVFormats
