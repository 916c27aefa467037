// SPDX-License-Identifier: MIT
#include "Core/QVPath.h"

#include "Core/QVString.h"

#include <algorithm>
#include <span>
#include <vector>

namespace
{
std::vector<std::string_view> Segments(std::string_view Path)
{
	std::vector<std::string_view> Result;
	while (!Path.empty())
	{
		const std::size_t End = std::min(Path.find('/'), Path.size());
		Result.push_back(Path.substr(0, End));
		Path.remove_prefix(std::min(End + 1, Path.size()));
	}
	return Result;
}

std::size_t SharedFolders(std::span<const std::string_view> A, std::span<const std::string_view> B)
{
	std::size_t Shared = 0;
	while (Shared < A.size() && Shared < B.size() && FQVString::EqualsIgnoreCase(A[Shared], B[Shared]))
	{
		++Shared;
	}
	return Shared;
}
} // namespace

void FQVPath::AppendPart(std::string& Result, std::string_view Part)
{
	if (Part.empty())
	{
		return;
	}
	if (!Result.empty() && Result.back() != '/')
	{
		Result.push_back('/');
	}
	Result.append(Part.front() == '/' && !Result.empty() ? Part.substr(1) : Part);
}

std::string_view FQVPath::GetCleanFilename(std::string_view Path)
{
	const std::size_t Slash = Path.find_last_of("/\\");
	return Slash == std::string_view::npos ? Path : Path.substr(Slash + 1);
}

std::string_view FQVPath::GetBaseFilename(std::string_view Path)
{
	const std::string_view Clean = GetCleanFilename(Path);
	return Clean.substr(0, std::min(Clean.rfind('.'), Clean.size()));
}

std::string_view FQVPath::GetPath(std::string_view Path)
{
	const std::size_t Slash = Path.find_last_of("/\\");
	return Slash == std::string_view::npos ? std::string_view() : Path.substr(0, Slash);
}

std::string_view FQVPath::WithoutExtension(std::string_view Path)
{
	const std::size_t Dot = GetCleanFilename(Path).rfind('.');
	return Dot == std::string_view::npos ? Path : Path.substr(0, Path.size() - GetCleanFilename(Path).size() + Dot);
}

std::string FQVPath::NormalizeFilename(std::string_view Path)
{
	std::string Result(Path);
	std::replace(Result.begin(), Result.end(), '\\', '/');
	return Result;
}

bool FQVPath::IsAbsolute(std::string_view Path)
{
	const bool bDrive = Path.size() >= 2 && Path[1] == ':';
	return bDrive || (!Path.empty() && (Path.front() == '/' || Path.front() == '\\'));
}

std::string FQVPath::ConvertRelativePathToFull(std::string_view Base, std::string_view Path)
{
	const std::string Whole = NormalizeFilename(IsAbsolute(Path) ? std::string(Path) : Combine(Base, Path));
	std::vector<std::string_view> Kept;
	for (const std::string_view Segment : Segments(Whole))
	{
		if (Segment == ".." && !Kept.empty())
		{
			Kept.pop_back();
		}
		else if (!Segment.empty() && Segment != "." && Segment != "..")
		{
			Kept.push_back(Segment);
		}
	}
	const bool bDrive = Whole.size() >= 2 && Whole[1] == ':';
	std::string Result(bDrive ? "" : "/");
	for (const std::string_view Segment : Kept)
	{
		AppendPart(Result, Segment);
	}
	return Result;
}

bool FQVPath::MakePathRelativeTo(std::string& Path, std::string_view RelativeTo)
{
	const std::string Target = NormalizeFilename(Path);
	const std::string Source = NormalizeFilename(GetPath(RelativeTo));
	const std::vector<std::string_view> To = Segments(Target);
	const std::vector<std::string_view> From = Segments(Source);
	const std::size_t Shared = SharedFolders(std::span(To).first(To.empty() ? 0 : To.size() - 1), From);
	if (Shared == 0 && !From.empty())
	{
		return false;
	}
	std::string Result;
	for (std::size_t Index = Shared; Index < From.size(); ++Index)
	{
		Result.append("../");
	}
	for (std::size_t Index = Shared; Index < To.size(); ++Index)
	{
		Result.append(To[Index]).append(Index + 1 < To.size() ? "/" : "");
	}
	Path = std::move(Result);
	return true;
}
