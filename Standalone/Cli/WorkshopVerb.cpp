// SPDX-License-Identifier: MIT
#include "Core/QVPath.h"
#include "Core/QVString.h"
#include "Standalone/Cli/JsonFileProblem.h"
#include "Standalone/Cli/RegistryScan.h"
#include "Standalone/Cli/Session.h"
#include "Standalone/Cli/TypedPath.h"
#include "Standalone/Cli/WorkshopField.h"
#include "Standalone/Cli/WorkshopReport.h"

namespace QVCli
{
namespace
{
struct FWorkshopOptions
{
	std::string Map;
	std::string Field;
	std::vector<std::string> Values;
};

/** Nothing, with the reason told, if there is no such mod or its record cannot be read. */
std::optional<FWorkshopDetails> LoadDetails(FSession& Session, FWorkshopOptions& Options)
{
	if (!ResolveMod(Session, Options.Map))
	{
		return std::nullopt;
	}
	const FQVScanResult Scan = FQVMapScanner::ScanMods();
	const FQVModInfo& Mod = *Scan.Find(Options.Map);
	const std::string Problem = JsonFileProblem(FQVMapWorkshopConfig::GetConfigPath(Mod.PluginDir));
	if (!Problem.empty())
	{
		Session.Console.Fail(Problem);
		Session.Console.Say("  fix: mend it by hand, or delete it to begin anew");
		return std::nullopt;
	}
	return FWorkshopDetails::Load(Mod);
}

void WarnOfProblems(FConsole& Console, const FWorkshopDetails& Details)
{
	for (const std::string& Problem : Details.FindProblems())
	{
		Console.Warn(Problem);
	}
}

EExitCode Show(FCommandLine& Line, FWorkshopOptions Options)
{
	if (Options.Map.empty())
	{
		Line.Console.Fail("name the map, as in qvmap workshop Cave");
		return EExitCode::WrongUse;
	}
	const std::unique_ptr<FSession> Session = FSession::Open(Line);
	const std::optional<FWorkshopDetails> Details =
		Session != nullptr ? LoadDetails(*Session, Options) : std::optional<FWorkshopDetails>();
	if (!Details)
	{
		return EExitCode::Failed;
	}
	Line.Options.bJson ? Session->Console.Document(Details->ToJson()) : Details->Print(Session->Console);
	WarnOfProblems(Session->Console, *Details);
	return EExitCode::Done;
}

/** What was typed for a list, tags taken apart at their commas, converted; nothing, with the reason told, if one of
 * them will not do. */
std::optional<std::vector<std::string>> ConvertAll(
	FConsole& Console, const FWorkshopField& Field, const FQVModInfo& Mod, const std::vector<std::string>& Typed)
{
	std::vector<std::string> Converted;
	for (const std::string& Each : Typed)
	{
		const bool bTags = Field.List == &FQVWorkshopConfig::Tags;
		for (const std::string_view Piece : bTags ? FQVString::Split(Each, ',') : std::vector<std::string_view>{Each})
		{
			std::string Error;
			std::string Value(bTags ? FQVString::TrimStartAndEnd(Piece) : Piece);
			Value = Field.Convert(Mod, Value, Error);
			if (!Error.empty())
			{
				Console.Fail(Error);
				return std::nullopt;
			}
			if (!Value.empty() || Field.Text != nullptr)
			{
				Converted.push_back(std::move(Value));
			}
		}
	}
	return Converted;
}

bool Set(
	FConsole& Console, FWorkshopDetails& Details, const FWorkshopField& Field, const std::vector<std::string>& Typed)
{
	if (Field.Text != nullptr && Typed.size() != 1)
	{
		Console.Fail(QVPrintf("%s takes one value, not %d", Field.Key, Typed.size()));
		return false;
	}
	const auto Values = ConvertAll(Console, Field, Details.Mod, Typed);
	if (!Values)
	{
		return false;
	}
	if (Field.Text != nullptr)
	{
		Details.Config.*Field.Text = Values->front();
		return true;
	}
	Details.Config.*Field.List = *Values;
	return true;
}

bool Add(
	FConsole& Console, FWorkshopDetails& Details, const FWorkshopField& Field, const std::vector<std::string>& Typed)
{
	const auto Values = ConvertAll(Console, Field, Details.Mod, Typed);
	if (Values)
	{
		std::vector<std::string>& List = Details.Config.*Field.List;
		List.insert(List.end(), Values->begin(), Values->end());
	}
	return Values.has_value();
}

/** By what stands in the list, by the full path of what was typed, or by the name of a file alone. */
bool Remove(
	FConsole& Console, FWorkshopDetails& Details, const FWorkshopField& Field, const std::vector<std::string>& Typed)
{
	std::vector<std::string>& List = Details.Config.*Field.List;
	for (const std::string& Each : Typed)
	{
		const auto IsMeant = [&Each](const std::string& Entry)
		{ return Entry == Each || Entry == FullPath(Each) || FQVPath::GetCleanFilename(Entry) == Each; };
		if (std::erase_if(List, IsMeant) == 0)
		{
			Console.Fail(QVPrintf("%s has no '%s'%s", Field.Key, Each,
				List.empty() ? std::string(": it is empty") : DidYouMean(Each, List)));
			return false;
		}
	}
	return true;
}

using FEdit = bool (*)(FConsole&, FWorkshopDetails&, const FWorkshopField&, const std::vector<std::string>&);

EExitCode Edit(FCommandLine& Line, FWorkshopOptions Options, FEdit Change)
{
	std::string Error;
	const FWorkshopField* Field = FindWorkshopField(Options.Field, Change != Set, Error);
	if (Field == nullptr)
	{
		Line.Console.Fail(Error);
		return EExitCode::WrongUse;
	}
	const std::unique_ptr<FSession> Session = FSession::Open(Line);
	std::optional<FWorkshopDetails> Details =
		Session != nullptr ? LoadDetails(*Session, Options) : std::optional<FWorkshopDetails>();
	if (!Details || !Change(Line.Console, *Details, *Field, Options.Values))
	{
		return EExitCode::Failed;
	}
	if (!FQVMapWorkshopConfig::Save(Details->Mod.PluginDir, Details->Config))
	{
		Line.Console.Fail(QVPrintf("%s was not changed", Field->Key));
		return EExitCode::Failed;
	}
	Line.Console.Result(QVPrintf("%s = %s", Field->Key,
		Field->Text != nullptr ? Details->Config.*Field->Text : FQVString::Join(Details->Config.*Field->List, ", ")));
	WarnOfProblems(Line.Console, *Details);
	return EExitCode::Done;
}
} // namespace

void AddWorkshopVerb(FCommandLine& Line)
{
	const auto Options = std::make_shared<FWorkshopOptions>();
	CLI::App* Verb = Line.AddVerb(Line.App, "workshop", "Shows a map's Steam Workshop details, or edits them",
		"qvmap workshop Cave\n  qvmap workshop set Cave title \"The Cave\"", {});
	// its callback runs behind that of a verb below it
	Verb->callback(
		[&Line, Options, Verb]
		{
			if (Verb->get_subcommands().empty())
			{
				Line.Chosen = [&Line, Options] { return Show(Line, *Options); };
			}
		});
	Verb->add_option("map", Options->Map, "A mod, or a map of one")->type_name("MAP");
	Line.AddFormat(*Verb);
	const struct
	{
		const char* Name;
		const char* Description;
		const char* Example;
		bool bListsOnly;
		FEdit Change;
	} Edits[] = {
		{"set", "Stores a field", "qvmap workshop set Cave visibility friends_only", false, Set},
		{"add", "Adds to a list", "qvmap workshop add Cave screenshots hall.png \"lake at night.jpg\"", true, Add},
		{"remove", "Removes from a list", "qvmap workshop remove Cave tags parkour", true, Remove},
	};
	for (const auto& Each : Edits)
	{
		CLI::App* Sub = Line.AddVerb(*Verb, Each.Name, Each.Description, Each.Example,
			[&Line, Options, Change = Each.Change] { return Edit(Line, *Options, Change); });
		Sub->add_option("map", Options->Map, "A mod, or a map of one")->required()->type_name("MAP");
		Sub->add_option("field", Options->Field, "One of: " + FQVString::Join(WorkshopFieldKeys(Each.bListsOnly), ", "))
			->required()
			->type_name("FIELD");
		Sub->add_option("value", Options->Values, "What it is to hold; a list takes several")
			->required()
			->type_name("VALUE");
	}
}
} // namespace QVCli
