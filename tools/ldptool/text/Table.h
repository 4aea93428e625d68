#pragma once

// A table for people: columns as wide as what stands in them, set off by two blanks. The last one goes on
// below where it would leave the screen.

#include "text/Output.h"

#include <string>
#include <vector>

namespace LdpTool {

class Table {
 public:
   using Row = std::vector< std::string >;

   explicit Table( Row heading ) { add( std::move( heading ) ); }

   /// As many cells as the heading has; an empty one repeats the cell above it.
   void add( Row row, Colour colour = Colour::plain ) { rows_.push_back( { std::move( row ), colour } ); }
   bool empty() const { return rows_.size() == 1; }

   /// Heading and rows, each on a line behind `indent` blanks. What a peer chose is escaped.
   void print( Output & out, std::size_t indent ) const;

 private:
   struct Line {
      Row cells;
      Colour colour;
   };
   std::vector< Line > rows_;
};

} // namespace LdpTool
