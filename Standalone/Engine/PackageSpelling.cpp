// SPDX-License-Identifier: MIT
#include "Standalone/Engine/PackageSpelling.h"

#include "Standalone/Engine/PackageHeaderBytes.h"
#include "Standalone/Formats/Package/PackageDependencies.h"

#include <algorithm>

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
/** `/Maps/Hall` of `/Cave/Maps/Hall`: a root is no folder of that name. */
std::string_view BelowRoot(std::string_view Package)
{
	const std::size_t End = Package.find('/', 1);
	return End == std::string_view::npos ? std::string_view() : Package.substr(End);
}

/** What the header says was compared with names, and those are not always spelled like the files. */
bool MayMisspell(const FScannedPackages& Packages, std::uint32_t Row)
{
	return Packages.Graph.TraitsAt(Row).bOddReferences ||
		   (!Packages.OddlySpelled.empty() &&
			   std::ranges::any_of(Packages.Graph.ReferencesAt(Row), [&Packages](FPackedReference Reference)
				   { return Packages.OddlySpelled.contains(Reference.Package()); }));
}
} // namespace

std::vector<FQVMisspelledReference> FindMisspelledReferences(const FScannedPackages& Packages, std::uint32_t Row)
{
	FPackageHeaderReader Reader;
	const TResult<FPackageHeader> Header =
		MayMisspell(Packages, Row) ? Reader.Read(Packages.PathAt(Row)) : TResult<FPackageHeader>(FError{});
	std::vector<FQVMisspelledReference> Found;
	for (const FPackageDependency& Each : Header ? PackageDependencies(*Header) : std::vector<FPackageDependency>())
	{
		const std::string Spelled = Header->Names.Text(Each.Package);
		const std::uint32_t Target = Packages.Graph.FindRow(FQVName(Spelled));
		if (Target == FPackageGraph::NoRow || Target == Row)
		{
			continue;
		}
		std::string OnDisk = Packages.NameOnDiskAt(Target);
		const bool bTold = !Found.empty() && Found.back().Reference == Spelled;
		if (BelowRoot(OnDisk) != BelowRoot(Spelled) && !bTold)
		{
			Found.push_back({Spelled, std::move(OnDisk)});
		}
	}
	return Found;
}
} // namespace QVStandalone
