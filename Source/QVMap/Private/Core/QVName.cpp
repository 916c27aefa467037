// SPDX-License-Identifier: MIT
#include "Core/QVName.h"

#include "Core/QVCheck.h"
#include "Core/QVString.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <memory>
#include <mutex>
#include <vector>

namespace
{
/** Where a name's letters lie. Written before its number is given away, never changed after. */
struct FEntry
{
	const char* Text = "";
	std::uint32_t Length = 0;
	std::uint32_t Hash = 0;
};

constexpr std::uint32_t BlockBits = 14;
constexpr std::uint32_t BlockSize = 1u << BlockBits;
constexpr std::uint32_t MaxBlocks = 1u << 14;
constexpr std::size_t ShardCount = 64;
constexpr std::size_t ArenaBytes = 65'536;

/** The capital letters among eight made small. */
std::uint64_t ToLower(std::uint64_t Letters)
{
	constexpr std::uint64_t Each = 0x0101010101010101;
	const std::uint64_t Low = Letters & (0x7F * Each);
	const std::uint64_t FromA = Low + (0x80 - 'A') * Each;
	const std::uint64_t BeyondZ = Low + (0x80 - 'Z' - 1) * Each;
	const std::uint64_t Capitals = FromA & ~BeyondZ & ~Letters & (0x80 * Each);
	return Letters | (Capitals >> 2);
}

std::uint32_t HashFolded(std::string_view Text)
{
	constexpr std::uint64_t Prime = 0x9E3779B97F4A7C15;
	std::uint64_t Hash = Text.size() * Prime;
	for (; !Text.empty(); Text.remove_prefix(std::min<std::size_t>(Text.size(), 8)))
	{
		std::uint64_t Letters = 0;
		std::memcpy(&Letters, Text.data(), std::min<std::size_t>(Text.size(), 8));
		Hash = (Hash ^ ToLower(Letters)) * Prime;
		Hash ^= Hash >> 29;
	}
	return static_cast<std::uint32_t>(Hash ^ (Hash >> 32));
}

/** The names whose hash ends in the same bits: an open-addressed set of name numbers and the letters of its own names.
 */
struct FShard
{
	std::mutex Lock;
	std::vector<std::uint32_t> Slots = std::vector<std::uint32_t>(64, 0);
	std::size_t Used = 0;
	std::vector<std::unique_ptr<char[]>> Arenas;
	std::size_t ArenaLeft = 0;

	const char* Keep(std::string_view Text)
	{
		if (Text.size() > ArenaLeft)
		{
			ArenaLeft = std::max(ArenaBytes, Text.size());
			Arenas.push_back(std::make_unique<char[]>(ArenaLeft));
			ArenaEnd = Arenas.back().get() + ArenaLeft;
		}
		char* Place = ArenaEnd - ArenaLeft;
		ArenaLeft -= Text.size();
		std::memcpy(Place, Text.data(), Text.size());
		return Place;
	}

private:
	char* ArenaEnd = nullptr;
};

/**
 * Entries lie in blocks that never move, so a number is turned into letters without a lock: whoever holds a number got
 * it from a thread that had written the entry before.
 */
class FNameTable
{
public:
	std::uint32_t FindOrAdd(std::string_view Text)
	{
		const std::uint32_t Hash = HashFolded(Text);
		FShard& Shard = Shards[Hash % ShardCount];
		const std::lock_guard Guard(Shard.Lock);
		std::size_t Slot = (Hash / ShardCount) & (Shard.Slots.size() - 1);
		for (; Shard.Slots[Slot] != 0; Slot = (Slot + 1) & (Shard.Slots.size() - 1))
		{
			const FEntry& Entry = At(Shard.Slots[Slot]);
			if (Entry.Hash == Hash && (View(Entry) == Text || FQVString::EqualsIgnoreCase(View(Entry), Text)))
			{
				return Shard.Slots[Slot];
			}
		}
		const std::uint32_t Index = Add({Shard.Keep(Text), static_cast<std::uint32_t>(Text.size()), Hash});
		Shard.Slots[Slot] = Index;
		if (++Shard.Used * 4 > Shard.Slots.size() * 3)
		{
			Grow(Shard);
		}
		return Index;
	}

	std::string_view Text(std::uint32_t Index) const { return View(At(Index)); }

private:
	static std::string_view View(const FEntry& Entry) { return {Entry.Text, Entry.Length}; }

	const FEntry& At(std::uint32_t Index) const
	{
		return Blocks[Index >> BlockBits].load(std::memory_order_acquire)[Index & (BlockSize - 1)];
	}

	std::uint32_t Add(const FEntry& Entry)
	{
		const std::uint32_t Index = Count.fetch_add(1, std::memory_order_relaxed);
		QV_CHECK(Index >> BlockBits < MaxBlocks);
		std::atomic<FEntry*>& Block = Blocks[Index >> BlockBits];
		FEntry* Entries = Block.load(std::memory_order_acquire);
		if (Entries == nullptr)
		{
			const std::lock_guard Guard(BlockLock);
			Entries = Block.load(std::memory_order_acquire);
			if (Entries == nullptr)
			{
				Entries = new FEntry[BlockSize];
				Block.store(Entries, std::memory_order_release);
			}
		}
		Entries[Index & (BlockSize - 1)] = Entry;
		return Index;
	}

	void Grow(FShard& Shard)
	{
		std::vector<std::uint32_t> Old(Shard.Slots.size() * 2, 0);
		Old.swap(Shard.Slots);
		for (const std::uint32_t Index : Old)
		{
			std::size_t Slot = Index == 0 ? 0 : (At(Index).Hash / ShardCount) & (Shard.Slots.size() - 1);
			while (Index != 0 && Shard.Slots[Slot] != 0)
			{
				Slot = (Slot + 1) & (Shard.Slots.size() - 1);
			}
			if (Index != 0)
			{
				Shard.Slots[Slot] = Index;
			}
		}
	}

	FShard Shards[ShardCount];
	std::atomic<FEntry*> Blocks[MaxBlocks] = {};
	std::mutex BlockLock;
	std::atomic<std::uint32_t> Count{1};
};

/** Never destroyed: names are used by whatever else is static. */
FNameTable& Table()
{
	static FNameTable* const Instance = new FNameTable;
	return *Instance;
}
} // namespace

FQVName::FQVName(std::string_view Text)
	: Index(Text.empty() ? 0 : Table().FindOrAdd(Text))
{
}

std::string_view FQVName::ToView() const
{
	return IsNone() ? std::string_view() : Table().Text(Index);
}

bool FQVName::LexicalLess(FQVName A, FQVName B)
{
	return FQVString::LessIgnoreCase(A.ToView(), B.ToView());
}
