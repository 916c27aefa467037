// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/PropertyValues.h"

namespace QVFormats
{
/** Goes through an array's elements, forward. */
class FPropertyArrayReader
{
public:
	std::int32_t Num() const { return Count; }
	/** What each element is, of which the bytes are yet to be read. */
	const FPropertyType& ElementType() const { return Element.Type; }
	/** False at the end, and when an element cannot be read or its size is not known. */
	bool Next(FPropertyValue& OutElement);
	bool Failed() const { return In.Failed(); }
	/** Nothing is left of the array's bytes. */
	bool IsAtEnd() const { return !In.Failed() && Left == 0 && In.Remaining() == 0; }

private:
	friend std::optional<FPropertyArrayReader> OpenArray(const FPackageHeader& Header, const FPropertyValue& Value);
	explicit FPropertyArrayReader(const FPackageHeader& InHeader, FBytes InData)
		: Header(&InHeader)
		, Data(InData)
		, In(InData)
	{
	}
	void ReadInnerTag();
	void FindElementBytes();
	void PassElement();

	const FPackageHeader* Header;
	FBytes Data;
	FByteReader In;
	FPropertyValue Element;
	std::int32_t Count = 0;
	std::int32_t Left = 0;
	/** Of each element; 0 when they differ. */
	std::size_t ElementBytes = 0;
};
/** Nothing when the value is no array, or one that is nested too deep. */
std::optional<FPropertyArrayReader> OpenArray(const FPackageHeader& Header, const FPropertyValue& Value);
} // namespace QVFormats
