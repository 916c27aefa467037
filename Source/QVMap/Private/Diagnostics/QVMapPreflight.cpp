// SPDX-License-Identifier: MIT
#include "Diagnostics/QVMapPreflight.h"

#include "Core/QVCheck.h"
#include "Core/QVLog.h"
#include "Core/QVString.h"
#include "Diagnostics/QVMapDiagnostics.h"
#include "Engine/QVDialogs.h"
#include "Engine/QVEngine.h"
#include "Engine/QVGameThread.h"

#include <algorithm>
#include <array>

namespace
{
/** A dialog does not scroll. */
constexpr std::size_t MostListed = 12;
constexpr std::array<EQVDiagCategory, 4> Categories = {EQVDiagCategory::Environment, EQVDiagCategory::ModContent,
	EQVDiagCategory::References, EQVDiagCategory::LastExport};

FQVMapPreflight::FOpenDiagnostics BringToFront;

enum class EAnswer : std::uint8_t
{
	Cancel,
	PackAnyway,
	ShowReport,
	FixRedirectors
};

template<class... Args>
FQVText Text(std::string_view Key, std::string_view Source, Args&&... Arguments)
{
	return {FQVMapPreflight::TextNamespace, Key, Source, std::forward<Args>(Arguments)...};
}

/** What the user is asked about: errors first, and of one severity in the order of the groups. */
std::vector<const FQVDiagnosticFinding*> FindProblems(const FQVDiagnosticReport& Report)
{
	std::vector<const FQVDiagnosticFinding*> Problems;
	for (const EQVDiagCategory Category : Categories)
	{
		std::ranges::copy_if(FQVDiagnosticModel::WorstFirst(Report, Category), std::back_inserter(Problems),
			[](const auto* Finding) { return Finding->Severity >= EQVDiagSeverity::Warning; });
	}
	std::ranges::stable_sort(Problems, std::greater(), [](const auto* Finding) { return Finding->Severity; });
	return Problems;
}

std::string FormatProblem(const FQVDiagnosticFinding& Finding)
{
	const auto Below = [](const FQVText& Line)
	{ return "\n      " + FQVString::ReplaceAll(Line.ToString(), "\n", "\n      "); };
	const std::string Remedy = Finding.Remedy.ToString();
	return "  \u2022 " + Finding.Title.ToString() + Below(Finding.Detail) +
		   (Remedy.empty() ? Remedy : Below(Finding.Remedy)) + "\n";
}

std::string FormatProblems(const std::vector<const FQVDiagnosticFinding*>& Problems)
{
	std::string List;
	for (std::size_t Place = 0; Place < std::min(Problems.size(), MostListed); ++Place)
	{
		List += FormatProblem(*Problems[Place]);
	}
	return Problems.size() <= MostListed
			   ? List
			   : List + Text("PreflightMore", "  ... and {0} more.\n", Problems.size() - MostListed).ToString();
}

/** One dialog before one pack; asked again as long as what it starts leads back to it. */
class FPreflight
{
public:
	explicit FPreflight(const FQVPreflightOptions& InOptions)
		: Options(InOptions)
	{
	}

	FQVPreflightResult Run()
	{
		for (;;)
		{
			Check();
			if (Report.bCancelled)
			{
				QVLog(EQVLogVerbosity::Log, "QVMap: Preflight cancelled - packing '%s' without a completed check",
					Options.ModName);
				return {EQVPreflightVerdict::GoOnUnchecked, false};
			}
			if (Problems.empty())
			{
				QVLog(EQVLogVerbosity::Log, "QVMap: Preflight clean for '%s'", Options.ModName);
				return GoOn();
			}
			const EAnswer Answer = Ask();
			if (Answer != EAnswer::FixRedirectors)
			{
				return Conclude(Answer);
			}
			QVLog(EQVLogVerbosity::Log, "QVMap: Redirectors fixed at preflight - re-running the check");
		}
	}

private:
	const FQVPreflightOptions& Options;
	FQVDiagnosticReport Report;
	std::vector<const FQVDiagnosticFinding*> Problems;
	/** A fix that did not help is not offered again. */
	bool bFixTried = false;

	void Check()
	{
		FQVDiagnosticOptions Asked = FQVDiagnosticOptions::Everything();
		Asked.ModName = Options.ModName;
		Asked.bUseEditorWorld = Options.bOpenMap;
		Report = FQVMapDiagnostics::RunDiagnostics(Asked);
		Problems = FindProblems(Report);
	}

	FQVPreflightResult GoOn() const { return {EQVPreflightVerdict::GoOn, Options.bOpenMap}; }

	FQVPreflightResult Conclude(EAnswer Answer) const
	{
		if (Answer == EAnswer::PackAnyway)
		{
			QVLog(EQVLogVerbosity::Warning, "QVMap: Packing '%s' past the preflight - %d error(s), %d warning(s)",
				Options.ModName, Count(EQVDiagSeverity::Error), Count(EQVDiagSeverity::Warning));
			return GoOn();
		}
		if (Answer == EAnswer::ShowReport)
		{
			BringToFront(Report);
		}
		QVLog(EQVLogVerbosity::Log, "QVMap: Pack cancelled at preflight");
		return {EQVPreflightVerdict::Cancelled, Options.bOpenMap};
	}

	std::int32_t Count(EQVDiagSeverity Severity) const { return FQVDiagnosticModel::CountBySeverity(Report, Severity); }

	const FQVDiagnosticFinding* FindFix() const
	{
		const auto Fix = std::ranges::find_if(Problems, [](const auto* Finding)
			{ return Finding->Id == FQVName("Ref.Redirectors") && Finding->ActionCallback != nullptr; });
		return Options.bMayMend && !bFixTried && Fix != Problems.end() ? *Fix : nullptr;
	}

	FQVText MakeBody() const
	{
		const std::string& Name = Options.MapName.empty() ? Options.ModName : Options.MapName;
		const bool bErrors = Count(EQVDiagSeverity::Error) > 0;
		return Text("PreflightBody", "{0}\n\n{1}\n{2}",
			Text("PreflightHeadline", "{0}: {1} error(s), {2} warning(s).", Name, Count(EQVDiagSeverity::Error),
				Count(EQVDiagSeverity::Warning)),
			FormatProblems(Problems),
			bErrors ? Text("PreflightErrorFooter",
						  "Packed as it stands, the map may not load in the game, or load and not be playable there.")
					: Text("PreflightWarnFooter", "These are warnings, not failures - packing will work either way."));
	}

	/** FixRedirectors only when they were fixed. */
	EAnswer Ask()
	{
		for (;;)
		{
			const FQVDiagnosticFinding* Fix = FindFix();
			const EAnswer Answer = ShowDialog(Fix);
			if (Answer != EAnswer::FixRedirectors)
			{
				return Answer;
			}
			bFixTried = true;
			if (Fix->ActionCallback())
			{
				return Answer;
			}
		}
	}

	EAnswer ShowDialog(const FQVDiagnosticFinding* Fix) const
	{
		FQVCustomDialog Dialog;
		Dialog.Title = Text("PreflightTitle", "Map Check");
		Dialog.Body = MakeBody();
		std::vector<EAnswer> Answers = {EAnswer::Cancel, EAnswer::PackAnyway};
		Dialog.Buttons = {Text("CancelAndFix", "Cancel and Fix"), Text("PackAnyway", "Pack Anyway")};
		if (Count(EQVDiagSeverity::Error) == 0)
		{
			std::ranges::reverse(Answers);
			std::ranges::reverse(Dialog.Buttons);
		}
		Dialog.Cancel = Answers[0] == EAnswer::Cancel ? 0 : 1;
		Dialog.GoOn = 1 - Dialog.Cancel;
		if (Fix != nullptr)
		{
			Answers.push_back(EAnswer::FixRedirectors);
			Dialog.Buttons.push_back(Fix->ActionLabel);
		}
		if (BringToFront)
		{
			Answers.push_back(EAnswer::ShowReport);
			Dialog.Buttons.push_back(Text("OpenDiagnostics", "Open Diagnostics"));
		}
		return Answers.at(FQVEngine::Get().Dialogs->ShowCustomDialog(Dialog));
	}
};
} // namespace

FQVPreflightResult FQVMapPreflight::Run(const FQVPreflightOptions& Options)
{
	QV_CHECK(FQVEngine::Get().GameThread->IsInGameThread());
	return FPreflight(Options).Run();
}

void FQVMapPreflight::SetOpenDiagnostics(FOpenDiagnostics Open)
{
	BringToFront = std::move(Open);
}
