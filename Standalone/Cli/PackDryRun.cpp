// SPDX-License-Identifier: MIT
#include "Standalone/Cli/PackDryRun.h"

#include "Engine/QVAssetRegistry.h"
#include "Export/QVMapImportPaths.h"
#include "Export/QVMapImportPlan.h"
#include "Workspace/QVMapConfig.h"

namespace QVCli
{
namespace
{
std::int64_t SizeOf(FQVName Package)
{
	return FQVEngine::Get().AssetRegistry->GetPackageSize(Package).value_or(0);
}

FQVJson NamesJson(const auto& Names)
{
	FQVJson List = FQVJson::Array();
	for (const FQVName Name : Names)
	{
		List.Add(FQVJson(Name.ToString()));
	}
	return List;
}

FQVJson ToJson(const std::string& Mod, const FQVImportPlan& Plan, bool bSwitchedOn)
{
	FQVJson External = FQVJson::Array();
	for (const FQVName Package : Plan.External)
	{
		External.Add(FQVJson::Object()
						 .Set("package", Package.ToView())
						 .Set("copy", FQVMapImportPaths::MakeImportedName(Mod, Package.ToView()))
						 .Set("bytes", SizeOf(Package)));
	}
	return FQVJson::Object()
		.Set("schema_version", 1)
		.Set("mod", Mod)
		.Set("success", Plan.bSuccess)
		.Set("error", Plan.ErrorMessage)
		.Set("import_external_assets", bSwitchedOn)
		.Set("bring_in", std::move(External))
		.Set("repoint", NamesJson(Plan.Repoint))
		.Set("missing", NamesJson(Plan.Missing))
		.Set("missing_for_cook", NamesJson(Plan.MissingForCook));
}

void PrintList(FConsole& Console, std::string_view Title, const auto& Names)
{
	if (Names.begin() == Names.end())
	{
		return;
	}
	Console.Result(Title);
	for (const FQVName Name : Names)
	{
		Console.Result("  " + Name.ToString());
	}
}

void PrintText(FConsole& Console, const std::string& Mod, const FQVImportPlan& Plan)
{
	if (Plan.External.IsEmpty() && Plan.Missing.IsEmpty())
	{
		Console.Result(QVPrintf("%s uses nothing from elsewhere in the project: nothing would be brought in.", Mod));
		return;
	}
	std::int64_t Bytes = 0;
	for (const FQVName Package : Plan.External)
	{
		Bytes += SizeOf(Package);
	}
	PrintList(Console,
		QVPrintf("Would be brought in for the pack: %d package(s), %.2f MB", Plan.External.Num(),
			static_cast<double>(Bytes) / (1024.0 * 1024.0)),
		Plan.External);
	PrintList(Console,
		QVPrintf("Would refer to the copies, and be put back afterwards: %d package(s)", Plan.Repoint.Num()),
		Plan.Repoint);
	PrintList(Console, QVPrintf("Referred to and not on disk: %d package(s)", Plan.Missing.Num()), Plan.Missing);
}
} // namespace

EExitCode TellImportPlan(FSession& Session, const std::string& Mod, bool bJson)
{
	const FQVImportPlan Plan = FQVImportPlan::Make(Mod, FQVImportPlan::EMemoryOnly::Leave);
	const bool bSwitchedOn = FQVMapConfig::GetImportExternalAssets();
	if (bJson)
	{
		Session.Console.Document(ToJson(Mod, Plan, bSwitchedOn));
	}
	else
	{
		PrintText(Session.Console, Mod, Plan);
	}
	if (!bSwitchedOn)
	{
		Session.Console.Warn("import_external_assets is off: a pack would bring nothing in, and the map would miss it");
	}
	if (!Plan.bSuccess)
	{
		Session.TellFailure(Plan.ErrorMessage);
		return EExitCode::Failed;
	}
	Session.Console.Succeed();
	return EExitCode::Done;
}
} // namespace QVCli
