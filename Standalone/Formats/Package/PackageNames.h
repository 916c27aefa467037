// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/ByteReader.h"
#include "Standalone/Formats/Base/NameRef.h"
#include "Standalone/Formats/Base/Result.h"
#include "Standalone/Formats/Package/PackageSummary.h"

#include <vector>

namespace QVFormats
{
/** The two check sums that lie behind each name. */
struct FNameHashes
{
	std::uint16_t WithoutCase = 0;
	std::uint16_t WithCase = 0;

	bool operator==(const FNameHashes&) const = default;
};
FNameHashes ComputeNameHashes(FStringView Name);

/** The name table, in place: nothing is copied and no text is made until it is asked for. */
class FPackageNames
{
public:
	/** An entry's place in the file is that of its view in Header, less the length field of 4 bytes. */
	static TResult<FPackageNames> Read(FBytes Header, const FPackageSummary& Summary);

	std::size_t Num() const { return Entries.size(); }
	const FStringView& Entry(std::size_t Index) const { return Entries[Index]; }
	bool Contains(FNameRef Name) const { return Name.Entry < Entries.size(); }
	bool IsNone(FNameRef Name) const;
	std::string Text(FNameRef Name) const;
	std::size_t EndPosition() const { return End; }

	/** For layouts whose soft references are strings: they become entries behind those of the table. */
	FNameRef AddForeign(FStringView Text);

private:
	std::vector<FStringView> Entries;
	std::size_t End = 0;
};

/** Two i32; a name that is not in the table fails. */
FNameRef ReadName(FByteReader& Reader, const FPackageNames& Names);
} // namespace QVFormats
