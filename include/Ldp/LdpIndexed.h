/// \file
/// Values by their index, as a walk finds them: nearly always few, and without a gap. The first ones stand in
/// the object itself; the map that everybody may look at is made when more come, or when somebody asks.
#pragma once

#include "Vorn/HashMap2018.h"

#include <array>
#include <atomic>
#include <new>

namespace Ldp {

/// `Owner` only keeps apart the maps of different owners; `room` is the number of values that stand in place.
template< class Owner, class Value, U32 room >
class LdpIndexed {
 public:
   /// The values by index, as a map.
   using Map = Vorn::HashMap2018< Owner, U32, Value >;

   /// No value.
   LdpIndexed() noexcept = default;
   LdpIndexed( LdpIndexed const & ) = delete;
   LdpIndexed & operator=( LdpIndexed const & ) = delete;
   ~LdpIndexed() { drop( map() ); }

   /// Number of values.
   U32 members() const noexcept { return map() ? map()->members() : num_; }
   /// The value at an index, or a default one.
   Value value( U32 index ) const {
      if ( map() ) return map()->value( index );
      return index < num_ ? first_[index] : Value();
   }
   /// Puts a value at an index.
   void valueIs( U32 index, Value value ) {
      if ( !map() && index <= num_ && index < room ) {
         num_ += index == num_;
         first_[index] = std::move( value );
      } else {
         ownMap().valueIs( index, std::move( value ) );
      }
   }
   /// Removes and returns the value at an index; a default one if there is none.
   Value del( U32 index ) {
      if ( !map() && index >= num_ ) return Value();
      auto const deleted = ownMap().del( index );
      return deleted ? deleted->value() : Value();
   }
   /// Removes all values.
   void delAll() {
      if ( members() ) ownMap().delAll();
   }

   /// All of them. Several threads may ask at once, as for all that is finished.
   Map const & coll() const {
      if ( !map() ) {
         Map * const made = make();
         Map * none = nullptr;
         if ( !map_.compare_exchange_strong( none, made, std::memory_order_acq_rel ) ) drop( made );
      }
      return *map();
   }

 private:
   Map * map() const noexcept { return map_.load( std::memory_order_acquire ); }
   Map * make() const {
      Map * const map = new ( Vorn::vornMemAlloc( sizeof( Map ) ) ) Map;
      try {
         for ( U32 i = 0; i < num_; ++i ) {
            map->valueIs( i, first_[i] );
         }
      } catch ( ... ) { // no memory for them
         drop( map );
         throw;
      }
      return map;
   }
   static void drop( Map * map ) noexcept {
      if ( !map ) return;
      map->~Map();
      Vorn::vornMemFree( map, sizeof( Map ) );
   }
   /// The map for who changes it: from now on all is there and nothing in place.
   Map & ownMap() {
      coll();
      while ( num_ ) {
         first_[--num_] = Value();
      }
      return *map();
   }

   std::array< Value, room > first_; // the first `num_`
   U32 num_ = 0;
   mutable std::atomic< Map * > map_ = nullptr;
};

} // namespace Ldp
