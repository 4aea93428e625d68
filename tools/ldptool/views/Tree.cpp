// Entities as a tree of text or JSON, and as changes.
#include "views/Tree.h"

#include "Vorn/Entity.h"

#include <nlohmann/json.hpp>

#include <map>
#include <unordered_map>

namespace LdpTool {

namespace {

using nlohmann::ordered_json;
using Vorn::Entity;
using Vorn::Ptr;
using Vorn::PtrInterface;
using Vorn::VornAttr;
using Vorn::VornKind;
namespace GenericIf = Vorn::GenericIf;

void * objectOf( Entity const & entity ) {
   return const_cast< PtrInterface * >( static_cast< PtrInterface const * >( &entity ) );
}

std::string text( Vorn::String const & string ) { return std::string( string.view() ); }

/// Texts are octets; as Latin-1 nothing is lost and the JSON is valid.
std::string latin1( std::string const & octets ) {
   std::string utf8;
   for ( char const c : octets ) {
      auto const octet = static_cast< unsigned char >( c );
      if ( octet < 0x80 ) {
         utf8 += c;
      } else {
         utf8 += char( 0xc0 | octet >> 6 );
         utf8 += char( 0x80 | ( octet & 0x3f ) );
      }
   }
   return utf8;
}

bool isStored( VornAttr const & attr ) {
   switch ( attr.kind() ) {
   case VornKind::mutableAttr:
   case VornKind::constructor:
   case VornKind::state:
   case VornKind::child:
   case VornKind::entityColl:
   case VornKind::reference:
   case VornKind::referenceColl:
   case VornKind::valueColl:
   case VornKind::queue:
   case VornKind::localValueColl:
   case VornKind::localEntityColl: return true;
   case VornKind::derived:
   case VornKind::derivedLight:
   case VornKind::constant:
   case VornKind::derivedConstant:
   case VornKind::enumerator:
   case VornKind::function: break;
   }
   return false;
}

bool belongs( VornAttr const & attr, TreeContent content ) {
   if ( content == TreeContent::logged ) return attr.logged() || attr.kind() == VornKind::constructor;
   return isStored( attr );
}

/// A member of a collection: an entity, or a value's text.
struct Member {
   Ptr< Entity > entity;
   std::string value;
};

/// The members in order of their keys' texts, so that two equal trees read alike whatever their hashes.
std::map< std::string, Member > membersOf( Entity const & entity, VornAttr const & attr ) {
   std::map< std::string, Member > members;
   for ( GenericIf::Iterator it( objectOf( entity ), attr ); it; it.advance() ) {
      GenericIf::Value key( attr.keyType );
      GenericIf::Value value( attr.type );
      it.key( key.data() );
      it.object( value.data() );
      Member & member = members[text( key.stringValue() )];
      if ( attr.instantiating() ) {
         member.entity =
              static_cast< Entity * >( static_cast< Ptr< PtrInterface > * >( value.data() )->ptr() );
      } else {
         member.value = text( value.stringValue() );
      }
   }
   return members;
}

Ptr< Entity > childOf( Entity const & entity, VornAttr const & attr ) {
   Ptr< PtrInterface > child;
   attr.ops->op( &child, objectOf( entity ), attr, GenericIf::read, nullptr, nullptr );
   return Ptr< Entity >( static_cast< Entity * >( child.ptr() ) );
}

/// The attribute as text: of a collection the member at `key`, "-" where there is none.
std::string attributeText( Entity const & entity, VornAttr const & attr, void const * key ) {
   if ( key ) {
      bool has = false;
      attr.ops->op( &has, objectOf( entity ), attr, GenericIf::has, key, nullptr );
      if ( !has ) return "-";
   }
   GenericIf::Value value( attr.type );
   attr.ops->op( value.data(), objectOf( entity ), attr, GenericIf::read, key, nullptr );
   if ( attr.type->methods == &Vorn::GenericIfImpl::GenericIfPtrInterfaceMethods< Vorn::Entity >::vtable_ ) {
      auto const & object = *static_cast< Ptr< PtrInterface > const * >( value.data() );
      auto const * const child = dynamic_cast< Entity const * >( object.ptr() );
      return child ? text( child->fullName() ) : object ? object->fwkType()->name : "null";
   }
   return text( value.stringValue() );
}

void appendText( std::string & out, Entity const & entity, TreeContent content, std::size_t indent ) {
   std::string const blanks( indent, ' ' );
   for ( VornAttr const * attr = entity.fwkType()->attributes; attr->name; ++attr ) {
      if ( !belongs( *attr, content ) ) continue;
      if ( attr->keyed() ) {
         for ( auto const & [key, member] : membersOf( entity, *attr ) ) {
            out += blanks + attr->name + "[" + key + "]";
            out += member.entity ? "\n" : " = " + member.value + "\n";
            if ( member.entity ) appendText( out, *member.entity, content, indent + 3 );
         }
      } else if ( attr->kind() == VornKind::child ) {
         if ( auto const child = childOf( entity, *attr ) ) {
            out += blanks + attr->name + "\n";
            appendText( out, *child, content, indent + 3 );
         }
      } else {
         out += blanks + attr->name + " = " + attributeText( entity, *attr, nullptr ) + "\n";
      }
   }
}

} // namespace

std::string treeText( Entity const & entity, TreeContent content ) {
   std::string out = text( entity.nameText() ) + "\n";
   appendText( out, entity, content, 3 );
   return out;
}

ordered_json treeJson( Entity const & entity, TreeContent content ) {
   ordered_json json = ordered_json::object();
   for ( VornAttr const * attr = entity.fwkType()->attributes; attr->name; ++attr ) {
      if ( !belongs( *attr, content ) ) continue;
      if ( attr->keyed() ) {
         auto & members = json[attr->name] = ordered_json::object();
         for ( auto const & [key, member] : membersOf( entity, *attr ) )
            members[latin1( key )] =
                 member.entity ? treeJson( *member.entity, content ) : ordered_json( latin1( member.value ) );
      } else if ( attr->kind() == VornKind::child ) {
         auto const child = childOf( entity, *attr );
         json[attr->name] = child ? treeJson( *child, content ) : ordered_json();
      } else {
         json[attr->name] = latin1( attributeText( entity, *attr, nullptr ) );
      }
   }
   return json;
}

/// One entity that is watched: a generic observer bound to it.
class TreeWatcher::Watch : public GenericIf::NotifieeConst {
 public:
   Watch( Watches & all, Entity & entity, std::string path );
   ~Watch() override;

   void onRawAttribute( U32 attributeId ) override { tell( attributeId, nullptr ); }
   void onRawAttribute( U32 attributeId, void const * key, bool ) override { tell( attributeId, key ); }

 private:
   void tell( U32 attributeId, void const * key );
   PtrInterface::NotifieeConst & notifiee() const {
      return static_cast< PtrInterface::NotifieeConst & >( *bound_ );
   }

   Watches & all_;
   Entity & entity_;
   std::string const path_;
   Ptr< PtrInterface > bound_;
};

struct TreeWatcher::Watches {
   OnChange onChange;
   std::unordered_map< Entity const *, std::unique_ptr< Watch > > byEntity;

   // An entity that went leaves its watch behind, and another may come to stand at its address: it gets a
   // watch of its own.
   void add( Entity & entity, std::string const & path ) {
      byEntity[&entity] = std::make_unique< Watch >( *this, entity, path );
      for ( VornAttr const * attr = entity.fwkType()->attributes; attr->name; ++attr ) {
         if ( !attr->instantiating() ) continue;
         if ( attr->keyed() ) {
            for ( auto const & [key, member] : membersOf( entity, *attr ) )
               add( *member.entity, path + "/" + attr->name + "[" + key + "]" );
         } else if ( auto const child = childOf( entity, *attr ) ) {
            add( *child, path + "/" + attr->name );
         }
      }
   }
};

TreeWatcher::Watch::Watch( Watches & all, Entity & entity, std::string path )
     : all_( all ), entity_( entity ), path_( std::move( path ) ),
       bound_( entity.fwkType()->genericIfNotifiee( *this ) ) {
   notifiee().isRegisteredNotifieeIs( true );
   notifiee().notifierIs( Ptr< PtrInterface const >( &entity ) );
   notifiee().isWeakReferenceIs( true );
}

TreeWatcher::Watch::~Watch() { notifiee().notifierIs( nullptr ); }

void TreeWatcher::Watch::tell( U32 attributeId, void const * key ) {
   VornAttr const * const attr = entity_.fwkType()->attribute( attributeId );
   std::string attribute = attr->name;
   if ( key ) {
      GenericIf::Value const value( attr->keyType, key );
      attribute.append( 1, '[' ).append( text( value.stringValue() ) ).append( 1, ']' );
   }
   if ( !attr->instantiating() ) {
      all_.onChange( { path_, attribute, attributeText( entity_, *attr, key ) } );
      return;
   }
   // A new child is watched from here on.
   Ptr< PtrInterface > child;
   attr->ops->op( &child, objectOf( entity_ ), *attr, GenericIf::read, key, nullptr );
   all_.onChange( { path_, attribute, child ? "made" : "-" } );
   if ( child ) all_.add( static_cast< Entity & >( *child ), path_ + "/" + attribute );
}

TreeWatcher::TreeWatcher( Entity & root, OnChange onChange ) : watches_( std::make_unique< Watches >() ) {
   watches_->onChange = std::move( onChange );
   watches_->add( root, text( root.nameText() ) );
}

TreeWatcher::~TreeWatcher() = default;

} // namespace LdpTool
