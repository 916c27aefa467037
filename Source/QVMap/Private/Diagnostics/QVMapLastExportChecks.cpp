// SPDX-License-Identifier: MIT
#include "Diagnostics/QVMapLastExportChecks.h"

#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Diagnostics/QVMapFindingMaker.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Export/QVMapLastExport.h"
#include "Workspace/QVMapPaths.h"

namespace
{
using enum EQVDiagSeverity;
constexpr FQVFindingMaker Group(EQVDiagCategory::LastExport);

const IQVFiles& Files()
{
	return *FQVEngine::Get().Files;
}

FQVDiagnosticFinding TellNoRecord()
{
	constexpr std::string_view Id = "Export.Record";
	FQVText Title = Group.Text("ExportRecordTitle", "Last export known");
	const std::string Path = FQVMapLastExport::GetLastExportRecordPath();
	if (!Files().FileExists(Path))
	{
		return Group.Make(
			Info, Id, std::move(Title), Group.Text("ExportNone", "Nothing has been exported from this project yet."));
	}
	FQVDiagnosticFinding Finding = Group.Make(Info, Id, std::move(Title),
		Group.Text("ExportUnreadable", "The record could not be read: {0}", Path),
		Group.Text("ExportUnreadableRemedy", "The next export writes a new one."));
	Group.OfferFile(Finding, Group.Text("OpenRecord", "Open Record"), Path);
	return Finding;
}

FQVDiagnosticFinding TellOther(const FQVLastExportRecord& Record)
{
	return Group.Make(Info, "Export.Record", Group.Text("ExportRecordTitle", "Last export known"),
		Group.Text(
			"ExportOther", "The last export was of '{0}', {1}.", Record.PluginName, Record.Timestamp.ToDisplayText()));
}

FQVDiagnosticFinding TellOutcome(const FQVLastExportRecord& Record)
{
	constexpr std::string_view Id = "Export.Result";
	FQVText Title = Group.Text("ExportResultTitle", "Last export succeeded");
	const std::string Time = Record.Timestamp.ToDisplayText();
	if (Record.bSuccess)
	{
		return Group.Pass(
			Id, std::move(Title), Group.Text("ExportSucceeded", "'{0}' was exported {1}.", Record.PluginName, Time));
	}
	FQVDiagnosticFinding Finding = Group.Make(Info, Id, std::move(Title),
		Group.Text("ExportFailed", "The export of '{0}' {1} failed while {2}: {3}", Record.PluginName, Time,
			Record.FailedStage, Record.ErrorMessage),
		Group.Text("ExportFailedRemedy", "Remove the reason and export again."));
	if (!Record.LogPath.empty() && Files().FileExists(Record.LogPath))
	{
		Group.OfferFile(Finding, Group.Text("OpenLog", "Open Log"), Record.LogPath);
	}
	return Finding;
}

FQVDiagnosticFinding TellPak(const FQVLastExportRecord& Record)
{
	constexpr std::string_view Id = "Export.Pak";
	FQVText Title = Group.Text("ExportPakTitle", "Pak still there");
	if (!Files().FileExists(Record.PakPath))
	{
		return Group.Make(Info, Id, std::move(Title),
			Group.Text("ExportPakGone", "No longer there: {0}", Record.PakPath),
			Group.Text("ExportPakGoneRemedy", "Export again to get a new one."));
	}
	FQVDiagnosticFinding Finding = Group.Pass(Id, std::move(Title),
		Group.Text("ExportPakThere", "{0} ({1})", Record.PakPath, Group.FormatBytes(Files().FileSize(Record.PakPath))));
	Group.OfferFolderOf(Finding, Record.PakPath);
	return Finding;
}

FQVDiagnosticFinding TellContent(const FQVLastExportRecord& Record)
{
	return Group.Make(Info, "Export.Content", Group.Text("ExportContentTitle", "What the pak holds"),
		Record.bFilterUnusedActive
			? Group.Text("ExportContentFiltered", "{0} file(s) of {1} map(s); {2} unused file(s) were left out.",
				  Record.FilesPacked, Record.MapsCooked.size(), Record.FilesSkipped)
			: Group.Text("ExportContent", "{0} file(s) of {1} map(s).", Record.FilesPacked, Record.MapsCooked.size()));
}

struct FChanges
{
	std::size_t Count = 0;
	std::string Newest;
	FQVDateTime NewestTime;
};

FChanges FindChangesSince(const std::string& Folder, FQVDateTime Time)
{
	FChanges Changes;
	Files().IterateDirectoryRecursively(Folder,
		[&](std::string_view Path, bool bIsDirectory)
		{
			const FQVDateTime Changed = bIsDirectory ? FQVDateTime() : Files().GetTimeStamp(Path);
			Changes.Count += Changed > Time ? 1 : 0;
			if (Changed > Time && Changed > Changes.NewestTime)
			{
				Changes.NewestTime = Changed;
				Changes.Newest = Path;
			}
			return true;
		});
	return Changes;
}

/** Info: whoever works on the map has changed it, that is no fault. */
FQVDiagnosticFinding TellAge(const FQVLastExportRecord& Record)
{
	constexpr std::string_view Id = "Export.UpToDate";
	FQVText Title = Group.Text("ExportAgeTitle", "Pak newer than the map");
	const std::string Content = FQVPath::Combine(FQVMapPaths::GetPluginsDir(), Record.PluginName, "Content");
	const FChanges Changes = FindChangesSince(Content, Files().GetTimeStamp(Record.PakPath));
	if (Changes.Count == 0)
	{
		return Group.Pass(Id, std::move(Title), Group.Text("ExportAgePass", "No file of the map has changed since."));
	}
	std::string Newest = Changes.Newest;
	FQVPath::MakePathRelativeTo(Newest, Content + "/");
	return Group.Make(Info, Id, std::move(Title),
		Group.Text(
			"ExportAgeChanged", "{0} file(s) of the map have changed since, the last was {1}.", Changes.Count, Newest),
		Group.Text("ExportAgeRemedy", "Export again to have the changes in the pak."));
}

FQVDiagnosticFinding TellLog(const FQVLastExportRecord& Record)
{
	constexpr std::string_view Id = "Export.Log";
	FQVText Title = Group.Text("ExportLogTitle", "Export log still there");
	if (Record.LogPath.empty() || !Files().FileExists(Record.LogPath))
	{
		return Group.Make(Info, Id, std::move(Title),
			Record.LogPath.empty() ? Group.Text("ExportLogNone", "The export wrote no log.")
								   : Group.Text("ExportLogGone", "No longer there: {0}", Record.LogPath));
	}
	FQVDiagnosticFinding Finding = Group.Pass(Id, std::move(Title), Group.Shown(Record.LogPath));
	Group.OfferFile(Finding, Group.Text("OpenLog", "Open Log"), Record.LogPath);
	return Finding;
}
} // namespace

void FQVMapLastExportChecks::CheckLastExport(const FQVDiagnosticOptions& Options, FQVDiagnosticFindings& Findings)
{
	FQVLastExportRecord Record;
	if (!FQVMapLastExport::ReadLastExportRecord(Record))
	{
		Findings.push_back(TellNoRecord());
		return;
	}
	if (!Options.ModName.empty() && !FQVString::EqualsIgnoreCase(Options.ModName, Record.PluginName))
	{
		Findings.push_back(TellOther(Record));
		return;
	}
	Findings.push_back(TellOutcome(Record));
	if (Record.bSuccess)
	{
		Findings.push_back(TellPak(Record));
		Findings.push_back(TellContent(Record));
	}
	if (Record.bSuccess && Files().FileExists(Record.PakPath))
	{
		Findings.push_back(TellAge(Record));
	}
	Findings.push_back(TellLog(Record));
}
