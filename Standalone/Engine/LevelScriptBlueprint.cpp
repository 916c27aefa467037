// SPDX-License-Identifier: MIT
#include "Standalone/Engine/LevelScriptBlueprint.h"

#include "Standalone/Engine/EngineLog.h"
#include "Standalone/Engine/LevelScriptStrip.h"

#include <algorithm>

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
void List(const std::vector<std::unique_ptr<FLevelScriptGraph>>& Graphs, std::vector<IQVGraph*>& Out)
{
	Out.clear();
	for (const auto& Graph : Graphs)
	{
		Out.push_back(Graph.get());
	}
}
} // namespace

FLevelScriptGraph::FLevelScriptGraph(std::string InName, std::size_t NodeCount)
	: Name(std::move(InName))
	, Nodes(NodeCount)
{
	std::generate(Nodes.begin(), Nodes.end(), std::make_unique<FQVGraphNode>);
}

void FLevelScriptGraph::GetNodes(std::vector<FQVGraphNode*>& Out) const
{
	Out.clear();
	for (const auto& Node : Nodes)
	{
		Out.push_back(Node.get());
	}
}

void FLevelScriptGraph::RemoveNode(FQVGraphNode* Node)
{
	std::erase_if(Nodes, [Node](const auto& Each) { return Each.get() == Node; });
}

FLevelScriptBlueprint::FLevelScriptBlueprint(FLevelScriptFile InFile, std::function<void()> InOnStripped)
	: File(std::move(InFile))
	, OnStripped(std::move(InOnStripped))
{
	const std::vector<std::string> Functions = File.GetFunctions();
	for (const std::size_t Graph : File.GetGraphs())
	{
		const std::string Name = File.GetName(Graph);
		const bool bFunction = std::find(Functions.begin(), Functions.end(), Name) != Functions.end();
		(bFunction ? FunctionGraphs : EventGraphs)
			.push_back(std::make_unique<FLevelScriptGraph>(Name, File.GetNodes(Graph).size()));
	}
}

void FLevelScriptBlueprint::GetEventGraphs(std::vector<IQVGraph*>& Out)
{
	List(EventGraphs, Out);
}

void FLevelScriptBlueprint::GetFunctionGraphs(std::vector<IQVGraph*>& Out)
{
	List(FunctionGraphs, Out);
}

bool FLevelScriptBlueprint::Compile()
{
	if (const FStatus Status = Strip(); !Status)
	{
		LogEngine(EQVLogVerbosity::Error, "The Level Blueprint of %s keeps its code: %s", File.Package->Name,
			Status.Error().Message);
		return false;
	}
	OnStripped();
	return true;
}

FStatus FLevelScriptBlueprint::Strip() const
{
	std::vector<std::string> Names;
	for (const auto* Graphs : {&EventGraphs, &FunctionGraphs})
	{
		for (const auto& Graph : *Graphs)
		{
			if (!Graph->IsEmpty())
			{
				return FError{QVPrintf("the graph %s has nodes left, and graphs only go as a whole", Graph->GetName())};
			}
			Names.push_back(Graph->GetName());
		}
	}
	return FLevelScriptStrip(File).Run(Names);
}
} // namespace QVStandalone
