// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/PackageSummary.h"

namespace QVFormats
{
constexpr std::size_t SavedHashBytes = 20;

/** Reads the summary's fields in order and keeps the position of each offset that it meets. */
class FSummaryReader
{
public:
	FSummaryReader(FBytes Bytes, FPackageSummary& InSummary)
		: In(Bytes)
		, Out(InSummary)
	{
	}

	void Versions();
	void HeaderSizeAndCustomVersions();
	void Tables();
	void Identity();
	void Tail();

	FByteReader In;

private:
	std::int32_t Offset();
	std::int64_t LongOffset();
	FPackageTable Table();
	FEngineVersion Engine();
	FPackageGuid Guid() { return In.Read<FPackageGuid>(); }
	bool IsFiltered() const { return Out.Has(EPackageFlags::FilterEditorOnly); }

	FPackageSummary& Out;
};

} // namespace QVFormats
