// What all forms of a tree read by reflection.
#include "views/Reflection.h"

namespace LdpTool {

using Vorn::Entity;
using Vorn::Ptr;
using Vorn::PtrInterface;
using Vorn::VornAttr;
using Vorn::VornKind;
namespace GenericIf = Vorn::GenericIf;

namespace {

void * objectOf( Entity const & entity ) {
   return const_cast< PtrInterface * >( static_cast< PtrInterface const * >( &entity ) );
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

} // namespace

bool belongs( VornAttr const & attr, TreeContent content ) {
   if ( content == TreeContent::logged ) return attr.logged() || attr.kind() == VornKind::constructor;
   return isStored( attr );
}

bool isReference( Vorn::VornType const & type ) {
   return type.methods == &Vorn::GenericIfImpl::GenericIfPtrInterfaceMethods< Entity >::vtable_;
}

bool KeyOrder::operator()( std::string const & a, std::string const & b ) const {
   auto const isNumber = []( std::string const & text ) {
      return text.find_first_not_of( "0123456789" ) == text.npos;
   };
   return a.size() != b.size() && isNumber( a ) && isNumber( b ) ? a.size() < b.size() : a < b;
}

Members membersOf( Entity const & entity, VornAttr const & attr ) {
   Members members;
   GenericIf::Value key( attr.keyType );
   for ( GenericIf::Iterator it( objectOf( entity ), attr ); it; it.advance() ) {
      it.key( key.data() );
      Member & member =
           members.try_emplace( std::string( key.stringValue().view() ), attr, key.data() ).first->second;
      it.object( member.value.data() );
      if ( attr.instantiating() )
         member.entity =
              static_cast< Entity * >( static_cast< Ptr< PtrInterface > * >( member.value.data() )->ptr() );
   }
   return members;
}

Ptr< Entity > childOf( Entity const & entity, VornAttr const & attr, void const * key ) {
   Ptr< PtrInterface > child;
   attr.ops->op( &child, objectOf( entity ), attr, GenericIf::read, key, nullptr );
   return Ptr< Entity >( static_cast< Entity * >( child.ptr() ) );
}

bool has( Entity const & entity, VornAttr const & attr, void const * key ) {
   if ( !key ) return true;
   bool has = false;
   attr.ops->op( &has, objectOf( entity ), attr, GenericIf::has, key, nullptr );
   return has;
}

void read( Entity const & entity, VornAttr const & attr, void const * key, GenericIf::Value & value ) {
   attr.ops->op( value.data(), objectOf( entity ), attr, GenericIf::read, key, nullptr );
}

Entity const * referenced( void const * value ) {
   return dynamic_cast< Entity const * >( static_cast< Ptr< PtrInterface > const * >( value )->ptr() );
}

} // namespace LdpTool
