// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Package/PackageRenames.h"

#include "Standalone/Formats/Base/Unicode.h"

#include <algorithm>

namespace QVFormats
{
namespace
{
/** Never part of a package's name. */
constexpr std::string_view PackageEnds = "\\:*?\"<>|' ,.&!~\n\r\t@#";
/** Could be, but end a path in exported text as a rule: `(Mesh=/Game/Rock.Rock)`. */
constexpr std::string_view LikelyEnds = "(){}[]=;";
constexpr std::string_view ObjectEnds = "\"' ,/.:|&!~\n\r\t@#(){}[]=;^%$`\\";
constexpr std::string_view DefaultObject = "Default__";
constexpr std::size_t LongestName = 1023;

bool HasBadUtf8(std::string_view Text)
{
	return Utf8ToUtf16(Text).find(u'\uFFFD') != std::u16string::npos;
}

bool IsPackageName(std::string_view Name)
{
	return Name.size() > 1 && Name.size() <= LongestName && Name.front() == '/' && Name.back() != '/' &&
		   Name.find("//") == std::string_view::npos && Name.find_first_of(PackageEnds) == std::string_view::npos &&
		   Name.find('\0') == std::string_view::npos && !HasBadUtf8(Name);
}

bool IsObjectName(std::string_view Name)
{
	return !Name.empty() && Name.size() <= LongestName && Name.find_first_of(ObjectEnds) == std::string_view::npos &&
		   Name.find('\0') == std::string_view::npos && ToLowerAscii(Name) != "none" && !HasBadUtf8(Name);
}

FStatus CheckNames(const FPackageRename& Rename)
{
	for (const std::string& Name : {Rename.From, Rename.To})
	{
		if (!IsPackageName(Name))
		{
			return FError{"cannot be edited: '" + Name + "' is no long package name like /Game/Meshes/Rock"};
		}
	}
	for (const auto& [Old, New] : Rename.Objects)
	{
		if (!IsObjectName(Old) || !IsObjectName(New))
		{
			std::string Message = "cannot be edited: an object of ";
			Message.append(Rename.From).append(" cannot go from the name '").append(Old);
			return FError{Message.append("' to '").append(New).append("'")};
		}
	}
	return Success();
}

bool BeginsPath(std::string_view Text, std::size_t At)
{
	return Text[At] == '/' && (At == 0 || PackageEnds.find(Text[At - 1]) != std::string_view::npos ||
								  LikelyEnds.find(Text[At - 1]) != std::string_view::npos);
}
} // namespace

TResult<FPackageRenames> FPackageRenames::Make(std::span<const FPackageRename> Renames)
{
	FPackageRenames Result;
	for (const FPackageRename& Rename : Renames)
	{
		if (const FStatus Status = CheckNames(Rename); !Status)
		{
			return Status.Error();
		}
		if (!Result.ByOldName.emplace(ToLowerAscii(Rename.From), &Rename).second)
		{
			return FError{"cannot be edited: " + Rename.From + " is to be renamed twice"};
		}
		Result.LongestOldName = std::max(Result.LongestOldName, Rename.From.size());
	}
	return Result;
}

const FPackageRename* FPackageRenames::Find(std::string_view Package) const
{
	if (Package.empty() || Package.front() != '/')
	{
		return nullptr;
	}
	const auto Found = ByOldName.find(ToLowerAscii(Package));
	return Found == ByOldName.end() ? nullptr : Found->second;
}

std::optional<std::string> FPackageRenames::Object(const FPackageRename& Rename, std::string_view OldName)
{
	const std::string Wanted = ToLowerAscii(OldName);
	for (const auto& [Old, New] : Rename.Objects)
	{
		const std::string Small = ToLowerAscii(Old);
		if (Small == Wanted)
		{
			return New;
		}
		if (Wanted == ToLowerAscii(DefaultObject) + Small)
		{
			return std::string(OldName.substr(0, DefaultObject.size())) + New;
		}
	}
	return std::nullopt;
}

std::optional<std::string> FPackageRenames::ObjectPath(const FPackageRename& Rename, std::string_view OldPath)
{
	const std::size_t End = std::min(OldPath.find_first_of(ObjectEnds), OldPath.size());
	std::optional<std::string> New = Object(Rename, OldPath.substr(0, End));
	return New ? std::optional(*New + std::string(OldPath.substr(End))) : std::nullopt;
}

bool FPackageRenames::ReplacePath(std::string_view Text, std::size_t& At, std::string& Out) const
{
	// no further than a name reaches that is to be replaced: a text may be long and full of likely ends
	const std::size_t Reach = std::min(Text.size(), At + LongestOldName + 1);
	const std::size_t Longest = std::min(Text.find_first_of(PackageEnds, At), Reach);
	const FPackageRename* Rename = nullptr;
	std::size_t End = Longest;
	while (End != std::string_view::npos && End > At && (Rename = Find(Text.substr(At, End - At))) == nullptr)
	{
		End = Text.find_last_of(LikelyEnds, End - 1);
	}
	if (Rename == nullptr)
	{
		// Only up to the first likely end: another path can begin behind it.
		const std::size_t Next = std::min(Text.find_first_of(LikelyEnds, At), Longest);
		Out += Text.substr(At, Next - At);
		At = Next;
		return false;
	}
	Out += Rename->To;
	At = End;
	if (At < Text.size() && Text[At] == '.')
	{
		const std::size_t ObjectEnd = std::min(Text.find_first_of(ObjectEnds, At + 1), Text.size());
		const std::string_view Old = Text.substr(At + 1, ObjectEnd - At - 1);
		Out += "." + Object(*Rename, Old).value_or(std::string(Old));
		At = ObjectEnd;
	}
	return true;
}

std::optional<std::string> FPackageRenames::Text(std::string_view OldText) const
{
	std::string Out;
	bool bChanged = false;
	for (std::size_t At = 0; At < OldText.size();)
	{
		if (BeginsPath(OldText, At))
		{
			bChanged = ReplacePath(OldText, At, Out) || bChanged;
			continue;
		}
		Out += OldText[At++];
	}
	return bChanged ? std::optional(std::move(Out)) : std::nullopt;
}
} // namespace QVFormats
