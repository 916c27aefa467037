// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Base/Sha1.h"

#include <algorithm>
#include <bit>
#if defined(__GNUC__) && defined(__x86_64__)
#include <cpuid.h>
#include <immintrin.h>
#endif

namespace QVFormats
{
namespace
{
using FWord = std::uint32_t;

constexpr FWord RoundConstant(int Round)
{
	return Round < 20 ? 0x5A827999 : Round < 40 ? 0x6ED9EBA1 : Round < 60 ? 0x8F1BBCDC : 0xCA62C1D6;
}

#if defined(__GNUC__)
// The message schedule is worked out four words at a time beside the rounds; a function call between them would cost
// more than the work, so everything is inlined into one loop body.
#define QV_INLINE inline __attribute__((always_inline))

using FWords __attribute__((vector_size(16))) = FWord;
using FLanes __attribute__((vector_size(16))) = unsigned char;

struct FSchedule
{
	FWords Recent[8];
	/** Word plus round constant, the last 32 rounds. */
	alignas(16) FWord Sum[32];
};

template<int Bits>
QV_INLINE void RotateLeft(FWords& Words)
{
	Words = (Words << Bits) | (Words >> (32 - Bits));
}

QV_INLINE void LoadBigEndian(FWords& Words, const std::byte* Data)
{
	FLanes Lanes;
	std::memcpy(&Lanes, Data, sizeof(Lanes));
	Lanes = __builtin_shufflevector(Lanes, Lanes, 3, 2, 1, 0, 7, 6, 5, 4, 11, 10, 9, 8, 15, 14, 13, 12);
	std::memcpy(&Words, &Lanes, sizeof(Lanes));
}

/** Words 16..31 as the standard defines them; the last lane needs the first one's result and gets it afterwards. */
template<int Round>
QV_INLINE void ExpandNear(FWords& Words, const FWords* Recent)
{
	constexpr int Last = Round / 4 - 1;
	const FWords Minus14 = __builtin_shufflevector(Recent[(Last - 3) % 8], Recent[(Last - 2) % 8], 2, 3, 4, 5);
	const FWords Minus3 = __builtin_shufflevector(Recent[Last % 8], FWords{}, 1, 2, 3, 4);
	Words = Recent[(Last - 3) % 8] ^ Minus14 ^ Recent[(Last - 1) % 8] ^ Minus3;
	FWords Carried = __builtin_shufflevector(FWords{}, Words, 0, 1, 2, 4);
	RotateLeft<1>(Words);
	RotateLeft<2>(Carried);
	Words ^= Carried;
}

/** Words from 32 on: the same recurrence taken twice, which no longer reaches into its own four lanes. */
template<int Round>
QV_INLINE void ExpandFar(FWords& Words, const FWords* Recent)
{
	constexpr int Last = Round / 4 - 1;
	const FWords Minus6 = __builtin_shufflevector(Recent[(Last - 1) % 8], Recent[Last % 8], 2, 3, 4, 5);
	Words = Minus6 ^ Recent[(Last - 3) % 8] ^ Recent[(Last - 6) % 8] ^ Recent[(Last - 7) % 8];
	RotateLeft<2>(Words);
}

template<int Round>
QV_INLINE void Schedule(FSchedule& S, const std::byte* Block)
{
	if constexpr (Round < 80)
	{
		FWords Words;
		if constexpr (Round < 16)
		{
			LoadBigEndian(Words, Block + Round * 4);
		}
		else if constexpr (Round < 32)
		{
			ExpandNear<Round>(Words, S.Recent);
		}
		else
		{
			ExpandFar<Round>(Words, S.Recent);
		}
		S.Recent[Round / 4 % 8] = Words;
		constexpr FWord K = RoundConstant(Round);
		Words += FWords{K, K, K, K};
		std::memcpy(S.Sum + Round % 32, &Words, sizeof(Words));
	}
}

template<int Round>
QV_INLINE FWord Mix(FWord B, FWord C, FWord D)
{
	if constexpr (Round < 20)
	{
		return ((C ^ D) & B) ^ D;
	}
	else if constexpr (Round < 40 || Round >= 60)
	{
		return B ^ C ^ D;
	}
	else
	{
		return (B & C) + (D & (B ^ C));
	}
}

template<int Round>
QV_INLINE void Step(FWord& A, FWord& B, FWord& C, FWord& D, FWord& E, const FSchedule& S)
{
	E += S.Sum[Round % 32];
	E += Mix<Round>(B, C, D);
	E += std::rotl(A, 5);
	B = std::rotl(B, 30);
}

/** Four rounds, and the words that are needed sixteen rounds later. */
template<int Round>
QV_INLINE void FourSteps(FWord (&V)[5], FSchedule& S, const std::byte* Block)
{
	constexpr int A = (80 - Round) % 5;
	Schedule<Round + 16>(S, Block);
	Step<Round>(V[A], V[(A + 1) % 5], V[(A + 2) % 5], V[(A + 3) % 5], V[(A + 4) % 5], S);
	Step<Round + 1>(V[(A + 4) % 5], V[A], V[(A + 1) % 5], V[(A + 2) % 5], V[(A + 3) % 5], S);
	Step<Round + 2>(V[(A + 3) % 5], V[(A + 4) % 5], V[A], V[(A + 1) % 5], V[(A + 2) % 5], S);
	Step<Round + 3>(V[(A + 2) % 5], V[(A + 3) % 5], V[(A + 4) % 5], V[A], V[(A + 1) % 5], S);
	if constexpr (Round + 4 < 80)
	{
		FourSteps<Round + 4>(V, S, Block);
	}
}

QV_INLINE void AddBlocks(FWord* State, const std::byte* Data, std::size_t Blocks)
{
	FSchedule S;
	for (; Blocks > 0; --Blocks, Data += 64)
	{
		FWord V[5] = {State[0], State[1], State[2], State[3], State[4]};
		Schedule<0>(S, Data);
		Schedule<4>(S, Data);
		Schedule<8>(S, Data);
		Schedule<12>(S, Data);
		FourSteps<0>(V, S, Data);
		for (int Index = 0; Index < 5; ++Index)
		{
			State[Index] += V[Index];
		}
	}
}

void AddBlocksPortable(FWord* State, const std::byte* Data, std::size_t Blocks)
{
	AddBlocks(State, Data, Blocks);
}
#else
/** As the standard has it, for compilers without vectors of their own. */
FWord Mix(int Round, const FWord* V)
{
	return Round < 20				   ? (V[1] & V[2]) | (~V[1] & V[3])
		   : Round >= 40 && Round < 60 ? (V[1] & V[2]) | (V[1] & V[3]) | (V[2] & V[3])
									   : V[1] ^ V[2] ^ V[3];
}

void AddBlock(FWord* State, const std::byte* Data)
{
	FWord Words[80];
	for (int Index = 0; Index < 16; ++Index)
	{
		const auto Byte = [&](int At) { return std::to_integer<FWord>(Data[4 * Index + At]); };
		Words[Index] = (Byte(0) << 24) | (Byte(1) << 16) | (Byte(2) << 8) | Byte(3);
	}
	for (int Index = 16; Index < 80; ++Index)
	{
		Words[Index] = std::rotl(Words[Index - 3] ^ Words[Index - 8] ^ Words[Index - 14] ^ Words[Index - 16], 1);
	}
	FWord V[5] = {State[0], State[1], State[2], State[3], State[4]};
	for (int Round = 0; Round < 80; ++Round)
	{
		const FWord Next = std::rotl(V[0], 5) + Mix(Round, V) + V[4] + RoundConstant(Round) + Words[Round];
		V[4] = V[3];
		V[3] = V[2];
		V[2] = std::rotl(V[1], 30);
		V[1] = V[0];
		V[0] = Next;
	}
	for (int Index = 0; Index < 5; ++Index)
	{
		State[Index] += V[Index];
	}
}

void AddBlocksPortable(FWord* State, const std::byte* Data, std::size_t Blocks)
{
	for (; Blocks > 0; --Blocks, Data += 64)
	{
		AddBlock(State, Data);
	}
}
#endif

#if defined(__GNUC__) && defined(__x86_64__)
__attribute__((target("avx,bmi,bmi2"))) void AddBlocksAvx(FWord* State, const std::byte* Data, std::size_t Blocks)
{
	AddBlocks(State, Data, Blocks);
}
#endif

#if defined(__GNUC__) && defined(__x86_64__)
/** The processor's own instructions: a group of four rounds each, whose kind is a part of the instruction. */
struct FShaRounds
{
	__m128i Words[4];
	__m128i Abcd;
	/** As it was before the last group; its first word makes the next group's E. */
	__m128i Before;

	template<int Group>
	__attribute__((target("sha,sse4.1"))) QV_INLINE void Run(__m128i E)
	{
		if constexpr (Group >= 4)
		{
			__m128i& Word = Words[Group % 4];
			Word = _mm_xor_si128(_mm_sha1msg1_epu32(Word, Words[(Group + 1) % 4]), Words[(Group + 2) % 4]);
			Word = _mm_sha1msg2_epu32(Word, Words[(Group + 3) % 4]);
		}
		const __m128i Word = Words[Group % 4];
		const __m128i Sum = Group == 0 ? _mm_add_epi32(E, Word) : _mm_sha1nexte_epu32(Before, Word);
		Before = Abcd;
		Abcd = _mm_sha1rnds4_epu32(Abcd, Sum, Group / 5);
		if constexpr (Group + 1 < 20)
		{
			Run<Group + 1>(E);
		}
	}
};

__attribute__((target("sha,sse4.1"))) void AddBlocksSha(FWord* State, const std::byte* Data, std::size_t Blocks)
{
	const __m128i BigEndian = _mm_set_epi64x(0x0001020304050607, 0x08090A0B0C0D0E0F);
	FShaRounds Rounds;
	Rounds.Abcd = _mm_shuffle_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(State)), 0x1B);
	__m128i E = _mm_set_epi32(static_cast<int>(State[4]), 0, 0, 0);
	for (; Blocks > 0; --Blocks, Data += 64)
	{
		for (int Part = 0; Part < 4; ++Part)
		{
			const __m128i Raw = _mm_loadu_si128(reinterpret_cast<const __m128i*>(Data + 16 * Part));
			Rounds.Words[Part] = _mm_shuffle_epi8(Raw, BigEndian);
		}
		const __m128i Start = Rounds.Abcd;
		Rounds.Run<0>(E);
		E = _mm_sha1nexte_epu32(Rounds.Before, E);
		Rounds.Abcd = _mm_add_epi32(Rounds.Abcd, Start);
	}
	_mm_storeu_si128(reinterpret_cast<__m128i*>(State), _mm_shuffle_epi32(Rounds.Abcd, 0x1B));
	State[4] = static_cast<FWord>(_mm_extract_epi32(E, 3));
}

/** The compiler's own test does not know these instructions. */
bool HasShaInstructions()
{
	unsigned A = 0;
	unsigned B = 0;
	unsigned C = 0;
	unsigned D = 0;
	constexpr unsigned ShaBit = 1u << 29;
	return __get_cpuid_count(7, 0, &A, &B, &C, &D) != 0 && (B & ShaBit) != 0 && __builtin_cpu_supports("sse4.1") != 0;
}
#endif

using FAddBlocks = void (*)(FWord*, const std::byte*, std::size_t);

FAddBlocks PickAddBlocks()
{
#if defined(__GNUC__) && defined(__x86_64__)
	if (HasShaInstructions())
	{
		return AddBlocksSha;
	}
	if (__builtin_cpu_supports("avx") && __builtin_cpu_supports("bmi") && __builtin_cpu_supports("bmi2"))
	{
		return AddBlocksAvx;
	}
#endif
	return AddBlocksPortable;
}

const FAddBlocks AddBlocksHere = PickAddBlocks();
} // namespace

FSha1Hash FSha1::Of(FBytes Bytes)
{
	FSha1 Hash;
	Hash.Update(Bytes);
	return Hash.Finish();
}

void FSha1::Update(FBytes Bytes)
{
	TotalBytes += Bytes.size();
	if (PendingBytes > 0)
	{
		const std::size_t Taken = std::min(BlockBytes - PendingBytes, Bytes.size());
		std::copy_n(Bytes.begin(), Taken, Pending.begin() + PendingBytes);
		PendingBytes += Taken;
		Bytes = Bytes.subspan(Taken);
		if (PendingBytes < BlockBytes)
		{
			return;
		}
		AddBlocksHere(State.data(), Pending.data(), 1);
	}
	const std::size_t Blocks = Bytes.size() / BlockBytes;
	AddBlocksHere(State.data(), Bytes.data(), Blocks);
	Bytes = Bytes.subspan(Blocks * BlockBytes);
	std::copy(Bytes.begin(), Bytes.end(), Pending.begin());
	PendingBytes = Bytes.size();
}

FSha1Hash FSha1::Finish()
{
	std::array<std::byte, 2 * BlockBytes> Tail{};
	std::copy_n(Pending.begin(), PendingBytes, Tail.begin());
	Tail[PendingBytes] = std::byte{0x80};
	const std::size_t TailBytes = PendingBytes < BlockBytes - 8 ? BlockBytes : 2 * BlockBytes;
	for (std::size_t Index = 0; Index < 8; ++Index)
	{
		Tail[TailBytes - 1 - Index] = static_cast<std::byte>((TotalBytes * 8) >> (8 * Index));
	}
	AddBlocksHere(State.data(), Tail.data(), TailBytes / BlockBytes);
	FSha1Hash Hash;
	for (std::size_t Index = 0; Index < Hash.size(); ++Index)
	{
		Hash[Index] = static_cast<std::byte>(State[Index / 4] >> (24 - 8 * (Index % 4)));
	}
	return Hash;
}

std::string HashText(const FSha1Hash& Hash)
{
	constexpr char Digits[] = "0123456789abcdef";
	std::string Text;
	for (const std::byte Byte : Hash)
	{
		Text.push_back(Digits[std::to_integer<unsigned>(Byte) >> 4]);
		Text.push_back(Digits[std::to_integer<unsigned>(Byte) & 15]);
	}
	return Text;
}
} // namespace QVFormats
