// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>

namespace QVFormats
{
/** One way to depend on a package; values combine. */
enum class EDependency : std::uint8_t
{
	Hard = 1,
	Game = 2,
	/** Always set by engines up to 5.4, never by later ones. */
	Build = 4,
};

/**
 * The ways in which one package depends on another: a set of combinations of EDependency, since it can be hard for the
 * editor only and soft for the game. Holds no combination that another member covers, so 19 sets are possible.
 */
struct FDependencySet
{
	/** Bit n: the combination n is a member. */
	std::uint8_t Members = 0;

	static FDependencySet Of(bool bHard, bool bGame);
	/** The five bits of a registry file; nothing for the numbers that stand for no set. */
	static std::optional<FDependencySet> FromCode(std::uint32_t Code);
	std::uint32_t ToCode() const;

	bool IsHard() const { return HasAny(EDependency::Hard); }
	bool IsGame() const { return HasAny(EDependency::Game); }
	bool IsBuild() const { return HasAny(EDependency::Build); }
	void Add(FDependencySet Other);
	bool operator==(const FDependencySet&) const = default;

private:
	bool HasAny(EDependency Kind) const;
};
} // namespace QVFormats
