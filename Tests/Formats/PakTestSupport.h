// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Base/Compression.h"
#include "Standalone/Formats/Pak/PakExtract.h"
#include "Standalone/Formats/Pak/PakWriter.h"
#include "Tests/Support/TempFolder.h"

#include <map>
#include <optional>
#include <random>

namespace QVTest
{
using FContent = std::vector<std::byte>;

FContent BytesOf(std::string_view Text);
FContent RandomBytes(std::size_t Count, unsigned Seed);
/** Random, so that they do not compress, and then so many zeros. */
FContent RandomThenZeros(std::size_t Random, std::size_t Zeros, unsigned Seed = 1);
FContent FromHex(std::string_view Hex);

FContent ReadBytes(const std::filesystem::path& File);
void WriteBytes(const std::filesystem::path& File, const FContent& Content);
/** All files below a folder, by their path there with forward slashes. */
std::map<std::string, FContent> ReadTree(const std::filesystem::path& Folder);

/** A file of a pak that no tool would write. */
struct FForgedFile
{
	std::string Folder;
	std::string Name;
	FContent Stored;
	std::uint32_t Method = 0;
	std::uint64_t UncompressedSize = 0;
	bool bEncrypted = false;
};

/** Writes paks of any version, sound or not. What is not set is as it should be. */
struct FPakForge
{
	QVFormats::EPakVersion Version = QVFormats::EPakVersion::Fnv64BugFix;
	std::string MountPoint = "../../../Cave/Content/";
	std::vector<std::string> Methods = {"Zlib", "Oodle"};
	std::vector<FForgedFile> Files;
	bool bEarlyFooter = false;
	bool bIndexEncrypted = false;
	bool bIndexFrozen = false;
	bool bPlainEntries = false;
	bool bWithDirectory = true;

	/** A file that is stored as it is. */
	FPakForge& Add(std::string Folder, std::string Name, std::string_view Text);
	/** A file that is one zlib block. */
	FPakForge& AddZlib(std::string Folder, std::string Name, const FContent& Content);
	FContent Make() const;
};

QVFormats::TResult<QVFormats::FPakReader> Parse(
	const FContent& Pak, QVFormats::EPakIndexHashes Hashes = QVFormats::EPakIndexHashes::Check);
/** The reader's refusal, or "" when it opens. */
std::string OpenError(const FContent& Pak, QVFormats::EPakIndexHashes Hashes = QVFormats::EPakIndexHashes::Check);
/** "path: message" for each. */
std::vector<std::string> Texts(const std::vector<QVFormats::FPakFinding>& Findings);
} // namespace QVTest
