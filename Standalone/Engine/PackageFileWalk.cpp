// SPDX-License-Identifier: MIT
#include "Standalone/Engine/PackageFileWalk.h"

#include "Core/QVString.h"
#include "Standalone/Engine/FolderReader.h"
#include "Standalone/Engine/FolderTree.h"
#include "Standalone/Formats/Base/Parallel.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <set>
#include <tuple>

namespace QVStandalone
{
namespace
{
bool IsPackageFile(std::string_view Name, bool& bOutMap)
{
	bOutMap = FQVString::EndsWithIgnoreCase(Name, ".umap");
	return bOutMap || FQVString::EndsWithIgnoreCase(Name, ".uasset");
}

/** Folders that wait to be read, read by several threads until there are none left. */
class FTreeReader
{
public:
	explicit FTreeReader(const FStopWish& InStop)
		: Stop(InStop)
	{
	}

	std::vector<FUnreadableFolder> Unreadable;

	void Add(FFolderNode& Folder) { Waiting.push_back(&Folder); }

	/** Links to folders come last and one by one: which of two ways to a folder counts must not hang on the threads. */
	void ReadAll()
	{
		Drain();
		while (!Links.empty())
		{
			const auto First = std::min_element(Links.begin(), Links.end(),
				[](const FLink& A, const FLink& B) { return A.Target->Folder.Path < B.Target->Folder.Path; });
			FLink Link = std::move(*First);
			Links.erase(First);
			Add(*Link.Target);
			FFolderNode::FEntry& Entry = Link.Parent->Entries.emplace_back();
			Entry.Key = std::move(Link.Key);
			Entry.Inner = std::move(Link.Target);
			Link.Parent->Sort();
			Drain();
		}
	}

private:
	struct FLink
	{
		FFolderNode* Parent = nullptr;
		std::string Key;
		std::unique_ptr<FFolderNode> Target;
	};

	const FStopWish& Stop;
	std::mutex Lock;
	std::condition_variable Wake;
	std::vector<FFolderNode*> Waiting;
	std::size_t Busy = 0;
	std::set<std::tuple<std::size_t, FFolderReader::FIdentity>> Visited;
	std::vector<FLink> Links;

	void Drain()
	{
		QVFormats::RunOnThreads(QVFormats::ThreadCount(0, 1000), [this](unsigned) { Work(); });
	}

	void Work()
	{
		std::unique_lock Guard(Lock);
		while (true)
		{
			Wake.wait(Guard, [this] { return !Waiting.empty() || Busy == 0; });
			if (Waiting.empty())
			{
				return;
			}
			FFolderNode* Folder = Waiting.back();
			Waiting.pop_back();
			++Busy;
			Guard.unlock();
			if (!Stop())
			{
				Read(*Folder);
			}
			Guard.lock();
			--Busy;
			Wake.notify_all();
		}
	}

	void Read(FFolderNode& Node)
	{
		FFolderReader Folder(Node.Folder.Path);
		if (Folder.IsOpen() && IsFirstVisit(Node, Folder))
		{
			std::vector<FLink> NewLinks;
			ReadEntries(Node, Folder, NewLinks);
			Node.Sort();
			const std::lock_guard Guard(Lock);
			std::move(NewLinks.begin(), NewLinks.end(), std::back_inserter(Links));
			for (FFolderNode::FEntry& Entry : Node.Entries)
			{
				if (Entry.Inner != nullptr)
				{
					Waiting.push_back(Entry.Inner.get());
				}
			}
		}
		if (!Folder.Problem().empty())
		{
			NoteUnreadable(Node, Folder.Problem());
		}
	}

	void NoteUnreadable(const FFolderNode& Node, std::string Problem)
	{
		const std::lock_guard Guard(Lock);
		Unreadable.push_back({Node.Folder.Path, std::move(Problem)});
	}

	bool IsFirstVisit(const FFolderNode& Node, FFolderReader& Folder)
	{
		FFolderReader::FIdentity Identity;
		if (!Folder.Identify(Identity))
		{
			return false;
		}
		const std::lock_guard Guard(Lock);
		return Visited.emplace(Node.Root, Identity).second;
	}

	static void ReadEntries(FFolderNode& Node, FFolderReader& Folder, std::vector<FLink>& OutLinks)
	{
		while (Folder.Next())
		{
			bool bMap = false;
			if (Folder.Kind() == FFolderReader::EKind::Folder)
			{
				AddFolder(Node, Folder.Name());
			}
			else if (Folder.Kind() == FFolderReader::EKind::Unknown || IsPackageFile(Folder.Name(), bMap))
			{
				AddExamined(Node, Folder, OutLinks);
			}
		}
	}

	static void AddFolder(FFolderNode& Node, std::string_view Name)
	{
		FFolderNode::FEntry& Entry = Node.Entries.emplace_back();
		Entry.Key = FQVString::ToLower(Name) + "/";
		Entry.Inner = Node.MakeInner(Name);
	}

	/** A file, or a link to whatever. */
	static void AddExamined(FFolderNode& Node, const FFolderReader& Folder, std::vector<FLink>& OutLinks)
	{
		const std::string_view Name = Folder.Name();
		FFolderReader::FDetails Details = Folder.Examine();
		FWalkedFile File;
		if (Details.Kind == FFolderReader::EKind::Folder)
		{
			AddFolder(Node, Name); // not a link: a disk that does not tell folders in its listing
		}
		else if (Details.Kind == FFolderReader::EKind::LinkToFolder)
		{
			OutLinks.push_back({&Node, FQVString::ToLower(Name) + "/", Node.MakeInner(Name)});
		}
		else if (IsPackageFile(Name, File.File.bMap))
		{
			File.FileName = Name;
			File.Problem = std::move(Details.Problem);
			File.File.Size = Details.Size;
			File.File.Time = Details.Time;
			std::string Key = FQVString::ToLower(File.BaseName());
			Node.Entries.push_back({std::move(Key), std::move(File), nullptr});
		}
	}
};

} // namespace

FPackageWalk WalkPackageFiles(const std::vector<FMountPoint>& Roots, const FStopWish& Stop)
{
	std::vector<std::unique_ptr<FFolderNode>> Nodes;
	FTreeReader Reader(Stop);
	for (const FMountPoint& Root : Roots)
	{
		FFolderNode& Node = *Nodes.emplace_back(std::make_unique<FFolderNode>());
		Node.Root = Nodes.size();
		Node.Folder = {Root.Folder, Root.Root};
		Reader.Add(Node);
	}
	Reader.ReadAll();
	std::sort(Nodes.begin(), Nodes.end(),
		[](const auto& A, const auto& B)
		{ return FQVString::LessIgnoreCase(A->Folder.PackagePath, B->Folder.PackagePath); });
	FPackageWalk Walk;
	for (const std::unique_ptr<FFolderNode>& Node : Nodes)
	{
		Node->Flatten(Walk);
	}
	Walk.Unreadable = std::move(Reader.Unreadable);
	std::sort(Walk.Unreadable.begin(), Walk.Unreadable.end(),
		[](const FUnreadableFolder& A, const FUnreadableFolder& B) { return A.Path < B.Path; });
	return Walk;
}
} // namespace QVStandalone
