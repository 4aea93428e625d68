#pragma once

// What becomes due when, so that nobody walks over all of it every second.

#include <queue>
#include <vector>

namespace LdpTool {

template< class Key >
class Deadlines {
 public:
   /// The key is to be looked at at that time.
   void add( double when, Key key ) { queue_.push( { when, std::move( key ) } ); }

   /// Looks at each key whose time has come. `look` returns when to look at it again, or 0 for never: a
   /// deadline that has moved meanwhile is met then.
   template< class Look >
   void pass( double now, Look const & look ) {
      while ( !queue_.empty() && queue_.top().when <= now ) {
         Key const key = queue_.top().key;
         queue_.pop();
         double const again = look( key );
         if ( again > now ) add( again, key );
      }
   }

 private:
   struct Entry {
      double when;
      Key key;
      bool operator<( Entry const & other ) const { return other.when < when; } // the first due on top
   };
   std::priority_queue< Entry > queue_;
};

} // namespace LdpTool
