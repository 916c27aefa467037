// SPDX-License-Identifier: MIT
#include "Standalone/Cli/SvgDrawing.h"

#include "Core/QVPrintf.h"
#include "Core/QVString.h"
#include "Standalone/Cli/LayeredLayout.h"
#include "Standalone/Cli/TextColumns.h"

#include <algorithm>

namespace QVCli
{
namespace
{
constexpr double Margin = 24;
constexpr double HeadHeight = 84;
constexpr double LegendItemWidth = 165;
constexpr std::size_t LabelColumns = 27;
constexpr std::size_t DetailColumns = 34;
constexpr double LabelRoom = 186;
constexpr double DetailScale = 10.0 / 12.0;
constexpr std::string_view LineColour = "#8795a5";
constexpr std::string_view CycleColour = "#9f5fc0";

/** For text and attributes. What XML forbids, beside what the graph is free of, becomes a question mark. */
std::string EscapeXml(std::string_view Text)
{
	static constexpr std::pair<std::string_view, std::string_view> Escapes[] = {
		{"&", "&amp;"}, {"<", "&lt;"}, {">", "&gt;"}, {"\"", "&quot;"}, {"\xEF\xBF\xBE", "?"}, {"\xEF\xBF\xBF", "?"}};
	std::string Escaped(Text);
	for (const auto& [From, To] : Escapes)
	{
		Escaped = FQVString::ReplaceAll(Escaped, From, To);
	}
	return Escaped;
}

/** About as wide as a usual sans-serif font of 12 pixels draws it, rather too wide. */
double EstimateWidth(std::string_view Text)
{
	double Width = 0;
	for (const char Letter : Text)
	{
		const bool bNarrow = std::string_view("ijlftI.,:;|!'()[] ").find(Letter) != std::string_view::npos;
		const bool bWide = std::string_view("MWmw@%").find(Letter) != std::string_view::npos;
		const bool bCapital = Letter >= 'A' && Letter <= 'Z';
		const bool bAscii = static_cast<unsigned char>(Letter) < 0x80;
		Width += !bAscii ? 0 : bWide ? 11.5 : bNarrow ? 4.5 : bCapital ? 8.5 : 7.5;
	}
	const auto IsAscii = [](char Letter) { return static_cast<unsigned char>(Letter) < 0x80; };
	const auto Ascii = static_cast<std::size_t>(std::count_if(Text.begin(), Text.end(), IsAscii));
	return Width + 8.5 * static_cast<double>(CountColumns(Text) - std::min(CountColumns(Text), Ascii));
}

class FSvgWriter
{
public:
	explicit FSvgWriter(const FReferenceGraph& InGraph)
		: Graph(InGraph)
	{
	}

	std::string Run()
	{
		FLayoutInput Input;
		Input.NodeCount = static_cast<std::uint32_t>(Graph.Nodes.size());
		for (std::uint32_t Node = 0; Node < Input.NodeCount; ++Node)
		{
			if (Graph.Nodes[Node].Kind == EReferenceKind::Map)
			{
				Input.Roots.push_back(Node);
			}
		}
		for (const FReferenceEdge& Edge : Graph.Edges)
		{
			Input.Edges.emplace_back(Edge.From, Edge.To);
		}
		BoxWidth = Input.NodeWidth;
		BoxHeight = Input.NodeHeight;
		Layout = LayOut(Input);
		Head();
		Legend();
		Svg += QVPrintf("<g transform=\"translate(%.0f %.0f)\">\n", Margin, HeadHeight);
		Edges();
		Nodes();
		return Svg + "</g>\n</svg>\n";
	}

private:
	const FReferenceGraph& Graph;
	FLayout Layout;
	double BoxWidth = 0;
	double BoxHeight = 0;
	std::string Svg;

	void Head()
	{
		const double LegendWidth = LegendItemWidth * static_cast<double>(ReferenceStyles.size() + 3);
		const double Width = std::max(Layout.Width, LegendWidth) + 2 * Margin;
		const double Height = Layout.Height + HeadHeight + Margin;
		Svg = QVPrintf("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
					   "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%.0f\" height=\"%.0f\" viewBox=\"0 0 %.0f "
					   "%.0f\" font-family=\"sans-serif\" font-size=\"12\" fill=\"#1f2933\">\n",
			Width, Height, Width, Height);
		Svg += "<title>" + EscapeXml(Graph.Title) + "</title>\n<defs>\n";
		Marker("line", LineColour);
		Marker("cycle", CycleColour);
		Svg += "<style>path:hover{stroke:#d9480f;stroke-width:2.5}</style>\n</defs>\n<rect width=\"100%\" "
			   "height=\"100%\" fill=\"#ffffff\"/>\n";
		Svg += QVPrintf("<text x=\"%.0f\" y=\"30\" font-size=\"16\" font-weight=\"bold\">%s</text>\n", Margin,
			EscapeXml(Graph.Title));
	}

	void Marker(std::string_view Name, std::string_view Colour)
	{
		Svg += QVPrintf("<marker id=\"%s\" viewBox=\"0 0 8 8\" refX=\"8\" refY=\"4\" markerWidth=\"7\" "
						"markerHeight=\"7\" markerUnits=\"userSpaceOnUse\" orient=\"auto-start-reverse\">"
						"<path d=\"M0 0L8 4L0 8z\" fill=\"%s\"/></marker>\n",
			Name, Colour);
	}

	void Legend()
	{
		double X = Margin;
		for (const FReferenceStyle& Style : ReferenceStyles)
		{
			Svg += QVPrintf("<rect x=\"%.0f\" y=\"46\" width=\"22\" height=\"14\" rx=\"3\" fill=\"%s\" "
							"stroke=\"%s\"/>",
				X, Style.Fill, Style.Border);
			LegendText(X, Style.Meaning);
		}
		LegendLine(X, LineColour, "", "hard reference");
		LegendLine(X, LineColour, " stroke-dasharray=\"5 4\"", "soft reference");
		LegendLine(X, CycleColour, "", "closes a cycle");
	}

	void LegendLine(double& X, std::string_view Colour, std::string_view Dashes, std::string_view Meaning)
	{
		Svg += QVPrintf("<path d=\"M%.0f 53h22\" stroke=\"%s\" stroke-width=\"1.5\"%s/>", X, Colour, Dashes);
		LegendText(X, Meaning);
	}

	void LegendText(double& X, std::string_view Meaning)
	{
		Svg += QVPrintf("<text x=\"%.0f\" y=\"57\">%s</text>\n", X + 28, Meaning);
		X += LegendItemWidth;
	}

	void Edges()
	{
		Svg += "<g fill=\"none\" stroke-width=\"1.1\">\n";
		for (std::size_t Place = 0; Place < Graph.Edges.size(); ++Place)
		{
			if (!Layout.Edges[Place].empty())
			{
				Edge(Graph.Edges[Place], Layout.Edges[Place], Layout.Reversed[Place]);
			}
		}
		Svg += "</g>\n";
	}

	void Edge(const FReferenceEdge& Edge, const std::vector<FLayoutPoint>& Points, bool bReversed)
	{
		std::string Path = QVPrintf("M%.1f %.1f", Points[0].X, Points[0].Y);
		for (std::size_t Place = 1; Place < Points.size(); ++Place)
		{
			const FLayoutPoint& To = Points[Place];
			const double Middle = (Points[Place - 1].X + To.X) / 2;
			Path += Place % 2 == 1 ? QVPrintf("C%.1f %.1f %.1f %.1f %.1f %.1f", Middle, Points[Place - 1].Y, Middle,
										 To.Y, To.X, To.Y)
								   : QVPrintf("L%.1f %.1f", To.X, To.Y);
		}
		Svg += QVPrintf("<path d=\"%s\" stroke=\"%s\" marker-%s=\"url(#%s)\"%s><title>%s refers to %s</title></path>\n",
			Path, bReversed ? CycleColour : LineColour, bReversed ? "start" : "end", bReversed ? "cycle" : "line",
			Edge.bHard ? "" : " stroke-dasharray=\"5 4\"", EscapeXml(Graph.Nodes[Edge.From].Name),
			EscapeXml(Graph.Nodes[Edge.To].Name));
	}

	void Nodes()
	{
		Svg += "<g text-anchor=\"middle\">\n";
		for (std::size_t Place = 0; Place < Graph.Nodes.size(); ++Place)
		{
			Node(Graph.Nodes[Place], Layout.Nodes[Place]);
		}
		Svg += "</g>\n";
	}

	void Node(const FReferenceNode& Node, FLayoutPoint At)
	{
		const FReferenceStyle& Style = StyleOf(Node.Kind);
		Svg += QVPrintf("<g><title>%s%s</title><rect x=\"%.1f\" y=\"%.1f\" width=\"%.0f\" height=\"%.0f\" rx=\"4\" "
						"fill=\"%s\" stroke=\"%s\"/>",
			EscapeXml(Node.Name), EscapeXml(Node.Detail.empty() ? "" : " - " + Node.Detail), At.X, At.Y, BoxWidth,
			BoxHeight, Style.Fill, Style.Border);
		const double Baseline = Node.Detail.empty() ? 22 : 16;
		Text(At, Baseline, FitColumns(Node.Label, LabelColumns), "", 1);
		if (!Node.Detail.empty())
		{
			Text(At, 29, FitColumns(Node.Detail, DetailColumns), " font-size=\"10\" fill=\"#52606d\"", DetailScale);
		}
		Svg += "</g>\n";
	}

	/** A text that may not fit is pressed together. */
	void Text(FLayoutPoint At, double Baseline, const std::string& Shown, std::string_view Style, double Scale)
	{
		Svg += QVPrintf("<text x=\"%.1f\" y=\"%.1f\"%s%s>%s</text>", At.X + BoxWidth / 2, At.Y + Baseline, Style,
			EstimateWidth(Shown) * Scale > LabelRoom
				? QVPrintf(" textLength=\"%.0f\" lengthAdjust=\"spacingAndGlyphs\"", LabelRoom)
				: std::string(),
			EscapeXml(Shown));
	}
};
} // namespace

std::string ToSvg(const FReferenceGraph& Graph)
{
	return FSvgWriter(Graph).Run();
}
} // namespace QVCli
