// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>
#include <variant>

namespace QVFormats
{
/** Why something outside failed: one sentence for a person, naming file or field, what was found and what was expected.
 */
struct FError
{
	std::string Message;
};

/** A value, or the reason why there is none. Nothing in this library throws over its public functions. */
template<class T>
class [[nodiscard]] TResult
{
public:
	TResult(T InValue)
		: State(std::in_place_index<0>, std::move(InValue))
	{
	}
	TResult(FError InError)
		: State(std::in_place_index<1>, std::move(InError))
	{
	}

	bool IsOk() const { return State.index() == 0; }
	explicit operator bool() const { return IsOk(); }

	/** Only when IsOk. */
	T& operator*() { return *std::get_if<0>(&State); }
	const T& operator*() const { return *std::get_if<0>(&State); }
	T* operator->() { return std::get_if<0>(&State); }
	const T* operator->() const { return std::get_if<0>(&State); }

	/** Only when not IsOk. */
	const FError& Error() const { return *std::get_if<1>(&State); }

private:
	std::variant<T, FError> State;
};

/** Success, or the reason for the failure. */
using FStatus = TResult<std::monostate>;
inline FStatus Success()
{
	return FStatus(std::monostate{});
}
} // namespace QVFormats
