#pragma once

// Messages on their way to Python. They are decoded and written to a tape without the interpreter's lock; the
// tape is played into dicts with it. A tape is a writer as the JSON's is, so both have the same shape
// (reporters/Shape.h).

#include "Source.h"

#include "messages/Reporter.h"
#include "text/Words.h"

#include <cstring>
#include <string_view>
#include <type_traits>
#include <vector>

namespace LdpPython {

class Tape {
 public:
   /// With room for the messages of most PDUs.
   Tape() {
      items_.reserve( 64 );
      room_.reserve( 1024 );
   }

   enum class Op : U8 {
      pdu,     ///< an object that all messages behind it begin with
      message, ///< an object that begins so
      object,
      endObject,
      array,
      endArray,
      boolean,
      number,
      real,
      text,   ///< octets as a str
      octets, ///< and as bytes
      typed,  ///< a value of a type with a record
   };
   struct Octets {
      U32 at, size; ///< in `room_`
   };
   struct Item {
      char const * key; ///< a literal; null in an array
      U32 keySize;
      Op op;
      Vorn::VornType const * type; ///< of a typed value
      union {
         U64 number;
         double real;
         Octets octets;
      };
   };

   void clear() {
      items_.clear();
      room_.clear();
   }
   /// How much it holds.
   std::size_t bytes() const { return items_.size() * sizeof( Item ) + room_.size(); }
   std::vector< Item > const & items() const { return items_; }
   char const * at( Item const & item ) const { return room_.data() + item.octets.at; }

   void pdu() { add( Op::pdu ); }
   void message() { add( Op::message ); }
   // What a writer has.
   void object() { add( Op::object ); }
   void endObject() { add( Op::endObject ); }
   void array() { add( Op::array ); }
   void endArray() { add( Op::endArray ); }
   void key( std::string_view name ) { key_ = name; }
   void value( bool is ) { add( Op::boolean ).number = is; }
   template< std::unsigned_integral Number >
   void value( Number n ) {
      add( Op::number ).number = n;
   }
   void value( std::string_view text ) { add( Op::text, text.data(), text.size() ); }
   void value( char const * text ) { value( std::string_view( text ) ); }
   void value( Vorn::String const & text ) { value( text.view() ); }
   template< LdpTool::PlainText Value >
   void value( Value const & of ) {
      static_assert( std::is_trivially_copyable_v< Value > );
      add( Op::typed, &of, sizeof of ).type = Vorn::recordOf< Value >();
   }
   /// Octets, which JSON has as hexadecimal digits.
   void hex( std::string_view octets ) { add( Op::octets, octets.data(), octets.size() ); }
   /// Seconds since the epoch.
   void time( std::int64_t seconds, std::uint32_t nanoseconds ) {
      add( Op::real ).real = double( seconds ) + double( nanoseconds ) * 1e-9;
   }
   template< class Value >
   void member( std::string_view name, Value const & of ) {
      key( name );
      value( of );
   }
   template< class Type >
   void typeNumber( std::string_view name, Type type ) {
      member( name, U32( type ) );
   }

 private:
   Item & add( Op op ) {
      Item & item = items_.emplace_back();
      item.key = key_.data();
      item.keySize = U32( key_.size() );
      item.op = op;
      key_ = {};
      return item;
   }
   Item & add( Op op, void const * from, std::size_t size ) {
      constexpr std::size_t alignment = 8; // of any value
      std::size_t const begin = ( room_.size() + alignment - 1 ) & ~( alignment - 1 );
      room_.resize( begin + size );
      if ( size ) std::memcpy( room_.data() + begin, from, size );
      Item & item = add( op );
      item.octets = { U32( begin ), U32( size ) };
      return item;
   }

   std::string_view key_;
   std::vector< Item > items_;
   std::vector< char > room_;
};

/// Reads a tape once, from its beginning.
class Player {
 public:
   /// What is to be written next, and read from its beginning.
   Tape & rewound() {
      tape_.clear();
      at_ = 0;
      return tape_;
   }
   bool atEnd() const { return at_ == tape_.items().size(); }
   /// The next message, or PDU that is bad as a whole; there is one.
   py::dict next();

 private:
   void fill( PyObject * object );
   py::object read( Tape::Item const & item );

   Tape tape_;
   std::size_t at_ = 0;
   py::object pdu_;
};

/// Writes what it is told to a tape, and notes the first of it that is bad.
class TapeReporter : public LdpTool::Reporter {
 public:
   /// `texts`: with the library's own text of each message.
   explicit TapeReporter( bool texts ) : texts_( texts ) {}

   /// Where to write.
   void tapeIs( Tape & tape ) { tape_ = &tape; }
   /// What was refused first.
   struct Defect {
      bool found = false;
      Ldp::LdpStatusCode status = Ldp::success;
      std::string reason;
      std::uint64_t offset = 0; ///< in the octets, for a PDU without a flow
   };
   Defect const & defect() const { return defect_; }

   void onPdu( LdpTool::Pdu const & pdu ) override;
   void onMessage( LdpTool::Message const & message ) override;
   void onBadPdu( LdpTool::Pdu const & pdu ) override;
   void onFatalPdu( LdpTool::Pdu const & pdu, Ldp::LdpPduGuardResult const & fatal ) override;

 private:
   void note( Ldp::LdpStatusCode status, Vorn::String const & reason, std::uint64_t offset );

   Tape * tape_ = nullptr;
   bool const texts_;
   std::uint64_t begin_ = 0; ///< of the PDU in hand
   Defect defect_;
};

} // namespace LdpPython
