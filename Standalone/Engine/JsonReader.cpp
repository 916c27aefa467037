// SPDX-License-Identifier: MIT
#include "Standalone/Engine/JsonReader.h"

#include "Core/QVPrintf.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace QVStandalone
{
namespace
{
constexpr std::size_t DeepestNesting = 256;

/** Builds the toolkit's value out of the parser's events. */
class FBuilder : public nlohmann::json_sax<nlohmann::json>
{
public:
	FQVJson Result;
	std::size_t ErrorPosition = 0;
	bool bTooDeep = false;

	bool null() override { return Add(FQVJson()); }
	bool boolean(bool bValue) override { return Add(FQVJson(bValue)); }
	bool number_integer(number_integer_t Value) override { return Add(FQVJson(Value)); }
	bool number_unsigned(number_unsigned_t Value) override { return Add(FQVJson(Value)); }
	bool number_float(number_float_t Value, const string_t&) override { return Add(FQVJson(Value)); }
	bool string(string_t& Value) override { return Add(FQVJson(std::move(Value))); }
	bool binary(binary_t&) override { return false; }
	bool start_object(std::size_t) override { return Open(FQVJson::Object()); }
	bool start_array(std::size_t) override { return Open(FQVJson::Array()); }
	bool end_object() override { return Close(); }
	bool end_array() override { return Close(); }

	bool key(string_t& Value) override
	{
		Stack.back().Key = std::move(Value);
		return true;
	}

	bool parse_error(std::size_t Position, const std::string&, const nlohmann::detail::exception&) override
	{
		ErrorPosition = Position;
		return false;
	}

private:
	struct FLevel
	{
		FQVJson Value;
		std::string Key;
	};
	std::vector<FLevel> Stack;

	bool Add(FQVJson Value)
	{
		if (Stack.empty())
		{
			Result = std::move(Value);
			return true;
		}
		FLevel& Top = Stack.back();
		if (Top.Value.IsObject())
		{
			Top.Value.Set(Top.Key, std::move(Value));
		}
		else
		{
			Top.Value.Add(std::move(Value));
		}
		return true;
	}

	bool Open(FQVJson Empty)
	{
		if (Stack.size() == DeepestNesting)
		{
			bTooDeep = true;
			return false;
		}
		Stack.push_back({std::move(Empty), {}});
		return true;
	}

	bool Close()
	{
		FQVJson Value = std::move(Stack.back().Value);
		Stack.pop_back();
		return Add(std::move(Value));
	}
};

std::string DescribePosition(std::string_view Text, std::size_t Position)
{
	const std::string_view Before = Text.substr(0, std::min(Position > 0 ? Position - 1 : 0, Text.size()));
	const auto Line = std::count(Before.begin(), Before.end(), '\n') + 1;
	const std::size_t LineStart = Before.rfind('\n') == std::string_view::npos ? 0 : Before.rfind('\n') + 1;
	return QVPrintf("line %d, column %d", Line, Before.size() - LineStart + 1);
}
} // namespace

bool FJsonReader::Parse(std::string_view Text, FQVJson& Out, std::string& OutError) const
{
	FBuilder Builder;
	if (!nlohmann::json::sax_parse(Text, &Builder))
	{
		OutError = Builder.bTooDeep
					   ? QVPrintf("values are nested more than %d deep", DeepestNesting)
					   : QVPrintf("%s: no JSON could be read here", DescribePosition(Text, Builder.ErrorPosition));
		return false;
	}
	Out = std::move(Builder.Result);
	return true;
}
} // namespace QVStandalone
