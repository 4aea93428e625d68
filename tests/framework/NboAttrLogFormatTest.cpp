// A reader of the attribute log that stands on docs/attribute-log.md alone: it shares no code with the
// library's own, and what it understands of a stream must be what the original is.

#include "framework/LogWorld.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <map>
#include <optional>
#include <set>

namespace {

/// The octets of one value.
class Cursor {
 public:
   Cursor( unsigned char const * at, std::size_t bytes ) : at_( at ), end_( at + bytes ) {}
   std::uint64_t number( int octets ) {
      std::uint64_t value = 0;
      while ( octets-- ) {
         value = value << 8 | *take( 1 );
      }
      return value;
   }
   unsigned char const * take( std::size_t bytes ) {
      if ( left() < bytes ) throw std::runtime_error( "a value is cut short" );
      at_ += bytes;
      return at_ - bytes;
   }
   std::size_t left() const { return std::size_t( end_ - at_ ); }

 private:
   unsigned char const * at_;
   unsigned char const * end_;
};

// The schema, as `ldptool types` would print it for these types.

enum Kind { scalar, reference, child, entityColl, valueColl, set, referenceColl, queue };
enum Type { none, boolean, u8, u16, u32, u64, real, string };

struct Attribute {
   std::string name;
   Kind kind;
   Type type; ///< of values
   Type key;
   std::string entity; ///< type of members
};
struct Schema {
   std::vector< std::pair< std::string, Type > > arguments;
   std::map< std::uint32_t, Attribute > attributes;
};

std::map< std::string, Schema > const schemas{
   { "Test::Twig",
     { { { "id", u32 }, { "wood", string }, { "load", u16 } },
       { { 0x104, { "load", scalar, u16, none, "" } },
         { 0x105, { "label", scalar, string, none, "" } },
         { 0x106, { "pal", reference, none, none, "" } } } } },
   { "Test::Branch",
     { { { "name", string } },
       { { 0x102, { "number", scalar, u64, none, "" } },
         { 0x103, { "twig", entityColl, none, u32, "Test::Twig" } },
         { 0x104, { "score", valueColl, real, string, "" } },
         { 0x105, { "mark", set, none, u64, "" } },
         { 0x106, { "flag", valueColl, boolean, u32, "" } },
         { 0x107, { "event", queue, string, u32, "" } },
         { 0x108, { "beside", referenceColl, none, string, "" } },
         { 0x109, { "inside", referenceColl, none, u32, "" } } } } },
   { "Test::Tree",
     { { { "name", string } },
       { { 0x102, { "height", scalar, real, none, "" } },
         { 0x103, { "kind", scalar, string, none, "" } },
         { 0x104, { "alive", scalar, boolean, none, "" } },
         { 0x105, { "age", scalar, u8, none, "" } },
         { 0x106, { "crown", child, none, none, "Test::Branch" } },
         { 0x107, { "top", child, none, none, "Test::Twig" } },
         { 0x108, { "branch", entityColl, none, string, "Test::Branch" } } } } },
};

/// A value as text, in the form that the library prints.
std::string value( Cursor & in, Type type ) {
   switch ( type ) {
   case none: return "True";
   case boolean: return in.number( 1 ) ? "True" : "False";
   case u8: return std::to_string( in.number( 1 ) );
   case u16: return std::to_string( in.number( 2 ) );
   case u32: return std::to_string( in.number( 4 ) );
   case u64: return std::to_string( in.number( 8 ) );
   case real: {
      std::uint64_t const bits = in.number( 8 );
      double number;
      std::memcpy( &number, &bits, sizeof number );
      char text[40];
      std::snprintf( text, sizeof text, "%.17g", number ); // whole numbers only, in this model
      return text;
   }
   case string: {
      auto const bytes = std::size_t( in.number( 4 ) );
      return "'" + std::string( reinterpret_cast< char const * >( in.take( bytes ) ), bytes ) + "'";
   }
   }
   return "";
}

struct Thing {
   std::string type;
   std::map< std::string, std::string > arguments;
   std::map< std::uint32_t, std::string > scalars;
   struct Slot {
      std::string text;         // of a value
      std::uint32_t entity = 0; // of a member or reference
      bool marked = false;
   };
   std::map< std::uint32_t, std::map< std::string, Slot > > slots; // by attribute and key; a child has key ""
   struct Indices {
      std::uint32_t head = 0;
      std::uint32_t next = 0;
   };
   std::map< std::uint32_t, Indices > queues; // by attribute
   std::set< std::uint32_t > running;         // attributes between their markers

   /// An index was given.
   void indexIs( std::uint32_t attribute, std::string const & key ) {
      auto & next = queues[attribute].next;
      next = std::max( next, std::uint32_t( std::stoul( key ) + 1 ) );
      headIs( attribute );
   }
   /// The head is the first element, or the next where there is none.
   void headIs( std::uint32_t attribute ) {
      queues[attribute].head = queues[attribute].next;
      for ( auto const & [key, slot] : slots[attribute] ) {
         queues[attribute].head = std::min( queues[attribute].head, std::uint32_t( std::stoul( key ) ) );
      }
   }
};

class Reader {
 public:
   /// Takes a whole stream.
   void stream( std::vector< U8 > const & octets ) {
      Cursor in( octets.data(), octets.size() );
      if ( std::memcmp( in.take( 4 ), "VNAL", 4 ) || in.number( 2 ) != 1 || in.number( 2 ) ) {
         throw std::runtime_error( "another stream" );
      }
      while ( in.left() ) {
         auto const length = std::size_t( in.number( 4 ) );
         Cursor one( in.take( length ), length );
         record( one, length - 11 );
      }
   }

   /// The tree below an entity in the form of `Test::logged`, whose collections are sorted.
   std::string text( std::uint32_t root ) {
      paths_.clear();
      path( root, "root" );
      return entity( root, "" );
   }
   std::vector< std::uint32_t > roots;

 private:
   void record( Cursor & in, std::size_t bytes ) {
      auto const kind = in.number( 1 );
      auto const entity = std::uint32_t( in.number( 4 ) );
      auto const attribute = std::uint32_t( in.number( 4 ) );
      if ( in.number( 1 ) != 0 ) throw std::runtime_error( "no token in front" );
      Cursor v( in.take( bytes ), bytes );
      if ( in.number( 1 ) != 2 ) throw std::runtime_error( "no token behind" );
      if ( kind == 2 ) {
         if ( attribute != types_.size() + 1 ) throw std::runtime_error( "type out of order" );
         types_.emplace_back( reinterpret_cast< char const * >( v.take( bytes ) ), bytes );
         return;
      }
      if ( attribute == 0x88 && !entity ) {
         orphan( v );
      } else if ( attribute == 0u - 0x88 ) {
         std::erase( roots, entity );
      } else {
         Thing & thing = things_.at( entity );
         if ( kind == 1 ) {
            marker( v, thing, attribute );
         } else if ( attribute & 0x80000000 ) {
            Attribute const & a = declared( thing, 0 - attribute );
            std::string const key = a.kind == child ? "" : value( v, a.key );
            thing.slots[0 - attribute].erase( key );
            if ( a.kind == queue ) thing.indexIs( 0 - attribute, key );
         } else {
            set_( v, thing, attribute );
         }
      }
      if ( v.left() ) throw std::runtime_error( "a value goes on" );
   }

   Attribute const & declared( Thing const & thing, std::uint32_t id ) {
      return schemas.at( thing.type ).attributes.at( id );
   }

   std::map< std::string, std::string > arguments( Cursor & v, std::string const & type ) {
      std::map< std::string, std::string > all;
      for ( auto const & [name, argument] : schemas.at( type ).arguments ) {
         all[name] = value( v, argument );
      }
      return all;
   }

   void orphan( Cursor & v ) {
      Thing thing;
      if ( v.number( 1 ) != 0 ) throw std::runtime_error( "section" );
      thing.type = types_.at( std::size_t( v.number( 4 ) - 1 ) );
      if ( v.number( 1 ) != 2 ) throw std::runtime_error( "section" );
      thing.arguments = arguments( v, thing.type );
      if ( v.number( 1 ) != 3 ) throw std::runtime_error( "section" );
      roots.push_back( std::uint32_t( v.number( 4 ) ) );
      introduce( roots.back(), thing );
   }

   void introduce( std::uint32_t id, Thing const & thing ) {
      if ( things_.contains( id ) ) return; // said again
      if ( id != things_.size() + 1 ) throw std::runtime_error( "entity out of order" );
      things_[id] = thing;
   }

   void set_( Cursor & v, Thing & thing, std::uint32_t id ) {
      Attribute const & a = declared( thing, id );
      Thing::Slot slot;
      std::string key;
      switch ( a.kind ) {
      case scalar: thing.scalars[id] = value( v, a.type ); return;
      case reference: slot.entity = std::uint32_t( v.number( 4 ) ); break;
      case child:
      case entityColl: {
         Thing member{ a.entity, arguments( v, a.entity ), {}, {}, {}, {} };
         if ( types_.at( std::size_t( v.number( 4 ) - 1 ) ) != a.entity ) throw std::runtime_error( "type" );
         slot.entity = std::uint32_t( v.number( 4 ) );
         if ( a.kind == entityColl ) key = member.arguments[schemas.at( a.entity ).arguments[0].first];
         introduce( slot.entity, member );
         break;
      }
      case referenceColl:
         key = value( v, a.key );
         slot.entity = std::uint32_t( v.number( 4 ) );
         break;
      default: key = value( v, a.key ); slot.text = value( v, a.type );
      }
      thing.slots[id][key] = slot;
      if ( a.kind == queue ) thing.indexIs( id, key );
   }

   void marker( Cursor & v, Thing & thing, std::uint32_t id ) {
      auto const type = v.number( 1 );
      if ( v.number( 4 ) ) throw std::runtime_error( "not zero" );
      bool const isQueue = declared( thing, id ).kind == queue;
      if ( isQueue && type == 0 ) {
         v.number( 4 ); // follows from the elements, and from the next where there is none
         thing.queues[id].next = std::uint32_t( v.number( 4 ) );
      }
      if ( type == 0 ? !thing.running.insert( id ).second : !thing.running.erase( id ) )
         throw std::runtime_error( "markers out of order" );
      for ( auto & [key, slot] : thing.slots[id] ) {
         if ( type == 0 ) slot.marked = true;
      }
      if ( type == 2 )
         std::erase_if( thing.slots[id], []( auto const & slot ) { return slot.second.marked; } );
      if ( isQueue ) thing.headIs( id );
   }

   void path( std::uint32_t id, std::string const & at ) {
      paths_[id] = at;
      Thing const & thing = things_.at( id );
      for ( auto const & [attribute, members] : thing.slots ) {
         if ( Kind const kind = declared( thing, attribute ).kind; kind != child && kind != entityColl )
            continue;
         for ( auto const & [key, slot] : members ) {
            Thing const & member = things_.at( slot.entity );
            std::string name = member.arguments.begin()->second;
            if ( member.type == "Test::Branch" ) name = name.substr( 1, name.size() - 2 );
            path( slot.entity, at + "/" + name );
         }
      }
   }

   std::string entity( std::uint32_t id, std::string const & indent ) {
      Thing const & thing = things_.at( id );
      Schema const & schema = schemas.at( thing.type );
      std::string all = thing.type;
      for ( auto const & [name, text] : thing.arguments ) {
         bool const logged =
              std::any_of( schema.attributes.begin(), schema.attributes.end(),
                           [&name = name]( auto const & a ) { return a.second.name == name; } );
         if ( name != "name" && !logged ) all += "\n" + indent + name + ": " + text;
      }
      for ( auto const & [a, attribute] : schema.attributes ) {
         all += "\n" + indent + attribute.name + ": ";
         if ( attribute.kind == scalar ) {
            all += thing.scalars.at( a );
            continue;
         }
         auto const found = thing.slots.find( a );
         bool const keyed = attribute.kind >= entityColl;
         std::vector< std::string > members;
         if ( found != thing.slots.end() ) {
            for ( auto const & [key, slot] : found->second ) {
               std::string const shown = member( attribute, slot, indent + "  " );
               members.push_back( keyed ? "\n" + indent + "  " + key + " = " + shown : shown );
            }
         }
         if ( !keyed && members.empty() ) members.push_back( "null" );
         if ( attribute.kind == queue ) {
            auto const indices = thing.queues.at( a );
            all += "from " + std::to_string( indices.head ) + " to " + std::to_string( indices.next );
            // In order of the index, which the text of a number is not.
            std::sort( members.begin(), members.end(),
                       []( auto const & x, auto const & y ) { return std::stoul( x ) < std::stoul( y ); } );
         } else {
            std::sort( members.begin(), members.end() );
         }
         for ( auto const & one : members ) {
            all += one;
         }
      }
      return all;
   }

   std::string member( Attribute const & attribute, Thing::Slot const & slot, std::string const & indent ) {
      if ( attribute.kind == child || attribute.kind == entityColl ) return entity( slot.entity, indent );
      if ( attribute.kind != reference && attribute.kind != referenceColl ) return slot.text;
      auto const at = paths_.find( slot.entity );
      return at == paths_.end() ? "null" : at->second;
   }

   std::vector< std::string > types_;
   std::map< std::uint32_t, Thing > things_;
   std::map< std::uint32_t, std::string > paths_;
};

TEST( NboAttrLogFormat, aReaderThatKnowsOnlyThePageUnderstandsTheStream ) {
   for ( U64 seed = 1; seed <= 60; ++seed ) {
      SCOPED_TRACE( seed );
      std::mt19937_64 random( seed );
      ::Test::LogWorld world( random, seed % 2 ? 5 : 60 );
      world.steps( 200 );
      auto const out =
           Vorn::newObject< ::Test::Out >( seed % 3 ? 64 + 10 * U32( seed ) : ::Test::Out::defaultCapacity );
      auto & tree = const_cast< ::Test::Tree & >( world.tree() );
      tree.vornNboAttrLogSaIs( 0, 0, out );
      auto const passing = ::Test::branchFactory( Vorn::Name( "passing" ) );
      passing->vornNboAttrLogSaIs( 0, 0, out );
      std::vector< U8 > octets;
      auto const take = [&] {
         while ( std::size_t const bytes = out->bytes() ) {
            octets.insert( octets.end(), out->data(), out->data() + bytes );
            out->drained( bytes );
         }
      };
      for ( int i = 0; i < 10; ++i ) {
         world.steps( 20 );
         if ( i % 3 ) take();
         if ( i == 5 ) out->rootDel( *passing );
      }
      take();
      Reader reader;
      ASSERT_NO_THROW( reader.stream( octets ) );
      ASSERT_EQ( 1u, reader.roots.size() );
      ASSERT_EQ( ::Test::logged( tree ), reader.text( reader.roots[0] ) );
   }
}

} // namespace
