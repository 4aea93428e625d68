/// \file
/// The ring trace of this library, for the program to start.
#pragma once

#include "Vorn/Api.h"

/// Makes the ring file and begins to trace into it; before that nothing is recorded. The environment variable
/// `SKFILE` is its path, in which a `%d` is replaced by the process id; unset or empty means
/// `LdpAgent-%d.sk` in the working folder. A ring of an earlier process that is found there is kept as
/// NAME.old; any other file is left alone. A second call does nothing.
///
/// \return 0 when the file stands, else an `errno` number: then nothing is recorded.
extern "C" VORN_API int Ldp_skeinInitialize();
