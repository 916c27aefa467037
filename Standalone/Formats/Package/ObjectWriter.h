// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/ByteWriter.h"
#include "Standalone/Formats/Package/PackageSpec.h"

#include <algorithm>

namespace QVFormats
{
/** Writes one object: its properties, then what its class adds. Names become the package's first ones. */
class FObjectWriter
{
public:
	explicit FObjectWriter(FPackageSpec& InSpec)
		: Spec(InSpec)
	{
		Out.U8(0); // control byte
	}

	FByteWriter Out;

	void Name(const std::string& Text)
	{
		const auto Known = std::find(Spec.DataNames.begin(), Spec.DataNames.end(), Text);
		Out.I32(static_cast<std::int32_t>(Known - Spec.DataNames.begin()));
		Out.I32(0);
		if (Known == Spec.DataNames.end())
		{
			Spec.DataNames.push_back(Text);
		}
	}
	void Object(const std::string& Property, FPackageIndex Value)
	{
		Tag(Property, "ObjectProperty", sizeof(Value), 0);
		Out.Write(Value);
	}
	/** One that is false is not saved. */
	void Bool(const std::string& Property, bool bValue)
	{
		if (bValue)
		{
			Tag(Property, "BoolProperty", 0, TrueTag);
		}
	}
	/** An empty one has its default. */
	void Enum(const std::string& Property, const std::string& Value)
	{
		if (!Property.empty())
		{
			Name(Property);
			Name("EnumProperty");
			Out.I32(2);
			Name(Value.substr(0, Value.find(':')));
			Out.I32(0);
			Name("ByteProperty");
			Out.I32(0);
			Out.I32(sizeof(std::uint64_t));
			Out.U8(0);
			Name(Value);
		}
	}
	void SoftPath(const std::string& Property, std::int32_t Place)
	{
		Tag(Property, "SoftObjectProperty", sizeof(Place), 0);
		Out.I32(Place);
	}
	void EndProperties(FExportSpec& Export)
	{
		Name("None");
		Export.ScriptEnd = static_cast<std::int64_t>(Out.Position());
		Out.Bool32(false); // object guid
	}
	void Indices(const std::vector<FPackageIndex>& List)
	{
		Out.I32(static_cast<std::int32_t>(List.size()));
		Out.Append(std::as_bytes(std::span(List)));
	}
	/** A declared property up to what its kind adds. */
	void Field(const std::string& Class, const std::string& FieldName)
	{
		Name(Class);
		Name(FieldName);
		Out.U32(1);
		Out.Bool32(false); // meta data
		Out.I32(1);
		Out.I32(8);
		Out.U64(0);
		Out.U16(0);
		Name("None");
		Out.U8(0);
	}

private:
	/** Of a tag: the value of a Bool that is true. */
	static constexpr std::uint8_t TrueTag = 0x10;

	FPackageSpec& Spec;

	void Tag(const std::string& Property, const std::string& Type, std::size_t Size, std::uint8_t Flags)
	{
		Name(Property);
		Name(Type);
		Out.I32(0); // type parameters
		Out.I32(static_cast<std::int32_t>(Size));
		Out.U8(Flags);
	}
};
} // namespace QVFormats
