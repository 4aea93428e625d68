// What holds for every type: one sweep over the type table, by reflection alone.
#include "model/ExpectedTypes.h"
#include "model/Samples.h"

#include "Vorn/Entity.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>

namespace {

using namespace Test;
using Vorn::Entity;
using Vorn::Ptr;
using Vorn::PtrInterface;
using Vorn::RangeException;
using Vorn::String;
using Vorn::VornAttr;
using Vorn::VornKind;
using Vorn::VornType;
using Vorn::GenericIf::Value;
namespace GenericIf = Vorn::GenericIf;

// Writes down what it is told of, as "0x103" and "0x104['key']".
class Watcher : public GenericIf::NotifieeConst {
 public:
   Watcher( PtrInterface const & object ) : type_( *object.fwkType() ) {
      bound_ = Ptr< PtrInterface::NotifieeConst >(
           static_cast< PtrInterface::NotifieeConst * >( type_.genericIfNotifiee( *this ).ptr() ) );
      bound_->isRegisteredNotifieeIs( true );
      bound_->notifierIs( Ptr< PtrInterface const >( &object ) );
      bound_->isWeakReferenceIs( true );
   }
   ~Watcher() override {
      bound_->isRegisteredNotifieeIs( false );
      bound_->notifierIs( nullptr );
   }
   void onRawAttribute( U32 id ) override { seen_.push_back( text( id ) ); }
   void onRawAttribute( U32 id, void const * key, bool keyed ) override {
      EXPECT_TRUE( keyed );
      VornType const & keyType = *type_.attribute( id )->keyType;
      seen_.push_back( text( id ) + "[" + keyType.methods->genericIfStrRep( key, &keyType ).charPtr() + "]" );
   }
   std::vector< std::string > taken() { return std::exchange( seen_, {} ); }

 private:
   std::string text( U32 id ) const { return type_.attribute( id ) ? type_.attribute( id )->name : "?"; }

   VornType const & type_;
   Ptr< PtrInterface::NotifieeConst > bound_;
   std::vector< std::string > seen_;
};

using Calls = std::vector< std::string >;

// One attribute of one object under test.
class Subject {
 public:
   Subject( Ptr< PtrInterface > const & object, VornAttr const & attr )
        : object_( object ), attr_( attr ), watcher_( *object ) {}

   U32 op( U32 op, void * result, void const * key, void const * arg ) {
      return object_->fwkType()->genericIfAttributeOp( result, address( object_ ), attr_, op, key, &arg );
   }
   Value read( void const * key = nullptr ) {
      Value value( attr_.type );
      EXPECT_EQ( op( GenericIf::read, value.data(), key, nullptr ), GenericIf::done );
      return value;
   }
   Calls write( Value const & value, void const * key = nullptr ) {
      EXPECT_EQ( op( GenericIf::write, nullptr, key, value.data() ), GenericIf::done );
      return watcher_.taken();
   }
   Calls del( void const * key ) {
      EXPECT_EQ( op( GenericIf::del, nullptr, key, nullptr ), GenericIf::done );
      return watcher_.taken();
   }
   bool has( Value const & key ) {
      bool result = false;
      EXPECT_EQ( op( GenericIf::has, &result, key.data(), nullptr ), GenericIf::done );
      return result;
   }
   U32 number( U32 which ) {
      U32 result = ~0u;
      EXPECT_EQ( op( which, &result, nullptr, nullptr ), GenericIf::done );
      return result;
   }
   // Keys that a walk meets.
   Calls keys() {
      Calls found;
      for ( GenericIf::Iterator it( address( object_ ), attr_ ); it; it.advance() ) {
         Value key( attr_.keyType );
         it.key( key.data() );
         found.push_back( key.stringValue().charPtr() );
      }
      return found;
   }
   Calls told( Value const & key ) const {
      return { attr_.name + std::string( "[" ) + key.stringValue().charPtr() + "]" };
   }
   Calls told() const { return { attr_.name }; }
   void applies( std::set< U32 > const & ops ) {
      bool scratch[sizeof( Value )] = {};
      for ( U32 which = GenericIf::read; which <= GenericIf::has; ++which ) {
         if ( ops.count( which ) ) continue;
         EXPECT_EQ( op( which, scratch, scratch, nullptr ), GenericIf::notApplicable ) << which;
      }
   }

 protected:
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

void sweepValues( Subject & subject, VornAttr const & attr, bool isSet ) {
   Value const key = sample( *attr.keyType, 0 );
   Value const other = sample( *attr.keyType, 1 );
   Value const value = sample( *attr.type, 0 );
   U32 const before = subject.number( GenericIf::modificationCount );
   EXPECT_EQ( subject.write( value, key.data() ), subject.told( key ) );
   EXPECT_EQ( subject.write( value, key.data() ), Calls{} ) << "an equal write tells nobody";
   EXPECT_EQ( subject.write( value, other.data() ), subject.told( other ) );
   EXPECT_NE( subject.number( GenericIf::modificationCount ), before );
   EXPECT_EQ( subject.number( GenericIf::members ), 2u );
   EXPECT_EQ( subject.keys().size(), 2u );
   EXPECT_TRUE( subject.read( key.data() ) == value );
   Value const changed = sample( *attr.type, 1 );
   if ( isSet ) {
      EXPECT_THROW( subject.write( changed, key.data() ), RangeException ) << "false for a member of a set";
   } else {
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
   std::vector< Value > args;
   for ( auto const * arg = attr.memberCtorArgs; arg->name; ++arg ) {
      args.push_back( sample( *arg->type, 0 ) );
   }
   ASSERT_EQ( args.size(), 1u )
        << "key or name alone; more belong into the sweep of the framework's own types";
   Value const & key = args.front();
   U32 const before = subject.number( GenericIf::members );
   EXPECT_EQ( subject.write( key ), subject.told( key ) );
   EXPECT_EQ( subject.write( key ), Calls{} ) << "it is there already";
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
   Value const name = sample( *attr.memberCtorArgs[0].type, 1 ); // unlike that of a child of the constructor
   EXPECT_EQ( subject.write( name ), subject.told() );
   Ptr< Entity > const child = entityIn( subject.read() );
   ASSERT_TRUE( child );
   EXPECT_EQ( child->parent().ptr(), &parent );
   EXPECT_EQ( subject.write( name ), Calls{} ) << "it is there already";
   EXPECT_EQ( entityIn( subject.read() ).ptr(), child.ptr() );
   EXPECT_EQ( subject.del( nullptr ), subject.told() );
   EXPECT_EQ( subject.del( nullptr ), Calls{} );
   EXPECT_FALSE( child->parent() );
}

void sweepQueue( Subject & subject, VornAttr const & attr ) {
   Value index( attr.keyType );
   Value const first = sample( *attr.type, 0 );
   EXPECT_EQ( subject.write( first, index.data() ), subject.told( index ) );
   EXPECT_EQ( subject.write( first, index.data() ), Calls{} );
   EXPECT_EQ( subject.write( sample( *attr.type, 1 ), index.data() ), subject.told( index ) );
   EXPECT_EQ( subject.number( GenericIf::members ), 1u );
   EXPECT_EQ( subject.del( index.data() ), subject.told( index ) );
   EXPECT_FALSE( subject.has( index ) );
}

// All that an attribute's kind promises, on an object of its own.
void sweepAttribute( VornType const & type, ExpectedAttr const & expected ) {
   SCOPED_TRACE( std::string( type.name ) + "::" + expected.name );
   VornAttr const & attr = *type.attribute( expected.id );
   Ptr< PtrInterface > const object = newSampleObject( type, 0 );
   Entity const & entity = static_cast< Entity & >( *object );
   Subject subject( object, attr );
   if ( !expected.defaultText.empty() ) {
      EXPECT_EQ( subject.read().stringValue(), expected.defaultText.c_str() );
   }
   switch ( attr.kind() ) {
   case VornKind::constructor:
      subject.applies( { GenericIf::read } );
      EXPECT_TRUE( subject.read() == sample( *attr.type, 0 ) );
      break;
   case VornKind::mutableAttr:
   case VornKind::reference: sweepScalar( subject, attr ); break;
   case VornKind::valueColl: sweepValues( subject, attr, expected.isSet ); break;
   case VornKind::entityColl: sweepEntities( subject, attr, entity ); break;
   case VornKind::child: sweepChild( subject, attr, entity ); break;
   case VornKind::queue: sweepQueue( subject, attr ); break;
   case VornKind::constant:
   case VornKind::derived: subject.applies( { GenericIf::read } ); break;
   default: EXPECT_EQ( attr.kind(), VornKind::function );
   }
   GenericIf::IteratorVTable const * vtable = nullptr;
   void * const it = type.genericIfIterator( address( object ), attr, &vtable );
   EXPECT_EQ( it != nullptr, attr.keyed() ) << "a walk is for collections";
   if ( it ) vtable->iterDel( attr, it );
}

VornType const & typeOf( std::string const & name ) {
   VornType const * const type = Vorn::typeNode( name.c_str() );
   if ( !type ) throw std::runtime_error( name + " is not registered" );
   return *type;
}

void expectRecord( VornAttr const & attr, ExpectedAttr const & expected, VornType const & owner ) {
   SCOPED_TRACE( std::string( owner.name ) + "::" + expected.name );
   EXPECT_EQ( attr.name, expected.name );
   EXPECT_EQ( attr.id(), expected.id );
   EXPECT_EQ( attr.kind(), expected.kind );
   EXPECT_EQ( attr.logged(), expected.logged );
   EXPECT_EQ( attr.owner, &owner );
   EXPECT_EQ( attr.type->name, expected.type );
   EXPECT_EQ( attr.keyType ? attr.keyType->name : "", expected.key );
   EXPECT_EQ( attr.keyed(), !expected.key.empty() );
}

TEST( TypeTable, EntityRecordsAreAsWrittenDown ) {
   static char const * const base[] = { "name", "fullName", "parent", "parentAttrName", "entity" };
   for ( ExpectedType const & expected : expectedEntities() ) {
      VornType const & type = typeOf( expected.name );
      SCOPED_TRACE( type.name );
      EXPECT_EQ( type.base, &Entity::_vornType );
      EXPECT_EQ( type.sizeAndFlags >> 28, 8u );
      EXPECT_EQ( type.flags, 0x0200ffffu );
      ASSERT_EQ( type.attributeNum, std::size( base ) + expected.attributes.size() );
      for ( std::size_t i = 0; i < std::size( base ); ++i ) {
         EXPECT_STREQ( type.attributes[i].name, base[i] );
      }
      VornAttr const * own = type.attributes + std::size( base );
      for ( ExpectedAttr const & attr : expected.attributes ) {
         expectRecord( *own++, attr, type );
      }
      EXPECT_EQ( own->name, nullptr ) << "the end of the table";
   }
}

TEST( TypeTable, ValueAndEnumRecordsAreAsWrittenDown ) {
   for ( ExpectedType const & expected : expectedValues() ) {
      VornType const & type = typeOf( expected.name );
      SCOPED_TRACE( type.name );
      EXPECT_EQ( type.base, nullptr );
      EXPECT_EQ( type.flags, 0xffffu );
      ASSERT_EQ( type.attributeNum, expected.attributes.size() );
      std::vector< std::string > ctorArgs;
      Value value( &type );
      for ( std::size_t i = 0; i < expected.attributes.size(); ++i ) {
         ExpectedAttr const & attr = expected.attributes[i];
         expectRecord( type.attributes[i], attr, type );
         if ( attr.kind == VornKind::constructor ) ctorArgs.push_back( attr.name );
         if ( attr.defaultText.empty() ) continue;
         EXPECT_EQ( GenericIf::attributeText( value.data(), type, type.attributes[i] ),
                    attr.defaultText.c_str() );
      }
      auto const * arg = type.ctorArgs;
      for ( std::string const & name : ctorArgs ) {
         EXPECT_EQ( arg++->name, name );
      }
      EXPECT_EQ( arg->name, nullptr );
   }
   for ( ExpectedEnum const & expected : expectedEnums() ) {
      VornType const & type = typeOf( expected.name );
      SCOPED_TRACE( type.name );
      ASSERT_EQ( type.attributeNum, expected.enumerators.size() );
      for ( std::size_t i = 0; i < expected.enumerators.size(); ++i ) {
         EXPECT_EQ( type.attributes[i].name, expected.enumerators[i].first );
         EXPECT_EQ( type.attributes[i].id(), expected.enumerators[i].second );
         EXPECT_EQ( type.attributes[i].kind(), VornKind::enumerator );
      }
   }
}

TEST( TypeTable, NoTypeOfTheModelIsLeftOut ) {
   std::set< std::string > expected;
   for ( ExpectedType const & type : expectedEntities() ) {
      expected.insert( type.name );
   }
   std::string before;
   for ( VornType const * type : Vorn::typeNodes() ) {
      EXPECT_LT( before, type->name ) << "in order of name, each once";
      before = type->name;
      if ( !type->isDerived( &Entity::_vornType ) || std::strncmp( type->name, "Ldp::", 5 ) != 0 ) continue;
      EXPECT_TRUE( expected.count( type->name ) ) << type->name;
   }
}

TEST( TypeTable, EveryAttributeOfEveryEntityKeepsItsKindsPromises ) {
   for ( ExpectedType const & expected : expectedEntities() ) {
      for ( ExpectedAttr const & attr : expected.attributes ) {
         sweepAttribute( typeOf( expected.name ), attr );
      }
   }
}

TEST( TypeTable, AnAttributeOfAnotherTypeIsRefused ) {
   Ptr< PtrInterface > const object = newSampleObject( typeOf( "Ldp::LdpAdjConfig" ), 0 );
   VornAttr const & foreign = *typeOf( "Ldp::LdpAdjStatus" ).attribute( "operHoldTime" );
   U16 result = 0;
   EXPECT_EQ( object->fwkType()->genericIfAttributeOp( &result, address( object ), foreign, GenericIf::read,
                                                       nullptr, nullptr ),
              GenericIf::notOfType );
}

// All value types that are registered or stand in an attribute.
std::set< VornType const * > valueTypes() {
   std::set< VornType const * > types;
   auto const add = [&]( VornType const * type ) {
      if ( type && type->methods && !type->isDerived( &Entity::_vornType ) && type->methods->equal &&
           type->methods->logOut )
         types.insert( type );
   };
   for ( VornType const * type : Vorn::typeNodes() ) {
      add( type );
      if ( type->isEnum() ) continue;
      for ( VornAttr const * attr = type->attributes; attr && attr->name; ++attr ) {
         add( attr->type );
         add( attr->keyType );
      }
   }
   return types;
}

TEST( TypeTable, EveryValueReadsBackFromItsText ) {
   for ( VornType const * type : valueTypes() ) {
      SCOPED_TRACE( type->name );
      Value const unset( type );
      std::set< std::string > seen{ unset.stringValue().charPtr() };
      std::vector< Value > values{ unset };
      for ( std::size_t i = 0; i < sampleTexts( *type ).size(); ++i ) {
         values.push_back( sample( *type, i ) );
         EXPECT_EQ( values.back().stringValue(), sampleTexts( *type )[i].c_str() );
         bool const fresh = seen.insert( values.back().stringValue().charPtr() ).second;
         EXPECT_TRUE( fresh || !std::strcmp( type->name, "bool" ) ) << "samples differ";
      }
      for ( Value const & value : values ) {
         Value read( type );
         read.stringValueIs( value.stringValue() );
         EXPECT_TRUE( read == value ) << value.stringValue();
      }
   }
}

TEST( TypeTable, TextReadersRefuseWhatIsNotTheirs ) {
   for ( VornType const * type : valueTypes() ) {
      SCOPED_TRACE( type->name );
      std::string const good = sampleTexts( *type ).front();
      Value value = sample( *type, 1 );
      Value const before = value;
      std::vector< std::string > bad{ "", " " + good };
      // An interface's name goes on to the end, whatever it is made of.
      if ( std::strcmp( type->name, "Ldp::LdpAdjId" ) != 0 ) bad.push_back( good + " " );
      if ( good.starts_with( "Value(" ) ) {
         bad.push_back( "Value( " + good.substr( 6 ) );
         bad.push_back( std::string( good ).insert( good.find( '{' ) + 1, " " ) );
         bad.push_back( good.substr( 0, good.size() - 1 ) );
      }
      for ( std::string const & text : bad ) {
         EXPECT_THROW( value.stringValueIs( text.c_str() ), RangeException ) << text;
         EXPECT_TRUE( value == before ) << "it stays as it was";
      }
   }
}

} // namespace
