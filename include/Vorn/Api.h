/// \file
/// What every header of the library stands on: the sized integers and the mark of an exported symbol.
/// Everything is hidden in the shared library unless it carries `VORN_API`.
#pragma once

#include <cstddef>
#include <cstdint>

/// Marks what the shared library exports.
#define VORN_API __attribute__( ( visibility( "default" ) ) )

/// Unsigned integers of exact width, the vocabulary of wire formats and attributes.
using U8 = std::uint8_t;
using U16 = std::uint16_t;
using U32 = std::uint32_t;
using U64 = std::uint64_t;
