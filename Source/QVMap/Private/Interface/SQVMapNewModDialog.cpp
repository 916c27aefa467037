// SPDX-License-Identifier: MIT
#include "Interface/SQVMapNewModDialog.h"

#include "Core/QVString.h"
#include "Engine/QVDialogs.h"
#include "Engine/QVEngine.h"
#include "Workspace/QVMapConfig.h"

namespace
{
IQVNewModDialogView*& InstalledView()
{
	static IQVNewModDialogView* View = nullptr;
	return View;
}

FQVText Text(std::string_view Key, std::string_view Source)
{
	return {SQVMapNewModDialog::TextNamespace, Key, Source};
}
} // namespace

void SQVMapNewModDialog::SetView(IQVNewModDialogView* View)
{
	InstalledView() = View;
}

bool SQVMapNewModDialog::ShowDialog(FQVCreateModResult& OutResult)
{
	IQVNewModDialogView* View = InstalledView();
	if (View == nullptr)
	{
		return false;
	}
	SQVMapNewModDialog Dialog(*View);
	View->ShowModal(Dialog);
	if (!Dialog.bConfirmed)
	{
		return false;
	}
	const FQVCreateModRequest Request = Dialog.MakeRequest();
	if (!Request.Author.empty())
	{
		FQVMapConfig::SetNewModAuthor(Request.Author);
	}
	OutResult = FQVMapModWizard::CreateMod(Request);
	if (!OutResult.bCreated)
	{
		FQVEngine::Get().Dialogs->ShowMessage(
			OutResult.ErrorMessage, Text("CreateFailedTitle", "Could Not Create Map"));
	}
	return true;
}

SQVMapNewModDialog::SQVMapNewModDialog(IQVNewModDialogView& InView)
	: View(InView)
	, Author(FQVMapConfig::GetNewModAuthor())
{
}

FQVText SQVMapNewModDialog::GetTitle()
{
	return Text("WindowTitle", "New Map");
}

std::vector<FQVNewModItem> SQVMapNewModDialog::GetItems()
{
	return {{EQVNewModItem::Intro,
				Text("Intro",
					"This creates a new map and its own folder to keep its assets in. Put everything the map uses in "
					"that folder - anything left outside it gets copied into your pak.")},
		{EQVNewModItem::NameLabel, Text("NameLabel", "Map name")},
		{EQVNewModItem::NameBox, Text("NameHint", "MyCustomMap")}, {EQVNewModItem::ErrorLine, {}},
		{EQVNewModItem::AuthorLabel, Text("AuthorLabel", "Author (optional)")}, {EQVNewModItem::AuthorBox, {}},
		{EQVNewModItem::DescriptionLabel, Text("DescriptionLabel", "Description (optional)")},
		{EQVNewModItem::DescriptionBox, {}}, {EQVNewModItem::Separator, {}}, {EQVNewModItem::Preview, {}},
		{EQVNewModItem::CreateButton, Text("Create", "Create Map")},
		{EQVNewModItem::CancelButton, Text("Cancel", "Cancel")}};
}

void SQVMapNewModDialog::SetName(std::string_view Typed)
{
	Name = FQVString::Trim(Typed);
	Error = {};
	bNameValid = !Name.empty() && FQVMapModWizard::ValidateNewModName(Name, Error);
	View.OnChanged();
}

FQVText SQVMapNewModDialog::GetPreview() const
{
	if (!bNameValid)
	{
		return Text("PreviewPlaceholder", "Enter a name to see what will be created.");
	}
	return {TextNamespace, "PreviewFormat", "Map:\n{0}\n\nPut this map's assets in:\n{1}",
		FQVMapModWizard::GetMapFilePath(Name), FQVMapModWizard::GetModContentDir(Name)};
}

void SQVMapNewModDialog::Create()
{
	if (bNameValid)
	{
		bConfirmed = true;
		View.Close();
	}
}

FQVCreateModRequest SQVMapNewModDialog::MakeRequest() const
{
	return {Name, std::string(FQVString::Trim(Author)), std::string(FQVString::Trim(Description))};
}
