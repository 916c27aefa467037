// SPDX-License-Identifier: MIT
#include "Standalone/Engine/FolderTree.h"

#include <algorithm>
#include <tuple>

namespace QVStandalone
{
std::unique_ptr<FFolderNode> FFolderNode::MakeInner(std::string_view Name) const
{
	auto Inner = std::make_unique<FFolderNode>();
	Inner->Root = Root;
	Inner->Folder.Path = Folder.Path + std::string(Name) + "/";
	Inner->Folder.PackagePath = Folder.PackagePath + std::string(Name) + "/";
	return Inner;
}

void FFolderNode::Sort()
{
	std::sort(Entries.begin(), Entries.end(),
		[](const FEntry& A, const FEntry& B)
		{ return std::tie(A.Key, A.File.FileName) < std::tie(B.Key, B.File.FileName); });
}

void FFolderNode::Flatten(FPackageWalk& Out)
{
	if (Entries.empty())
	{
		return;
	}
	const auto Number = static_cast<std::uint32_t>(Out.Folders.size());
	Out.Folders.push_back(std::move(Folder));
	for (FEntry& Entry : Entries)
	{
		if (Entry.Inner != nullptr)
		{
			Entry.Inner->Flatten(Out);
			continue;
		}
		Entry.File.Folder = Number;
		Out.Files.push_back(std::move(Entry.File));
	}
}
} // namespace QVStandalone
