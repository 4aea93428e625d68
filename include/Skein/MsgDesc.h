/// \file
/// Descriptions of call sites, which go into the ring file once each, so that the file explains itself.
#pragma once

#include "Skein/Ring.h"
#include "Vorn/VornType.h"

namespace Skein {

/// What a message is made of, in order: pieces of text and arguments.
class VORN_API MsgFormatString {
 public:
   /// A piece of text, as it stands in the source.
   void put( char const * piece );
   /// An argument of that kind, or the `end` of an alternative.
   void put( Item item );
   /// An argument that is an enumerator of that type. The ring gets the enumerators' names.
   void put( Vorn::VornType const * enumeration );
   /// An argument whose shape depends on a tag: `alternatives` times `when` and `put( Item::end )` follow.
   void choice( U8 alternatives );
   /// Begins the alternative of that tag.
   void when( U8 tag );

   /// The items as they go into the file.
   Vorn::String const & items() const noexcept { return items_; }

 private:
   void add( void const * data, std::size_t bytes );
   Vorn::String items_;
};

/// Registers one call site: constructor, pieces and arguments, `finish`.
class VORN_API MsgDesc {
 public:
   /// `*msgId` becomes the site's message id, above 0. It is -1 if the file has no room for another
   /// description; such a site writes no records. `block` is for the site of a BlockTimerMsg.
   MsgDesc( TraceFile & file, int * msgId, char const * fileName, int line, bool block );

   /// Function that the site stands in, and its trace level.
   void functionIs( char const * function, U8 level );
   /// A piece of text.
   MsgDesc & operator<<( char const * piece ) {
      format_.put( piece );
      return *this;
   }
   /// For the arguments.
   MsgFormatString & format() noexcept { return format_; }
   /// Enters the site in the file and sets the id.
   void finish();

 private:
   int * msgId_;
   char const * fileName_;
   char const * function_ = "";
   int line_;
   U8 level_ = 0;
   bool block_;
   MsgFormatString format_;
};

} // namespace Skein
