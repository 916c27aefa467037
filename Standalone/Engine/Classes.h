// SPDX-License-Identifier: MIT
#pragma once

#include "Core/QVName.h"
#include "Engine/QVClasses.h"
#include "Engine/QVWorld.h"
#include "Standalone/Engine/Packages.h"
#include "Standalone/Formats/Package/ScriptReader.h"

#include <map>
#include <memory>
#include <unordered_map>

namespace QVStandalone
{
class FClasses;

/** What is kept of a class that a package holds. */
struct FClassContent
{
	/** Path of the parent; empty if that is not known. */
	std::string Parent;
	/** Path of the class that took its place; empty if none did. */
	std::string MovedTo;
	std::vector<FQVFunction> Functions;
	/** Enum properties of the default object that differ from the parent's, by name in small letters. */
	std::map<std::string, std::string> Defaults;
};

/** A class of code, by its name alone, or one that a package holds. */
class FClass : public IQVClass
{
public:
	FClass(FQVName InPath, const FClass* InParent, FClassContent InContent);

	std::string GetName() const override;
	std::string GetPackageName() const override;
	bool IsChildOf(std::string_view ClassPath) const override { return IsChildOf(FQVName(ClassPath)); }
	void GetFunctions(std::vector<FQVFunction>& Out) const override { Out = Content.Functions; }
	bool HasEnumProperty(std::string_view Property, std::string_view Enumerator) const override;

	FQVName GetPath() const { return Path; }
	bool IsChildOf(FQVName ClassPath) const;
	/** Of the nearest class above that is a blueprint's and differs from its parent in it. */
	const std::string* FindDefault(const std::string& SmallProperty) const;

private:
	const FQVName Path;
	const FClass* const Parent;
	const FClassContent Content;
};

/** Classes as far as files and a short table of native ones tell. What it gives lives until the next Forget. */
class FClasses : public IQVClasses
{
public:
	/** What is given outlives it. */
	FClasses(const FPackages& InPackages, const FPlugins& InPlugins);

	const IQVClass* FindClass(std::string_view ClassPath) override;
	const IQVClass* LoadClass(std::string_view ClassPath) override;

	/** A class that something in a file is of: one of which nothing more is known stands for itself. */
	const FClass& Get(const std::string& ClassPath);
	/** A class that an open map holds. */
	const FClass& Add(const std::string& ClassPath, FClassContent Content);
	/** Files may have changed: all is to be read anew. */
	void Forget() { Known.clear(); }

private:
	const FPackages& Packages;
	const FPlugins& Plugins;
	std::unordered_map<FQVName, std::unique_ptr<FClass>> Known;

	bool IsNativeKnown(std::string_view ClassPath) const;
	const FClass& Get(const std::string& ClassPath, int Depth);
	FClassContent Read(const std::string& ClassPath) const;
};
} // namespace QVStandalone
