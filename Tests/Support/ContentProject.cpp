// SPDX-License-Identifier: MIT
#include "Tests/Support/ContentProject.h"

#include "Standalone/Formats/Package/LevelPackages.h"
#include "Standalone/Formats/Package/RedirectorPackage.h"

namespace QVTest
{
using namespace QVFormats;

namespace
{
std::string_view AsText(const std::vector<std::byte>& Bytes)
{
	return {reinterpret_cast<const char*>(Bytes.data()), Bytes.size()};
}

std::string LastPart(const std::string& Package)
{
	return Package.substr(Package.rfind('/') + 1);
}

void Sort(const FReferences& References, std::vector<FHardReference>& OutHard, std::vector<std::string>& OutSoft)
{
	for (const std::string& Reference : References)
	{
		const std::size_t Blank = Reference.find(' ');
		const std::string Package = Blank == std::string::npos ? Reference : Reference.substr(Blank + 1);
		if (Reference.starts_with("soft "))
		{
			OutSoft.push_back(Package);
			continue;
		}
		const bool bGame = !Reference.starts_with("editor ");
		OutHard.push_back({Package, "/Script/Engine", "StaticMesh", LastPart(Package), bGame});
	}
}
} // namespace

void FContentTest::PutMap(const std::string& Package, const FReferences& References)
{
	FWorldPackageSpec Spec;
	Spec.PackageName = Package;
	Sort(References, Spec.HardReferences, Spec.SoftPackages);
	Project.Write(FileOf(Package, ".umap"), AsText(BuildWorldPackage(Spec)));
}

void FContentTest::PutPlayableMap(const std::string& Package, const FReferences& References)
{
	FLevelPackageSpec Spec;
	Spec.PackageName = Package;
	Spec.Actors = PlayableActors();
	std::vector<FHardReference> Hard;
	Sort(References, Hard, Spec.SoftPackages);
	for (const FHardReference& Each : Hard)
	{
		Spec.Meshes.push_back(Each.Package);
	}
	Project.Write(FileOf(Package, ".umap"), AsText(BuildLevelPackage(Spec)));
}

void FContentTest::PutMesh(const std::string& Package, const FReferences& References, std::size_t PayloadBytes)
{
	FAssetPackageSpec Spec;
	Spec.PackageName = Package;
	Spec.ClassPath = "/Script/Engine.StaticMesh";
	Spec.PayloadBytes = PayloadBytes;
	Sort(References, Spec.HardReferences, Spec.SoftPackages);
	Project.Write(FileOf(Package), AsText(BuildAssetPackage(Spec)));
}

void FContentTest::PutRedirector(const std::string& Package, const std::string& Target, const char* Class)
{
	Project.Write(FileOf(Package), AsText(BuildRedirectorPackage({Package, Target, "/Script/Engine", Class})));
}

void FContentTest::Scan()
{
	Engine.GetAssetRegistry().StartScan();
	ASSERT_TRUE(Engine.GetAssetRegistry().FinishScan());
}

std::string FContentTest::FileOf(const std::string& Package, const char* Extension)
{
	const std::size_t End = Package.find('/', 1);
	const std::string Root = Package.substr(1, End - 1);
	const std::string Content = Root == "Game" ? "Content" : "Plugins/" + Root + "/Content";
	return Content + Package.substr(End) + Extension;
}

std::string FContentTest::Join(const std::vector<FQVName>& Names, const char* Separator)
{
	std::string Text;
	for (const FQVName Name : Names)
	{
		Text += (Text.empty() ? "" : Separator) + Name.ToString();
	}
	return Text;
}
} // namespace QVTest
