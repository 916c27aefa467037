// SPDX-License-Identifier: MIT
#include "Standalone/Engine/EditorOnlyRule.h"

#include "Standalone/Engine/NativeClasses.h"
#include "Standalone/Formats/Package/PropertyValues.h"

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
constexpr std::string_view EditorOnlyProperty = "bIsEditorOnlyActor";

/** Whether any object of a package can have a property of that name. */
bool HasName(const FPackageNames& Names, std::string_view Text)
{
	for (std::uint32_t Entry = 0; Entry < Names.Num(); ++Entry)
	{
		if (NameIs(Names, {Entry, 0}, Text))
		{
			return true;
		}
	}
	return false;
}
} // namespace

FEditorOnlyRule::FEditorOnlyRule(const FPackageHeader& InHeader, FBytes InFile)
	: Header(InHeader)
	, File(InFile)
	, bPropertyUsed(HasName(InHeader.Names, EditorOnlyProperty))
{
}

bool FEditorOnlyRule::Applies(const FPackageExport& Export, const FClass& Class) const
{
	// a brush is left out of a game by another switch: the engine's test says no
	static const FQVName Brush(FNativeClasses::Brush);
	return (Export.bNotForClient && Export.bNotForServer && !Class.IsChildOf(Brush)) || IsMarked(Export);
}

bool FEditorOnlyRule::IsMarked(const FPackageExport& Export) const
{
	const TResult<FBytes> Data = bPropertyUsed ? FindExportData(Export, File) : TResult<FBytes>(FError{});
	const std::optional<FPropertyTag> Tag =
		Data ? FindProperty(Header, Export, *Data, EditorOnlyProperty) : std::optional<FPropertyTag>();
	return Tag && ToBool(Tag->Value).value_or(false);
}
} // namespace QVStandalone
