// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVFiles.h"

#include <algorithm>

namespace QVTest
{
/** The files of another engine, of which a test refuses one operation or turns the order of the walks round. */
class FFaultyFiles : public IQVFiles
{
public:
	explicit FFaultyFiles(IQVFiles& InInner)
		: Inner(InInner)
	{
	}

	/** Asked before each "save", "move" and "copy" (with their source), "delete", "create" and "lock"; true makes it
	 * fail. */
	std::function<bool(std::string_view Operation, std::string_view Path)> Refuse;
	bool bReverseWalks = false;

	bool FileExists(std::string_view Path) const override { return Inner.FileExists(Path); }
	bool DirectoryExists(std::string_view Path) const override { return Inner.DirectoryExists(Path); }
	std::int64_t FileSize(std::string_view Path) const override { return Inner.FileSize(Path); }
	FQVDateTime GetTimeStamp(std::string_view Path) const override { return Inner.GetTimeStamp(Path); }
	void IterateDirectory(std::string_view Path, const FVisitor& Visitor) const override
	{
		Walk(&IQVFiles::IterateDirectory, Path, Visitor);
	}
	void IterateDirectoryRecursively(std::string_view Path, const FVisitor& Visitor) const override
	{
		Walk(&IQVFiles::IterateDirectoryRecursively, Path, Visitor);
	}
	bool CreateDirectoryTree(std::string_view Path) override
	{
		return !IsRefused("create", Path) && Inner.CreateDirectoryTree(Path);
	}
	bool DeleteDirectory(std::string_view Path) override
	{
		return !IsRefused("delete", Path) && Inner.DeleteDirectory(Path);
	}
	bool DeleteFile(std::string_view Path, bool bEvenReadOnly = false) override
	{
		return !IsRefused("delete", Path) && Inner.DeleteFile(Path, bEvenReadOnly);
	}
	bool Move(std::string_view To, std::string_view From) override
	{
		return !IsRefused("move", From) && Inner.Move(To, From);
	}
	bool Copy(std::string_view To, std::string_view From) override
	{
		return !IsRefused("copy", From) && Inner.Copy(To, From);
	}
	std::vector<bool> PutFilesBack(std::span<const FQVFileCopy> Copies) override
	{
		std::vector<bool> Done;
		for (const FQVFileCopy& Each : Copies)
		{
			Done.push_back(!IsRefused("copy", Each.From) && Inner.PutFilesBack({&Each, 1}).front());
		}
		return Done;
	}
	bool LoadFileToString(std::string& OutText, std::string_view Path) const override
	{
		return Inner.LoadFileToString(OutText, Path);
	}
	bool LoadFileToArray(std::vector<std::byte>& OutBytes, std::string_view Path) const override
	{
		return Inner.LoadFileToArray(OutBytes, Path);
	}
	bool SaveStringToFile(std::string_view Text, std::string_view Path) override
	{
		return !IsRefused("save", Path) && Inner.SaveStringToFile(Text, Path);
	}
	std::unique_ptr<IQVFileLock> TryLock(std::string_view Path) override
	{
		return IsRefused("lock", Path) ? nullptr : Inner.TryLock(Path);
	}

private:
	using FWalk = void (IQVFiles::*)(std::string_view, const FVisitor&) const;

	IQVFiles& Inner;

	bool IsRefused(std::string_view Operation, std::string_view Path) const
	{
		return Refuse && Refuse(Operation, Path);
	}

	void Walk(FWalk Each, std::string_view Path, const FVisitor& Visitor) const
	{
		std::vector<std::pair<std::string, bool>> Entries;
		(Inner.*Each)(Path,
			[&Entries](std::string_view Entry, bool bIsDirectory)
			{
				Entries.emplace_back(Entry, bIsDirectory);
				return true;
			});
		if (bReverseWalks)
		{
			std::reverse(Entries.begin(), Entries.end());
		}
		for (const auto& [Entry, bIsDirectory] : Entries)
		{
			if (!Visitor(Entry, bIsDirectory))
			{
				return;
			}
		}
	}
};
} // namespace QVTest
