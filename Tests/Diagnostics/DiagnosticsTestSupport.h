// SPDX-License-Identifier: MIT
#pragma once

#include "Diagnostics/QVMapDiagnosticOptions.h"
#include "Engine/QVEditor.h"
#include "Engine/QVSlowTask.h"
#include "Engine/QVWorld.h"
#include "Tests/Support/ContentProject.h"
#include "Tests/Support/ScriptedDialogs.h"

#include <algorithm>

namespace QVTest
{
/** A world without a level: where it lies and how it is saved is all there is. */
struct FBareWorld : IQVWorld
{
	std::string Path = "/Cave/Maps/Hall.Hall";
	bool bDirty = false;
	std::vector<FQVStreamingLevel> Streaming;

	std::string GetName() const override { return "Hall"; }
	std::string GetPathName() const override { return Path; }
	std::string GetPackageName() const override { return Path.substr(0, Path.find('.')); }
	bool IsPackageDirty() const override { return bDirty; }
	bool HasWorldPartition() const override { return false; }
	const IQVLevel* GetPersistentLevel() const override { return nullptr; }
	void GetStreamingLevels(std::vector<FQVStreamingLevel>& Out) const override { Out = Streaming; }
	void GetAllActorsOfClass(const IQVClass&, std::vector<const IQVActor*>& Out) const override { Out.clear(); }
};

/** An editor in which a test opens what it likes. */
struct FBareEditor : QVStandalone::FEditor
{
	const IQVWorld* World = nullptr;
	bool bSaves = true;
	int Saved = 0;

	const IQVWorld* GetOpenWorld() const override { return World; }
	bool SaveDirtyPackages(const FQVSaveDirtyPackages&) override
	{
		++Saved;
		return bSaves;
	}
};

/** Keeps what it was told; cancelled as soon as that many steps have begun. */
struct FRecordingTasks : IQVSlowTasks
{
	int CancelAfter = 1000;
	std::string Told;

	struct FTask : IQVSlowTask
	{
		FRecordingTasks& Tasks;
		int Steps = 0;

		explicit FTask(FRecordingTasks& InTasks)
			: Tasks(InTasks)
		{
		}
		~FTask() override { Tasks.Told += "end\n"; }
		bool ShouldCancel() const override { return Steps >= Tasks.CancelAfter; }
		void MakeDialog(bool bCancelButton, bool bInPlay) override
		{
			Tasks.Told += QVPrintf("dialog %d %d\n", bCancelButton ? 1 : 0, bInPlay ? 1 : 0);
		}
		void EnterProgressFrame(float Amount, const FQVText& Message) override
		{
			++Steps;
			Tasks.Told += QVPrintf("%g %s: %s\n", Amount, Message.GetKey(), Message.ToString());
		}
	};

	std::unique_ptr<IQVSlowTask> Begin(float Amount, const FQVText& Message) override
	{
		Told += QVPrintf("begin %g %s: %s\n", Amount, Message.GetKey(), Message.ToString());
		return std::make_unique<FTask>(*this);
	}
};

/** The registry, with tags of the levels on top: "Hall LevelIsPartitioned". */
struct FTaggedRegistry : IQVAssetRegistry
{
	const IQVAssetRegistry& Inner;
	std::vector<std::string> Tags;

	explicit FTaggedRegistry(const IQVAssetRegistry& InInner)
		: Inner(InInner)
	{
	}
	bool IsLoadingAssets() const override { return Inner.IsLoadingAssets(); }
	void ScanPathsSynchronous(std::string_view) override {}
	void ScanModifiedAssetFiles(std::span<const std::string>) override {}
	void GetAssets(const FQVAssetFilter& Filter, std::vector<FQVAssetData>& Out) const override
	{
		Inner.GetAssets(Filter, Out);
	}
	void GetAssetsByPackageName(FQVName, std::vector<FQVAssetData>&) const override {}
	void GetDependencies(FQVName, EQVDependencyQuery, std::vector<FQVPackageDependency>&) const override {}
	void GetDependenciesOfEach(std::span<const FQVName>, EQVDependencyQuery, FQVDependencyLists&) const override {}
	void GetReferencers(FQVName, std::vector<FQVName>&) const override {}
	std::optional<std::int64_t> GetPackageSize(FQVName) const override { return {}; }
	void GetUnreadablePackages(std::vector<FQVUnreadablePackage>&) const override {}
	std::string GetNewerEngine(FQVName) const override { return {}; }
	void GetMisspelledReferences(FQVName, std::vector<FQVMisspelledReference>&) const override {}
	bool GetTagValue(const FQVAssetData& Asset, std::string_view Tag, std::string& Out) const override
	{
		const std::string Wanted = QVPrintf("%s %s", Asset.AssetName.ToView(), Tag);
		const bool bHas = std::find(Tags.begin(), Tags.end(), Wanted) != Tags.end();
		Out = bHas ? "1" : "0";
		return true;
	}
};

struct FDiagnosticsTest : FContentTest
{
	FBareEditor Editor;
	FScriptedDialogs Dialogs;

	FDiagnosticsTest();

	/** `Key: text` with folders masked; a text that is shown as it is has no key. */
	std::string Describe(const FQVText& Text) const;
	/** Severity and id, then title, detail, remedy and action with their keys, then the children, indented. */
	std::string Describe(const FQVDiagnosticFinding& Finding, const std::string& Indent = {}) const;
	std::string Describe(const FQVDiagnosticFindings& Findings) const;
	/** Those of that id; empty if there is none. */
	std::string Describe(const FQVDiagnosticFindings& Findings, std::string_view Id) const;
	static const FQVDiagnosticFinding& Find(const FQVDiagnosticFindings& Findings, std::string_view Id);
};
} // namespace QVTest
