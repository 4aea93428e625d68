/// \file
/// How a value goes into the two traces: `Codec< T >` for each type that a trace statement may have as an
/// argument, and `SkeinConverter`, which builds the line of the text trace.
///
/// A type is made traceable by a specialization beside it (for Lumo and Mpls values see Twain/Values.h):
///
///     template<>
///     struct Twain::Codec< Ldp::LdpIdentifier > {
///        static constexpr U32 maxBytes = 6;                               // most octets in a record
///        static void describe( Skein::MsgFormatString & format ) {        // once a call site: the shape
///           format.put( Skein::Item::u32 );
///           format.put( ":" );
///           format.put( Skein::Item::u16 );
///        }
///        static void put( Skein::RingBuf & record, Ldp::LdpIdentifier const & value ) noexcept {
///           record.put( value.lsrId() );                                  // each time: that shape's octets
///           record.put( value.lblSpace() );
///        }
///        static void text( SkeinConverter & line, Ldp::LdpIdentifier const & value ) {
///           line << value.stringValue();
///        }
///     };
#pragma once

#include "Skein/MsgDesc.h"
#include "Vorn/Strep.h"

#include <concepts>
#include <string>

namespace Skein {

/// An argument that is not there: nothing in the text, nothing in the ring.
struct QNull {};

} // namespace Skein

namespace Twain {

/// How a `T` is traced; see the file's comment.
template< class T >
struct Codec;

/// Builds the text of a trace line from the arguments of the statement.
class VORN_API SkeinConverter {
 public:
   /// Appends a piece of text or an argument.
   template< class T >
   SkeinConverter & operator<<( T const & value ) {
      Codec< T >::text( *this, value );
      return *this;
   }
   /// Appends a piece of text as it stands.
   void appendText( char const * piece ) { text_ += piece; }
   /// Appends what came from outside: octets that do not print as `\xNN`.
   void appendPrintable( std::string_view octets );
   /// Appends every octet as `\xNN`.
   void appendHex( void const * data, std::size_t size );

   /// Hands over what was built.
   std::string takeText() noexcept { return std::move( text_ ); }

 private:
   std::string text_;
};

/// An argument of raw octets, shown as `\xNN`. It refers to the octets and owns nothing.
struct Hex {
   void const * data;
   std::size_t size;
};

/// An argument whose text is costly: the ring gets `ring`, the text trace what `text()` returns. `text` is a
/// callable without arguments that is called only if there is a line to write.
template< class Ring, class Text >
struct Lazy {
   Ring ring;
   Text text;
};
template< class Ring, class Text >
Lazy( Ring, Text ) -> Lazy< Ring, Text >;

/// Pieces of text are known at the call site and stand in its description.
template< std::size_t size >
struct Codec< char[size] > {
   static constexpr U32 maxBytes = 0;
   static void describe( Skein::MsgFormatString & format, char const ( &piece )[size] ) {
      format.put( piece );
   }
   static void put( Skein::RingBuf &, char const ( & )[size] ) noexcept {}
   static void text( SkeinConverter & line, char const ( &piece )[size] ) { line.appendText( piece ); }
};

template<>
struct Codec< Skein::QNull > {
   static constexpr U32 maxBytes = 0;
   static void describe( Skein::MsgFormatString & ) {}
   static void put( Skein::RingBuf &, Skein::QNull ) noexcept {}
   static void text( SkeinConverter &, Skein::QNull ) {}
};

/// Numbers in decimal; a `bool` as 1 or 0.
template< std::integral T >
requires( !std::same_as< T, char > ) struct Codec< T > {
   static constexpr Skein::Item item() {
      using Skein::Item;
      if ( std::same_as< T, bool > ) return Item::boolean;
      if ( std::is_signed_v< T > ) return sizeof( T ) <= 4 ? Item::s32 : Item::s64;
      return sizeof( T ) == 1   ? Item::u8
             : sizeof( T ) == 2 ? Item::u16
             : sizeof( T ) == 4 ? Item::u32
                                : Item::u64;
   }
   static constexpr U32 maxBytes = 8;
   static void describe( Skein::MsgFormatString & format ) { format.put( item() ); }
   static void put( Skein::RingBuf & record, T value ) noexcept {
      if constexpr ( std::is_signed_v< T > && sizeof( T ) < 4 ) {
         record.put( int( value ) );
      } else {
         record.put( value );
      }
   }
   static void text( SkeinConverter & line, T value ) { line.appendText( std::to_string( value ).c_str() ); }
};

/// Enumerations with a record (VORN_ENUM): by name, or the number where no enumerator has it.
template< class T >
requires( std::is_enum_v< T > && sizeof( T ) == 4 ) struct Codec< T > {
   static constexpr U32 maxBytes = 4;
   static void describe( Skein::MsgFormatString & format ) { format.put( vornTypeOf( T() ) ); }
   static void put( Skein::RingBuf & record, T value ) noexcept { record.put( U32( value ) ); }
   static void text( SkeinConverter & line, T value ) { line << valueToStrep( value ); }
};

/// Strings: octets that may come from outside. The ring has the first `Skein::maxOctets` of them.
template< std::derived_from< Vorn::String > T >
struct Codec< T > {
   static constexpr U32 maxBytes = 2 + Skein::maxOctets;
   static void describe( Skein::MsgFormatString & format ) { format.put( Skein::Item::octets ); }
   static void put( Skein::RingBuf & record, T const & value ) noexcept {
      record.putOctets( value.charPtr(), value.bytes() );
   }
   static void text( SkeinConverter & line, T const & value ) { line.appendPrintable( value.view() ); }
};

/// The ring has the first `Skein::maxOctets` octets.
template<>
struct Codec< Hex > {
   static constexpr U32 maxBytes = 2 + Skein::maxOctets;
   static void describe( Skein::MsgFormatString & format ) { format.put( Skein::Item::hexOctets ); }
   static void put( Skein::RingBuf & record, Hex value ) noexcept {
      record.putOctets( value.data, value.size );
   }
   static void text( SkeinConverter & line, Hex value ) { line.appendHex( value.data, value.size ); }
};

template< class Ring, class Text >
struct Codec< Lazy< Ring, Text > > {
   static constexpr U32 maxBytes = Codec< Ring >::maxBytes;
   static void describe( Skein::MsgFormatString & format ) { Codec< Ring >::describe( format ); }
   static void put( Skein::RingBuf & record, Lazy< Ring, Text > const & value ) noexcept {
      Codec< Ring >::put( record, value.ring );
   }
   static void text( SkeinConverter & line, Lazy< Ring, Text > const & value ) { line << value.text(); }
};

} // namespace Twain
