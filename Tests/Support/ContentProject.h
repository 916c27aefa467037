// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/SamplePackages.h"
#include "Tests/Support/ToolkitTest.h"

namespace QVTest
{
/** References of a package: a name alone is a hard one, "soft /X" a soft one, "editor /X" a hard one that the game does
 * not need. */
using FReferences = std::vector<std::string>;

/** A toolkit over a project whose packages a test makes one by one, by their long names. */
struct FContentTest : FToolkitTest
{
	void PutMap(const std::string& Package, const FReferences& References = {});
	/** One in which nothing is missing. */
	void PutPlayableMap(const std::string& Package, const FReferences& References = {});
	void PutMesh(const std::string& Package, const FReferences& References = {}, std::size_t PayloadBytes = 0);
	/** Of a mesh or, if the target is in it, of a blueprint. */
	void PutRedirector(const std::string& Package, const std::string& Target, const char* Class = "StaticMesh");

	/** The whole project is scanned anew. */
	void Scan();
	/** Path of a package's file in the project, `.uasset` or `.umap`. */
	static std::string FileOf(const std::string& Package, const char* Extension = ".uasset");
	static std::string Join(const std::vector<FQVName>& Names, const char* Separator = " > ");
};
} // namespace QVTest
