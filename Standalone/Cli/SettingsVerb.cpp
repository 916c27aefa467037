// SPDX-License-Identifier: MIT
#include "Core/QVString.h"
#include "Engine/QVFiles.h"
#include "Standalone/Cli/JsonFileProblem.h"
#include "Standalone/Cli/NearestWord.h"
#include "Standalone/Cli/Session.h"
#include "Standalone/Cli/TextColumns.h"
#include "Workspace/QVMapConfig.h"

#include <optional>

namespace QVCli
{
namespace
{
struct FSettingsOptions
{
	std::string Key;
	std::string Value;
	bool bAll = false;
};

std::unique_ptr<FSession> OpenWithGoodFile(FCommandLine& Line)
{
	std::unique_ptr<FSession> Session = FSession::Open(Line);
	const std::string Problem = Session != nullptr ? JsonFileProblem(FQVMapConfig::GetConfigPath()) : std::string();
	if (!Problem.empty())
	{
		Session->Console.Fail(Problem);
		Session->Console.Say("  until then the defaults are in force");
		Session->Console.Say("  fix: mend it by hand, or set it aside with qvmap settings reset --all");
		return nullptr;
	}
	return Session;
}

const FQVMapSetting* FindSetting(FConsole& Console, const std::string& Key)
{
	const FQVMapSetting* Setting = FQVMapConfig::FindSetting(Key);
	if (Setting == nullptr)
	{
		std::vector<std::string> Keys;
		for (const FQVMapSetting& Each : FQVMapConfig::GetSettings())
		{
			Keys.emplace_back(Each.Key);
		}
		const std::string Nearest = NearestWord(Key, Keys);
		Console.Fail(QVPrintf("there is no setting '%s'%s", Key,
			Nearest.empty() ? ": see qvmap settings list" : QVPrintf(". Did you mean '%s'?", Nearest)));
	}
	return Setting;
}

std::string ValueText(const FQVMapSetting& Setting)
{
	const FQVJson Value = FQVMapConfig::Get(Setting);
	return Setting.bIsBool ? std::string(FQVString::BoolWord(*Value.AsBool())) : *Value.AsString();
}

std::optional<bool> ParseBool(std::string_view Text)
{
	for (const std::string_view Word : {"true", "yes", "on", "1"})
	{
		if (FQVString::EqualsIgnoreCase(Text, Word))
		{
			return true;
		}
	}
	for (const std::string_view Word : {"false", "no", "off", "0"})
	{
		if (FQVString::EqualsIgnoreCase(Text, Word))
		{
			return false;
		}
	}
	return std::nullopt;
}

FQVJson Describe(FQVJson Json, const FQVMapSetting& Setting)
{
	return Json.Set("key", Setting.Key)
		.Set("value", FQVMapConfig::Get(Setting))
		.Set("origin", FQVMapConfig::IsSet(Setting) ? "file" : "default")
		.Set("meaning", Setting.Meaning);
}

std::string LineOf(const FQVMapSetting& Setting)
{
	constexpr std::size_t AssignmentColumns = 40;
	std::string Line = QVPrintf("%s = %s ", Setting.Key, ValueText(Setting));
	const std::size_t Columns = CountColumns(Line);
	Line.append(Columns < AssignmentColumns ? AssignmentColumns - Columns : 0, ' ');
	return QVPrintf("%s%s  %s", Line, FQVMapConfig::IsSet(Setting) ? "(set)    " : "(default)", Setting.Meaning);
}

EExitCode List(FCommandLine& Line)
{
	const std::unique_ptr<FSession> Session = OpenWithGoodFile(Line);
	if (Session == nullptr)
	{
		return EExitCode::Failed;
	}
	FQVJson Json = FQVJson::Array();
	for (const FQVMapSetting& Setting : FQVMapConfig::GetSettings())
	{
		Json.Add(Describe(FQVJson::Object(), Setting));
		if (!Line.Options.bJson)
		{
			Session->Console.Result(LineOf(Setting));
		}
	}
	if (Line.Options.bJson)
	{
		Session->Console.Document(FQVJson::Object()
									  .Set("schema_version", 1)
									  .Set("file", FQVMapConfig::GetConfigPath())
									  .Set("settings", std::move(Json)));
	}
	return EExitCode::Done;
}

EExitCode Get(FCommandLine& Line, const FSettingsOptions& Options)
{
	const std::unique_ptr<FSession> Session = OpenWithGoodFile(Line);
	if (Session == nullptr)
	{
		return EExitCode::Failed;
	}
	const FQVMapSetting* Setting = FindSetting(Session->Console, Options.Key);
	if (Setting == nullptr)
	{
		return EExitCode::WrongUse;
	}
	if (Line.Options.bJson)
	{
		Session->Console.Document(Describe(FQVJson::Object().Set("schema_version", 1), *Setting));
	}
	else
	{
		Session->Console.Result(ValueText(*Setting));
	}
	return EExitCode::Done;
}

EExitCode Set(FCommandLine& Line, const FSettingsOptions& Options)
{
	const std::unique_ptr<FSession> Session = OpenWithGoodFile(Line);
	if (Session == nullptr)
	{
		return EExitCode::Failed;
	}
	const FQVMapSetting* Setting = FindSetting(Session->Console, Options.Key);
	if (Setting == nullptr)
	{
		return EExitCode::WrongUse;
	}
	const std::optional<bool> bValue = ParseBool(Options.Value);
	if (Setting->bIsBool && !bValue)
	{
		Session->Console.Fail(QVPrintf("%s takes true or false, not '%s'", Setting->Key, Options.Value));
		return EExitCode::WrongUse;
	}
	if (!FQVMapConfig::Set(*Setting, Setting->bIsBool ? FQVJson(*bValue) : FQVJson(Options.Value)))
	{
		Session->Console.Fail(QVPrintf("%s was not set", Setting->Key));
		return EExitCode::Failed;
	}
	Session->Console.Result(QVPrintf("%s = %s", Setting->Key, ValueText(*Setting)));
	return EExitCode::Done;
}

EExitCode ResetAll(FSession& Session)
{
	const std::string Path = FQVMapConfig::GetConfigPath();
	IQVFiles& Files = *FQVEngine::Get().Files;
	if (!Files.FileExists(Path))
	{
		Session.Console.Say("all settings are at their defaults already");
		return EExitCode::Done;
	}
	std::string Aside = Path + ".old";
	for (int Number = 2; Files.FileExists(Aside); ++Number)
	{
		Aside = QVPrintf("%s.old.%d", Path, Number);
	}
	if (!Files.Move(Aside, Path))
	{
		Session.Console.Fail(QVPrintf("%s could not be set aside", Path));
		return EExitCode::Failed;
	}
	Session.Console.Result(QVPrintf("all settings are at their defaults; the file was set aside as %s", Aside));
	return EExitCode::Done;
}

EExitCode Reset(FCommandLine& Line, const FSettingsOptions& Options)
{
	if (Options.bAll == !Options.Key.empty())
	{
		Line.Console.Fail("name the setting to reset, or --all");
		return EExitCode::WrongUse;
	}
	const std::unique_ptr<FSession> Session = Options.bAll ? FSession::Open(Line) : OpenWithGoodFile(Line);
	if (Session == nullptr || Options.bAll)
	{
		return Session == nullptr ? EExitCode::Failed : ResetAll(*Session);
	}
	const FQVMapSetting* Setting = FindSetting(Session->Console, Options.Key);
	if (Setting == nullptr)
	{
		return EExitCode::WrongUse;
	}
	if (!FQVMapConfig::Reset(*Setting))
	{
		Session->Console.Fail(QVPrintf("%s was not reset", Setting->Key));
		return EExitCode::Failed;
	}
	Session->Console.Result(QVPrintf("%s = %s", Setting->Key, ValueText(*Setting)));
	return EExitCode::Done;
}
} // namespace

void AddSettingsVerb(FCommandLine& Line)
{
	const auto Options = std::make_shared<FSettingsOptions>();
	CLI::App* Group = Line.AddGroup(
		"settings", "The project's settings for the toolkit", "qvmap settings set filter_unused_assets true");
	CLI::App* ListVerb = Line.AddVerb(*Group, "list", "All settings, their values and where those come from",
		"qvmap settings list --format json", [&Line] { return List(Line); });
	CLI::App* GetVerb = Line.AddVerb(*Group, "get", "One setting's value", "qvmap settings get verbose_logging",
		[&Line, Options] { return Get(Line, *Options); });
	CLI::App* SetVerb = Line.AddVerb(*Group, "set", "Stores a setting", "qvmap settings set verbose_logging true",
		[&Line, Options] { return Set(Line, *Options); });
	CLI::App* ResetVerb = Line.AddVerb(*Group, "reset", "Back to the default", "qvmap settings reset verbose_logging",
		[&Line, Options] { return Reset(Line, *Options); });
	for (CLI::App* Verb : {GetVerb, SetVerb})
	{
		Verb->add_option("key", Options->Key, "The setting")->required()->type_name("KEY");
	}
	SetVerb->add_option("value", Options->Value, "Its new value")->required()->type_name("VALUE");
	ResetVerb->add_option("key", Options->Key, "The setting")->type_name("KEY");
	ResetVerb->add_flag("--all", Options->bAll, "All of them: the settings file is set aside");
	Line.AddFormat(*ListVerb);
	Line.AddFormat(*GetVerb);
}
} // namespace QVCli
