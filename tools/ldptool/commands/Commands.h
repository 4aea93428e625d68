#pragma once

// The subcommands of ldptool. Each adds itself to the program's arguments; when it is chosen it runs from its
// callback and leaves with its exit status by throwing CLI::RuntimeError.

namespace CLI {
class App;
}

namespace LdpTool {

// What the program's exit status means.
constexpr int exitGood = 0;
constexpr int exitBadMessage = 1;  ///< the input held something that is not as it should be
constexpr int exitUsage = 2;       ///< wrong arguments, unreadable input, unwritable output
constexpr int exitUnsupported = 3; ///< nothing was wrong, but something is not supported here

void addCompletionCommand( CLI::App & app );
void addDecodeCommand( CLI::App & app );
void addExplainCommand( CLI::App & app );
void addLogCommand( CLI::App & app );
void addReportCommand( CLI::App & app );
void addRingCommand( CLI::App & app );
void addTypesCommand( CLI::App & app );
void addWatchCommand( CLI::App & app );

} // namespace LdpTool
