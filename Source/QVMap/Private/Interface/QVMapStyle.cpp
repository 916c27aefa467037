// SPDX-License-Identifier: MIT
#include "Interface/QVMapStyle.h"

#include "Core/QVCheck.h"
#include "Core/QVPath.h"
#include "Engine/QVEngine.h"
#include "Engine/QVFiles.h"
#include "Engine/QVInterface.h"
#include "Engine/QVPlugins.h"

namespace
{
/** Counted by those who hold it. */
struct FStyleInstance
{
	std::shared_ptr<const FQVStyleSet> Set;

	bool IsUnique() const { return Set.use_count() == 1; }
};

FStyleInstance StyleInstance;

FQVToolbarStyle MakeRed(std::string_view CopyOf, const FQVMargin& Padding)
{
	FQVToolbarStyle Style;
	Style.CopyOf = CopyOf;
	Style.Normal = {1.0F, 0.02F, 0.02F, 1.0F};
	Style.Hovered = {1.0F, 1.0F, 1.0F, 1.0F};
	Style.Pressed = {0.8F, 0.8F, 0.8F, 1.0F};
	Style.Padding = Padding;
	return Style;
}

void AddIcons(FQVStyleSet& Set)
{
	const std::optional<FQVPluginInfo> Plugin = FQVEngine::Get().Plugins->FindPlugin("QVMap");
	if (!Plugin)
	{
		return;
	}
	Set.ContentRoot = FQVPath::Combine(Plugin->BaseDir, "Resources");
	const std::string File = FQVPath::Combine(Set.ContentRoot, "T_QV.png");
	if (FQVEngine::Get().Files->FileExists(File))
	{
		Set.Images.emplace(FQVMapStyle::Icon, FQVImageBrush{File, 40, 20});
		Set.Images.emplace(FQVMapStyle::SmallIcon, FQVImageBrush{File, 20, 10});
	}
}
} // namespace

void FQVMapStyle::Initialize()
{
	if (StyleInstance.Set != nullptr)
	{
		return;
	}
	const auto Set = std::make_shared<FQVStyleSet>();
	Set->Name = GetStyleSetName();
	AddIcons(*Set);
	Set->Toolbars.emplace(RedButtonCenter, MakeRed("Toolbar.BackplateCenter", {1, 2, 2, 2}));
	Set->Toolbars.emplace(RedButtonRightCombo, MakeRed("Toolbar.BackplateRightCombo", {7, 2, 6, 2}));
	StyleInstance.Set = Set;
	FQVEngine::Get().Interface->RegisterStyle(Set);
}

void FQVMapStyle::Shutdown()
{
	if (StyleInstance.Set == nullptr)
	{
		return;
	}
	FQVEngine::Get().Interface->UnregisterStyle(*StyleInstance.Set);
	QV_CHECK(StyleInstance.IsUnique());
	StyleInstance.Set.reset();
}

const FQVStyleSet& FQVMapStyle::Get()
{
	QV_CHECK(StyleInstance.Set != nullptr);
	return *StyleInstance.Set;
}

std::string_view FQVMapStyle::GetStyleSetName()
{
	return "QVMapStyle";
}
