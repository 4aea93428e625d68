// `ldptool completion`: what a shell completes, made of the options that the parser knows.
#include "commands/Commands.h"
#include "text/Output.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>

namespace LdpTool {

namespace {

std::vector< std::string > optionsOf( CLI::App const & command ) {
   std::vector< std::string > names;
   for ( CLI::Option const * option : command.get_options() ) {
      if ( option->get_positional() && option->get_lnames().empty() && option->get_snames().empty() )
         continue;
      for ( std::string const & name : option->get_lnames() )
         names.push_back( "--" + name );
      for ( std::string const & name : option->get_snames() )
         names.push_back( "-" + name );
   }
   return names;
}

std::string joined( std::vector< std::string > const & words ) {
   std::string text;
   for ( std::string const & word : words )
      text += ( text.empty() ? "" : " " ) + word;
   return text;
}

std::vector< CLI::App const * > commandsOf( CLI::App const & app ) {
   return app.get_subcommands( []( CLI::App const * command ) { return !command->get_name().empty(); } );
}

/// A word of the first place names the command; without one it is decode.
std::string bashScript( CLI::App const & app ) {
   std::vector< std::string > names;
   std::string cases;
   for ( CLI::App const * command : commandsOf( app ) ) {
      names.push_back( command->get_name() );
      cases += "      " + command->get_name() + ") words=\"" + joined( optionsOf( *command ) ) + "\" ;;\n";
   }
   return "_ldptool() {\n   local word=${COMP_WORDS[COMP_CWORD]} words\n   COMPREPLY=()\n"
          "   case ${COMP_WORDS[1]} in\n" +
          cases + "      *) words=\"" + joined( optionsOf( app ) ) +
          "\" ;;\n   esac\n   if [[ $word == -* ]]; then\n      mapfile -t COMPREPLY < <(compgen -W "
          "\"$words\" -- \"$word\")\n"
          "   elif [[ $COMP_CWORD -eq 1 ]]; then\n      mapfile -t COMPREPLY < <(compgen -W \"" +
          joined( names ) +
          "\" -f -- \"$word\")\n   else\n      mapfile -t COMPREPLY < <(compgen -f -- \"$word\")\n   fi\n}\n"
          "complete -o filenames -F _ldptool ldptool\n";
}

/// In double quotes, with brackets and colons as _arguments takes them.
std::string zshText( std::string const & text ) {
   std::string quoted;
   for ( char const c : text ) {
      if ( std::string_view( "\"`$\\" ).find( c ) != std::string_view::npos ) quoted += '\\';
      if ( c == '[' || c == ']' || c == ':' ) quoted += "\\\\";
      quoted += c;
   }
   return quoted;
}

std::string zshOptions( CLI::App const & command ) {
   std::string text;
   for ( CLI::Option const * option : command.get_options() ) {
      std::vector< std::string > names;
      for ( std::string const & name : option->get_lnames() )
         names.push_back( "--" + name );
      for ( std::string const & name : option->get_snames() )
         names.push_back( "-" + name );
      bool const takes = option->get_items_expected_max() > 0 && !option->get_type_name().empty();
      for ( std::string const & name : names )
         text += " \\\n            \"" + name + "[" + zshText( option->get_description() ) + "]" +
                 ( takes ? ":" + zshText( option->get_type_name() ) + ":_files" : "" ) + "\"";
   }
   return text + " \\\n            \"*:file:_files\"";
}

std::string zshScript( CLI::App const & app ) {
   std::string commands, cases;
   for ( CLI::App const * command : commandsOf( app ) ) {
      commands += "         \"" + command->get_name() + ":" + zshText( command->get_description() ) + "\"\n";
      cases += "         " + command->get_name() + ") _arguments" + zshOptions( *command ) + " ;;\n";
   }
   return "#compdef ldptool\n_ldptool() {\n   if (( CURRENT == 2 )); then\n      local -a commands=(\n" +
          commands +
          "      )\n      _describe command commands\n      _files\n   else\n      local command=$words[2]\n"
          "      shift words\n      (( CURRENT-- ))\n      case $command in\n" +
          cases + "         *) _files ;;\n      esac\n   fi\n}\n_ldptool \"$@\"\n";
}

} // namespace

void addCompletionCommand( CLI::App & app ) {
   auto const shell = std::make_shared< std::string >();
   CLI::App & command = *app.add_subcommand( "completion", "Print what makes a shell complete options." );
   command.add_option( "SHELL", *shell, "bash or zsh" )
        ->required()
        ->check( CLI::IsMember( { "bash", "zsh" } ) );
   command.callback( [shell, &app] {
      try {
         auto const out = std::make_unique< Output >( stdout );
         *out << ( *shell == "bash" ? bashScript( app ) : zshScript( app ) );
         out->flush();
         throw CLI::RuntimeError( exitGood );
      } catch ( OutputError const & error ) {
         std::cerr << "ldptool: " << error.what() << '\n';
         throw CLI::RuntimeError( exitUsage );
      }
   } );
}

} // namespace LdpTool
