// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/PropertyArrays.h"

namespace QVFormats
{
namespace
{
/** Of an element that always has the same number of bytes; 0 otherwise. */
std::size_t FixedBytes(EPropertyKind Kind)
{
	switch (Kind)
	{
	case EPropertyKind::Bool:
	case EPropertyKind::Int8:
		return 1;
	case EPropertyKind::Int16:
	case EPropertyKind::UInt16:
		return 2;
	case EPropertyKind::Int32:
	case EPropertyKind::UInt32:
	case EPropertyKind::Float:
	case EPropertyKind::Object:
		return 4;
	case EPropertyKind::Int64:
	case EPropertyKind::UInt64:
	case EPropertyKind::Double:
	case EPropertyKind::Name:
	case EPropertyKind::Enum:
		return 8;
	default:
		return 0;
	}
}
} // namespace

/** Before 5.4 one tag of all the structs stands before them, and tells which struct they are. */
void FPropertyArrayReader::ReadInnerTag()
{
	ReadName(In, Header->Names);
	ReadName(In, Header->Names);
	In.Skip(2 * sizeof(std::int32_t)); // size, array index
	Element.Type.ParameterCount = 1;
	Element.Type.Parameters = In.Take(sizeof(FNameRef));
	In.Skip(sizeof(FPackageGuid));
	In.Skip(In.U8() != 0 ? sizeof(FPackageGuid) : 0);
	In.Skip(
		Header->Summary.IsAtLeast(EUE5Version::PropertyTagExtension) && In.U8() != 0 ? 1 + sizeof(std::uint32_t) : 0);
}

void FPropertyArrayReader::FindElementBytes()
{
	ElementBytes = FixedBytes(Element.Type.Kind);
	const bool bByte = Element.Type.Kind == EPropertyKind::Byte; // of an enum it is a name
	const bool bListed = IsSoftPath(*Header, Element) && Header->Summary.IsAtLeast(EUE5Version::SoftObjectPathList);
	if (bByte || bListed)
	{
		ElementBytes = Count == 0 ? 0 : In.Remaining() / static_cast<std::size_t>(Count);
	}
	else if (Element.Type.Kind == EPropertyKind::Struct)
	{
		ElementBytes = NativeStructBytes(*Header, Element);
	}
}

/** Moves behind an element whose bytes tell their number. */
void FPropertyArrayReader::PassElement()
{
	if (Element.Type.Kind == EPropertyKind::String)
	{
		In.String();
	}
	else if (IsSoftPath(*Header, Element))
	{
		ReadWrittenPath(In, *Header);
	}
	else if (Element.Type.Kind == EPropertyKind::Struct && !IsNativeStruct(*Header, Element))
	{
		FPropertyReader Reader(*Header, Data.subspan(In.Position()), Element.Depth);
		for (FPropertyTag Tag; Reader.Next(Tag);)
		{
		}
		In.Skip(Reader.Position());
		Reader.IsAtEnd() ? static_cast<void>(0) : In.Fail();
	}
	else
	{
		In.Fail();
	}
}

bool FPropertyArrayReader::Next(FPropertyValue& OutElement)
{
	if (Left == 0 || In.Failed())
	{
		return false;
	}
	const std::size_t Begin = In.Position();
	ElementBytes != 0 ? In.Skip(ElementBytes) : PassElement();
	if (In.Failed())
	{
		return false;
	}
	--Left;
	OutElement = Element;
	OutElement.Bytes = Data.subspan(Begin, In.Position() - Begin);
	OutElement.bBool = Element.Type.Kind == EPropertyKind::Bool && OutElement.Bytes[0] != std::byte{0};
	return true;
}

std::optional<FPropertyArrayReader> OpenArray(const FPackageHeader& Header, const FPropertyValue& Value)
{
	const std::optional<FPropertyType> Inner =
		Value.Type.Kind == EPropertyKind::Array ? Value.Type.Parameter(Header.Names, 0) : std::nullopt;
	if (!Inner || Value.Depth >= DeepestProperty)
	{
		return std::nullopt;
	}
	FPropertyArrayReader Reader(Header, Value.Bytes);
	Reader.Element.Type = *Inner;
	Reader.Element.bNative = Value.bNative;
	Reader.Element.Depth = Value.Depth + 1;
	Reader.Count = Reader.In.Count(1);
	Reader.Left = Reader.Count;
	if (Inner->Kind == EPropertyKind::Struct && !Inner->bComplete)
	{
		Reader.ReadInnerTag();
	}
	Reader.FindElementBytes();
	return Reader.Failed() ? std::nullopt : std::optional(Reader);
}
} // namespace QVFormats
