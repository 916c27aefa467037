// SPDX-License-Identifier: MIT
#include "Tests/Crash/PowerCut.h"

#include "Tests/Crash/RawFile.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits.h>

namespace QVTest
{
namespace
{
std::string FolderOf(const std::string& Path)
{
	return Path.substr(0, Path.rfind('/'));
}

std::string LinkTo(int File)
{
	return "/proc/self/fd/" + std::to_string(File);
}

std::string PathOf(int File)
{
	char Buffer[PATH_MAX];
	const long Size = ::syscall(SYS_readlink, LinkTo(File).c_str(), Buffer, sizeof(Buffer));
	return Size > 0 ? std::string(Buffer, static_cast<std::size_t>(Size)) : std::string();
}
} // namespace

void FPowerCut::Expect(bool bGood, const char* What, const std::string& Path)
{
	if (!bGood)
	{
		Troubles.push_back(std::string(What) + "\t" + Path + "\t" + std::strerror(errno));
	}
}

void FPowerCut::BeforeData(int File)
{
	struct stat Info = {};
	if (!Raw::Look(File, Info) || !S_ISREG(Info.st_mode))
	{
		return;
	}
	const auto [Found, bNew] = Unflushed.try_emplace({Info.st_dev, Info.st_ino});
	if (bNew)
	{
		// kept open: its number stays its own, whatever becomes of its name
		FData& Data = Found->second;
		Data.File = Raw::Open(LinkTo(File), O_RDWR);
		const std::string Copy = NewName();
		Data.Copy = Raw::Open(Copy, O_RDWR | O_CREAT | O_EXCL);
		Expect(Data.File >= 0 && Data.Copy >= 0 && Raw::CopyAll(Data.File, Data.Copy), "keep data", PathOf(File));
		Raw::Remove(Copy);
	}
}

void FPowerCut::BeforeData(const std::string& Path)
{
	const int File = Raw::Open(Path, O_RDONLY | O_NONBLOCK);
	if (File >= 0)
	{
		BeforeData(File);
		Raw::Close(File);
	}
}

void FPowerCut::BeforeName(const std::string& Path)
{
	if (std::any_of(Entries.begin(), Entries.end(), [&Path](const FEntry& Each) { return Each.Path == Path; }))
	{
		return;
	}
	FEntry Entry{Path, FEntry::EState::Absent, 0, {}};
	struct stat Info = {};
	if (Raw::Look(Path, Info))
	{
		Entry.State = S_ISDIR(Info.st_mode) ? FEntry::EState::Folder : FEntry::EState::File;
		Entry.Mode = Info.st_mode & 07777;
		if (Entry.State == FEntry::EState::File)
		{
			Entry.Other = NewName();
			Expect(Raw::Link(Path, Entry.Other), "keep file", Path);
		}
	}
	Entries.push_back(std::move(Entry));
}

void FPowerCut::BeforeRename(const std::string& From, const std::string& To)
{
	struct stat Info = {};
	if (Raw::Look(From, Info) && S_ISDIR(Info.st_mode))
	{
		Entries.push_back({From, FEntry::EState::Moved, 0, To});
		return;
	}
	BeforeName(From);
	BeforeName(To);
}

void FPowerCut::Flushed(int File)
{
	struct stat Info = {};
	if (!Raw::Look(File, Info))
	{
		return;
	}
	if (const auto Found = Unflushed.find({Info.st_dev, Info.st_ino}); Found != Unflushed.end())
	{
		Raw::Close(Found->second.File);
		Raw::Close(Found->second.Copy);
		Unflushed.erase(Found);
	}
	if (S_ISDIR(Info.st_mode))
	{
		FlushedNames(PathOf(File));
	}
}

void FPowerCut::FlushedNames(const std::string& Folder)
{
	std::vector<std::string> Gone;
	for (const FEntry& Each : Entries)
	{
		struct stat Info = {};
		if (FolderOf(Each.Path) == Folder && !Raw::Look(Each.Path, Info))
		{
			Gone.push_back(Each.Path + "/");
		}
	}
	// a folder that has gone for good took with it what was in it
	std::erase_if(Entries,
		[&](const FEntry& Each)
		{
			const auto IsBelow = [&Each](const std::string& Place) { return Each.Path.starts_with(Place); };
			return FolderOf(Each.Path) == Folder || std::any_of(Gone.begin(), Gone.end(), IsBelow);
		});
}

/** Nothing has the name afterwards. */
bool FPowerCut::Clear(const std::string& Path)
{
	struct stat Info = {};
	return !Raw::Look(Path, Info) || Raw::Rename(Path, NewName());
}

void FPowerCut::Undo(const FEntry& Entry)
{
	struct stat Info = {};
	switch (Entry.State)
	{
	case FEntry::EState::Absent:
		Expect(Clear(Entry.Path), "undo coming", Entry.Path);
		break;
	case FEntry::EState::File:
		Expect(Clear(Entry.Path) && Raw::Link(Entry.Other, Entry.Path), "undo going", Entry.Path);
		break;
	case FEntry::EState::Folder:
		Expect(Raw::Look(Entry.Path, Info) || Raw::MakeFolder(Entry.Path, Entry.Mode), "undo removing", Entry.Path);
		break;
	case FEntry::EState::Moved:
		Expect(!Raw::Look(Entry.Other, Info) || Raw::Rename(Entry.Other, Entry.Path), "undo moving", Entry.Path);
		break;
	}
}

void FPowerCut::Strike(bool bStrict)
{
	for (const auto& [Id, Data] : Unflushed)
	{
		Expect(Raw::CopyAll(Data.Copy, Data.File), "undo writing", PathOf(Data.File));
	}
	if (bStrict)
	{
		std::for_each(Entries.rbegin(), Entries.rend(), [this](const FEntry& Each) { Undo(Each); });
	}
}
} // namespace QVTest
