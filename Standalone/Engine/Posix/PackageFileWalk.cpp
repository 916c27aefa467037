// SPDX-License-Identifier: MIT
#include "Standalone/Engine/PackageFileWalk.h"

#include "Core/QVString.h"
#include "Standalone/Engine/FolderTree.h"
#include "Standalone/Formats/Base/Parallel.h"

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <deque>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <mutex>
#include <set>
#include <sys/stat.h>
#include <system_error>
#include <tuple>

namespace QVStandalone
{
namespace
{
std::string LastProblem()
{
	return std::generic_category().message(errno);
}

bool IsPackageFile(std::string_view Name, bool& bOutMap)
{
	bOutMap = FQVString::EndsWithIgnoreCase(Name, ".umap");
	return bOutMap || FQVString::EndsWithIgnoreCase(Name, ".uasset");
}

std::int64_t TimeOf(const struct stat& Info)
{
	return static_cast<std::int64_t>(Info.st_mtim.tv_sec) * 1'000'000'000 + Info.st_mtim.tv_nsec;
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
	std::set<std::tuple<std::size_t, dev_t, ino_t>> Visited;
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
		DIR* Stream = ::opendir(Node.Folder.Path.c_str());
		if (Stream == nullptr)
		{
			if (errno != ENOENT)
			{
				NoteUnreadable(Node, LastProblem());
			}
			return;
		}
		if (IsFirstVisit(Node, ::dirfd(Stream)))
		{
			std::vector<FLink> NewLinks;
			ReadEntries(Node, Stream, NewLinks);
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
		::closedir(Stream);
	}

	void NoteUnreadable(const FFolderNode& Node, std::string Problem)
	{
		const std::lock_guard Guard(Lock);
		Unreadable.push_back({Node.Folder.Path, std::move(Problem)});
	}

	bool IsFirstVisit(const FFolderNode& Node, int Folder)
	{
		struct stat Info = {};
		if (::fstat(Folder, &Info) != 0)
		{
			NoteUnreadable(Node, LastProblem());
			return false;
		}
		const std::lock_guard Guard(Lock);
		return Visited.emplace(Node.Root, Info.st_dev, Info.st_ino).second;
	}

	void ReadEntries(FFolderNode& Node, DIR* Stream, std::vector<FLink>& OutLinks)
	{
		errno = 0;
		while (const dirent* Entry = ::readdir(Stream))
		{
			const std::string_view Name = Entry->d_name;
			bool bMap = false;
			const bool bItself = Name == "." || Name == "..";
			if (Entry->d_type == DT_DIR && !bItself)
			{
				AddFolder(Node, Name);
			}
			else if (!bItself && (Entry->d_type == DT_LNK || Entry->d_type == DT_UNKNOWN || IsPackageFile(Name, bMap)))
			{
				AddExamined(Node, Entry->d_name, ::dirfd(Stream), OutLinks);
			}
			errno = 0;
		}
		if (errno != 0)
		{
			NoteUnreadable(Node, LastProblem());
		}
	}

	static void AddFolder(FFolderNode& Node, std::string_view Name)
	{
		FFolderNode::FEntry& Entry = Node.Entries.emplace_back();
		Entry.Key = FQVString::ToLower(Name) + "/";
		Entry.Inner = Node.MakeInner(Name);
	}

	/** A file, or a link to whatever. */
	static void AddExamined(FFolderNode& Node, const char* Name, int Folder, std::vector<FLink>& OutLinks)
	{
		FWalkedFile File;
		File.FileName = Name;
		const bool bPackage = IsPackageFile(Name, File.File.bMap);
		struct stat Info = {};
		if (::fstatat(Folder, Name, &Info, 0) != 0)
		{
			File.Problem = "cannot be examined: " + LastProblem();
		}
		else if (S_ISDIR(Info.st_mode))
		{
			AddLinkedFolder(Node, Name, Folder, OutLinks);
			return;
		}
		else if (!S_ISREG(Info.st_mode))
		{
			File.Problem = "is not a file";
		}
		if (bPackage)
		{
			File.File.Size = static_cast<std::int64_t>(Info.st_size);
			File.File.Time = TimeOf(Info);
			std::string Key = FQVString::ToLower(File.BaseName());
			Node.Entries.push_back({std::move(Key), std::move(File), nullptr});
		}
	}

	static void AddLinkedFolder(FFolderNode& Node, const char* Name, int Folder, std::vector<FLink>& OutLinks)
	{
		struct stat Info = {};
		if (::fstatat(Folder, Name, &Info, AT_SYMLINK_NOFOLLOW) == 0 && S_ISDIR(Info.st_mode))
		{
			AddFolder(Node, Name); // not a link: a disk that does not tell folders in its listing
			return;
		}
		OutLinks.push_back({&Node, FQVString::ToLower(Name) + "/", Node.MakeInner(Name)});
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
