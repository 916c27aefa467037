// SPDX-License-Identifier: MIT
#include "Standalone/Cli/Inspect.h"
#include "Standalone/Formats/Base/Unicode.h"
#include "Standalone/Formats/Pak/PakReader.h"

#include <map>

namespace QVCli
{
using namespace QVFormats;

namespace
{
struct FPakShare
{
	std::size_t Files = 0;
	std::uint64_t Bytes = 0;
	std::uint64_t StoredBytes = 0;

	void Add(const FPakEntry& Entry)
	{
		++Files;
		Bytes += Entry.UncompressedSize;
		StoredBytes += Entry.Size;
	}
	FQVJson Into(FQVJson Row) const
	{
		return std::move(Row.Set("files", Files)
							 .Set("bytes", static_cast<double>(Bytes))
							 .Set("stored_bytes", static_cast<double>(StoredBytes)));
	}
};
using FPakShares = std::map<std::string, FPakShare>;

/** `.umap`, in small letters; empty for a name without a point. */
std::string ExtensionOf(const FPakEntry& Entry)
{
	const std::size_t Point = Entry.Name.rfind('.');
	return Point == std::string_view::npos ? std::string() : ToLowerAscii(Entry.Name.substr(Point));
}

void AddFooter(const FPakFooter& Footer, FInspectReport& Report)
{
	FQVJson Methods = FQVJson::Array();
	for (const std::string& Method : Footer.Methods)
	{
		if (!Method.empty())
		{
			Methods.Add(Report.Text(Method));
		}
	}
	Report.Field("version", "pak version", static_cast<int>(Footer.Version));
	Report.Field("index_encrypted", "index encrypted", Footer.bIndexEncrypted);
	Report.Field("index_frozen", "index frozen", Footer.bIndexFrozen);
	Report.Field("index_offset", "index at", static_cast<double>(Footer.IndexOffset));
	Report.Field("index_bytes", "index bytes", static_cast<double>(Footer.IndexSize));
	Report.Field("index_hash", "index hash", HashText(Footer.IndexHash));
	Report.Field("methods", "compression methods", std::move(Methods));
}

void AddShares(FInspectReport& Report, const std::string& Key, const std::string& Label, const FPakShares& Shares)
{
	FQVJson Rows = FQVJson::Array();
	for (const auto& [Name, Share] : Shares)
	{
		Rows.Add(Share.Into(FQVJson::Object().Set("name", Report.Text(Name))));
	}
	Report.Table(
		{Key, Label, {{"name", "name"}, {"files", "files"}, {"bytes", "bytes"}, {"stored_bytes", "stored bytes"}},
			std::move(Rows), true});
}

void AddEntries(const FPakReader& Reader, FInspectReport& Report)
{
	FPakShare All;
	std::size_t Encrypted = 0;
	FPakShares Methods;
	FPakShares Extensions;
	for (const FPakEntry& Entry : Reader.Entries())
	{
		All.Add(Entry);
		Encrypted += Entry.bEncrypted ? 1 : 0;
		Methods[std::string(Reader.MethodName(Entry))].Add(Entry);
		Extensions[ExtensionOf(Entry)].Add(Entry);
	}
	Report.Field("mount_point", "mount point", Report.Text(Reader.MountPoint()));
	Report.Field("counts", "holds", All.Into(FQVJson::Object()).Set("encrypted_files", Encrypted));
	AddShares(Report, "compressions", "By compression", Methods);
	AddShares(Report, "extensions", "By extension", Extensions);
	Report.Note("`qvmap pak list` shows the files, `qvmap pak verify` checks them");
}
} // namespace

FStatus InspectPak(FBytes File, FInspectReport& Report)
{
	const TResult<FPakFooter> Footer = FPakFooter::Read(File, Report.FileName());
	if (!Footer)
	{
		return Footer.Error();
	}
	AddFooter(*Footer, Report);
	if (Footer->bIndexEncrypted)
	{
		Report.Note("its index is encrypted: what files it holds cannot be told");
		return Success();
	}
	const TResult<FPakReader> Reader = FPakReader::FromMemory(File, Report.FileName());
	if (!Reader)
	{
		return Reader.Error();
	}
	AddEntries(*Reader, Report);
	return Success();
}
} // namespace QVCli
