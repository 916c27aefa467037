// SPDX-License-Identifier: MIT
#include "Standalone/Cli/ReferenceGraph.h"

#include "Core/QVPath.h"
#include "Core/QVPrintf.h"
#include "Core/QVString.h"
#include "Engine/QVEngine.h"
#include "Standalone/Cli/InspectReport.h"

#include <algorithm>
#include <map>
#include <unordered_map>

namespace QVCli
{
const std::array<FReferenceStyle, 5> ReferenceStyles = {{
	{EReferenceKind::Map, "map", "#cfe3f7", "#2b6cb0"},
	{EReferenceKind::Internal, "package of the mod", "#f3f5f7", "#7b8794"},
	{EReferenceKind::Untrusted, "missing in the game", "#fbd5d0", "#c53030"},
	{EReferenceKind::Redirector, "leftover redirector", "#fdebc3", "#b7791f"},
	{EReferenceKind::Trusted, "in every game", "#d5f0dc", "#2f855a"},
}};

const FReferenceStyle& StyleOf(EReferenceKind Kind)
{
	return ReferenceStyles[static_cast<std::size_t>(Kind)];
}

std::string MegabytesText(std::int64_t Bytes)
{
	return QVPrintf("%.2f MB", static_cast<double>(Bytes) / 1048576.0);
}

std::string_view RootOf(std::string_view Package)
{
	return Package.substr(0, Package.find('/', 1));
}

namespace
{
/** A package of the mod may be missing too: something refers to it, but there is no such file. */
std::string DetailOf(std::string_view ClassName, std::int64_t Bytes)
{
	constexpr std::int64_t Kilobyte = 1024;
	constexpr std::int64_t Megabyte = Kilobyte * Kilobyte;
	if (Bytes <= 0)
	{
		return ClassName.empty() ? "not found" : EscapeControls(ClassName);
	}
	const std::string Size =
		Bytes >= Megabyte ? MegabytesText(Bytes) : QVPrintf("%d KB", (Bytes + Kilobyte - 1) / Kilobyte);
	return (ClassName.empty() ? "" : EscapeControls(ClassName) + ", ") + Size;
}

/** The folder that holds the actors of one map, each in a package of its own; empty for any other package. */
std::string_view ActorsFolderOf(std::string_view Package)
{
	constexpr int FoldersByHash = 3;
	if (Package.find("/__ExternalActors__/") == std::string_view::npos &&
		Package.find("/__ExternalObjects__/") == std::string_view::npos)
	{
		return {};
	}
	for (int Folder = 0; Folder < FoldersByHash; ++Folder)
	{
		Package = FQVPath::GetPath(Package);
	}
	return Package;
}

class FGraphMaker
{
public:
	FGraphMaker(const FQVReferenceAudit& InAudit, bool bInAll)
		: Audit(InAudit)
		, bAll(bInAll)
	{
	}

	FReferenceGraph Run()
	{
		AddInternals(true);
		AddInternals(false);
		CountActors();
		for (const FQVExternalReference& Redirector : Audit.LeftoverRedirectors)
		{
			AddExternal(Redirector, EReferenceKind::Redirector);
		}
		for (const FQVExternalReference& Missing : Audit.UntrustedExternal)
		{
			AddExternal(Missing, EReferenceKind::Untrusted);
		}
		AddTrusted();
		AddEdges();
		return std::move(Graph);
	}

private:
	const FQVReferenceAudit& Audit;
	const bool bAll;
	const IQVAssetRegistry& Registry = *FQVEngine::Get().AssetRegistry;
	FReferenceGraph Graph;
	std::unordered_map<FQVName, std::uint32_t> NodeOf;
	/** By the folder of a map's actors: their node, and how many they are. */
	std::map<std::string, std::pair<std::uint32_t, std::size_t>> Actors;
	/** By both ends: where it stands in the graph. */
	std::unordered_map<std::uint64_t, std::size_t> EdgeOf;

	std::uint32_t AddNode(FReferenceNode Node)
	{
		Graph.Nodes.push_back(std::move(Node));
		return static_cast<std::uint32_t>(Graph.Nodes.size() - 1);
	}

	void AddPackage(FQVName Package, std::string_view ClassName, std::int64_t Bytes, EReferenceKind Kind)
	{
		if (!NodeOf.contains(Package))
		{
			NodeOf[Package] = AddNode({EscapeControls(Package.ToView()),
				EscapeControls(FQVPath::GetCleanFilename(Package.ToView())), DetailOf(ClassName, Bytes), Kind});
		}
	}

	void AddInternals(bool bMaps)
	{
		std::vector<FQVAssetData> Assets;
		for (const FQVName Package : Audit.InternalPackages)
		{
			Registry.GetAssetsByPackageName(Package, Assets);
			const FQVAssetData First = Assets.empty() ? FQVAssetData() : Assets.front();
			const bool bMap = std::any_of(Assets.begin(), Assets.end(),
				[](const FQVAssetData& Asset)
				{ return FQVString::EqualsIgnoreCase(Asset.ClassPath.ToView(), FQVAssetData::WorldClass); });
			const EReferenceKind Kind = bMap				   ? EReferenceKind::Map
										: First.IsRedirector() ? EReferenceKind::Redirector
															   : EReferenceKind::Internal;
			if (bMap == bMaps && !JoinActors(Package))
			{
				AddPackage(
					Package, bMap ? "World" : First.GetClassName(), Registry.GetPackageSize(Package).value_or(0), Kind);
			}
		}
	}

	/** Without bAll, the actors of a map are one node. */
	bool JoinActors(FQVName Package)
	{
		const std::string Folder(bAll ? std::string_view() : ActorsFolderOf(Package.ToView()));
		if (Folder.empty())
		{
			return false;
		}
		const auto [Group, bNew] = Actors.try_emplace(Folder);
		if (bNew)
		{
			Group->second.first = AddNode({EscapeControls(Folder),
				QVPrintf("%s of %s", Folder.find("/__ExternalActors__/") != std::string::npos ? "actors" : "objects",
					EscapeControls(FQVPath::GetCleanFilename(Folder))),
				{}, EReferenceKind::Internal});
		}
		++Group->second.second;
		NodeOf[Package] = Group->second.first;
		return true;
	}

	void CountActors()
	{
		for (const auto& [Folder, Group] : Actors)
		{
			Graph.Nodes[Group.first].Detail = QVPrintf("%d packages", Group.second);
		}
	}

	void AddExternal(const FQVExternalReference& Reference, EReferenceKind Kind)
	{
		AddPackage(Reference.Package, Reference.AssetClass, Reference.SizeBytes, Kind);
	}

	void AddTrusted()
	{
		std::map<std::string, std::vector<const FQVExternalReference*>> Roots;
		for (const FQVExternalReference& Trusted : Audit.TrustedExternal)
		{
			if (bAll)
			{
				AddExternal(Trusted, EReferenceKind::Trusted);
				continue;
			}
			Roots[std::string(RootOf(Trusted.Package.ToView()))].push_back(&Trusted);
		}
		for (const auto& [Root, Packages] : Roots)
		{
			const std::string Shown = EscapeControls(Root);
			const std::uint32_t Node = AddNode({QVPrintf("%s (%d packages)", Shown, Packages.size()),
				QVPrintf("%s (%d)", Shown, Packages.size()), {}, EReferenceKind::Trusted});
			for (const FQVExternalReference* Package : Packages)
			{
				NodeOf[Package->Package] = Node;
			}
		}
	}

	void AddEdge(FQVName From, FQVName To, bool bHard)
	{
		const auto Source = NodeOf.find(From);
		const auto Target = NodeOf.find(To);
		if (Source == NodeOf.end() || Target == NodeOf.end() || Source->second == Target->second)
		{
			return;
		}
		const std::uint64_t Key = std::uint64_t{Source->second} << 32 | Target->second;
		const auto [Place, bNew] = EdgeOf.emplace(Key, Graph.Edges.size());
		if (bNew)
		{
			Graph.Edges.push_back({Source->second, Target->second, bHard});
		}
		Graph.Edges[Place->second].bHard |= bHard;
	}

	void AddEdges()
	{
		std::vector<FQVPackageDependency> Dependencies;
		for (const FQVName Package : Audit.InternalPackages)
		{
			Registry.GetDependencies(Package, EQVDependencyQuery::Game, Dependencies);
			for (const FQVPackageDependency& Dependency : Dependencies)
			{
				AddEdge(Package, Dependency.Package, Dependency.bHard);
			}
		}
		for (const auto* List : {&Audit.LeftoverRedirectors, &Audit.TrustedExternal, &Audit.UntrustedExternal})
		{
			for (const FQVExternalReference& Each : *List)
			{
				AddEdge(Each.Package, Each.RedirectorTarget, true);
				AddChainsEnd(Each);
			}
		}
	}

	/** What the audit found behind a redirector is no dependency of the package before it. */
	void AddChainsEnd(const FQVExternalReference& Reference)
	{
		const std::size_t Length = Reference.Chain.size();
		if (Length > 1)
		{
			AddEdge(Reference.Chain[Length - 2], Reference.Chain[Length - 1], Reference.bHardReference);
		}
	}
};
} // namespace

FReferenceGraph MakeReferenceGraph(const std::string& Mod, const FQVReferenceAudit& Audit, bool bAll)
{
	FReferenceGraph Graph = FGraphMaker(Audit, bAll).Run();
	Graph.Title = QVPrintf("What the maps of %s reach: %d of its packages, %d missing in the game (%s), %d leftover "
						   "redirector(s), %d in every game",
		EscapeControls(Mod), Audit.InternalPackages.Num(), Audit.UntrustedExternal.size(),
		MegabytesText(Audit.UntrustedBytes), Audit.LeftoverRedirectors.size(), Audit.TrustedExternal.size());
	return Graph;
}
} // namespace QVCli
