// SPDX-License-Identifier: MIT
#include "Standalone/Engine/PackageFacts.h"

#include "Core/QVUnicode.h"
#include "Standalone/Formats/Base/Unicode.h"

#include <algorithm>
#include <tuple>

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
/** Buffer is used only where the letters do not stand in the file as they are. */
std::string_view TextOf(const FStringView& Text, std::string& Buffer)
{
	const std::string_view Bytes(reinterpret_cast<const char*>(Text.Bytes.data()), Text.Bytes.size());
	if (!Text.bWide && IsAscii(Bytes))
	{
		return Bytes;
	}
	Buffer = Text.ToUtf8();
	return Buffer;
}

std::string_view NameText(const FPackageNames& Names, FNameRef Name, std::string& Buffer)
{
	if (Name.Number == 0)
	{
		return TextOf(Names.Entry(Name.Entry), Buffer);
	}
	Buffer = Names.Text(Name);
	return Buffer;
}

/** `Hall` gives nothing; `/Cave/Hall.Hall:PersistentLevel.Wall` the part before the last point. */
std::string_view OuterOf(std::string_view ObjectPath)
{
	const std::size_t End = ObjectPath.find_last_of(".:");
	return End == std::string_view::npos ? std::string_view() : ObjectPath.substr(0, End);
}

/** Before 5.1 a class is named without its package; the import table tells which one it is. */
FQVName ResolveShortClass(const FPackageHeader& Header, const std::string& ClassName)
{
	std::string Buffer;
	for (const FPackageImport& Import : Header.Imports)
	{
		FNameRef Package;
		// `Class`, `BlueprintGeneratedClass` ...: an import of any other kind only bears the same name
		if (NameText(Header.Names, Import.ClassName, Buffer).ends_with("Class") &&
			NameText(Header.Names, Import.ObjectName, Buffer) == ClassName && Header.FindPackageOf(Import, Package))
		{
			return FQVName(Header.Names.Text(Package) + "." + ClassName);
		}
	}
	return FQVName(ClassName);
}
} // namespace

std::string PackageNameProblem(std::string_view PackageName)
{
	constexpr std::size_t Shortest = 4;
	constexpr std::string_view Forbidden = "\\:*?\"<>|',.&!~@# \t\n\r";
	const std::size_t Bad = PackageName.find_first_of(Forbidden);
	if (Bad != std::string_view::npos)
	{
		return "has \"" + std::string(1, PackageName[Bad]) + "\" in its name, which no package may have";
	}
	if (FQVUnicode::Repair(PackageName) != PackageName)
	{
		return "has bytes in its name that are not UTF-8";
	}
	const bool bShort = PackageName.size() < Shortest || PackageName.ends_with('/');
	return bShort ? "has no name that a package may have" : std::string();
}

bool IsOfNewerEngine(const FPackageSummary& Summary)
{
	const FEngineVersion& Engine = Summary.CompatibleWith;
	return Summary.FileVersionUE5 > static_cast<std::int32_t>(EUE5Version::PropertyTagTypeNames) ||
		   std::tuple(Engine.Major, Engine.Minor) > std::tuple(5, 4);
}

FAssetRow MakeAssetRow(const FPackageHeader& Header, const FPackageAsset& Asset, FQVName Package)
{
	std::string Buffer;
	const std::string_view Path = TextOf(Asset.ObjectPath, Buffer);
	const std::string_view Outer = OuterOf(Path);
	FAssetRow Row;
	Row.AssetName = FQVName(Path.substr(Outer.empty() ? 0 : Outer.size() + 1));
	const bool bWhole = Outer.empty() || Path.starts_with('/');
	Row.OuterPath = bWhole ? FQVName(Outer) : FQVName(Package.ToString() + "." + std::string(Outer));
	Row.OuterPath = Row.OuterPath == Package ? FQVName() : Row.OuterPath;
	const std::string_view Class = TextOf(Asset.Class, Buffer);
	Row.ClassPath = Class.find('.') != Class.npos ? FQVName(Class) : ResolveShortClass(Header, std::string(Class));
	return Row;
}

FQVName FPackageFacts::Make(std::string_view Package)
{
	const FQVName Name(Package);
	bOddReferences = bOddReferences || Name.ToView() != Package;
	return Name;
}

FQVName FPackageFacts::NameOf(const FPackageHeader& Header, FNameRef Name)
{
	if (Name.Number != 0)
	{
		return Make(NameText(Header.Names, Name, Buffer));
	}
	FQVName& Known = Made[Name.Entry];
	Known = Known.IsNone() ? Make(NameText(Header.Names, Name, Buffer)) : Known;
	return Known;
}

void FPackageFacts::Add(const FPackageHeader& Header, FNameRef Package, bool bHard, bool bGame)
{
	if (!Header.Names.IsNone(Package))
	{
		Found.push_back({NameOf(Header, Package), Package.Entry, Package.Number, bHard, bGame});
	}
}

/** All that was found of one package becomes one hard, one soft, or both. */
void FPackageFacts::Merge(std::span<const FFound> SamePackage)
{
	bool bAny[2] = {false, false};
	bool bGame[2] = {false, false};
	for (const FFound& Each : SamePackage)
	{
		bAny[Each.bHard] = true;
		bGame[Each.bHard] |= Each.bGame;
	}
	const FFound& First = SamePackage.front();
	if (bAny[true])
	{
		Merged.push_back({First.Package, First.Entry, First.Number, true, bGame[true]});
	}
	if (bAny[false] && (!bAny[true] || (bGame[false] && !bGame[true])))
	{
		Merged.push_back({First.Package, First.Entry, First.Number, false, bGame[false]});
	}
}

/** Names are numbered as the threads meet them: that order serves to find equal ones, and must not be seen. */
void FPackageFacts::MergeAll()
{
	std::sort(Found.begin(), Found.end(),
		[](const FFound& A, const FFound& B)
		{ return std::tie(A.Package, A.Entry, A.Number) < std::tie(B.Package, B.Entry, B.Number); });
	Merged.clear();
	for (auto Begin = Found.begin(); Begin != Found.end();)
	{
		const auto End =
			std::find_if(Begin, Found.end(), [Begin](const FFound& Each) { return Each.Package != Begin->Package; });
		Merge(std::span(Begin, End));
		Begin = End;
	}
	std::sort(Merged.begin(), Merged.end(),
		[](const FFound& A, const FFound& B)
		{ return std::tuple(A.Entry, A.Number, !A.bHard) < std::tuple(B.Entry, B.Number, !B.bHard); });
}

FPackageTraits FPackageFacts::Append(const FPackageHeader& Header, FQVName Package)
{
	for (const FPackageAsset& Asset : Header.Registry.Assets)
	{
		Assets.push_back(MakeAssetRow(Header, Asset, Package));
	}
	Found.clear();
	bOddReferences = false;
	Made.assign(Header.Names.Num(), {});
	for (std::size_t Index = 0; Index < Header.Imports.size(); ++Index)
	{
		FNameRef Target;
		if (Header.FindPackageOf(Header.Imports[Index], Target))
		{
			Add(Header, Target, true, Header.Registry.ImportUsedInGame.IsUsedInGame(Index));
		}
	}
	for (std::size_t Index = 0; Index < Header.SoftPackageReferences.size(); ++Index)
	{
		Add(Header, Header.SoftPackageReferences[Index], false,
			Header.Registry.SoftPackageUsedInGame.IsUsedInGame(Index));
	}
	MergeAll();
	for (const FFound& Each : Merged)
	{
		References.push_back(FPackedReference::Pack({Each.Package, Each.bHard, Each.bGame}));
	}
	return {IsOfNewerEngine(Header.Summary), bOddReferences};
}
} // namespace QVStandalone
