// SPDX-License-Identifier: MIT
#include "Diagnostics/QVMapLastExportChecks.h"

#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Export/QVMapLastExport.h"
#include "Workspace/QVMapPaths.h"

namespace
{
constexpr auto Category = EQVDiagCategory::LastExport;
constexpr auto Warning = EQVDiagSeverity::Warning;
constexpr auto Info = EQVDiagSeverity::Info;

template<class... Args>
FQVText Text(std::string_view Key, std::string_view Source, Args&&... Arguments)
{
	return FQVDiagnosticModel::Text(Key, Source, std::forward<Args>(Arguments)...);
}

FQVDiagnosticFinding Pass(std::string_view Id, FQVText Title, FQVText Detail)
{
	return FQVDiagnosticModel::MakePassFinding(Category, Id, std::move(Title), std::move(Detail));
}

FQVDiagnosticFinding Make(
	EQVDiagSeverity Severity, std::string_view Id, FQVText Title, FQVText Detail, FQVText Remedy = {})
{
	return FQVDiagnosticModel::MakeFinding(
		Category, Severity, Id, std::move(Title), std::move(Detail), std::move(Remedy));
}

const IQVFiles& Files()
{
	return *FQVEngine::Get().Files;
}

void OfferFolder(FQVDiagnosticFinding& Finding, std::string_view File)
{
	Finding.ActionKind = EQVDiagAction::OpenFolder;
	Finding.ActionLabel = Text("OpenFolder", "Open Folder");
	Finding.ActionPath = FQVPath::GetPath(File);
}

void OfferFile(FQVDiagnosticFinding& Finding, FQVText Label, const std::string& File)
{
	Finding.ActionKind = EQVDiagAction::OpenFile;
	Finding.ActionLabel = std::move(Label);
	Finding.ActionPath = File;
}

FQVDiagnosticFinding TellNoRecord()
{
	constexpr std::string_view Id = "Export.Record";
	FQVText Title = Text("ExportRecordTitle", "Last export known");
	const std::string Path = FQVMapLastExport::GetLastExportRecordPath();
	if (!Files().FileExists(Path))
	{
		return Make(Info, Id, std::move(Title), Text("ExportNone", "Nothing has been exported from this project yet."));
	}
	FQVDiagnosticFinding Finding =
		Make(Warning, Id, std::move(Title), Text("ExportUnreadable", "The record could not be read: {0}", Path),
			Text("ExportUnreadableRemedy", "The next export writes a new one."));
	OfferFile(Finding, Text("OpenRecord", "Open Record"), Path);
	return Finding;
}

FQVDiagnosticFinding TellOther(const FQVLastExportRecord& Record)
{
	return Make(Info, "Export.Record", Text("ExportRecordTitle", "Last export known"),
		Text("ExportOther", "The last export was of '{0}', {1}.", Record.PluginName, Record.Timestamp.ToDisplayText()));
}

FQVDiagnosticFinding TellOutcome(const FQVLastExportRecord& Record)
{
	constexpr std::string_view Id = "Export.Result";
	FQVText Title = Text("ExportResultTitle", "Last export succeeded");
	const std::string Time = Record.Timestamp.ToDisplayText();
	if (Record.bSuccess)
	{
		return Pass(Id, std::move(Title), Text("ExportSucceeded", "'{0}' was exported {1}.", Record.PluginName, Time));
	}
	FQVDiagnosticFinding Finding = Make(Warning, Id, std::move(Title),
		Text("ExportFailed", "The export of '{0}' {1} failed while {2}: {3}", Record.PluginName, Time,
			Record.FailedStage, Record.ErrorMessage),
		Text("ExportFailedRemedy", "Remove the reason and export again."));
	if (!Record.LogPath.empty() && Files().FileExists(Record.LogPath))
	{
		OfferFile(Finding, Text("OpenLog", "Open Log"), Record.LogPath);
	}
	return Finding;
}

FQVDiagnosticFinding TellPak(const FQVLastExportRecord& Record)
{
	constexpr std::string_view Id = "Export.Pak";
	FQVText Title = Text("ExportPakTitle", "Pak still there");
	if (!Files().FileExists(Record.PakPath))
	{
		return Make(Warning, Id, std::move(Title), Text("ExportPakGone", "No longer there: {0}", Record.PakPath),
			Text("ExportPakGoneRemedy", "Export again to get a new one."));
	}
	FQVDiagnosticFinding Finding = Pass(Id, std::move(Title),
		Text("ExportPakThere", "{0} ({1})", Record.PakPath,
			FQVDiagnosticModel::FormatBytes(Files().FileSize(Record.PakPath))));
	OfferFolder(Finding, Record.PakPath);
	return Finding;
}

FQVDiagnosticFinding TellContent(const FQVLastExportRecord& Record)
{
	return Make(Info, "Export.Content", Text("ExportContentTitle", "What the pak holds"),
		Record.bFilterUnusedActive
			? Text("ExportContentFiltered", "{0} file(s) of {1} map(s); {2} unused file(s) were left out.",
				  Record.FilesPacked, Record.MapsCooked.size(), Record.FilesSkipped)
			: Text("ExportContent", "{0} file(s) of {1} map(s).", Record.FilesPacked, Record.MapsCooked.size()));
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
	FQVText Title = Text("ExportAgeTitle", "Pak newer than the map");
	const std::string Content = FQVPath::Combine(FQVMapPaths::GetPluginsDir(), Record.PluginName, "Content");
	const FChanges Changes = FindChangesSince(Content, Files().GetTimeStamp(Record.PakPath));
	if (Changes.Count == 0)
	{
		return Pass(Id, std::move(Title), Text("ExportAgePass", "No file of the map has changed since."));
	}
	std::string Newest = Changes.Newest;
	FQVPath::MakePathRelativeTo(Newest, Content + "/");
	return Make(Info, Id, std::move(Title),
		Text("ExportAgeChanged", "{0} file(s) of the map have changed since, the last was {1}.", Changes.Count, Newest),
		Text("ExportAgeRemedy", "Export again to have the changes in the pak."));
}

FQVDiagnosticFinding TellLog(const FQVLastExportRecord& Record)
{
	constexpr std::string_view Id = "Export.Log";
	FQVText Title = Text("ExportLogTitle", "Export log still there");
	if (Record.LogPath.empty() || !Files().FileExists(Record.LogPath))
	{
		return Make(Info, Id, std::move(Title),
			Record.LogPath.empty() ? Text("ExportLogNone", "The export wrote no log.")
								   : Text("ExportLogGone", "No longer there: {0}", Record.LogPath));
	}
	FQVDiagnosticFinding Finding = Pass(Id, std::move(Title), FQVText::FromString(Record.LogPath));
	OfferFile(Finding, Text("OpenLog", "Open Log"), Record.LogPath);
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
