// SPDX-License-Identifier: MIT
#include "Core/QVPath.h"
#include "Standalone/Engine/EngineLocator.h"
#include "Standalone/Engine/Environment.h"
#include "Standalone/Engine/Files.h"
#include "Standalone/Formats/Windows/Win32.h"

#include <optional>

namespace QVStandalone
{
using namespace QVFormats;

namespace
{
constexpr const wchar_t* InstalledKey = LR"(SOFTWARE\EpicGames\Unreal Engine)";
constexpr const wchar_t* BuildsKey = LR"(Software\Epic Games\Unreal Engine\Builds)";

/** A key of the registry, open for reading. */
class FRegistryKey
{
public:
	FRegistryKey(HKEY Root, const wchar_t* Path)
	{
		if (::RegOpenKeyExW(Root, Path, 0, KEY_READ | KEY_WOW64_64KEY, &Key) != ERROR_SUCCESS)
		{
			Key = nullptr;
		}
	}
	FRegistryKey(const FRegistryKey&) = delete;
	FRegistryKey& operator=(const FRegistryKey&) = delete;
	~FRegistryKey()
	{
		if (Key != nullptr)
		{
			::RegCloseKey(Key);
		}
	}

	std::vector<std::wstring> KeyNames() const { return Names(&EnumerateKey); }
	std::vector<std::wstring> ValueNames() const { return Names(&EnumerateValue); }

	/** A text below this key, or in one below it; nothing if there is none. */
	std::optional<std::string> Text(const wchar_t* Below, const std::wstring& Name) const
	{
		DWORD Bytes = 0;
		std::wstring Value;
		constexpr DWORD Flags = RRF_RT_REG_SZ | RRF_SUBKEY_WOW6464KEY;
		if (Key == nullptr ||
			::RegGetValueW(Key, Below, Name.c_str(), Flags, nullptr, nullptr, &Bytes) != ERROR_SUCCESS)
		{
			return std::nullopt;
		}
		Value.resize(Bytes / sizeof(wchar_t));
		if (::RegGetValueW(Key, Below, Name.c_str(), Flags, nullptr, Value.data(), &Bytes) != ERROR_SUCCESS)
		{
			return std::nullopt;
		}
		return FromWide(Value.c_str());
	}

private:
	static constexpr DWORD LongestName = 16'384;
	HKEY Key = nullptr;

	static LSTATUS EnumerateKey(HKEY Of, DWORD Index, wchar_t* Name, DWORD* Length)
	{
		return ::RegEnumKeyExW(Of, Index, Name, Length, nullptr, nullptr, nullptr, nullptr);
	}
	static LSTATUS EnumerateValue(HKEY Of, DWORD Index, wchar_t* Name, DWORD* Length)
	{
		return ::RegEnumValueW(Of, Index, Name, Length, nullptr, nullptr, nullptr, nullptr);
	}

	std::vector<std::wstring> Names(LSTATUS (*Enumerate)(HKEY, DWORD, wchar_t*, DWORD*)) const
	{
		std::vector<std::wstring> Found;
		std::wstring Name(LongestName, L'\0');
		DWORD Length = LongestName;
		while (
			Key != nullptr && Enumerate(Key, static_cast<DWORD>(Found.size()), Name.data(), &Length) == ERROR_SUCCESS)
		{
			Found.push_back(Name.substr(0, Length));
			Length = LongestName;
		}
		return Found;
	}
};

/** What the launcher has installed: a key for each version. */
FInstallRecord ReadInstalled()
{
	FInstallRecord Record{R"(HKEY_LOCAL_MACHINE\SOFTWARE\EpicGames\Unreal Engine)", {}};
	const FRegistryKey Key(HKEY_LOCAL_MACHINE, InstalledKey);
	for (const std::wstring& Version : Key.KeyNames())
	{
		if (const auto Root = Key.Text(Version.c_str(), L"InstalledDirectory"))
		{
			Record.Engines.push_back({FromWide(Version), *Root});
		}
	}
	return Record;
}

/** Engines that were built from source: a value for each. */
FInstallRecord ReadBuilds()
{
	FInstallRecord Record{R"(HKEY_CURRENT_USER\Software\Epic Games\Unreal Engine\Builds)", {}};
	const FRegistryKey Key(HKEY_CURRENT_USER, BuildsKey);
	for (const std::wstring& Identifier : Key.ValueNames())
	{
		if (const auto Root = Key.Text(nullptr, Identifier))
		{
			Record.Engines.push_back({FromWide(Identifier), *Root});
		}
	}
	return Record;
}

FInstallRecord ReadLauncherFile()
{
	FInstallRecord Record{FQVPath::Combine(FQVPath::NormalizeFilename(EnvironmentValue("ProgramData")),
							  "Epic/UnrealEngineLauncher/LauncherInstalled.dat"),
		{}};
	std::string Text;
	if (FFiles().LoadFileToString(Text, Record.File))
	{
		Record.Engines = ParseLauncherInstalled(Text);
	}
	return Record;
}
} // namespace

std::vector<FInstallRecord> ReadInstallRecords()
{
	return {ReadInstalled(), ReadBuilds(), ReadLauncherFile()};
}
} // namespace QVStandalone
