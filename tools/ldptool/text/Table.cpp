// Columns as wide as what stands in them.
#include "text/Table.h"

#include <algorithm>

namespace LdpTool {

namespace {

constexpr std::size_t screen = 100; ///< columns
constexpr std::size_t narrowest = 16;
constexpr std::size_t rowsAreWhole = std::string::npos; // for whoever searches them

/// How much of the text goes on a line of that width: up to a blank, or all of it.
std::size_t lineOf( std::string const & text, std::size_t width ) {
   std::size_t const blank = text.size() > width ? text.rfind( ' ', width ) : text.npos;
   return blank == 0 ? text.npos : blank;
}

} // namespace

void Table::print( Output & out, std::size_t indent ) const {
   std::vector< std::size_t > widths( rows_.front().cells.size() );
   for ( auto const & [cells, colour] : rows_ )
      for ( std::size_t i = 0; i < cells.size(); ++i )
         widths[i] = std::max( widths[i], cells[i].size() );
   std::size_t last = indent; // where the last column begins
   for ( std::size_t i = 0; i + 1 < widths.size(); ++i )
      last += widths[i] + 2;
   std::size_t const room =
        out.terminal() ? std::max( narrowest, screen - std::min( screen, last ) ) : rowsAreWhole;
   for ( auto const & [cells, colour] : rows_ ) {
      std::string line( indent, ' ' );
      for ( std::size_t i = 0; i + 1 < cells.size(); ++i )
         line += cells[i] + std::string( widths[i] - cells[i].size() + 2, ' ' );
      if ( colour == Colour::bad ) out << colour;
      std::string rest = cells.back();
      for ( std::size_t cut; ( cut = lineOf( rest, room ) ) != rest.npos; rest.erase( 0, cut + 1 ) ) {
         out.escaped( line + rest.substr( 0, cut ) ) << '\n';
         line.assign( last, ' ' );
      }
      line += rest;
      line.erase( line.find_last_not_of( ' ' ) + 1 );
      out.escaped( line );
      if ( colour == Colour::bad ) out << Colour::plain;
      out << '\n';
   }
}

} // namespace LdpTool
