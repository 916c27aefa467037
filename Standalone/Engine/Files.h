// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVFiles.h"

namespace QVStandalone
{
/** Files on disk. Listings come sorted by name, so that two runs tell the same story; nobody may depend on it. */
class FFiles : public IQVFiles
{
public:
	bool FileExists(std::string_view Path) const override;
	bool DirectoryExists(std::string_view Path) const override;
	std::int64_t FileSize(std::string_view Path) const override;
	FQVDateTime GetTimeStamp(std::string_view Path) const override;
	void IterateDirectory(std::string_view Path, const FVisitor& Visitor) const override;
	void IterateDirectoryRecursively(std::string_view Path, const FVisitor& Visitor) const override;
	bool CreateDirectoryTree(std::string_view Path) override;
	bool DeleteDirectory(std::string_view Path) override;
	bool DeleteFile(std::string_view Path, bool bEvenReadOnly = false) override;
	bool Move(std::string_view To, std::string_view From) override;
	bool Copy(std::string_view To, std::string_view From) override;
	/** Several at once; each folder is flushed once, at the end. If that fails, all have failed. */
	std::vector<bool> CopyFiles(std::span<const FQVFileCopy> Copies) override;
	std::vector<bool> PutFilesBack(std::span<const FQVFileCopy> Copies) override;
	std::vector<bool> DeleteFiles(std::span<const std::string> Paths, bool bEvenReadOnly = false) override;
	/** One on each core. */
	void LoadFiles(std::span<const std::string> Paths, const FReader& Reader) const override;
	bool LoadFileToString(std::string& OutText, std::string_view Path) const override;
	bool LoadFileToArray(std::vector<std::byte>& OutBytes, std::string_view Path) const override;
	bool SaveStringToFile(std::string_view Text, std::string_view Path) override;
	std::unique_ptr<IQVFileLock> TryLock(std::string_view Path) override;
};
} // namespace QVStandalone
