// SPDX-License-Identifier: MIT
#include "Core/QVJson.h"

#include "Core/QVPrintf.h"
#include "Core/QVString.h"

#include <algorithm>
#include <charconv>

namespace
{
/** The text of a number as a config file may carry it: "1", "-0.5". */
bool IsNonZeroNumber(std::string_view Text)
{
	double Number = 0.0;
	const auto [End, Error] = std::from_chars(Text.data(), Text.data() + Text.size(), Number);
	return Error == std::errc() && Number != 0.0;
}
} // namespace

FQVJson::FQVJson() = default;
FQVJson::FQVJson(const FQVJson& Other) = default;
FQVJson::FQVJson(FQVJson&& Other) noexcept = default;
FQVJson& FQVJson::operator=(const FQVJson& Other) = default;
FQVJson& FQVJson::operator=(FQVJson&& Other) noexcept = default;
FQVJson::~FQVJson() = default;

FQVJson::FQVJson(bool bValue)
	: Value(bValue)
{
}

FQVJson::FQVJson(double Number)
	: Value(Number)
{
}

FQVJson::FQVJson(std::string Text)
	: Value(std::move(Text))
{
}

FQVJson::FQVJson(std::string_view Text)
	: Value(std::string(Text))
{
}

FQVJson::FQVJson(const char* Text)
	: Value(std::string(Text))
{
}

FQVJson FQVJson::Object()
{
	FQVJson Result;
	Result.Value.emplace<FObject>();
	return Result;
}

FQVJson FQVJson::Array()
{
	FQVJson Result;
	Result.Value.emplace<FArray>();
	return Result;
}

FQVJson FQVJson::Array(const std::vector<std::string>& Texts)
{
	FQVJson Result = Array();
	for (const std::string& Text : Texts)
	{
		Result.Add(Text);
	}
	return Result;
}

FQVJson& FQVJson::Add(FQVJson Element)
{
	FArray* Elements = std::get_if<FArray>(&Value);
	if (Elements == nullptr)
	{
		Elements = &Value.emplace<FArray>();
	}
	Elements->push_back(std::move(Element));
	return *this;
}

FQVJson& FQVJson::Set(std::string_view Key, FQVJson Member)
{
	FObject* Members = std::get_if<FObject>(&Value);
	if (Members == nullptr)
	{
		Members = &Value.emplace<FObject>();
	}
	const auto Found =
		std::find_if(Members->begin(), Members->end(), [Key](const auto& Each) { return Each.Key == Key; });
	if (Found != Members->end())
	{
		Found->Value = std::move(Member);
	}
	else
	{
		Members->push_back({std::string(Key), std::move(Member)});
	}
	return *this;
}

bool FQVJson::Remove(std::string_view Key)
{
	FObject* Members = std::get_if<FObject>(&Value);
	return Members != nullptr && std::erase_if(*Members, [Key](const auto& Each) { return Each.Key == Key; }) > 0;
}

const FQVJson* FQVJson::Find(std::string_view Key) const
{
	const FObject* Members = AsObject();
	if (Members == nullptr)
	{
		return nullptr;
	}
	const auto Found =
		std::find_if(Members->begin(), Members->end(), [Key](const auto& Each) { return Each.Key == Key; });
	return Found != Members->end() ? &Found->Value : nullptr;
}

std::optional<bool> FQVJson::TryBool(std::string_view Key) const
{
	const FQVJson* Member = Find(Key);
	return Member != nullptr && Member->AsBool() != nullptr ? std::optional(*Member->AsBool()) : std::nullopt;
}

std::optional<double> FQVJson::TryNumber(std::string_view Key) const
{
	const FQVJson* Member = Find(Key);
	return Member != nullptr && Member->AsNumber() != nullptr ? std::optional(*Member->AsNumber()) : std::nullopt;
}

std::optional<std::string> FQVJson::TryString(std::string_view Key) const
{
	const FQVJson* Member = Find(Key);
	return Member != nullptr && Member->AsString() != nullptr ? std::optional(*Member->AsString()) : std::nullopt;
}

std::vector<std::string> FQVJson::TryStrings(std::string_view Key) const
{
	std::vector<std::string> Result;
	const FQVJson* Member = Find(Key);
	if (Member == nullptr || Member->AsArray() == nullptr)
	{
		return Result;
	}
	for (const FQVJson& Element : *Member->AsArray())
	{
		if (Element.AsString() != nullptr)
		{
			Result.push_back(*Element.AsString());
		}
	}
	return Result;
}

bool FQVJson::GetBool(std::string_view Key) const
{
	const FQVJson* Member = Find(Key);
	if (Member == nullptr)
	{
		return false;
	}
	if (const std::string* Text = Member->AsString())
	{
		constexpr std::string_view True[] = {"true", "yes", "on"};
		return IsNonZeroNumber(*Text) ||
			   std::any_of(std::begin(True), std::end(True),
				   [Text](std::string_view Word) { return FQVString::EqualsIgnoreCase(*Text, Word); });
	}
	const double* Number = Member->AsNumber();
	return Number != nullptr ? *Number != 0.0 : Member->AsBool() != nullptr && *Member->AsBool();
}

std::optional<std::string> FQVJson::ToText() const
{
	if (const double* Number = AsNumber())
	{
		return QVPrintf("%.17g", *Number);
	}
	if (const bool* bValue = AsBool())
	{
		return std::string(FQVString::BoolWord(*bValue));
	}
	return AsString() != nullptr ? std::optional(*AsString()) : std::nullopt;
}

std::string FQVJson::GetString(std::string_view Key) const
{
	const FQVJson* Member = Find(Key);
	return Member != nullptr ? Member->ToText().value_or(std::string()) : std::string();
}

std::vector<std::string> FQVJson::GetStrings(std::string_view Key) const
{
	std::vector<std::string> Result;
	const FQVJson* Member = Find(Key);
	const FArray* Elements = Member != nullptr ? Member->AsArray() : nullptr;
	for (std::size_t Index = 0; Elements != nullptr && Index < Elements->size(); ++Index)
	{
		if (std::optional<std::string> Text = (*Elements)[Index].ToText())
		{
			Result.push_back(std::move(*Text));
		}
	}
	return Result;
}

bool operator==(const FQVJson& A, const FQVJson& B)
{
	return A.Value == B.Value;
}
