/// \file
/// Which libLdp this is. The macros are those of the headers that a program was compiled with,
/// `Ldp::version()` is that of the library that it runs with. The build reads the version from here.
#pragma once

#include "Vorn/Api.h"

/// The first part of the version, for comparisons by the preprocessor.
#define LDP_VERSION_MAJOR 0
/// The second part of the version.
#define LDP_VERSION_MINOR 1
/// The third part of the version.
#define LDP_VERSION_PATCH 0

/// The version as text, "MAJOR.MINOR.PATCH".
#define LDP_VERSION                                                                                          \
   LDP_VERSION_TEXT( LDP_VERSION_MAJOR )                                                                     \
   "." LDP_VERSION_TEXT( LDP_VERSION_MINOR ) "." LDP_VERSION_TEXT( LDP_VERSION_PATCH )
/// The text of a number that a macro stands for.
#define LDP_VERSION_TEXT( number ) LDP_VERSION_DIGITS( number )
/// The text of a number.
#define LDP_VERSION_DIGITS( number ) #number

namespace Ldp {

/// The version of the library that the program runs with, as text; it lives as long as the library.
VORN_API char const * version() noexcept;

} // namespace Ldp
