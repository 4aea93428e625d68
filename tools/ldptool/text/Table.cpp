// Columns as wide as what stands in them.
#include "text/Table.h"

#include <algorithm>

namespace LdpTool {

void Table::print( Output & out, std::size_t indent ) const {
   std::vector< std::size_t > widths( rows_.front().size() );
   for ( Row const & row : rows_ )
      for ( std::size_t i = 0; i < row.size(); ++i )
         widths[i] = std::max( widths[i], row[i].size() );
   for ( Row const & row : rows_ ) {
      std::string line( indent, ' ' );
      for ( std::size_t i = 0; i < row.size(); ++i )
         line += row[i] + std::string( widths[i] - row[i].size() + 2, ' ' );
      line.erase( line.find_last_not_of( ' ' ) + 1 );
      out.escaped( line ) << '\n';
   }
}

} // namespace LdpTool
