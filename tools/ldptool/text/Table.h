#pragma once

// A table for people: columns as wide as what stands in them, set off by two blanks.

#include "text/Output.h"

#include <string>
#include <vector>

namespace LdpTool {

class Table {
 public:
   using Row = std::vector< std::string >;

   explicit Table( Row heading ) : rows_{ std::move( heading ) } {}

   /// As many cells as the heading has; an empty one repeats the cell above it.
   void add( Row row ) { rows_.push_back( std::move( row ) ); }
   bool empty() const { return rows_.size() == 1; }

   /// Heading and rows, each on a line behind `indent` blanks. What a peer chose is escaped.
   void print( Output & out, std::size_t indent ) const;

 private:
   std::vector< Row > rows_;
};

} // namespace LdpTool
