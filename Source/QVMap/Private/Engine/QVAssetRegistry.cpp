// SPDX-License-Identifier: MIT
#include "Engine/QVAssetRegistry.h"

bool FQVAssetData::IsRedirector() const
{
	static const FQVName Redirector(RedirectorClass);
	return ClassPath == Redirector;
}

std::string_view FQVAssetData::GetClassName() const
{
	const std::string_view Path = ClassPath.ToView();
	return Path.substr(Path.find_last_of('.') + 1);
}

std::string_view FQVAssetData::PackageOfObjectPath(std::string_view Path)
{
	const std::size_t Quote = Path.find('\'');
	Path.remove_prefix(Quote == std::string_view::npos ? 0 : Quote + 1);
	return Path.substr(0, Path.find_first_of(".:'"));
}

std::string FQVAssetData::GetObjectPath() const
{
	std::string Path = OuterPath.IsNone() ? PackageName.ToString() : OuterPath.ToString();
	// an object of the level itself follows a colon, what is below that a dot
	const bool bBelowTop =
		!OuterPath.IsNone() && Path.find(':') == std::string::npos && Path.find('.') != std::string::npos;
	Path += bBelowTop ? ':' : '.';
	return Path.append(AssetName.ToView());
}
