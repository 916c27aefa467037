// SPDX-License-Identifier: MIT
#pragma once

#include <concepts>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

struct FQVJsonMember;

/** A JSON value. An object keeps its members in the order in which they were set; numbers are doubles. */
class FQVJson
{
public:
	using FArray = std::vector<FQVJson>;
	using FObject = std::vector<FQVJsonMember>;

	// all that needs FQVJsonMember complete is defined in the source file
	FQVJson(); // null
	FQVJson(const FQVJson& Other);
	FQVJson(FQVJson&& Other) noexcept;
	FQVJson& operator=(const FQVJson& Other);
	FQVJson& operator=(FQVJson&& Other) noexcept;
	~FQVJson();
	FQVJson(bool bValue);
	FQVJson(double Number);
	template<std::integral T>
	requires(!std::same_as<T, bool>) FQVJson(T Number)
		: FQVJson(static_cast<double>(Number))
	{
	}
	FQVJson(std::string Text);
	FQVJson(std::string_view Text);
	FQVJson(const char* Text);
	static FQVJson Object();
	static FQVJson Array();
	/** An array of strings. */
	static FQVJson Array(const std::vector<std::string>& Texts);

	bool IsNull() const { return std::holds_alternative<std::monostate>(Value); }
	bool IsObject() const { return AsObject() != nullptr; }
	/** The value if it is of that type, else nothing. Pointers live as long as this value. */
	const bool* AsBool() const { return std::get_if<bool>(&Value); }
	const double* AsNumber() const { return std::get_if<double>(&Value); }
	const std::string* AsString() const { return std::get_if<std::string>(&Value); }
	const FArray* AsArray() const { return std::get_if<FArray>(&Value); }
	const FObject* AsObject() const { return std::get_if<FObject>(&Value); }

	/** Appends to an array; a value of another type becomes an array first. */
	FQVJson& Add(FQVJson Element);
	/** Sets a member; a new one stands last, one that exists keeps its place. Another type becomes an object first. */
	FQVJson& Set(std::string_view Key, FQVJson Member);
	/** True if there was such a member. */
	bool Remove(std::string_view Key);

	/** A member, or null; also null when this is no object. */
	const FQVJson* Find(std::string_view Key) const;
	bool Has(std::string_view Key) const { return Find(Key) != nullptr; }

	/** Strict reads: a member that is missing or of another type gives nothing. */
	std::optional<bool> TryBool(std::string_view Key) const;
	std::optional<double> TryNumber(std::string_view Key) const;
	std::optional<std::string> TryString(std::string_view Key) const;
	/** The strings of an array member; elements of other types are left out. */
	std::vector<std::string> TryStrings(std::string_view Key) const;

	/** Converting reads, as GetBoolField and GetStringField do it: "yes", "on" and a non-zero number are true. */
	bool GetBool(std::string_view Key) const;
	std::string GetString(std::string_view Key) const;
	/** The elements of an array member that are strings, numbers or booleans. */
	std::vector<std::string> GetStrings(std::string_view Key) const;

	/** The engine's pretty form: tabs, CRLF, no line end after the last brace. Not for deeper nesting than a reader
	 * gave. */
	std::string ToPrettyString() const;

	friend bool operator==(const FQVJson&, const FQVJson&);

private:
	/** A string, number or boolean as text. */
	std::optional<std::string> ToText() const;

	std::variant<std::monostate, bool, double, std::string, FArray, FObject> Value;
};

struct FQVJsonMember
{
	std::string Key;
	FQVJson Value;

	friend bool operator==(const FQVJsonMember&, const FQVJsonMember&) = default;
};
