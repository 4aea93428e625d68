// What every attribute of every entity type promises by its kind, by reflection alone.
#include "model/Observe.h"
#include "model/Samples.h"

#include "Vorn/Entity.h"

#include <gtest/gtest.h>

#include <set>

namespace {

using namespace Test;
using Vorn::Entity;
using Vorn::Ptr;
using Vorn::PtrInterface;
using Vorn::RangeException;
using Vorn::VornAttr;
using Vorn::VornKind;
using Vorn::VornType;
using Vorn::GenericIf::Value;
namespace GenericIf = Vorn::GenericIf;

using Values = std::vector< Value >;

// One attribute of one object under test.
class Subject {
 public:
   Subject( Ptr< PtrInterface > const & object, VornAttr const & attr )
        : object_( object ), attr_( attr ), watcher_( *object ) {}

   U32 op( U32 op, void * result, void const * key, Values const & args = {} ) {
      return attributeOp( object_, attr_, op, result, key, args );
   }
   Value read( void const * key = nullptr ) {
      Value value = room( *attr_.type );
      EXPECT_EQ( op( GenericIf::read, value.data(), key ), GenericIf::done );
      return value;
   }
   Calls write( Values const & args, void const * key = nullptr ) {
      EXPECT_EQ( op( GenericIf::write, nullptr, key, args ), GenericIf::done );
      return watcher_.taken();
   }
   Calls write( Value const & value, void const * key = nullptr ) { return write( Values{ value }, key ); }
   Calls del( void const * key ) {
      EXPECT_EQ( op( GenericIf::del, nullptr, key ), GenericIf::done );
      return watcher_.taken();
   }
   bool has( Value const & key ) {
      bool result = false;
      EXPECT_EQ( op( GenericIf::has, &result, key.data() ), GenericIf::done );
      return result;
   }
   U32 number( U32 which ) {
      U32 result = ~0u;
      EXPECT_EQ( op( which, &result, nullptr ), GenericIf::done );
      return result;
   }
   // Keys that a walk meets.
   std::size_t walked() {
      std::size_t found = 0;
      for ( GenericIf::Iterator it( address( object_ ), attr_ ); it; it.advance() ) {
         Value key( attr_.keyType );
         it.key( key.data() );
         EXPECT_TRUE( has( key ) );
         ++found;
      }
      return found;
   }
   // What a change tells, which is nothing for what stands outside notification.
   Calls told( Value const & key ) const {
      if ( silent() ) return {};
      return { attr_.name + std::string( "[" ) + key.stringValue().charPtr() + "]" };
   }
   Calls told() const { return silent() ? Calls{} : Calls{ attr_.name }; }
   void applies( std::set< U32 > const & ops ) {
      bool scratch[sizeof( Value )] = {};
      for ( U32 which = GenericIf::read; which <= GenericIf::has; ++which ) {
         if ( ops.count( which ) ) continue;
         EXPECT_EQ( op( which, scratch, scratch ), GenericIf::notApplicable ) << which;
      }
   }

 private:
   bool silent() const {
      return attr_.kind() == VornKind::state || attr_.kind() == VornKind::localValueColl ||
             attr_.kind() == VornKind::localEntityColl;
   }

   Ptr< PtrInterface > object_;
   VornAttr const & attr_;
   Watcher watcher_;
};

void sweepScalar( Subject & subject, VornAttr const & attr ) {
   subject.applies( { GenericIf::read, GenericIf::write } );
   for ( std::size_t i = 0; i < 2; ++i ) {
      Value const value = sample( *attr.type, i );
      if ( value == subject.read() ) continue;
      EXPECT_EQ( subject.write( value ), subject.told() );
      EXPECT_TRUE( subject.read() == value );
      EXPECT_EQ( subject.write( value ), Calls{} ) << "an equal write tells nobody";
   }
}

// Values, sets and references.
void sweepValues( Subject & subject, VornAttr const & attr, bool isSet ) {
   Value const key = sample( *attr.keyType, 0 );
   Value const other = sample( *attr.keyType, 1 );
   Value const value = sample( *attr.type, 0 );
   subject.del( key.data() ); // a constructor may have entered it
   U32 const before = subject.number( GenericIf::modificationCount );
   EXPECT_EQ( subject.write( value, key.data() ), subject.told( key ) );
   EXPECT_EQ( subject.write( value, key.data() ), Calls{} ) << "an equal write tells nobody";
   EXPECT_EQ( subject.write( sample( *attr.type, isSet ? 0 : 1 ), other.data() ), subject.told( other ) );
   EXPECT_NE( subject.number( GenericIf::modificationCount ), before );
   EXPECT_EQ( subject.number( GenericIf::members ), 2u );
   EXPECT_EQ( subject.walked(), 2u );
   EXPECT_TRUE( subject.read( key.data() ) == value );
   if ( isSet ) {
      EXPECT_THROW( subject.write( sample( *attr.type, 1 ), key.data() ), RangeException )
           << "false for a member of a set";
   } else {
      // Another object under the same key, which it may hold itself.
      Value const changed = sample( *attr.type, attr.kind() == VornKind::referenceColl ? 0 : 1 );
      EXPECT_EQ( subject.write( changed, key.data() ), subject.told( key ) );
      EXPECT_TRUE( subject.read( key.data() ) == changed );
   }
   EXPECT_TRUE( subject.has( key ) );
   EXPECT_EQ( subject.del( key.data() ), subject.told( key ) );
   EXPECT_EQ( subject.del( key.data() ), Calls{} ) << "an absent key tells nobody";
   EXPECT_FALSE( subject.has( key ) );
   EXPECT_TRUE( subject.has( other ) );
}

Ptr< Entity > entityIn( Value const & value ) {
   return Ptr< Entity >(
        static_cast< Entity * >( static_cast< Ptr< PtrInterface > const * >( value.data() )->ptr() ) );
}

void sweepEntities( Subject & subject, VornAttr const & attr, Entity const & parent ) {
   Values const args = sampleArgs( attr, 0 );
   Value const key = sample( *attr.keyType, 0 );
   U32 const before = subject.number( GenericIf::members );
   EXPECT_EQ( subject.write( args ), subject.told( key ) );
   EXPECT_EQ( subject.write( args ), Calls{} ) << "it is there already";
   EXPECT_EQ( subject.number( GenericIf::members ), before + 1 );
   EXPECT_TRUE( subject.has( key ) );
   Ptr< Entity > const member = entityIn( subject.read( key.data() ) );
   ASSERT_TRUE( member );
   EXPECT_EQ( member->parent().ptr(), &parent );
   EXPECT_EQ( member->parentAttrName(), attr.name );
   EXPECT_EQ( subject.del( key.data() ), subject.told( key ) );
   EXPECT_EQ( subject.del( key.data() ), Calls{} );
   EXPECT_FALSE( subject.has( key ) );
   EXPECT_FALSE( member->parent() ) << "it lives on by itself";
}

void sweepChild( Subject & subject, VornAttr const & attr, Entity const & parent ) {
   subject.applies( { GenericIf::read, GenericIf::write, GenericIf::del } );
   Ptr< Entity > const first = entityIn( subject.read() );
   Values const args = sampleArgs( attr, 1 ); // unlike those of a child of the constructor
   EXPECT_EQ( subject.write( args ), subject.told() );
   EXPECT_FALSE( first && first->parent() );
   Ptr< Entity > const child = entityIn( subject.read() );
   ASSERT_TRUE( child );
   EXPECT_EQ( child->parent().ptr(), &parent );
   EXPECT_EQ( subject.write( args ), Calls{} ) << "it is there already";
   EXPECT_EQ( entityIn( subject.read() ).ptr(), child.ptr() );
   EXPECT_EQ( subject.del( nullptr ), subject.told() );
   EXPECT_EQ( subject.del( nullptr ), Calls{} );
   EXPECT_FALSE( child->parent() );
}

void sweepQueue( Subject & subject, VornAttr const & attr ) {
   Value const index = sampleKey( attr, 0 );
   Value const first = sample( *attr.type, 0 );
   EXPECT_EQ( subject.write( first, index.data() ), subject.told( index ) );
   EXPECT_EQ( subject.write( first, index.data() ), Calls{} );
   EXPECT_EQ( subject.write( sample( *attr.type, 1 ), index.data() ), subject.told( index ) );
   EXPECT_EQ( subject.number( GenericIf::members ), 1u );
   EXPECT_EQ( subject.del( index.data() ), subject.told( index ) );
   EXPECT_FALSE( subject.has( index ) );
}

void expectDefault( Subject & subject, VornAttr const & attr, std::string const & text ) {
   Value const value = subject.read();
   if ( text == "default" ) {
      EXPECT_TRUE( value == room( *attr.type ) ) << value.stringValue();
   } else if ( text.starts_with( '#' ) ) {
      ASSERT_TRUE( attr.type->isEnum() );
      EXPECT_EQ( *static_cast< U32 const * >( value.data() ), std::stoul( text.substr( 1 ) ) );
   } else if ( !text.empty() ) {
      std::string shown = value.stringValue().charPtr();
      if ( attr.kind() == VornKind::child && shown != "null" ) {
         shown += std::string( " '" ) + entityIn( value )->nameText().charPtr() + "'";
      }
      EXPECT_EQ( shown, text );
   }
}

// All that an attribute's kind promises, on an object of its own.
void sweepAttribute( VornType const & type, ExpectedAttr const & expected ) {
   SCOPED_TRACE( std::string( type.name ) + "::" + expected.name );
   if ( !type.attribute( expected.id ) ) return; // the record's own test says so
   VornAttr const & attr = *type.attribute( expected.id );
   Ptr< PtrInterface > const object = newSampleObject( type, 0 );
   Entity const & entity = static_cast< Entity & >( *object );
   Subject subject( object, attr );
   if ( !expected.defaultText.empty() ) expectDefault( subject, attr, expected.defaultText );
   switch ( attr.kind() ) {
   case VornKind::constructor:
      subject.applies( { GenericIf::read } );
      EXPECT_TRUE( subject.read() == sample( *attr.type, 0 ) );
      break;
   case VornKind::mutableAttr:
   case VornKind::reference: sweepScalar( subject, attr ); break;
   case VornKind::state:
      if ( !expected.isWrite ) sweepScalar( subject, attr );
      break;
   case VornKind::valueColl:
   case VornKind::localValueColl:
   case VornKind::referenceColl: sweepValues( subject, attr, expected.isSet ); break;
   case VornKind::entityColl:
   case VornKind::localEntityColl: sweepEntities( subject, attr, entity ); break;
   case VornKind::child: sweepChild( subject, attr, entity ); break;
   case VornKind::queue: sweepQueue( subject, attr ); break;
   case VornKind::constant:
   case VornKind::derivedConstant:
   case VornKind::derivedLight:
   case VornKind::derived: subject.applies( { GenericIf::read } ); break;
   default: EXPECT_EQ( attr.kind(), VornKind::function );
   }
   GenericIf::IteratorVTable const * vtable = nullptr;
   // A type that has nothing to walk says so by having no such function.
   void * const it =
        type.genericIfIterator ? type.genericIfIterator( address( object ), attr, &vtable ) : nullptr;
   EXPECT_EQ( it != nullptr, attr.keyed() ) << "a walk is for collections";
   if ( it ) vtable->iterDel( attr, it );
}

TEST( AttributeSweep, EveryAttributeOfEveryEntityKeepsItsKindsPromises ) {
   for ( ExpectedType const & expected : expectedEntities() ) {
      for ( ExpectedAttr const & attr : expectedAttributes( expected ) ) {
         sweepAttribute( typeOf( expected.name ), attr );
      }
   }
}

// Writes a sample to an attribute, under a sample's key.
void writeSample( Ptr< PtrInterface > const & object, VornAttr const & attr ) {
   Value const key = sampleKey( attr, 0 );
   ASSERT_EQ( attributeOp( object, attr, GenericIf::write, nullptr, key.data(), sampleArgs( attr, 0 ) ),
              GenericIf::done );
}

// The entities that an attribute owns, with what tells of the end of each.
std::vector< std::pair< Ptr< Entity >, std::string > > owned( Ptr< PtrInterface > const & object,
                                                              VornAttr const & attr ) {
   std::vector< std::pair< Ptr< Entity >, std::string > > found;
   Value child = room( *attr.type );
   if ( !attr.keyed() ) {
      attributeOp( object, attr, GenericIf::read, child.data(), nullptr, {} );
      found.emplace_back( entityIn( child ), attr.name );
      return found;
   }
   for ( GenericIf::Iterator it( address( object ), attr ); it; it.advance() ) {
      Value key( attr.keyType );
      it.key( key.data() );
      it.object( child.data() );
      found.emplace_back( entityIn( child ),
                          attr.name + std::string( "[" ) + key.stringValue().charPtr() + "]" );
   }
   return found;
}

// Its entity children go one by one while it is still observed, in the order of their attributes, and live on
// where somebody holds them. Values and references go in silence.
TEST( AttributeSweep, AnEntityThatGoesDropsItsChildrenInOrder ) {
   for ( ExpectedType const & expected : expectedEntities() ) {
      SCOPED_TRACE( expected.name );
      VornType const & type = typeOf( expected.name );
      Ptr< PtrInterface > object = newSampleObject( type, 0 );
      Calls told;
      std::vector< Ptr< Entity > > held;
      for ( ExpectedAttr const & expectedAttr : expectedAttributes( expected ) ) {
         VornAttr const * const attr = type.attribute( expectedAttr.id );
         if ( !attr || !isWritten( *attr ) || expectedAttr.isWrite ) continue;
         writeSample( object, *attr );
         if ( !attr->instantiating() ) continue;
         for ( auto const & [child, text] : owned( object, *attr ) ) {
            held.push_back( child );
            if ( attr->kind() != VornKind::localEntityColl ) told.push_back( text );
         }
      }
      Watcher watcher( *object );
      object = nullptr;
      EXPECT_EQ( watcher.taken(), told );
      for ( auto const & child : held ) {
         ASSERT_TRUE( child );
         EXPECT_FALSE( child->parent() ) << child->fwkType()->name;
      }
   }
}

TEST( AttributeSweep, ATypeAnswersForItsOwnAttributesOnly ) {
   Ptr< PtrInterface > const object = newSampleObject( typeOf( "Ldp::LdpAdjConfig" ), 0 );
   auto const read = [&]( VornType const & type, char const * attr ) {
      GenericIf::Value result( type.attribute( attr )->type );
      return object->fwkType()->genericIfAttributeOp(
           result.data(), address( object ), *type.attribute( attr ), GenericIf::read, nullptr, nullptr );
   };
   EXPECT_EQ( read( typeOf( "Ldp::LdpAdjConfig" ), "holdTime" ), GenericIf::done );
   EXPECT_EQ( read( typeOf( "Ldp::LdpAdjStatus" ), "operHoldTime" ), GenericIf::notOfType );
   // The base is to be asked for its own.
   VornAttr const & name = *typeOf( "Ldp::LdpAdjConfig" ).attribute( "name" );
   EXPECT_EQ( read( typeOf( "Ldp::LdpAdjConfig" ), "name" ), GenericIf::notOfType );
   Vorn::Name result;
   EXPECT_EQ( name.owner->genericIfAttributeOp( &result, address( object ), name, GenericIf::read, nullptr,
                                                nullptr ),
              GenericIf::done );
}

TEST( TypeSweep, TheListOfObserversStandsLastInTheTypeThatHasIt ) {
   for ( VornType const * type : Vorn::typeNodes() ) {
      if ( !type->isDerived( &Vorn::Entity::_vornType ) || !type->genericIfConstructFromCtorArgs ) continue;
      Ptr< PtrInterface > const object = newSampleObject( *type, 0 );
      auto const end = reinterpret_cast< char * >( object->notifieeList() + 1 ) -
                       reinterpret_cast< char * >( object.ptr() );
      VornType const * has = type;
      while ( has->base != &Vorn::Entity::_vornType )
         has = has->base;
      EXPECT_EQ( U32( end ), has->size() ) << type->name;
   }
}

} // namespace
