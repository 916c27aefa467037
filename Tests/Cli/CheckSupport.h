// SPDX-License-Identifier: MIT
#pragma once

#include "Standalone/Formats/Package/SamplePackages.h"
#include "Tests/Cli/CliTest.h"

#include <nlohmann/json.hpp>

namespace QVTest
{
/** A sample project, of which Cave has one map and Harbor two. */
class FCheckTest : public FCliTest
{
protected:
	using FJson = nlohmann::json;

	void SetUp() override { EnterSample(); }

	FProgramEnd Check(const FWords& More, int Code) const
	{
		FWords Words = {"check"};
		Words.insert(Words.end(), More.begin(), More.end());
		FProgramEnd End = Run(Words);
		EXPECT_EQ(End.Code, Code) << End.Err;
		End.Err = WithoutProgress(End.Err);
		return End;
	}
	FJson CheckJson(const FWords& More, int Code) const
	{
		FWords Words = More;
		Words.insert(Words.end(), {"--format", "json"});
		return FJson::parse(Check(Words, Code).Out);
	}
	/** Soft references to packages that are not there, each a warning. */
	void PutMissing(int Count) const
	{
		std::vector<std::string> Soft;
		for (int Index = 0; Index < Count; ++Index)
		{
			Soft.push_back("/Game/Gone" + std::to_string(Index));
		}
		WriteBytes(Folder / "Plugins/Cave/Content/Maps/Hall.umap",
			QVFormats::BuildWorldPackage({"/Cave/Maps/Hall", {}, Soft, false}));
	}
	/** Files that are no packages, each an error. */
	void PutDamaged(int Count) const
	{
		for (int Index = 0; Index < Count; ++Index)
		{
			Put("Plugins/Cave/Content/Bad " + std::to_string(Index) + ".uasset", "no package");
		}
	}
	/** Null if there is none of that id. */
	static const FJson* FindById(const FJson& Document, const std::string& Id)
	{
		for (const FJson& Finding : Document.at("findings"))
		{
			if (Finding.at("id") == Id)
			{
				return &Finding;
			}
		}
		return nullptr;
	}
};
} // namespace QVTest
