// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/PackageSummary.h"

namespace QVFormats
{
/** Collects replacements of byte ranges of a header, of the same or another size, and makes them all at once. */
class FHeaderSplice
{
public:
	explicit FHeaderSplice(FBytes InHeader)
		: Header(InHeader)
	{
	}

	/** Positions are those of the old header. Ranges must not be empty or overlap. */
	void Replace(std::size_t Begin, std::size_t End, FBytes New);
	template<class T>
	void Patch(std::size_t Position, const T& Value)
	{
		Replace(Position, Position + sizeof(Value), std::as_bytes(std::span(&Value, 1)));
	}
	/** The new header; every offset in Fields that is greater than 0 follows what it points at. */
	TResult<std::vector<std::byte>> Apply(const std::vector<FOffsetField>& Fields);

private:
	struct FPiece
	{
		std::size_t Begin = 0;
		std::size_t End = 0;
		std::vector<std::byte> New;
	};
	struct FShift
	{
		std::size_t From = 0;
		std::int64_t Total = 0;
	};
	void Sort();
	FStatus MoveOffsets(const std::vector<FOffsetField>& Fields);
	TResult<std::vector<std::byte>> Join() const;

	FBytes Header;
	std::vector<FPiece> Pieces;
};
} // namespace QVFormats
