// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/HeaderSplice.h"

#include <algorithm>
#include <limits>

namespace QVFormats
{
void FHeaderSplice::Replace(std::size_t Begin, std::size_t End, FBytes New)
{
	Pieces.push_back({Begin, End, {New.begin(), New.end()}});
}

void FHeaderSplice::Sort()
{
	std::sort(Pieces.begin(), Pieces.end(), [](const FPiece& A, const FPiece& B) { return A.Begin < B.Begin; });
}

FStatus FHeaderSplice::MoveOffsets(const std::vector<FOffsetField>& Fields)
{
	Sort();
	std::vector<FShift> Shifts{{0, 0}};
	for (const FPiece& Piece : Pieces)
	{
		const auto Growth =
			static_cast<std::int64_t>(Piece.New.size()) - static_cast<std::int64_t>(Piece.End - Piece.Begin);
		Shifts.push_back({Piece.Begin + 1, Shifts.back().Total + Growth});
	}
	for (const FOffsetField& Field : Fields)
	{
		if (Field.Value <= 0)
		{
			continue;
		}
		const auto Behind = std::upper_bound(Shifts.begin(), Shifts.end(), static_cast<std::uint64_t>(Field.Value),
			[](std::uint64_t Value, const FShift& Shift) { return Value < Shift.From; });
		const std::int64_t Shift = (Behind - 1)->Total;
		const std::int64_t Largest =
			Field.Width == 4 ? std::numeric_limits<std::int32_t>::max() : std::numeric_limits<std::int64_t>::max();
		if (Field.Value > Largest - std::max<std::int64_t>(Shift, 0))
		{
			return FError{"cannot be edited: an offset at " + std::to_string(Field.Position) + " would go beyond " +
						  std::to_string(Largest)};
		}
		const std::int64_t Value = Field.Value + Shift;
		Field.Width == 4 ? Patch(Field.Position, static_cast<std::int32_t>(Value)) : Patch(Field.Position, Value);
	}
	return Success();
}

TResult<std::vector<std::byte>> FHeaderSplice::Join() const
{
	std::vector<std::byte> Result;
	std::size_t At = 0;
	for (const FPiece& Piece : Pieces)
	{
		if (Piece.Begin < At || Piece.End > Header.size())
		{
			return FError{"is damaged: two parts of its header share the bytes at " + std::to_string(Piece.Begin)};
		}
		const FBytes Kept = Header.subspan(At, Piece.Begin - At);
		Result.insert(Result.end(), Kept.begin(), Kept.end());
		Result.insert(Result.end(), Piece.New.begin(), Piece.New.end());
		At = Piece.End;
	}
	const FBytes Rest = Header.subspan(At);
	Result.insert(Result.end(), Rest.begin(), Rest.end());
	return Result;
}

TResult<std::vector<std::byte>> FHeaderSplice::Apply(const std::vector<FOffsetField>& Fields)
{
	if (const FStatus Status = MoveOffsets(Fields); !Status)
	{
		return Status.Error();
	}
	Sort();
	return Join();
}
} // namespace QVFormats
