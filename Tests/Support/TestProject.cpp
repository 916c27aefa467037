// SPDX-License-Identifier: MIT
#include "Tests/Support/TestProject.h"

#include "Core/QVString.h"
#include "Standalone/Engine/OsPath.h"
#include "Standalone/Formats/Package/LevelPackages.h"
#include "Standalone/Formats/Registry/AssetRegistryBuilder.h"
#include "Tests/Support/TestPrograms.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

namespace QVTest
{
namespace
{
std::string ToText(const std::vector<std::byte>& Bytes)
{
	return {reinterpret_cast<const char*>(Bytes.data()), Bytes.size()};
}

void WriteFile(const fs::path& Path, std::string_view Bytes)
{
	fs::create_directories(Path.parent_path());
	std::ofstream File(Path, std::ios::binary);
	File << Bytes;
	if (!File.flush())
	{
		throw std::runtime_error("cannot write " + Path.string());
	}
}
} // namespace

FTestProject::FTestProject()
{
	Write("MapWork.uproject", "{\"FileVersion\": 3}");
	Write("Plugins/QUARVEL/QUARVEL.uplugin", R"({"FileVersion": 3, "VersionName": "1.4", "CanContainContent": true})");
	MakeFolder("Plugins/QUARVEL/Content");
	const fs::path Engine = QVStandalone::ToOsPath(EngineDir());
	WriteFile(Engine / "Build/Build.version", R"({"MajorVersion": 5, "MinorVersion": 4, "PatchVersion": 4})");
	fs::create_directories(Engine / "Binaries/Win64");
	for (const char* Tool : {"UnrealEditor-Cmd.exe", "UnrealPak.exe"})
	{
		PlaceTestChild(Engine / "Binaries/Win64" / Tool);
	}
}

std::string FTestProject::EngineDir() const
{
	return QVStandalone::FromOsPath(Folder.Path() / "UE 5.4/Engine");
}

std::string FTestProject::At(std::string_view Relative) const
{
	const fs::path Project = Folder.Path() / "MapWork";
	return QVStandalone::FromOsPath(Relative.empty() ? Project : Project / QVStandalone::ToOsPath(Relative));
}

void FTestProject::Write(std::string_view Relative, std::string_view Bytes) const
{
	WriteFile(QVStandalone::ToOsPath(At(Relative)), Bytes);
}

std::string FTestProject::Read(std::string_view Relative) const
{
	std::ostringstream Text;
	Text << std::ifstream(QVStandalone::ToOsPath(At(Relative)), std::ios::binary).rdbuf();
	return Text.str();
}

bool FTestProject::Exists(std::string_view Relative) const
{
	return fs::exists(QVStandalone::ToOsPath(At(Relative)));
}

void FTestProject::MakeFolder(std::string_view Relative) const
{
	fs::create_directories(QVStandalone::ToOsPath(At(Relative)));
}

void FTestProject::Remove(std::string_view Relative) const
{
	RemoveAll(QVStandalone::ToOsPath(At(Relative)));
}

std::vector<std::string> FTestProject::FilesIn(std::string_view Relative) const
{
	std::vector<std::string> Files;
	const fs::path Root = QVStandalone::ToOsPath(At(Relative));
	std::error_code Ignored;
	for (const fs::directory_entry& Entry : fs::recursive_directory_iterator(Root, Ignored))
	{
		if (Entry.is_regular_file())
		{
			Files.push_back(QVStandalone::FromOsPath(Entry.path().lexically_relative(Root)));
		}
	}
	std::sort(Files.begin(), Files.end());
	return Files;
}

void FTestProject::AddMod(std::string_view Name, const std::vector<std::string_view>& Maps) const
{
	const std::string Plugin = "Plugins/" + std::string(Name) + "/";
	Write(Plugin + std::string(Name) + ".uplugin",
		R"({"FileVersion": 3, "CreatedBy": "Zoë", "Description": "A \"dark\" place", "CanContainContent": true})");
	for (const std::string_view Map : Maps)
	{
		AddMap(Name, Map);
	}
}

void FTestProject::AddMap(std::string_view Plugin, std::string_view Map) const
{
	const std::string Name(Plugin);
	QVFormats::FLevelPackageSpec Level;
	Level.PackageName = "/" + Name + "/" + std::string(Map);
	Level.Actors = QVFormats::PlayableActors();
	Write("Plugins/" + Name + "/Content/" + std::string(Map) + ".umap", ToText(QVFormats::BuildLevelPackage(Level)));
}

void FTestProject::AddTemplate() const
{
	AddMap("QUARVEL", "Templates/DefaultMapTemplate");
}

void FTestProject::AddBaseRelease() const
{
	Write(DevelopmentRegistry, RegistryBytes(3));
	Write("Releases/1.0/QVMapToolchain.json", R"({"contentPlugins": {"QUARVEL": "1.4"}})");
}

std::string FTestProject::RegistryBytes(int Packages)
{
	QVFormats::FAssetRegistryBuilder Builder(true);
	for (int Index = 0; Index < Packages; ++Index)
	{
		QVFormats::FRegistryAssetSpec Asset;
		Asset.AssetName = "Asset" + std::to_string(Index);
		Asset.PackageName = "/Game/" + Asset.AssetName;
		Asset.ClassPath = "/Script/Engine.StaticMesh";
		Builder.AddAsset(Asset);
	}
	const auto Bytes = QVFormats::WriteAssetRegistry(Builder.Finish());
	return Bytes ? ToText(*Bytes) : throw std::runtime_error(Bytes.Error().Message);
}

void FTestProject::ScriptEditorCmd(const std::vector<std::string>& Commands) const
{
	Script("UnrealEditor-Cmd.exe", Commands);
}

void FTestProject::ScriptUnrealPak(const std::vector<std::string>& Commands) const
{
	Script("UnrealPak.exe", Commands);
}

void FTestProject::Script(std::string_view Tool, const std::vector<std::string>& Commands) const
{
	const std::string File = EngineDir() + "/Binaries/Win64/" + std::string(Tool) + ".script";
	WriteFile(QVStandalone::ToOsPath(File), FQVString::Join(Commands, "\n"));
}

std::string FTestProject::Mask(std::string Text) const
{
	Text = FQVString::ReplaceAll(Text, ProjectDir(), "<Project>");
	return FQVString::ReplaceAll(Text, EngineDir(), "<Engine>");
}
} // namespace QVTest
