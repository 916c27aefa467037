// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

/** A node of a graph: the engine's own, which the toolkit only hands back. */
class FQVGraphNode;

/** A graph of a blueprint. Game thread. */
class IQVGraph
{
public:
	virtual ~IQVGraph() = default;

	/** Part of the open transaction from now on. */
	virtual void Modify() = 0;
	/** Replaces Out. */
	virtual void GetNodes(std::vector<FQVGraphNode*>& Out) const = 0;
	/** Breaks all links of the node first. */
	virtual void RemoveNode(FQVGraphNode* Node) = 0;
};

/** A blueprint that can be edited. Game thread. */
class IQVBlueprint
{
public:
	virtual ~IQVBlueprint() = default;

	/** Part of the open transaction from now on, and dirty. */
	virtual void Modify() = 0;
	/** Each replaces Out; null for an empty slot. */
	virtual void GetEventGraphs(std::vector<IQVGraph*>& Out) = 0;
	virtual void GetFunctionGraphs(std::vector<IQVGraph*>& Out) = 0;
	/** With no options; what the compiler says is dropped. False: the engine could not take the change over, nothing
	 * has changed, and the log says why. */
	virtual bool Compile() = 0;
	virtual void MarkPackageDirty() = 0;
};
