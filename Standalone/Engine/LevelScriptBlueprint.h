// SPDX-License-Identifier: MIT
#pragma once

#include "Engine/QVBlueprint.h"
#include "Standalone/Engine/LevelScriptFile.h"

#include <functional>
#include <memory>

/** One that a map's file has; that it is there is all that is known of it. */
class FQVGraphNode
{
};

namespace QVStandalone
{
/** A graph that a map's file has. */
class FLevelScriptGraph : public IQVGraph
{
public:
	FLevelScriptGraph(std::string InName, std::size_t NodeCount);

	void Modify() override {}
	void GetNodes(std::vector<FQVGraphNode*>& Out) const override;
	void RemoveNode(FQVGraphNode* Node) override;

	const std::string& GetName() const { return Name; }
	bool IsEmpty() const { return Nodes.empty(); }

private:
	const std::string Name;
	std::vector<std::unique_ptr<FQVGraphNode>> Nodes;
};

/**
 * A Level Blueprint as its map's file has it. What is removed here is noted only; Compile has the installed engine do
 * it in the file, where it is saved then and there. It can be undone with the copy that is kept, not by a transaction.
 */
class FLevelScriptBlueprint : public IQVBlueprint
{
public:
	/** InOnStripped: called when Compile has changed the file. */
	FLevelScriptBlueprint(FLevelScriptFile InFile, std::function<void()> InOnStripped);

	void Modify() override {}
	/** With the macros, which nothing is left to use. */
	void GetEventGraphs(std::vector<IQVGraph*>& Out) override;
	void GetFunctionGraphs(std::vector<IQVGraph*>& Out) override;
	bool Compile() override;
	void MarkPackageDirty() override {}

private:
	const FLevelScriptFile File;
	const std::function<void()> OnStripped;
	std::vector<std::unique_ptr<FLevelScriptGraph>> EventGraphs;
	std::vector<std::unique_ptr<FLevelScriptGraph>> FunctionGraphs;

	QVFormats::FStatus Strip() const;
};
} // namespace QVStandalone
