// SPDX-License-Identifier: MIT
#include "Standalone/Formats/Pak/PakPaths.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <vector>

namespace QVFormats
{
namespace
{
unsigned char Lower(char Letter)
{
	return static_cast<unsigned char>(Letter >= 'A' && Letter <= 'Z' ? Letter - 'A' + 'a' : Letter);
}

/** Removes the first segment and its slash from Rest. */
std::string_view TakeSegment(std::string_view& Rest)
{
	const std::string_view Segment = Rest.substr(0, Rest.find('/'));
	Rest.remove_prefix(std::min(Rest.size(), Segment.size() + 1));
	return Segment;
}

std::string_view WhyUnsafeSegment(std::string_view Segment)
{
	if (Segment.empty())
	{
		return "it has an empty folder name";
	}
	if (Segment == "." || Segment == "..")
	{
		return "it leaves its folder by \".\" or \"..\"";
	}
	return {};
}

bool IsForbiddenLetter(char Letter)
{
	return static_cast<unsigned char>(Letter) < 0x20 || Letter == ':';
}

/** Segments with `.` and `..` worked in; nothing when it goes up again behind a name. */
std::optional<std::vector<std::string_view>> FoldSegments(std::string_view Text, int& FoldersUp)
{
	std::vector<std::string_view> Segments;
	bool bDown = false;
	while (!Text.empty())
	{
		const std::string_view Segment = TakeSegment(Text);
		if (Segment.empty() || Segment == ".")
		{
			continue;
		}
		if (Segment != "..")
		{
			Segments.push_back(Segment);
			bDown = true;
		}
		else if (!Segments.empty())
		{
			Segments.pop_back();
		}
		else if (bDown)
		{
			return std::nullopt;
		}
		else
		{
			++FoldersUp;
		}
	}
	return Segments;
}

std::string JoinSegments(bool bRooted, int FoldersUp, const std::vector<std::string_view>& Segments)
{
	std::string Result(bRooted ? "/" : "");
	for (int Up = 0; Up < FoldersUp; ++Up)
	{
		Result += "../";
	}
	for (const std::string_view Segment : Segments)
	{
		Result.append(Segment).append("/");
	}
	Result.pop_back();
	return Result;
}
} // namespace

TResult<std::string> NormalizePakDestination(std::string_view Destination)
{
	const auto Refuse = [Destination](std::string_view Reason)
	{ return FError{"destination \"" + std::string(Destination) + "\" " + std::string(Reason)}; };
	std::string Text(Destination);
	std::replace(Text.begin(), Text.end(), '\\', '/');
	if (Text.empty() || Text.back() == '/')
	{
		return Refuse(Text.empty() ? "is empty; a file needs a name in the pak" : "names a folder, not a file");
	}
	if (std::any_of(Text.begin(), Text.end(), IsForbiddenLetter))
	{
		return Refuse("holds a colon or a control character");
	}
	int FoldersUp = 0;
	const bool bRooted = Text.front() == '/';
	const auto Segments = FoldSegments(Text, FoldersUp);
	if (!Segments || FoldersUp > (bRooted ? 0 : PakMostFoldersUp))
	{
		return Refuse("climbs out of its root; \"../../../\" at its beginning is the most that is allowed");
	}
	if (Segments->empty())
	{
		return Refuse("names a folder, not a file");
	}
	return JoinSegments(bRooted, FoldersUp, *Segments);
}

int ComparePakPaths(std::string_view A, std::string_view B)
{
	const std::size_t Shared = std::min(A.size(), B.size());
	std::size_t Same = 0;
	while (Same + 8 <= Shared && std::memcmp(A.data() + Same, B.data() + Same, 8) == 0)
	{
		Same += 8;
	}
	for (std::size_t Index = Same; Index < Shared; ++Index)
	{
		if (A[Index] != B[Index] && Lower(A[Index]) != Lower(B[Index]))
		{
			return Lower(A[Index]) < Lower(B[Index]) ? -1 : 1;
		}
	}
	return A.size() == B.size() ? 0 : A.size() < B.size() ? -1 : 1;
}

std::string_view CommonPakFolder(std::string_view A, std::string_view B)
{
	std::size_t End = 0;
	for (std::size_t Index = 0; Index < std::min(A.size(), B.size()) && Lower(A[Index]) == Lower(B[Index]); ++Index)
	{
		End = A[Index] == '/' ? Index + 1 : End;
	}
	return A.substr(0, End);
}

std::string_view PakMountFolder(std::string_view MountPoint)
{
	while (MountPoint.starts_with("../") || MountPoint.starts_with('/'))
	{
		MountPoint.remove_prefix(MountPoint.front() == '/' ? 1 : 3);
	}
	return MountPoint;
}

std::string_view WhyUnsafeBelowFolder(std::string_view Path)
{
	if (std::any_of(Path.begin(), Path.end(), IsForbiddenLetter))
	{
		return "it holds a colon or a control character";
	}
	if (Path.find('\\') != std::string_view::npos)
	{
		return "it holds a backslash";
	}
	if (Path.empty() || Path.front() == '/' || Path.back() == '/')
	{
		return Path.empty() ? "it is empty" : Path.front() == '/' ? "it is absolute" : "it names a folder";
	}
	while (!Path.empty())
	{
		const std::string_view Reason = WhyUnsafeSegment(TakeSegment(Path));
		if (!Reason.empty())
		{
			return Reason;
		}
	}
	return {};
}
} // namespace QVFormats
