// Records of the attribute log as text.
#include "log/RecordText.h"

#include "Vorn/GenericIf.h"

#include <algorithm>

namespace LdpTool {

namespace NboAttrLog = Vorn::NboAttrLog;
using Vorn::VornAttr;
using Vorn::VornKind;
using Vorn::VornType;

namespace {

constexpr U32 deletion = 0x80000000;
constexpr U32 minus( U32 id ) { return 0 - id; }

} // namespace

RecordText::RecordText()
     : demuxer_( Vorn::newObject< NboAttrLog::Demuxer >( Vorn::newObject< NboAttrLog::Out >() ) ),
       in_( Vorn::newObject< NboAttrLog::In >( nullptr, 0u, *demuxer_ ) ) {}

bool RecordText::print( Output & out, LogRecord const & record ) {
   in_->entriesAre( false );
   in_->octetsIs( reinterpret_cast< U8 const * >( record.value.data() ), record.value.size() );
   out << record.offset << ' ';
   bool good = false;
   try {
      VornType const * const type =
           record.entity && record.entity <= entities_.size() ? entities_[record.entity - 1] : nullptr;
      if ( record.kind == NboAttrLog::typeRecord ) {
         typeIs( out, record );
      } else if ( record.kind == NboAttrLog::introducingRecord && record.attribute == NboAttrLog::orphanId ) {
         orphanIs( out, record );
      } else if ( record.kind > NboAttrLog::introducingRecord ) {
         throw LogError( "is of the unknown kind " + std::to_string( record.kind ) );
      } else if ( !type ) {
         unknownMember( out, record );
      } else if ( record.kind == NboAttrLog::markerRecord ) {
         markerIs( out, record, *type );
      } else if ( record.attribute == minus( NboAttrLog::orphanId ) ) {
         out << "withdrawn #" << record.entity << ' ' << type->name;
      } else if ( record.attribute == NboAttrLog::groupId ||
                  record.attribute == minus( NboAttrLog::groupId ) ) {
         groupIs( out, record, *type );
      } else {
         attributeIs( out, record, *type, record.attribute );
      }
      in_->endIs();
      good = true;
   } catch ( LogError const & error ) {
      out << " BAD: " << error.what();
   } catch ( Vorn::Exception const & error ) {
      out << " BAD: ";
      out.escaped( error.message().view() );
   }
   out << '\n';
   return good;
}

void RecordText::typeIs( Output & out, LogRecord const & record ) {
   std::string name( record.value );
   in_->take( in_->left() );
   out << "type " << record.attribute << ' ';
   out.escaped( name );
   VornType const * const type = name.find( '\0' ) == name.npos ? Vorn::typeNode( name.c_str() ) : nullptr;
   bool const carried = type && type->newEntityForAttrLog;
   if ( record.entity ) throw LogError( "names an entity" );
   if ( record.attribute != types_.size() + 1 ) throw LogError( "is out of order" );
   types_.push_back( { std::move( name ), carried ? type : nullptr } );
   if ( !carried ) throw LogError( "is not known here" );
}

void RecordText::orphanIs( Output & out, LogRecord const & record ) {
   if ( record.entity ) throw LogError( "names an entity" );
   auto const section = [this]( U8 expected ) {
      if ( in_->nextU8() != expected ) throw LogError( "has its parts out of order" );
   };
   out << "orphan ";
   section( NboAttrLog::Out::typeSection );
   Type const & type = typeOf( in_->nextU32() );
   section( NboAttrLog::Out::argumentSection );
   if ( type.type ) {
      out << type.name;
      arguments( out, *type.type );
   } else {
      out.escaped( type.name );
      // The number comes last.
      if ( in_->left() > 5 ) in_->take( in_->left() - 5 );
   }
   section( NboAttrLog::Out::entityIdSection );
   entityIs( out, type.type );
   if ( !type.type ) throw LogError( "is of a type that is not known here" );
}

/// A record about an entity of which nothing is known. What it introduces takes its number all the same.
void RecordText::unknownMember( Output & out, LogRecord const & record ) {
   out << "record #" << record.entity << ' ';
   out.hex( record.attribute, 8 );
   if ( record.kind == NboAttrLog::introducingRecord && in_->left() >= 4 ) {
      in_->take( in_->left() - 4 );
      entityIs( out, nullptr );
   }
   bool const known = record.entity && record.entity <= entities_.size();
   throw LogError( known ? "is about an entity of a type that is not known here"
                         : "is about an entity that is not known" );
}

void RecordText::markerIs( Output & out, LogRecord const & record, VornType const & type ) {
   VornAttr const & attr = logged( type, record.attribute );
   U8 const end = in_->nextU8();
   out << ( end ? "end #" : "begin #" ) << record.entity << ' ' << type.name << '.' << attr.name;
   if ( in_->nextU32() || ( end != 0 && end != 2 ) || !attr.keyed() ) throw LogError( "is no such marker" );
   if ( end || attr.kind() != VornKind::queue ) return;
   out << " from " << in_->nextU32();
   out << " to " << in_->nextU32();
}

void RecordText::groupIs( Output & out, LogRecord const & record, VornType const & type ) {
   out << "group #" << record.entity << ' ' << type.name;
   U16 const first = in_->nextU16();
   U16 const end = in_->nextU16();
   if ( first != 4 || end != in_->left() + first ) throw LogError( "has impossible bounds" );
   in_->entriesAre( true );
   while ( in_->left() ) {
      U32 const word = in_->nextU32();
      VornAttr const * const attr = type.attribute( word & deletion ? minus( word ) : word );
      out << "\n" << record.offset << ' ';
      if ( attr && attr->logged() ) {
         attributeIs( out, record, type, word );
      } else {
         out << "passed over ";
         out.hex( word, 8 );
      }
   }
}

void RecordText::attributeIs( Output & out, LogRecord const & record, VornType const & type, U32 word ) {
   bool const deletes = word & deletion;
   VornAttr const & attr = logged( type, deletes ? minus( word ) : word );
   bool const introduces = attr.instantiating() && !deletes;
   out << ( deletes      ? "deleted #"
            : introduces ? "new #"
                         : "set #" )
       << record.entity << ' ' << type.name << '.' << attr.name;
   bool const entry = word != record.attribute;
   if ( !entry && introduces != ( record.kind == NboAttrLog::introducingRecord ) )
      throw LogError( "is of the wrong kind for its attribute" );
   if ( introduces ) {
      arguments( out, *attr.type );
      VornType const * const made = typeOf( in_->nextU32() ).type;
      entityIs( out, made );
      if ( made != attr.type ) throw LogError( "is of another type than its attribute" );
      return;
   }
   if ( attr.keyed() ) {
      out << '[';
      value( out, *attr.keyType );
      out << ']';
   }
   if ( deletes || attr.isSet() ) return;
   out << " = ";
   if ( attr.kind() != VornKind::reference && attr.kind() != VornKind::referenceColl )
      return value( out, *attr.type );
   if ( U32 const entity = in_->nextU32() ) {
      out << '#' << entity;
   } else {
      out << "null";
   }
}

VornAttr const & RecordText::logged( VornType const & type, U32 attribute ) const {
   VornAttr const * const attr = type.attribute( attribute );
   if ( attr && attr->logged() ) return *attr;
   throw LogError( "is about attribute " + std::to_string( attribute ) + " of " + type.name +
                   ", which is not logged" );
}

void RecordText::value( Output & out, VornType const & type ) {
   Vorn::GenericIf::Value read( &type );
   type.methods->logIn( *in_, read.data() );
   out.escaped( read.stringValue().view() );
}

void RecordText::arguments( Output & out, VornType const & type ) {
   out << '(';
   for ( auto const * one = type.ctorArgs; one && one->name; ++one ) {
      if ( one != type.ctorArgs ) out << ", ";
      value( out, *one->type );
   }
   out << ')';
}

RecordText::Type const & RecordText::typeOf( U32 number ) const {
   if ( number == 0 || number > types_.size() )
      throw LogError( "is of type " + std::to_string( number ) + ", which has no name" );
   return types_[number - 1];
}

void RecordText::entityIs( Output & out, VornType const * type ) {
   U32 const number = in_->nextU32();
   out << " is #" << number;
   // One that is known already is only confirmed.
   if ( number && number <= entities_.size() ) return;
   if ( number != entities_.size() + 1 ) throw LogError( "has another number than the next" );
   entities_.push_back( type );
}

} // namespace LdpTool
