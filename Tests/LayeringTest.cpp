// SPDX-License-Identifier: MIT
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace
{
/** Text of each file by its path from the repository's root. */
using FTree = std::map<std::string, std::string>;
using FPlaces = std::vector<std::string>;

const std::string Toolkit = "Source/QVMap/Private/";

// The toolkit has to build inside Unreal, on any system.
constexpr std::string_view ToolkitHeaders =
	" algorithm any array atomic bit bitset cctype cerrno charconv chrono cinttypes climits cmath compare concepts"
	" condition_variable cstdarg cstddef cstdint cstdio cstdlib cstring ctime cwctype deque functional iterator"
	" initializer_list limits list map memory mutex new numbers numeric optional queue random ranges ratio set"
	" shared_mutex span sstream stack string string_view system_error thread tuple type_traits unordered_map"
	" unordered_set utility variant vector version ";
constexpr std::string_view StandaloneHeaders =
	" clocale csignal exception filesystem fstream future iomanip iostream locale stdexcept ";

/** Libraries, and the processor's own instructions, that only one file, or one room, may know. */
constexpr std::pair<std::string_view, std::string_view> Libraries[] = {
	{"libdeflate.h", "Standalone/Formats/Base/Compression.cpp"}, {"zlib.h", "Standalone/Formats/Base/Compression.cpp"},
	{"cpuid.h", "Standalone/Formats/Base/Sha1.cpp"}, {"immintrin.h", "Standalone/Formats/Base/Sha1.cpp"},
	{"curl/", "Standalone/Engine/Posix/HttpTransfer.cpp"}, {"stb_image.h", "Standalone/Engine/Images.cpp"},
	{"nlohmann/", "Standalone/Engine/JsonReader.cpp"}, {"CLI/", "Standalone/Cli/"}, {"Q", "Standalone/Studio/"}};

enum class ESystemHeaders
{
	Portable,
	/** Those of the operating system in the folders Posix/ and Windows/ only. */
	Standalone,
	Any
};

struct FRoom
{
	std::string Place;
	FPlaces MayInclude;
	ESystemHeaders SystemHeaders;
};

std::vector<FRoom> MakeRooms()
{
	std::vector<FRoom> Rooms;
	FPlaces Floors;
	for (const char* Floor : {"Core/", "Engine/", "Workspace/", "Content/", "Export/", "Diagnostics/", "HandOff/",
			 "Interface/", "QVMapModule."})
	{
		Floors.push_back(Toolkit + Floor);
		Rooms.push_back({Floors.back(), Floors, ESystemHeaders::Portable});
	}
	Rooms.back().MayInclude.push_back(Toolkit + "Unreal/");
	Rooms.push_back({Toolkit + "Unreal/", Rooms.back().MayInclude, ESystemHeaders::Any});

	FPlaces Below = {"Standalone/Formats/"};
	Rooms.push_back({Below[0], Below, ESystemHeaders::Standalone});
	Below.insert(Below.end(), {Toolkit + "Core/", Toolkit + "Engine/", "Standalone/Engine/"});
	Rooms.push_back({Below.back(), Below, ESystemHeaders::Standalone});
	Below.push_back("Standalone/EngineTools/");
	Rooms.push_back({Below.back(), Below, ESystemHeaders::Standalone});
	Below.insert(Below.end(), Floors.begin(), Floors.end());
	for (const std::string Program : {"Standalone/Cli/", "Standalone/Studio/"})
	{
		Rooms.push_back({Program, Below, ESystemHeaders::Any});
		Rooms.back().MayInclude.push_back(Program);
	}
	return Rooms;
}

bool StartsWithAny(std::string_view Path, const FPlaces& Places)
{
	return std::any_of(
		Places.begin(), Places.end(), [Path](const std::string& Place) { return Path.starts_with(Place); });
}

/** A source and its header are one. */
std::string UnitOf(const std::string& Path)
{
	return Path.substr(0, Path.rfind('.'));
}

class FLayering
{
public:
	explicit FLayering(const FTree& InTree)
		: Tree(InTree)
	{
	}

	/** "path:line: what is wrong" for each. */
	FPlaces FindBreaches()
	{
		for (const auto& [Path, Text] : Tree)
		{
			CheckFile(Path, Text);
		}
		for (const auto& [Unit, Unused] : Edges)
		{
			Visit(Unit);
		}
		return Breaches;
	}

private:
	struct FEdge
	{
		std::string Target;
		std::string Where;
	};

	const FTree& Tree;
	const std::vector<FRoom> Rooms = MakeRooms();
	FPlaces Breaches;
	std::map<std::string, std::vector<FEdge>> Edges;
	std::map<std::string, bool> Finished; // false while it is on the way

	void CheckFile(const std::string& Path, const std::string& Text)
	{
		if (!Text.starts_with("// SPDX-License-Identifier: MIT\n"))
		{
			Breaches.push_back(Path + ":1: does not begin with the licence line");
		}
		if (Path.ends_with(".h") && Text.find("\n#pragma once\n") == std::string::npos)
		{
			Breaches.push_back(Path + ":2: a header without #pragma once");
		}
		const auto Room = std::find_if(
			Rooms.begin(), Rooms.end(), [&Path](const FRoom& Each) { return Path.starts_with(Each.Place); });
		if (Room != Rooms.end())
		{
			CheckIncludes(Path, Text, *Room);
		}
		else if (Path.starts_with("Source/") || Path.starts_with("Standalone/"))
		{
			Breaches.push_back(Path + ":1: lies in no room");
		}
	}

	void CheckIncludes(const std::string& Path, const std::string& Text, const FRoom& Room)
	{
		std::istringstream Lines(Text);
		std::string Line;
		for (int Number = 1; std::getline(Lines, Line); ++Number)
		{
			std::erase_if(Line, [](char Letter) { return Letter == ' ' || Letter == '\t'; });
			const std::size_t End = Line.find_first_of("\">", 10);
			if (!Line.starts_with("#include") || End == std::string::npos)
			{
				continue;
			}
			const std::string Header = Line.substr(9, End - 9);
			const std::string Where = Path + ":" + std::to_string(Number) + ": ";
			if (!(Line[8] == '<' ? MayUseSystem(Path, Header, Room) : MayUseOwn(Path, Header, Where, Room)))
			{
				Breaches.push_back(Where + Room.Place + " must not include " + Header);
			}
		}
	}

	static bool MayUseSystem(const std::string& Path, const std::string& Header, const FRoom& Room)
	{
		for (const auto& [Library, Place] : Libraries)
		{
			if (Header.starts_with(Library))
			{
				return Path.starts_with(Place);
			}
		}
		const auto IsIn = [&Header](std::string_view List) { return List.find(" " + Header + " ") != List.npos; };
		const bool bOsFolder = Path.find("/Posix/") != Path.npos || Path.find("/Windows/") != Path.npos;
		return Room.SystemHeaders == ESystemHeaders::Any || IsIn(ToolkitHeaders) ||
			   (Room.SystemHeaders == ESystemHeaders::Standalone && (bOsFolder || IsIn(StandaloneHeaders)));
	}

	bool MayUseOwn(const std::string& Path, const std::string& Header, const std::string& Where, const FRoom& Room)
	{
		const std::string Target = Header.starts_with("Standalone/") ? Header : Toolkit + Header;
		if (Path.starts_with(Toolkit) && UnitOf(Target) != UnitOf(Path))
		{
			Edges[UnitOf(Path)].push_back({UnitOf(Target), Where});
		}
		return Tree.contains(Target) ? StartsWithAny(Target, Room.MayInclude)
									 : Room.SystemHeaders == ESystemHeaders::Any;
	}

	void Visit(const std::string& Unit)
	{
		if (!Finished.emplace(Unit, false).second)
		{
			return;
		}
		for (const FEdge& Edge : Edges[Unit])
		{
			if (Finished.contains(Edge.Target) && !Finished[Edge.Target])
			{
				Breaches.push_back(Edge.Where + "closes a circle: " + Edge.Target + " comes back to itself");
			}
			Visit(Edge.Target);
		}
		Finished[Unit] = true;
	}
};

FTree ReadTree()
{
	namespace fs = std::filesystem;
	const fs::path Root = QVMAP_SOURCE_DIR;
	FTree Tree;
	for (const char* Folder : {"Source", "Standalone", "Tests", "Benchmarks", "Fuzz"})
	{
		std::error_code Missing;
		for (const fs::directory_entry& Entry : fs::recursive_directory_iterator(Root / Folder, Missing))
		{
			const std::string Path = Entry.path().lexically_relative(Root).generic_string();
			if (Entry.is_regular_file() && (Path.ends_with(".h") || Path.ends_with(".cpp")))
			{
				std::ostringstream Text;
				Text << std::ifstream(Entry.path(), std::ios::binary).rdbuf();
				Tree[Path] = Text.str();
			}
		}
	}
	return Tree;
}
} // namespace

TEST(Layering, EachRoomIncludesOnlyWhatStandsBelowIt)
{
	const FTree Tree = ReadTree();
	for (const char* Expected : {"Source/QVMap/Private/Core/QVJson.h", "Source/QVMap/Private/Export/QVMapPacker.cpp",
			 "Standalone/Formats/Posix/MappedFile.cpp", "Standalone/Engine/Files.cpp", "Tests/LayeringTest.cpp"})
	{
		EXPECT_TRUE(Tree.contains(Expected)) << Expected << " was not read";
	}
	for (const std::string& Breach : FLayering(Tree).FindBreaches())
	{
		ADD_FAILURE() << Breach;
	}
}

TEST(Layering, MadeUpBreachesAreFound)
{
	const std::string Head = "// SPDX-License-Identifier: MIT\n";
	const std::string HeaderHead = Head + "#pragma once\n";
	// what must be found is marked with !
	const FTree Tree = {
		{Toolkit + "Core/A.h", HeaderHead + "#include \"Core/B.h\"\n#include <vector>\n#include <filesystem> !\n"},
		{Toolkit + "Core/B.h", HeaderHead},
		{Toolkit + "Core/B.cpp", Head + "#include \"Core/B.h\"\n\n#include \"Core/A.h\" !\n"},
		{Toolkit + "Core/C.cpp", Head + "#include \"Workspace/W.h\" !\n# include <unistd.h> !\n"},
		{Toolkit + "Core/NoGuard.h", Head + "!"},
		{Toolkit + "Core/NoLicence.cpp", "int !;\n"},
		{Toolkit + "Workspace/W.h", HeaderHead + "#include \"Core/A.h\"\n#include \"Standalone/Engine/E.h\" !\n"},
		{Toolkit + "Workspace/W.cpp", Head + "#include \"Core/Gone.h\" !\n#include <nlohmann/json.hpp> !\n"},
		{Toolkit + "QVMapModule.cpp", Head + "#include \"Workspace/W.h\"\n#include \"Unreal/U.h\"\n"},
		{Toolkit + "Unreal/U.h", HeaderHead + "#include \"CoreMinimal.h\"\n#include <windows.h>\n"},
		{"Standalone/Stray.h", "!" + HeaderHead},
		{"Standalone/Formats/F.cpp", Head + "#include <zlib.h> !\n#include <filesystem>\n#include <fcntl.h> !\n"},
		{"Standalone/Formats/Base/Compression.cpp", Head + "#include <zlib.h>\n#include \"Core/A.h\" !\n"},
		{"Standalone/Formats/Posix/F.cpp", Head + "#include <fcntl.h>\n"},
		{"Standalone/Engine/E.h", HeaderHead + "#include \"Core/A.h\"\n#include \"Workspace/W.h\" !\n"},
		{"Standalone/EngineTools/T.cpp", Head + "#include \"Standalone/Cli/Main.h\" !\n"},
		{"Standalone/Cli/Main.h",
			HeaderHead + "#include <CLI/CLI.hpp>\n#include \"Workspace/W.h\"\n#include <QApp> !\n"},
		{"Standalone/Studio/S.cpp", Head + "#include <QApp>\n#include \"Standalone/Cli/Main.h\" !\n"},
		{"Tests/T.cpp", Head + "#include \"Standalone/Cli/Main.h\"\n"},
	};
	std::map<std::string, bool> Places; // true: found
	for (const auto& [Path, Text] : Tree)
	{
		for (std::size_t Mark = Text.find('!'); Mark != Text.npos; Mark = Text.find('!', Mark + 1))
		{
			const auto Line = 1 + std::count(Text.begin(), Text.begin() + static_cast<std::ptrdiff_t>(Mark), '\n');
			Places[Path + ":" + std::to_string(Line)] = false;
		}
	}
	const FPlaces Breaches = FLayering(Tree).FindBreaches();
	for (const std::string& Breach : Breaches)
	{
		const std::string Place = Breach.substr(0, Breach.find(": "));
		EXPECT_TRUE(Places.contains(Place)) << "no breach: " << Breach;
		Places[Place] = true;
	}
	for (const auto& [Place, bFound] : Places)
	{
		EXPECT_TRUE(bFound) << "not found: " << Place;
	}
	EXPECT_EQ(
		Breaches.front(), "Source/QVMap/Private/Core/A.h:5: Source/QVMap/Private/Core/ must not include filesystem");
	EXPECT_EQ(Breaches.back(),
		"Source/QVMap/Private/Core/B.cpp:4: closes a circle: Source/QVMap/Private/Core/A comes back to itself");
}
