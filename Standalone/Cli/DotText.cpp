// SPDX-License-Identifier: MIT
#include "Standalone/Cli/DotText.h"

#include "Core/QVPrintf.h"

namespace QVCli
{
namespace
{
/** In quotes. A backslash would begin an escape of Graphviz, an ampersand an entity. */
std::string Quote(std::string_view Text)
{
	std::string Quoted = "\"";
	for (const char Letter : Text)
	{
		if (Letter == '&')
		{
			Quoted += "&amp;";
			continue;
		}
		if (Letter == '"' || Letter == '\\')
		{
			Quoted += '\\';
		}
		Quoted += Letter;
	}
	return Quoted + '"';
}

/** Two lines in one pair of quotes. */
std::string QuoteLabel(const FReferenceNode& Node)
{
	if (Node.Detail.empty())
	{
		return Quote(Node.Label);
	}
	std::string Label = Quote(Node.Label);
	Label.pop_back();
	return Label + "\\n" + Quote(Node.Detail).substr(1);
}
} // namespace

std::string ToDot(const FReferenceGraph& Graph)
{
	std::string Dot = QVPrintf("digraph references {\n"
							   "\tgraph [rankdir=LR, ranksep=0.8, nodesep=0.12, bgcolor=\"#ffffff\", labelloc=t, "
							   "fontname=\"sans-serif\", label=%s];\n"
							   "\tnode [shape=box, style=\"filled,rounded\", fontname=\"sans-serif\", fontsize=11];\n"
							   "\tedge [color=\"#8795a5\", arrowsize=0.6];\n",
		Quote(Graph.Title));
	for (std::size_t Place = 0; Place < Graph.Nodes.size(); ++Place)
	{
		const FReferenceNode& Node = Graph.Nodes[Place];
		const FReferenceStyle& Style = StyleOf(Node.Kind);
		Dot += QVPrintf("\tn%d [label=%s, tooltip=%s, fillcolor=\"%s\", color=\"%s\"];\n", Place, QuoteLabel(Node),
			Quote(Node.Name), Style.Fill, Style.Border);
	}
	for (const FReferenceEdge& Edge : Graph.Edges)
	{
		Dot += QVPrintf("\tn%d -> n%d [tooltip=%s%s];\n", Edge.From, Edge.To,
			Quote(QVPrintf("%s refers to %s", Graph.Nodes[Edge.From].Name, Graph.Nodes[Edge.To].Name)),
			Edge.bHard ? "" : ", style=dashed");
	}
	return Dot + "}\n";
}
} // namespace QVCli
