// SPDX-License-Identifier: MIT
#include "Tests/Interface/InterfaceTest.h"
#include "Workspace/QVMapConfig.h"

using namespace QVTest;

namespace
{
const std::string Placeholder = "PreviewPlaceholder: Enter a name to see what will be created.";

struct FNewModDialog : FInterfaceTest
{
	FScriptedNewModView View;
	FQVCreateModResult Result;

	bool Show(const std::function<void(SQVMapNewModDialog&)>& User)
	{
		View.User = User;
		return SQVMapNewModDialog::ShowDialog(Result);
	}
	std::string State(const SQVMapNewModDialog& Dialog) const
	{
		return std::string(Dialog.CanCreate() ? "can" : "cannot") + " | " + Say(Dialog.GetError()) + " | " +
			   Say(Dialog.GetPreview());
	}
};
} // namespace

TEST_F(FNewModDialog, HasItsItemsFromTopToBottom)
{
	const std::pair<EQVNewModItem, std::string> Expected[] = {
		{EQVNewModItem::Intro,
			"Intro: This creates a new map and its own folder to keep its assets in. Put everything the map uses in "
			"that folder - anything left outside it gets copied into your pak."},
		{EQVNewModItem::NameLabel, "NameLabel: Map name"},
		{EQVNewModItem::NameBox, "NameHint: MyCustomMap"},
		{EQVNewModItem::ErrorLine, ""},
		{EQVNewModItem::AuthorLabel, "AuthorLabel: Author (optional)"},
		{EQVNewModItem::AuthorBox, ""},
		{EQVNewModItem::DescriptionLabel, "DescriptionLabel: Description (optional)"},
		{EQVNewModItem::DescriptionBox, ""},
		{EQVNewModItem::Separator, ""},
		{EQVNewModItem::Preview, ""},
		{EQVNewModItem::CreateButton, "Create: Create Map"},
		{EQVNewModItem::CancelButton, "Cancel: Cancel"},
	};
	std::vector<std::pair<EQVNewModItem, std::string>> Items;
	for (const FQVNewModItem& Each : SQVMapNewModDialog::GetItems())
	{
		Items.emplace_back(Each.Item, Say(Each.Text));
		EXPECT_TRUE(Each.Text.GetKey().empty() || Each.Text.GetNamespace() == "SQVMapNewModDialog");
	}
	EXPECT_EQ(Items, std::vector(std::begin(Expected), std::end(Expected)));
	EXPECT_EQ(Say(SQVMapNewModDialog::GetTitle()), "WindowTitle: New Map");
	EXPECT_EQ(SQVMapNewModDialog::IntroWrapWidth, 460);
	EXPECT_EQ(SQVMapNewModDialog::ErrorColor[1], 0.35F);
}

TEST_F(FNewModDialog, ChecksTheNameWithEveryLetter)
{
	Project.MakeFolder("Plugins/Cave");
	const std::string Preview = "can |  | PreviewFormat: Map:\n<Project>/Plugins/Cav/Content/Maps/Cav.umap\n\nPut this "
								"map's assets in:\n<Project>/Plugins/Cav/Content";
	const std::pair<const char*, std::string> Typed[] = {
		{" ", "cannot |  | " + Placeholder},
		{"\t Cav \n", Preview},
		{"Cave", "cannot | FolderExists: A map called 'Cave' already exists.\n\nPick a different name, or delete "
				 "Plugins/Cave/ first. | " +
					 Placeholder},
		{"Cav", Preview},
		{"Ca v", "cannot | Plugin name 'Ca v' contains invalid character ' '. Allowed: letters, numbers, underscore, "
				 "hyphen. | " +
					 Placeholder},
		{"", "cannot |  | " + Placeholder},
	};
	EXPECT_FALSE(Show(
		[&](SQVMapNewModDialog& Dialog)
		{
			EXPECT_EQ(State(Dialog), "cannot |  | " + Placeholder);
			for (const auto& [Text, Expected] : Typed)
			{
				Dialog.SetName(Text);
				EXPECT_EQ(State(Dialog), Expected) << Text;
			}
			EXPECT_EQ(View.Changes, 6);
			Dialog.Create();
			EXPECT_TRUE(View.bOpen) << "the button is grey";
		}))
		<< "closed by its frame";
}

TEST_F(FNewModDialog, MakesTheMapAndRemembersItsAuthor)
{
	FQVMapConfig::SetMapTemplatePath("");
	FQVMapConfig::SetNewModAuthor("Ada");
	EXPECT_TRUE(Show(
		[&](SQVMapNewModDialog& Dialog)
		{
			EXPECT_EQ(Dialog.GetAuthor(), "Ada");
			Dialog.SetName("  Cave ");
			Dialog.SetAuthor("  Zoë\t");
			Dialog.SetDescription("\n A place. \n");
			Dialog.Create();
			EXPECT_FALSE(View.bOpen);
		}));
	EXPECT_TRUE(Result.bCreated);
	EXPECT_EQ(Result.ModName, "Cave");
	EXPECT_EQ(FQVMapConfig::GetNewModAuthor(), "Zoë");
	const std::string Descriptor = Project.Read("Plugins/Cave/Cave.uplugin");
	EXPECT_NE(Descriptor.find("\"CreatedBy\": \"Zoë\""), std::string::npos);
	EXPECT_NE(Descriptor.find("\"Description\": \"A place.\""), std::string::npos);

	EXPECT_TRUE(Show(
		[](SQVMapNewModDialog& Dialog)
		{
			Dialog.SetName("Harbor");
			Dialog.SetAuthor(" ");
			Dialog.Create();
		}));
	EXPECT_EQ(FQVMapConfig::GetNewModAuthor(), "Zoë") << "an emptied box does not clear it";
	EXPECT_NE(Project.Read("Plugins/Harbor/Harbor.uplugin").find("\"CreatedBy\": \"\""), std::string::npos);
	EXPECT_EQ(Dialogs.Shown, std::vector<std::string>());
}

TEST_F(FNewModDialog, ACancelledWindowMakesNothing)
{
	Result.ModName = "untouched";
	EXPECT_FALSE(Show(
		[&](SQVMapNewModDialog& Dialog)
		{
			Dialog.SetName("Cave");
			Dialog.SetAuthor("Zoë");
			Dialog.Cancel();
			EXPECT_FALSE(View.bOpen);
		}));
	EXPECT_EQ(Result.ModName, "untouched");
	EXPECT_EQ(FQVMapConfig::GetNewModAuthor(), "");
	EXPECT_FALSE(Project.Exists("Plugins/Cave"));
	SQVMapNewModDialog::SetView(nullptr);
	EXPECT_FALSE(SQVMapNewModDialog::ShowDialog(Result)) << "a program without that window";
}

TEST_F(FNewModDialog, TellsAFailureInOneMessage)
{
	Editor.bSaves = false;
	EXPECT_TRUE(Show(
		[](SQVMapNewModDialog& Dialog)
		{
			Dialog.SetName("Cave");
			Dialog.Create();
		}));
	EXPECT_FALSE(Result.bCreated);
	EXPECT_EQ(Dialogs.Shown, (std::vector<std::string>{"message CreateFailedTitle/CreateModCancelled: <Could Not "
													   "Create Map> Cancelled - nothing was created."}));
}
