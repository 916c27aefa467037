// SPDX-License-Identifier: MIT
#include "Standalone/Engine/Classes.h"

#include "Standalone/Engine/ClassFile.h"
#include "Standalone/Engine/EngineLog.h"
#include "Standalone/Engine/NativeClasses.h"

namespace QVStandalone
{
namespace
{
/** No line of parents is this long; made-up files can have one that goes in a circle. */
constexpr int DeepestClass = 64;

bool IsNative(std::string_view ClassPath)
{
	return FQVString::StartsWithIgnoreCase(ClassPath, "/Script/");
}
} // namespace

FClass::FClass(FQVName InPath, const FClass* InParent, FClassContent InContent)
	: Path(InPath)
	, Parent(InParent)
	, Content(std::move(InContent))
{
}

std::string FClass::GetName() const
{
	const std::string_view Text = Path.ToView();
	return std::string(Text.substr(Text.rfind('.') + 1));
}

std::string FClass::GetPackageName() const
{
	return std::string(FQVAssetData::PackageOfObjectPath(Path.ToView()));
}

bool FClass::IsChildOf(FQVName ClassPath) const
{
	const FClass* At = this;
	while (At != nullptr && At->Path != ClassPath)
	{
		At = At->Parent;
	}
	return At != nullptr;
}

bool FClass::HasEnumProperty(std::string_view Property, std::string_view Enumerator) const
{
	const FClass* At = this;
	while (At != nullptr && !FNativeClasses::DeclaresEnum(At->Path.ToView(), Property, Enumerator))
	{
		At = At->Parent;
	}
	return At != nullptr;
}

const std::string* FClass::FindDefault(const std::string& SmallProperty) const
{
	for (const FClass* At = this; At != nullptr; At = At->Parent)
	{
		if (const auto Found = At->Content.Defaults.find(SmallProperty); Found != At->Content.Defaults.end())
		{
			return &Found->second;
		}
	}
	return nullptr;
}

FClasses::FClasses(const FPackages& InPackages, const FPlugins& InPlugins)
	: Packages(InPackages)
	, Plugins(InPlugins)
{
}

/** A plugin's code is there while the plugin is enabled. */
bool FClasses::IsNativeKnown(std::string_view ClassPath) const
{
	const std::string Bridge = QVPrintf("/Script/%s.", FNativeClasses::BridgePlugin);
	if (FQVString::StartsWithIgnoreCase(ClassPath, Bridge))
	{
		const auto Plugin = Plugins.FindPlugin(FNativeClasses::BridgePlugin);
		return Plugin && Plugin->bEnabled && FNativeClasses::IsKnown(ClassPath);
	}
	return FNativeClasses::IsKnown(ClassPath);
}

const IQVClass* FClasses::FindClass(std::string_view ClassPath)
{
	if (IsNative(ClassPath))
	{
		return IsNativeKnown(ClassPath) ? &Get(std::string(ClassPath)) : nullptr;
	}
	const auto Found = Known.find(FQVName(ClassPath));
	return Found != Known.end() ? Found->second.get() : nullptr;
}

const IQVClass* FClasses::LoadClass(std::string_view ClassPath)
{
	const std::string_view Package = FQVAssetData::PackageOfObjectPath(ClassPath);
	const bool bThere = !IsNative(ClassPath) && !Packages.FindPackageFile(Package).empty();
	return bThere ? &Get(std::string(ClassPath)) : FindClass(ClassPath);
}

const FClass& FClasses::Get(const std::string& ClassPath)
{
	return Get(ClassPath, 0);
}

const FClass& FClasses::Get(const std::string& ClassPath, int Depth)
{
	const FQVName Path(ClassPath);
	if (const auto Found = Known.find(Path); Found != Known.end())
	{
		return *Found->second;
	}
	FClassContent Content = Depth < DeepestClass ? Read(ClassPath) : FClassContent();
	if (!Content.MovedTo.empty())
	{
		return Get(Content.MovedTo, Depth + 1);
	}
	const FClass* Parent = Content.Parent.empty() ? nullptr : &Get(Content.Parent, Depth + 1);
	auto Class = std::make_unique<FClass>(Path, Parent, std::move(Content));
	// reading the parents of a made-up class can come back to it
	return *Known.try_emplace(Path, std::move(Class)).first->second;
}

const FClass& FClasses::Add(const std::string& ClassPath, FClassContent Content)
{
	const FQVName Path(ClassPath);
	const FClass* Parent = Content.Parent.empty() ? nullptr : &Get(Content.Parent, 1);
	auto Class = std::make_unique<FClass>(Path, Parent, std::move(Content));
	return *Known.try_emplace(Path, std::move(Class)).first->second;
}

FClassContent FClasses::Read(const std::string& ClassPath) const
{
	FClassContent Content;
	if (IsNative(ClassPath))
	{
		Content.Parent = FNativeClasses::ParentOf(ClassPath);
		return Content;
	}
	const std::string Package(FQVAssetData::PackageOfObjectPath(ClassPath));
	const std::string File = Packages.FindPackageFile(Package);
	if (File.empty())
	{
		return Content;
	}
	const auto Opened = OpenPackage(Package, File);
	if (!Opened)
	{
		LogEngine(EQVLogVerbosity::Warning, "%s", Opened.Error().Message);
		return Content;
	}
	return FindClassIn(**Opened, std::string_view(ClassPath).substr(ClassPath.rfind('.') + 1));
}
} // namespace QVStandalone
