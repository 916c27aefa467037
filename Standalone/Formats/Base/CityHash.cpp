// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/CityHash.h"

#include <array>
#include <utility>
#include <vector>

namespace QVFormats
{
namespace
{
constexpr std::uint64_t K0 = 0xC3A5C85C97CB3127ULL;
constexpr std::uint64_t K1 = 0xB492B66FBE98F273ULL;
constexpr std::uint64_t K2 = 0x9AE16A3B2F90404FULL;
constexpr std::uint64_t PairMultiplier = 0x9DDFEA08EB382D69ULL;

template<class T>
T Fetch(const std::byte* At)
{
	T Value;
	std::memcpy(&Value, At, sizeof(T));
	return Value;
}

std::uint64_t Fetch64(const std::byte* At)
{
	return Fetch<std::uint64_t>(At);
}

std::uint64_t SwapBytes(std::uint64_t Value)
{
	Value = ((Value & 0x00FF00FF00FF00FFULL) << 8) | ((Value >> 8) & 0x00FF00FF00FF00FFULL);
	Value = ((Value & 0x0000FFFF0000FFFFULL) << 16) | ((Value >> 16) & 0x0000FFFF0000FFFFULL);
	return std::rotl(Value, 32);
}

std::uint64_t ShiftMix(std::uint64_t Value)
{
	return Value ^ (Value >> 47);
}

std::uint64_t HashPair(std::uint64_t Low, std::uint64_t High, std::uint64_t Multiplier = PairMultiplier)
{
	const std::uint64_t First = ShiftMix((Low ^ High) * Multiplier);
	return ShiftMix((High ^ First) * Multiplier) * Multiplier;
}

std::uint64_t HashUpTo16(const std::byte* Data, std::size_t Length)
{
	const std::uint64_t Multiplier = K2 + Length * 2;
	if (Length >= 8)
	{
		const std::uint64_t A = Fetch64(Data) + K2;
		const std::uint64_t B = Fetch64(Data + Length - 8);
		return HashPair(std::rotr(B, 37) * Multiplier + A, (std::rotr(A, 25) + B) * Multiplier, Multiplier);
	}
	if (Length >= 4)
	{
		const std::uint64_t A = Fetch<std::uint32_t>(Data);
		return HashPair(Length + (A << 3), Fetch<std::uint32_t>(Data + Length - 4), Multiplier);
	}
	if (Length == 0)
	{
		return K2;
	}
	const auto At = [Data](std::size_t Index) { return std::to_integer<std::uint64_t>(Data[Index]); };
	return ShiftMix((At(0) + (At(Length >> 1) << 8)) * K2 ^ (Length + (At(Length - 1) << 2)) * K0) * K2;
}

std::uint64_t HashUpTo32(const std::byte* Data, std::size_t Length)
{
	const std::uint64_t Multiplier = K2 + Length * 2;
	const std::uint64_t A = Fetch64(Data) * K1;
	const std::uint64_t B = Fetch64(Data + 8);
	const std::uint64_t C = Fetch64(Data + Length - 8) * Multiplier;
	const std::uint64_t D = Fetch64(Data + Length - 16) * K2;
	return HashPair(std::rotr(A + B, 43) + std::rotr(C, 30) + D, A + std::rotr(B + K2, 18) + C, Multiplier);
}

std::uint64_t HashUpTo64(const std::byte* Data, std::size_t Length)
{
	const std::uint64_t Multiplier = K2 + Length * 2;
	const std::uint64_t A = Fetch64(Data) * K2;
	const std::uint64_t B = Fetch64(Data + 8);
	const std::uint64_t C = Fetch64(Data + Length - 24);
	const std::uint64_t D = Fetch64(Data + Length - 32);
	const std::uint64_t E = Fetch64(Data + 16) * K2;
	const std::uint64_t F = Fetch64(Data + 24) * 9;
	const std::uint64_t G = Fetch64(Data + Length - 8);
	const std::uint64_t H = Fetch64(Data + Length - 16) * Multiplier;
	const std::uint64_t U = std::rotr(A + G, 43) + (std::rotr(B, 30) + C) * 9;
	const std::uint64_t V = ((A + G) ^ D) + F + 1;
	const std::uint64_t W = SwapBytes((U + V) * Multiplier) + H;
	const std::uint64_t X = std::rotr(E + F, 42) + C;
	const std::uint64_t Y = (SwapBytes((V + W) * Multiplier) + G) * Multiplier;
	const std::uint64_t Z = E + F + C;
	const std::uint64_t Last = SwapBytes((X + Z) * Multiplier + Y) + B;
	return ShiftMix((Z + Last) * Multiplier + D + H) * Multiplier + X;
}

struct FPair
{
	std::uint64_t First = 0;
	std::uint64_t Second = 0;
};

FPair WeakHash32(const std::byte* Data, std::uint64_t A, std::uint64_t B)
{
	const std::uint64_t X = Fetch64(Data + 8);
	const std::uint64_t Y = Fetch64(Data + 16);
	const std::uint64_t Z = Fetch64(Data + 24);
	A += Fetch64(Data);
	B = std::rotr(B + A + Z, 21);
	const std::uint64_t C = A;
	A += X + Y;
	return {A + Z, B + std::rotr(A, 44) + C};
}

std::uint64_t HashLong(const std::byte* Data, std::size_t Length)
{
	std::uint64_t X = Fetch64(Data + Length - 40);
	std::uint64_t Y = Fetch64(Data + Length - 16) + Fetch64(Data + Length - 56);
	std::uint64_t Z = HashPair(Fetch64(Data + Length - 48) + Length, Fetch64(Data + Length - 24));
	FPair V = WeakHash32(Data + Length - 64, Length, Z);
	FPair W = WeakHash32(Data + Length - 32, Y + K1, X);
	X = X * K1 + Fetch64(Data);
	const std::byte* const End = Data + ((Length - 1) & ~std::size_t{63});
	for (; Data != End; Data += 64)
	{
		X = std::rotr(X + Y + V.First + Fetch64(Data + 8), 37) * K1;
		Y = std::rotr(Y + V.Second + Fetch64(Data + 48), 42) * K1;
		X ^= W.Second;
		Y += V.First + Fetch64(Data + 40);
		Z = std::rotr(Z + W.First, 33) * K1;
		V = WeakHash32(Data, V.Second * K1, X + W.First);
		W = WeakHash32(Data + 32, Z + W.Second, Y + Fetch64(Data + 16));
		std::swap(Z, X);
	}
	return HashPair(HashPair(V.First, W.First) + ShiftMix(Y) * K1 + Z, HashPair(V.Second, W.Second) + X);
}

std::byte FoldByte(std::byte Byte)
{
	return Byte >= std::byte{'A'} && Byte <= std::byte{'Z'} ? Byte | std::byte{0x20} : Byte;
}

void Fold(std::span<std::byte> Text, bool bWide)
{
	const std::size_t Step = bWide ? 2 : 1;
	for (std::size_t Index = 0; Index + Step <= Text.size(); Index += Step)
	{
		if (!bWide || Text[Index + 1] == std::byte{0})
		{
			Text[Index] = FoldByte(Text[Index]);
		}
	}
}
} // namespace

std::uint64_t CityHash64(FBytes Bytes)
{
	if (Bytes.size() <= 16)
	{
		return HashUpTo16(Bytes.data(), Bytes.size());
	}
	if (Bytes.size() <= 32)
	{
		return HashUpTo32(Bytes.data(), Bytes.size());
	}
	return Bytes.size() <= 64 ? HashUpTo64(Bytes.data(), Bytes.size()) : HashLong(Bytes.data(), Bytes.size());
}

std::uint64_t CityHash64Folded(FStringView Name)
{
	std::array<std::byte, 256> Small;
	std::vector<std::byte> Large;
	if (Name.Bytes.size() > Small.size())
	{
		Large.resize(Name.Bytes.size());
	}
	const std::span<std::byte> Text = Large.empty() ? std::span(Small).first(Name.Bytes.size()) : std::span(Large);
	std::copy(Name.Bytes.begin(), Name.Bytes.end(), Text.begin());
	Fold(Text, Name.bWide);
	return CityHash64(Text);
}
} // namespace QVFormats
