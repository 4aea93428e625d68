#pragma once

// Collections of live objects: what is in them now, each time that they are asked.

#include "Source.h"

#include "Vorn/GenericIf.h"

namespace LdpPython {

/// A collection, a set or a queue of an entity, which it holds.
class Collection {
 public:
   Collection( Vorn::Entity const & entity, Vorn::VornAttr const & attr, SourcePtr source )
        : entity_( const_cast< Vorn::Entity * >( &entity ) ), attr_( attr ), source_( std::move( source ) ) {}

   std::size_t size() const;
   /// Whether the key is there; false also for what cannot be a key.
   bool has( py::handle key ) const;
   /// The member at the key. Throws KeyError where there is none.
   py::object at( py::handle key ) const;
   /// The keys, the members, or pairs of them, as they are now: in the order of the keys' texts, a queue's in
   /// its own.
   py::list keys() const { return list( true, false ); }
   py::list values() const { return list( false, true ); }
   py::list items() const { return list( true, true ); }
   std::string repr( char const * kind ) const;

   /// The same as dict or list, with what `of` makes of members that are entities, owned or referred to.
   py::object snapshot( py::object ( *of )( Vorn::Entity const & entity, bool owned,
                                            SourcePtr const & source ) ) const;

 private:
   py::list list( bool keys, bool values ) const;
   py::object member( void const * value ) const;

   Vorn::Ptr< Vorn::Entity > entity_;
   Vorn::VornAttr const & attr_;
   SourcePtr source_;
};

struct Mapping : Collection {
   using Collection::Collection;
};
struct Set : Collection {
   using Collection::Collection;
};
struct Queue : Collection {
   using Collection::Collection;
};

/// The collection of an attribute that is keyed.
py::object collectionOf( Vorn::Entity const & entity, Vorn::VornAttr const & attr, SourcePtr const & source );

void addCollections( py::module_ & module );

} // namespace LdpPython
