/// \file
/// Assertions that are always compiled in. A broken promise inside the process ends the process, in every
/// build: an object that went on after one could no longer be trusted. What a peer sends is never asserted,
/// with the exceptions that the decoders name.
#pragma once

#include "Vorn/Api.h"

namespace Vorn {

/// Reports a failed condition through the C runtime's assertion report (on standard error, with the text, the
/// place and the program) and aborts.
[[noreturn]] VORN_API void assertionFailed( char const * text, char const * file, unsigned line,
                                            char const * function ) noexcept;

} // namespace Vorn

/// Ends the process unless `condition` holds; the report shows `text`.
#define VORN_ASSERT_TEXT( condition, text )                                                                  \
   ( __builtin_expect( static_cast< bool >( condition ), 1 )                                                 \
          ? static_cast< void >( 0 )                                                                         \
          : ::Vorn::assertionFailed( text, __FILE__, __LINE__, __func__ ) )

/// Ends the process unless `condition` holds; the report shows the condition as written.
#define VORN_ASSERT( condition ) VORN_ASSERT_TEXT( condition, #condition )
