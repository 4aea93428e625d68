// Speakers by name.
#include "commands/SpeakerOption.h"

#include "Vorn/Strep.h"

#include <CLI/CLI.hpp>

namespace LdpTool {

Ldp::LdpIdentifier speakerOf( std::string const & option, std::string const & text ) {
   try {
      std::string const full = text.find( ':' ) == text.npos ? text + ":0" : text;
      Ldp::LdpIdentifier identifier;
      Vorn::strepToValue( full.c_str(), &identifier );
      return identifier;
   } catch ( Vorn::RangeException const & ) {
      throw CLI::ValidationError( option, text + " is not an LDP identifier" );
   }
}

} // namespace LdpTool
