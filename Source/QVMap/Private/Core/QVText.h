// SPDX-License-Identifier: MIT
#pragma once

#include <concepts>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

class FQVText;

/** An argument of a text: `{0}` by position or `{Name}` by name. Numbers are grouped when they are rendered. */
struct FQVTextArgument
{
	using FValue = std::variant<std::string, std::int64_t, double, std::shared_ptr<const FQVText>>;

	std::string Name;
	FValue Value;

	FQVTextArgument(std::string_view InText)
		: Value(std::string(InText))
	{
	}
	FQVTextArgument(const char* InText)
		: Value(std::string(InText))
	{
	}
	FQVTextArgument(const std::string& InText)
		: Value(InText)
	{
	}
	template<std::integral T>
	FQVTextArgument(T Number)
		: Value(static_cast<std::int64_t>(Number))
	{
	}
	FQVTextArgument(double Number)
		: Value(Number)
	{
	}
	FQVTextArgument(FQVText InText);

	template<class T>
	static FQVTextArgument Named(std::string_view Name, T&& Value)
	{
		FQVTextArgument Argument(std::forward<T>(Value));
		Argument.Name = Name;
		return Argument;
	}
};

/**
 * A text for the user: namespace and key say which one it is, Source is its English, Arguments fill it. Rendered as
 * late as possible, so that an engine can translate it by namespace and key first.
 */
class FQVText
{
public:
	FQVText() = default;
	template<class... Args>
	FQVText(std::string_view InNamespace, std::string_view InKey, std::string_view InSource, Args&&... InArguments)
		: Namespace(InNamespace)
		, Key(InKey)
		, Source(InSource)
	{
		(Arguments.emplace_back(std::forward<Args>(InArguments)), ...);
	}
	/** Text that is shown as it is: a path, a name, a message of the system. */
	static FQVText FromString(std::string_view Text);

	const std::string& GetNamespace() const { return Namespace; }
	const std::string& GetKey() const { return Key; }
	const std::string& GetSource() const { return Source; }
	const std::vector<FQVTextArgument>& GetArguments() const { return Arguments; }

	/** The English text. */
	std::string ToString() const { return Format(Source, Arguments); }
	/** A pattern, such as a translation, filled with arguments. An unknown `{x}` stays as it stands. */
	static std::string Format(std::string_view Pattern, const std::vector<FQVTextArgument>& Arguments);

	/** Thousands grouped with commas; for a real number at most three decimals, ties to even, trailing zeros dropped.
	 */
	static std::string AsNumber(std::int64_t Number);
	static std::string AsNumber(double Number);

private:
	std::string Namespace;
	std::string Key;
	std::string Source;
	std::vector<FQVTextArgument> Arguments;
};
