// SPDX-License-Identifier: MIT
#include "Standalone/Cli/SampleProject.h"

#include "Core/QVJson.h"
#include "Core/QVPath.h"
#include "Core/QVPrintf.h"
#include "Standalone/Engine/Files.h"
#include "Standalone/EngineTools/RawFile.h"
#include "Standalone/Formats/Package/LevelPackages.h"
#include "Standalone/Formats/Package/SamplePackages.h"

#include <span>

namespace QVCli
{
using namespace QVFormats;

namespace
{
constexpr std::string_view ProjectName = "SampleMaps";

struct FSampleAsset
{
	std::string_view PackageName;
	std::string_view ClassName;
	std::size_t PayloadBytes;
	/** Material or texture that it uses; empty for none. */
	std::string_view Uses;
	std::string_view UsesClass;
};

constexpr FSampleAsset Assets[] = {
	{"/Game/Shared/Crate", "StaticMesh", 48'000, "/Game/Shared/Wood", "Material"},
	{"/Game/Shared/Wood", "Material", 9'000, {}, {}},
	{"/QUARVEL/Props/Lantern", "StaticMesh", 64'000, "/QUARVEL/Materials/Stone", "Material"},
	{"/QUARVEL/Materials/Stone", "Material", 12'000, {}, {}},
	{"/Harbor/Meshes/Boat", "StaticMesh", 220'000, "/Harbor/Materials/Planks", "Material"},
	{"/Harbor/Materials/Planks", "Material", 15'000, "/Harbor/Textures/Planks_D", "Texture2D"},
	{"/Harbor/Textures/Planks_D", "Texture2D", 350'000, {}, {}},
	{"/Harbor/Meshes/Crane", "StaticMesh", 90'000, {}, {}},
	{"/Cave/鍾乳洞/Column", "StaticMesh", 130'000, "/Cave/Materials/Wet", "Material"},
	{"/Cave/Materials/Wet", "Material", 11'000, {}, {}},
};

struct FSampleMap
{
	std::string_view PackageName;
	/** The mesh that stands in it. */
	std::string_view Mesh;
};

constexpr FSampleMap Maps[] = {
	{"/QUARVEL/Templates/DefaultMapTemplate", "/QUARVEL/Props/Lantern"},
	{"/Harbor/Maps/Docks", "/Harbor/Meshes/Boat"},
	{"/Harbor/Maps/Pier", "/QUARVEL/Props/Lantern"},
	{"/Cave/Maps/Hall", "/Cave/鍾乳洞/Column"},
};

struct FSamplePlugin
{
	std::string_view Name;
	std::string_view Author;
	std::string_view Description;
	std::string_view Version;
};

constexpr FSamplePlugin Plugins[] = {
	{"QUARVEL", "The sample", "Stands for the game's bridge plugin.", "1.0.0"},
	{"Harbor", "A map maker", "Docks and a pier: a mod with two maps.", "1.0"},
	{"Cave", "A map maker", "A hall of dripstone.", "1.0"},
};

/** Remembers the first failure, so that each file's writing need not be asked for. */
class FSampleWriter
{
public:
	explicit FSampleWriter(std::string InFolder)
		: Folder(std::move(InFolder))
	{
	}

	FStatus Status = Success();

	std::string ProjectFile() const { return FQVPath::Combine(Folder, QVPrintf("%s.uproject", ProjectName)); }

	void WriteAll()
	{
		WriteProject();
		for (const FSamplePlugin& Plugin : Plugins)
		{
			WritePlugin(Plugin);
		}
		for (const FSampleAsset& Asset : Assets)
		{
			WriteAsset(Asset);
		}
		for (const FSampleMap& Map : Maps)
		{
			WriteMap(Map);
		}
		// what map makers keep beside their assets; a cook passes it over
		WriteText("Plugins/Cave/Content/Rohdaten 原画/notes.txt", "Sketches and scans go here.\n");
	}

private:
	const std::string Folder;

	void Write(const std::string& Below, FBytes Bytes)
	{
		if (Status)
		{
			Status = QVEngineTools::WriteRawFile(FQVPath::Combine(Folder, Below), Bytes);
		}
	}

	void WriteText(const std::string& Below, const std::string& Text) { Write(Below, std::as_bytes(std::span(Text))); }

	/** Where a package's file lies in the project, by its mount point. */
	static std::string FileOf(std::string_view PackageName, std::string_view Extension)
	{
		const std::size_t Slash = PackageName.find('/', 1);
		const std::string_view Root = PackageName.substr(1, Slash - 1);
		const std::string Content = Root == "Game" ? "Content" : QVPrintf("Plugins/%s/Content", Root);
		return QVPrintf("%s%s%s", Content, PackageName.substr(Slash), Extension);
	}

	void WriteProject()
	{
		const FQVJson Project = FQVJson::Object()
									.Set("FileVersion", 3)
									.Set("EngineAssociation", "5.4")
									.Set("Category", "")
									.Set("Description", "A sample mapping project for QVMap.");
		WriteText(QVPrintf("%s.uproject", ProjectName), Project.ToPrettyString());
	}

	void WritePlugin(const FSamplePlugin& Plugin)
	{
		const FQVJson Descriptor = FQVJson::Object()
									   .Set("FileVersion", 3)
									   .Set("Version", 1)
									   .Set("VersionName", Plugin.Version)
									   .Set("FriendlyName", Plugin.Name)
									   .Set("Description", Plugin.Description)
									   .Set("Category", "Maps")
									   .Set("CreatedBy", Plugin.Author)
									   .Set("CanContainContent", true);
		WriteText(QVPrintf("Plugins/%s/%s.uplugin", Plugin.Name, Plugin.Name), Descriptor.ToPrettyString());
	}

	static FHardReference Reference(std::string_view Package, std::string_view ClassName)
	{
		return {std::string(Package), "/Script/Engine", std::string(ClassName),
			std::string(FQVPath::GetCleanFilename(Package))};
	}

	void WriteAsset(const FSampleAsset& Asset)
	{
		FAssetPackageSpec Spec;
		Spec.PackageName = Asset.PackageName;
		Spec.ClassPath = QVPrintf("/Script/Engine.%s", Asset.ClassName);
		Spec.PayloadBytes = Asset.PayloadBytes;
		Spec.PayloadSeed = Asset.PayloadBytes;
		if (!Asset.Uses.empty())
		{
			Spec.HardReferences.push_back(Reference(Asset.Uses, Asset.UsesClass));
		}
		Write(FileOf(Asset.PackageName, ".uasset"), BuildAssetPackage(Spec));
	}

	void WriteMap(const FSampleMap& Map)
	{
		FLevelPackageSpec Spec;
		Spec.PackageName = Map.PackageName;
		Spec.Actors = PlayableActors();
		Spec.Meshes.emplace_back(Map.Mesh);
		Write(FileOf(Map.PackageName, ".umap"), BuildLevelPackage(Spec));
	}
};

bool IsEmptyOrMissing(const std::string& Folder)
{
	const QVStandalone::FFiles Files;
	bool bEmpty = true;
	Files.IterateDirectory(Folder,
		[&bEmpty](std::string_view, bool)
		{
			bEmpty = false;
			return false;
		});
	return bEmpty;
}
} // namespace

TResult<std::string> WriteSampleProject(const std::string& Folder)
{
	if (QVStandalone::FFiles().FileExists(Folder))
	{
		return FError{QVPrintf("%s is a file: name a new folder", Folder)};
	}
	if (!IsEmptyOrMissing(Folder))
	{
		return FError{QVPrintf("%s is not empty: name a new folder, so that nothing is overwritten", Folder)};
	}
	FSampleWriter Writer(Folder);
	Writer.WriteAll();
	if (!Writer.Status)
	{
		return Writer.Status.Error();
	}
	return Writer.ProjectFile();
}
} // namespace QVCli
