// SPDX-License-Identifier: MIT
#pragma once

#include "Content/QVMapReferenceAudit.h"

#include <array>

namespace QVCli
{
enum class EReferenceKind : std::uint8_t
{
	Map,
	Internal,
	/** Missing in the game. */
	Untrusted,
	Redirector,
	/** There in every game; a package, or all of a root that the mod refers to. */
	Trusted
};

struct FReferenceNode
{
	/** The package, or `/Engine (12 packages)`. Free of control characters, as all texts of the graph. */
	std::string Name;
	/** `Rock`, or `/Engine (12)`. */
	std::string Label;
	/** Class and size: `StaticMesh, 12 KB`; empty for a root. */
	std::string Detail;
	EReferenceKind Kind = EReferenceKind::Internal;
};

struct FReferenceEdge
{
	std::uint32_t From = 0;
	std::uint32_t To = 0;
	bool bHard = false;
};

/** What the maps of a mod reach, to be drawn. */
struct FReferenceGraph
{
	std::string Title;
	/** Maps first, then the mod's packages in the order in which they were met, then those outside. */
	std::vector<FReferenceNode> Nodes;
	/** No two between the same nodes, and none of a node to itself. */
	std::vector<FReferenceEdge> Edges;
};

/** How each kind is drawn. */
struct FReferenceStyle
{
	EReferenceKind Kind;
	/** For the legend. */
	std::string_view Meaning;
	std::string_view Fill;
	std::string_view Border;
};
extern const std::array<FReferenceStyle, 5> ReferenceStyles;
const FReferenceStyle& StyleOf(EReferenceKind Kind);

/** Asks the registry, as the audit did. Without bAll, trusted packages are one node for each root folder. */
FReferenceGraph MakeReferenceGraph(const std::string& Mod, const FQVReferenceAudit& Audit, bool bAll);

/** `1.25 MB`. */
std::string MegabytesText(std::int64_t Bytes);
/** `/Engine` of `/Engine/BasicShapes/Cube`. */
std::string_view RootOf(std::string_view Package);
} // namespace QVCli
