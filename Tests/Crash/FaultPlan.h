// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace QVTest
{
/** What happens at the chosen operation of a program. */
enum class EFault : std::uint8_t
{
	/** Nothing: all operations are counted and noted. */
	Count,
	KillBefore,
	KillAfter,
	/** Of what was not flushed, all data is lost; what happened to names is not. */
	PowerOrdered,
	/** What happened to names in folders that were not flushed since is lost too. */
	PowerStrict,
	NoSpace,
	NoAccess,
	IoError,
	/** Half of the bytes are written. */
	ShortWrite,
	/** The disk is full from there on, after half of the bytes if the operation writes some. */
	Full,
	/** Nothing may be changed from there on. */
	Refused,
	/** The file of the operation cannot be changed from there on, as if another program held it. */
	Held,
	/** An operation that reads fails. */
	ReadError,
	/** The file of the operation cannot be read from there on. */
	Unreadable,
	/** The same for one that asks what is there. */
	LookError
};

enum class EOperations : std::uint8_t
{
	Changes,
	Reads,
	Looks
};
inline constexpr std::size_t OperationsKinds = 3;

struct FFaultKind
{
	EFault Fault;
	std::string_view Name;
	/** Those that are counted for it. */
	EOperations Operations;
	/** The program does not survive it. */
	bool bKills;
};

inline constexpr std::array<FFaultKind, 15> FaultKinds = {{
	{EFault::Count, "count", EOperations::Changes, false},
	{EFault::KillBefore, "kill-before", EOperations::Changes, true},
	{EFault::KillAfter, "kill-after", EOperations::Changes, true},
	{EFault::PowerOrdered, "power-ordered", EOperations::Changes, true},
	{EFault::PowerStrict, "power-strict", EOperations::Changes, true},
	{EFault::NoSpace, "no-space", EOperations::Changes, false},
	{EFault::NoAccess, "no-access", EOperations::Changes, false},
	{EFault::IoError, "io-error", EOperations::Changes, false},
	{EFault::ShortWrite, "short-write", EOperations::Changes, false},
	{EFault::Full, "full", EOperations::Changes, false},
	{EFault::Refused, "refused", EOperations::Changes, false},
	{EFault::Held, "held", EOperations::Changes, false},
	{EFault::ReadError, "read-error", EOperations::Reads, false},
	{EFault::Unreadable, "unreadable", EOperations::Reads, false},
	{EFault::LookError, "look-error", EOperations::Looks, false},
}};

/** Null if there is none of that name. */
constexpr const FFaultKind* FindFaultKind(std::string_view Name)
{
	for (const FFaultKind& Kind : FaultKinds)
	{
		if (Kind.Name == Name)
		{
			return &Kind;
		}
	}
	return nullptr;
}

enum class EOperation : std::uint8_t
{
	/** Opening for writing what may not be there, or is emptied. */
	Create,
	Write,
	Resize,
	Flush,
	Rename,
	/** Of a file or a link. */
	Remove,
	MakeFolder,
	RemoveFolder,
	Link,
	Mark,
	Open,
	Read,
	Map,
	Look
};

struct FOperationKind
{
	EOperation Operation;
	std::string_view Name;
	EOperations Operations;
	/** Whether a full disk, or a lack of rights, makes it fail. */
	bool bNeedsSpace;
	bool bNeedsAccess;
};

inline constexpr std::array<FOperationKind, 14> OperationKinds = {{
	{EOperation::Create, "create", EOperations::Changes, true, true},
	{EOperation::Write, "write", EOperations::Changes, true, false},
	{EOperation::Resize, "resize", EOperations::Changes, true, false},
	{EOperation::Flush, "flush", EOperations::Changes, true, false},
	{EOperation::Rename, "rename", EOperations::Changes, true, true},
	{EOperation::Remove, "remove", EOperations::Changes, false, true},
	{EOperation::MakeFolder, "make-folder", EOperations::Changes, true, true},
	{EOperation::RemoveFolder, "remove-folder", EOperations::Changes, false, true},
	{EOperation::Link, "link", EOperations::Changes, true, true},
	{EOperation::Mark, "mark", EOperations::Changes, false, true},
	{EOperation::Open, "open", EOperations::Reads, false, true},
	{EOperation::Read, "read", EOperations::Reads, false, false},
	{EOperation::Map, "map", EOperations::Reads, false, false},
	{EOperation::Look, "look", EOperations::Looks, false, true},
}};

constexpr const FOperationKind& KindOf(EOperation Operation)
{
	return OperationKinds[static_cast<std::size_t>(Operation)];
}

/** Whether a fault can strike at such an operation; at others the program goes on undisturbed. */
constexpr bool CanStrike(const FFaultKind& Fault, const FOperationKind& Operation)
{
	switch (Fault.Fault)
	{
	case EFault::Count:
		return false;
	case EFault::ShortWrite:
		return Operation.Operation == EOperation::Write;
	case EFault::NoSpace:
	case EFault::Full:
		return Operation.bNeedsSpace;
	case EFault::NoAccess:
	case EFault::Refused:
	case EFault::Held:
		return Operation.Operations == EOperations::Changes && Operation.bNeedsAccess;
	default:
		return Operation.Operations == Fault.Operations;
	}
}

/** The environment that the shim takes its orders from; without a program it does nothing. All paths are full and have
 * no links in them. */
namespace FaultEnvironment
{
/** The only program that is disturbed; what that starts is left alone. */
inline constexpr const char* Program = "QVMAP_FAULT_PROGRAM";
/** Operations below this folder are counted. */
inline constexpr const char* Root = "QVMAP_FAULT_ROOT";
/** Where the shim keeps its log and what it needs for a power cut: on the same disk, not below the root. */
inline constexpr const char* Shadow = "QVMAP_FAULT_SHADOW";
/** A name of FaultKinds. */
inline constexpr const char* Kind = "QVMAP_FAULT_KIND";
/** The operation's number, from 1. */
inline constexpr const char* Point = "QVMAP_FAULT_POINT";
} // namespace FaultEnvironment

/**
 * In the shadow folder. A line for each operation, with tabs: a letter, the number, the operation, path, second path.
 * The letters are those below for each of EOperations; the disturbed operation has a line of the last one behind its
 * own.
 */
inline constexpr std::string_view OperationsLog = "operations.log";
inline constexpr std::array<char, OperationsKinds> OperationLetters = {'C', 'R', 'L'};
/** A change outside the root. */
inline constexpr char OutsideLetter = 'O';
/** The shim itself could not do its work. */
inline constexpr char TroubleLetter = 'T';
inline constexpr char StruckLetter = 'X';
} // namespace QVTest
