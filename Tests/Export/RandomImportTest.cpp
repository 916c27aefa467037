// SPDX-License-Identifier: MIT
#include "Content/QVMapReferenceAudit.h"
#include "Export/QVMapImportScope.h"
#include "Standalone/Engine/OsPath.h"
#include "Tests/Support/ContentProject.h"

#include <filesystem>
#include <random>

namespace
{
constexpr int Projects = 200;

/** Projects of all shapes: cycles, redirectors in chains, missing and read-only packages, names of all kinds. */
class FRandomImport : public QVTest::FContentTest
{
protected:
	std::mt19937 Random{20261121};
	std::vector<std::string> Outside;
	std::vector<std::string> Own;
	bool bReadOnlyMap = false;

	std::size_t Any(std::size_t Count) { return Random() % Count; }
	bool Chance(std::size_t InSoMany) { return Any(InSoMany) == 0; }

	void MakeNames()
	{
		static constexpr const char* Stems[] = {"Rock", "Rock_2", "Rock_02", "Höhle", "Fels_15", "岩", "Rocks"};
		Outside.clear();
		Own.clear();
		for (std::size_t Count = 1 + Any(12); Outside.size() < Count;)
		{
			const char* Root = Chance(3) ? "/Tools/" : Chance(4) ? "/Game/Tief/" : "/Game/";
			Outside.push_back(QVPrintf("%s%s%s", Root, Stems[Any(std::size(Stems))], QVPrintf("N%d", Outside.size())));
			if (Chance(3))
			{
				Outside.back() += QVPrintf("_%d", Any(20));
			}
		}
		for (std::size_t Count = Any(6); Own.size() < Count;)
		{
			Own.push_back(QVPrintf("/Cave/%s%d", Stems[Any(std::size(Stems))], Own.size()));
		}
	}

	QVTest::FReferences AnyReferences(std::size_t Most)
	{
		QVTest::FReferences References;
		for (std::size_t Count = Any(Most + 1); References.size() < Count;)
		{
			const auto& Pool = !Own.empty() && Chance(3) ? Own : Outside;
			const char* Kind = Chance(4) ? "soft " : Chance(6) ? "editor " : "";
			References.push_back(Chance(15) ? "/QUARVEL/Gun" : Kind + Pool[Any(Pool.size())]);
		}
		if (Chance(8))
		{
			References.push_back("soft /Game/Never");
		}
		return References;
	}

	void MakeProject()
	{
		Project.Remove("Content");
		Project.Remove("Plugins/Cave");
		Project.Remove("Plugins/Tools");
		Project.AddMod("Cave", {});
		Project.AddMod("Tools", {"Test"});
		MakeNames();
		for (std::size_t Place = 0; Place < Outside.size(); ++Place)
		{
			const bool bRedirector = Place > 0 && Chance(6);
			bRedirector ? PutRedirector(Outside[Place], Outside[Any(Place)])
						: PutMesh(Outside[Place], AnyReferences(4), Any(900));
		}
		for (const std::string& Package : Own)
		{
			PutMesh(Package, AnyReferences(4), Any(900));
		}
		PutMap("/Cave/Hall", AnyReferences(6));
		bReadOnlyMap = Chance(8);
		if (bReadOnlyMap)
		{
			std::filesystem::permissions(
				QVStandalone::ToOsPath(Project.At(FileOf("/Cave/Hall", ".umap"))), std::filesystem::perms::owner_read);
		}
		Scan();
	}

	std::string Snapshot() const
	{
		std::string Text;
		for (const char* Root : {"Content", "Plugins"})
		{
			for (const std::string& File : Project.FilesIn(Root))
			{
				Text += File + ":" + Project.Read(std::string(Root) + "/" + File) + "\n";
			}
		}
		return Text;
	}

	/** What the map reaches outside, but for what is not there at all. */
	static std::string Untrusted()
	{
		std::string Text;
		for (const FQVExternalReference& Each : FQVMapReferenceAudit::AuditReferences("Cave").UntrustedExternal)
		{
			Text += Each.Package == FQVName("/Game/Never") ? "" : Join(Each.Chain) + "\n";
		}
		return Text;
	}
};
} // namespace

TEST_F(FRandomImport, ReachesNothingOutsideMeanwhileAndIsAsItWasAfterwards)
{
	int Imported = 0;
	for (int Number = 0; Number < Projects; ++Number)
	{
		MakeProject();
		const std::string Before = Snapshot();
		{
			const FQVImportScope Scope("Cave");
			const FQVImportResult& Result = Scope.GetResult();
			EXPECT_TRUE(Result.bSuccess || (bReadOnlyMap && Result.ErrorMessage.find("read-only") != std::string::npos))
				<< Number << ": " << Result.ErrorMessage;
			EXPECT_EQ(Result.bSuccess ? Untrusted() : std::string(), "") << Number;
			Imported += Result.Imported.empty() ? 0 : 1;
		}
		ASSERT_EQ(Snapshot(), Before) << Number;
		ASSERT_FALSE(Project.Exists("Saved/QVPak/Temp/ImportBackup/Cave")) << Number;
	}
	EXPECT_GT(Imported, Projects / 2) << "the projects must be worth it";
	EXPECT_FALSE(Project.Exists("Saved/QVPak/Replaced")) << "nothing of them was foreign";
}
