// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/ImportList.h"

#include <algorithm>

namespace QVFormats
{
namespace
{
constexpr std::string_view CoreUObject = "/Script/CoreUObject";
constexpr std::string_view EngineModule = "/Script/Engine";
} // namespace

FPackageIndex FImportList::Package(std::string_view Name, bool bUsedInGame)
{
	return Object({std::string(CoreUObject), "Package", std::string(Name), {}, bUsedInGame});
}

FPackageIndex FImportList::Object(FImportSpec Import)
{
	const auto Known = std::find_if(Spec.Imports.begin(), Spec.Imports.end(),
		[&Import](const FImportSpec& Each)
		{ return Each.ObjectName == Import.ObjectName && Each.Outer == Import.Outer; });
	const auto Index = static_cast<std::size_t>(Known - Spec.Imports.begin());
	if (Known == Spec.Imports.end())
	{
		Spec.Imports.push_back(std::move(Import));
	}
	else
	{
		Known->bUsedInGame |= Import.bUsedInGame;
	}
	return FPackageIndex::Import(Index);
}

FPackageIndex FImportList::Class(std::string_view ClassPath)
{
	const bool bNative = ClassPath.starts_with("/Script/");
	const std::size_t Point = ClassPath.rfind('.');
	const FPackageIndex Outer = Package(ClassPath.substr(0, Point));
	return Object({std::string(bNative ? CoreUObject : EngineModule), bNative ? "Class" : "BlueprintGeneratedClass",
		std::string(ClassPath.substr(Point + 1)), Outer});
}
} // namespace QVFormats
