// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/RedirectorPackage.h"

#include "Standalone/Formats/Base/ByteWriter.h"
#include "Standalone/Formats/Package/PackageBuilder.h"

namespace QVFormats
{
namespace
{
constexpr std::string_view CoreUObject = "/Script/CoreUObject";
constexpr std::string_view RedirectorClass = "/Script/CoreUObject.ObjectRedirector";

std::string LastPart(const std::string& Package)
{
	return Package.substr(Package.rfind('/') + 1);
}

class FRedirectorMaker
{
public:
	explicit FRedirectorMaker(const FRedirectorPackageSpec& InSpec)
		: Spec(InSpec)
	{
		Package.PackageName = Spec.PackageName;
		Package.DataNames = {"None"};
		const FPackageIndex Core = Import(std::string(CoreUObject), {}, std::string(CoreUObject), "Package");
		Class = Import("ObjectRedirector", Core, std::string(CoreUObject), "Class");
		Target = Import(Spec.Target, {}, std::string(CoreUObject), "Package");
	}

	std::vector<std::byte> Make()
	{
		const std::string Old = LastPart(Spec.PackageName);
		const std::string New = LastPart(Spec.Target);
		Redirect(Old, New, Spec.ClassPackage, Spec.ClassName);
		if (Spec.ClassName == "Blueprint")
		{
			Redirect(Old + "_C", New + "_C", Spec.ClassPackage, "BlueprintGeneratedClass");
			Redirect("Default__" + Old + "_C", "Default__" + New + "_C", Spec.Target, New + "_C");
		}
		return BuildPackage(Package);
	}

private:
	const FRedirectorPackageSpec& Spec;
	FPackageSpec Package;
	FPackageIndex Class;
	FPackageIndex Target;

	FPackageIndex Import(
		const std::string& Name, FPackageIndex Outer, const std::string& ClassPackage, const std::string& ClassName)
	{
		Package.Imports.push_back({ClassPackage, ClassName, Name, Outer, true});
		return FPackageIndex::Import(Package.Imports.size() - 1);
	}

	void Redirect(
		const std::string& Old, const std::string& New, const std::string& ClassPackage, const std::string& ClassName)
	{
		FExportSpec Export;
		Export.Class = Class;
		Export.ObjectName = Old;
		Export.ObjectFlags =
			static_cast<std::uint32_t>(EObjectFlags::Public) | static_cast<std::uint32_t>(EObjectFlags::Standalone);
		Export.bAsset = true;
		FByteWriter Out;
		Out.U8(0);	// control byte
		Out.I32(0); // None
		Out.I32(0);
		Export.ScriptEnd = static_cast<std::int64_t>(Out.Position());
		Out.Bool32(false); // object guid
		Out.Write(Import(New, Target, ClassPackage, ClassName));
		Export.Data = Out.Release();
		Package.Exports.push_back(std::move(Export));
		Package.Assets.push_back({Old, std::string(RedirectorClass),
			{{"DestinationObject", ClassPackage + "." + ClassName + "'" + Spec.Target + "." + New + "'"}}});
	}
};
} // namespace

std::vector<std::byte> BuildRedirectorPackage(const FRedirectorPackageSpec& Spec)
{
	return FRedirectorMaker(Spec).Make();
}
} // namespace QVFormats
