// Changes of a tree.
#include "views/TreeWatcher.h"

#include "views/Tree.h"

#include <unordered_map>

namespace LdpTool {

using Vorn::Entity;
using Vorn::Ptr;
using Vorn::PtrInterface;
using Vorn::VornAttr;
namespace GenericIf = Vorn::GenericIf;

namespace {

std::string keyText( VornAttr const & attr, void const * key ) {
   std::string text = "[";
   text += GenericIf::Value( attr.keyType, key ).stringValue().view();
   return text += ']';
}

} // namespace

std::string changeText( TreeChange const & change ) {
   std::string text = change.path + " " + change.attr.name;
   if ( change.key ) text += keyText( change.attr, change.key );
   text += " = ";
   if ( !change.attr.instantiating() ) return text + attributeText( change.entity, change.attr, change.key );
   return text + ( childOf( change.entity, change.attr, change.key ) ? "made" : "-" );
}

void writeChange( JsonWriter & json, Arrival const & at, TreeChange const & change ) {
   auto const & [path, steps, entity, attr, key] = change;
   json.object();
   json.key( "time" );
   json.time( at.seconds, at.nanoseconds );
   json.member( "frame", at.frame );
   json.key( "path" );
   json.array();
   for ( std::string const & step : steps )
      json.value( step );
   json.value( attr.name );
   if ( key ) json.value( plainText( *attr.keyType, key ) );
   json.endArray();
   json.key( "value" );
   if ( attr.instantiating() ) {
      if ( childOf( entity, attr, key ) ) {
         json.object(); // what it holds follows
         json.endObject();
      } else {
         json.null();
      }
   } else if ( !has( entity, attr, key ) ) {
      json.null();
   } else {
      GenericIf::Value value( attr.type );
      read( entity, attr, key, value );
      writeValue( json, *attr.type, value.data() );
   }
   json.endObject();
   json.endLine();
}

/// One entity that is watched: a generic observer bound to it.
class TreeWatcher::Watch : public GenericIf::NotifieeConst {
 public:
   Watch( Watches & all, Entity & entity, std::string path, std::vector< std::string > steps );
   ~Watch() override;

   void onRawAttribute( U32 attributeId ) override { tell( attributeId, nullptr ); }
   void onRawAttribute( U32 attributeId, void const * key, bool ) override { tell( attributeId, key ); }

   /// The entity and all that stands below it are watched from here on.
   void watchBelow();

 private:
   void tell( U32 attributeId, void const * key );
   void watch( VornAttr const & attr, void const * key, Entity & child );
   PtrInterface::NotifieeConst & notifiee() const {
      return static_cast< PtrInterface::NotifieeConst & >( *bound_ );
   }

   Watches & all_;
   Entity & entity_;
   std::string const path_;
   std::vector< std::string > const steps_;
   Ptr< PtrInterface > bound_;
};

struct TreeWatcher::Watches {
   OnChange onChange;
   std::unordered_map< Entity const *, std::unique_ptr< Watch > > byEntity;

   // An entity that went leaves its watch behind, and another may come to stand at its address: it gets a
   // watch of its own.
   void add( Entity & entity, std::string path, std::vector< std::string > steps ) {
      auto & watch = byEntity[&entity];
      watch = std::make_unique< Watch >( *this, entity, std::move( path ), std::move( steps ) );
      watch->watchBelow();
   }
};

TreeWatcher::Watch::Watch( Watches & all, Entity & entity, std::string path,
                           std::vector< std::string > steps )
     : all_( all ), entity_( entity ), path_( std::move( path ) ), steps_( std::move( steps ) ),
       bound_( entity.fwkType()->genericIfNotifiee( *this ) ) {
   notifiee().isRegisteredNotifieeIs( true );
   notifiee().notifierIs( Ptr< PtrInterface const >( &entity ) );
   notifiee().isWeakReferenceIs( true );
}

TreeWatcher::Watch::~Watch() { notifiee().notifierIs( nullptr ); }

void TreeWatcher::Watch::watchBelow() {
   for ( VornAttr const * attr = entity_.fwkType()->attributes; attr->name; ++attr ) {
      if ( !attr->instantiating() ) continue;
      if ( attr->keyed() ) {
         for ( auto const & [key, member] : membersOf( entity_, *attr ) )
            watch( *attr, member.key.data(), *member.entity );
      } else if ( auto const child = childOf( entity_, *attr ) ) {
         watch( *attr, nullptr, *child );
      }
   }
}

void TreeWatcher::Watch::watch( VornAttr const & attr, void const * key, Entity & child ) {
   auto steps = steps_;
   steps.push_back( attr.name );
   if ( key ) steps.push_back( plainText( *attr.keyType, key ) );
   all_.add( child, path_ + "/" + attr.name + ( key ? keyText( attr, key ) : "" ), std::move( steps ) );
}

void TreeWatcher::Watch::tell( U32 attributeId, void const * key ) {
   VornAttr const & attr = *entity_.fwkType()->attribute( attributeId );
   all_.onChange( { path_, steps_, entity_, attr, key } );
   if ( !attr.instantiating() ) return;
   if ( auto const child = childOf( entity_, attr, key ) ) watch( attr, key, *child );
}

TreeWatcher::TreeWatcher( Entity & root, OnChange onChange ) : watches_( std::make_unique< Watches >() ) {
   watches_->onChange = std::move( onChange );
   watches_->add( root, std::string( root.nameText().view() ), {} );
}

TreeWatcher::~TreeWatcher() = default;

} // namespace LdpTool
