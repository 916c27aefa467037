// SPDX-License-Identifier: MIT
#include "Tests/Crash/CrashPlan.h"

#include "Core/QVPrintf.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <map>
#include <stdexcept>

namespace fs = std::filesystem;

namespace QVTest
{
namespace
{
constexpr const char* Usage =
	"crash-harness [--kinds NAME,NAME...] [--step N] [--seed N] [--point N] [--scenes N] [--workers N] "
	"[--keep FOLDER]\n"
	"  --kinds    which faults; all of them if not given:";

void TellUsage()
{
	std::fputs(Usage, stderr);
	for (const FFaultKind& Kind : FaultKinds)
	{
		std::fprintf(stderr, "%s", Kind.Fault == EFault::Count ? "" : (" " + std::string(Kind.Name)).c_str());
	}
	std::fputs("\n  --step     every how manieth point; --seed says with which one that begins\n"
			   "  --point    this point alone\n"
			   "  --scenes   how many interrupted packs are recovered with a second fault in that\n"
			   "  --keep     the project is copied there before anything is packed\n",
		stderr);
}

bool ReadNumber(std::string_view Text, std::uint64_t& Out)
{
	const auto [End, Error] = std::from_chars(Text.data(), Text.data() + Text.size(), Out);
	return Error == std::errc() && End == Text.data() + Text.size();
}

bool ReadKinds(std::string_view Names, std::vector<const FFaultKind*>& Out)
{
	while (!Names.empty())
	{
		const std::size_t Comma = std::min(Names.find(','), Names.size());
		Out.push_back(FindFaultKind(Names.substr(0, Comma)));
		Names.remove_prefix(std::min(Comma + 1, Names.size()));
		if (Out.back() == nullptr || Out.back()->Fault == EFault::Count)
		{
			return false;
		}
	}
	return true;
}
} // namespace

bool FCrashOptions::Read(int Count, const char* const* Words)
{
	std::uint64_t WorkerCount = Workers;
	const std::map<std::string_view, std::uint64_t*> Numbers = {
		{"--step", &Step}, {"--seed", &Seed}, {"--point", &Point}, {"--scenes", &Scenes}, {"--workers", &WorkerCount}};
	bool bGood = Count % 2 == 1;
	for (int Index = 1; bGood && Index < Count; Index += 2)
	{
		const std::string_view Name = Words[Index];
		const std::string_view Value = Words[Index + 1];
		const auto Found = Numbers.find(Name);
		if (Found != Numbers.end())
		{
			bGood = ReadNumber(Value, *Found->second);
			continue;
		}
		bGood = Name == "--keep" || (Name == "--kinds" && ReadKinds(Value, Kinds));
		Keep = Name == "--keep" ? fs::path(Value) : Keep;
	}
	if (!bGood || Step == 0 || WorkerCount == 0)
	{
		TellUsage();
		return false;
	}
	Workers = static_cast<unsigned>(WorkerCount);
	const bool bAll = Kinds.empty();
	for (std::size_t Place = 1; bAll && Place < FaultKinds.size(); ++Place)
	{
		Kinds.push_back(&FaultKinds[Place]);
	}
	return true;
}

FCrashScenes::FCrashScenes(const FCrashOptions& InOptions)
	: Options(InOptions)
{
	BuildBaseRelease();
	Own = ReadOwnFiles(Original.Folder());
	if (!Options.Keep.empty())
	{
		CopyTree(Original.Folder(), Options.Keep);
	}
	Scenes.reserve(2 * Options.Scenes + 1);
	Scenes.push_back({"pack", "pack", Original.Folder(), {"-q", "pack", FCrashProject::Map}, false, false});
	const FRunEnd Whole = RunUndisturbed(Scenes.front());
	AddJobs(Scenes.front(), Whole);
	AddInterrupted(Whole);
}

void FCrashScenes::BuildBaseRelease()
{
	Bench.TakeCopyOf(Original.Folder());
	const FRunEnd End = Bench.Run({"-q", "base-release", "build"});
	if (End.Code != 0)
	{
		throw std::runtime_error("the base release could not be built: " + End.Err);
	}
	fs::remove_all(Original.Folder());
	CopyTree(Bench.Project(), Original.Folder());
}

FRunEnd FCrashScenes::RunUndisturbed(const FScene& Scene) const
{
	Bench.TakeCopyOf(Scene.Template);
	const FRunEnd End = Bench.Run(Scene.Words, {&FaultKinds[0], 0});
	if (End.Code != 0 || End.Operations.empty())
	{
		throw std::runtime_error(Scene.Name + " does not even go well undisturbed: " + End.Err);
	}
	return End;
}

/** Cut off at places spread over all of the time in which the mod is not as it was. */
void FCrashScenes::AddInterrupted(const FRunEnd& Whole)
{
	const auto Changes = Whole.OfLetter(OperationLetters[0]);
	const auto IsOwnMap = [](const FNotedOperation* Each)
	{ return Each->Name == KindOf(EOperation::Rename).Name && Each->Other.ends_with(".umap"); };
	const auto First = std::find_if(Changes.begin(), Changes.end(), IsOwnMap);
	if (First == Changes.end())
	{
		throw std::runtime_error("the pack has not changed the map");
	}
	const std::uint64_t Begin = (*First)->Number + 1;
	for (std::uint64_t Index = 0; Index < Options.Scenes; ++Index)
	{
		const std::uint64_t Point = Begin + (Changes.size() - Begin) * Index / Options.Scenes;
		const FDisturbance Fault{FindFaultKind("kill-before"), Point};
		Bench.TakeCopyOf(Original.Folder());
		const FRunEnd End = Bench.Run(Scenes.front().Words, Fault);
		const fs::path Template = Kept.Path() / std::to_string(Point);
		CopyTree(Bench.Project(), Template);
		for (const char* Verb : {"recover", "pack"})
		{
			FScene Scene{QVPrintf("%s-2", Verb), QVPrintf("%s after a pack cut off at %s", Verb, std::to_string(Point)),
				Template, {"-q", Verb}, FCrashTrial::CopiesMayStay(End, Fault), true};
			Scene.Words.resize(Verb == std::string_view("pack") ? 3 : 2, FCrashProject::Map);
			Scenes.push_back(std::move(Scene));
			AddJobs(Scenes.back(), RunUndisturbed(Scenes.back()));
		}
	}
}

void FCrashScenes::AddJobs(const FScene& Scene, const FRunEnd& Whole)
{
	for (const FFaultKind* Kind : Options.Kinds)
	{
		std::uint64_t Place = Options.Seed;
		for (const FNotedOperation& Each : Whole.Operations)
		{
			const auto Operation = std::find_if(OperationKinds.begin(), OperationKinds.end(),
				[&Each](const FOperationKind& Known) { return Known.Name == Each.Name; });
			const bool bCounted = Operation != OperationKinds.end() &&
								  Each.Letter == OperationLetters[static_cast<std::size_t>(Kind->Operations)] &&
								  CanStrike(*Kind, *Operation);
			if (bCounted && (Options.Point != 0 ? Each.Number == Options.Point : Place++ % Options.Step == 0))
			{
				AllJobs.push_back({&Scene, {Kind, Each.Number}});
			}
		}
	}
}
} // namespace QVTest
