// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Registry/AssetRegistry.h"

using namespace QVFormats;

namespace
{
void ReadTexts(const FAssetRegistryState& State)
{
	for (const FRegistryTag& Tag : State.Tags)
	{
		State.ValueText(Tag);
	}
	for (const FRegistryAsset& Asset : State.Assets)
	{
		State.Text(Asset.PackageName);
	}
}

/** What is written has to be readable, and to say the same. Other layouts are written as the one that is known. */
void WriteAndReadBack(FAssetRegistryState State)
{
	const TResult<std::vector<std::byte>> Written = WriteAssetRegistry(State);
	if (!Written)
	{
		return;
	}
	const TResult<FAssetRegistryState> Back = ReadAssetRegistry(*Written);
	if (!Back || Back->Assets.size() != State.Assets.size())
	{
		__builtin_trap();
	}
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* Data, std::size_t Size)
{
	const FBytes File = std::as_bytes(std::span(Data, Size));
	const TResult<FRegistryCount> Count = CountPackages(File);
	TResult<FAssetRegistryState> State = ReadAssetRegistry(File);
	if (State)
	{
		if (Count && static_cast<std::size_t>(Count->Assets) != State->Assets.size())
		{
			__builtin_trap(); // both walk the same file
		}
		ReadTexts(*State);
		WriteAndReadBack(std::move(*State));
	}
	return 0;
}
