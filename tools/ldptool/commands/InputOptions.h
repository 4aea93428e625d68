#pragma once

// What decode, watch and explain have in common: the input, which part of it is looked at, how much of it is
// kept, how times read; and what is said about the input in the end.

#include "capture/Capture.h"
#include "commands/LimitOptions.h"
#include "messages/Decoder.h"

#include <optional>
#include <string>

namespace CLI {
class App;
}

namespace LdpTool {

struct InputOptions {
   std::string file;
   std::string interface;
   CaptureRange range;
   Selection selection;
   std::optional< Ldp::LdpIdentifier > peer;
   LimitOptions limits;

   /// Opens the file, or listens on the interface. Throws InputError.
   Capture open() const;
   bool live() const { return file.empty(); }
};

/// Adds FILE, `-i` unless `files` is set, `--from`, `--to`, `--bpf`, `--filter`, `--fec`, `--peer`, `-t` and
/// `--limit`. The options live for as long as the command.
void addInputOptions( CLI::App & command, InputOptions & options, bool files = false );

/// Says on standard error what of the capture was not seen or not kept, and if there was no LDP in it.
void tellInput( CaptureCounters const & counters, TurnedAway const & turnedAway );

/// A time as an option gives it: hh:mm:ss on the day of the first packet, or seconds since 1970. Throws
/// CLI::ValidationError.
void timeIs( CaptureMoment & moment, std::string const & option, std::string const & text );

} // namespace LdpTool
