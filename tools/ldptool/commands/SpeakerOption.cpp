// Speakers and prefixes by name.
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

Lumo::IpGenPrefix prefixOf( std::string const & option, std::string const & text ) {
   try {
      bool const whole = text.find( '/' ) != text.npos;
      std::string const bits = text.find( ':' ) == text.npos ? "/32" : "/128";
      Lumo::IpGenPrefix prefix;
      Vorn::strepToValue( ( whole ? text : text + bits ).c_str(), &prefix );
      return prefix;
   } catch ( Vorn::RangeException const & ) {
      throw CLI::ValidationError( option, text + " is not a prefix" );
   }
}

} // namespace LdpTool
