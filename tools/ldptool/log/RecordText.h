#pragma once

// What a record of an attribute log says, as a line of text, for any type that the program knows.

#include "log/LogStream.h"
#include "text/Output.h"

#include "Vorn/NboAttrLog.h"

#include <string>
#include <vector>

namespace LdpTool {

/// Reads records one after the other, without a copy of the state: of each entity it keeps the type.
class RecordText {
 public:
   RecordText();

   /// Appends a line (of a group one for each entry). False if the record cannot be read to its end, which
   /// the line says: its type is not known here, or it is not what the format allows.
   bool print( Output & out, LogRecord const & record );

 private:
   struct Type {
      std::string name;
      Vorn::VornType const * type; ///< null if the program has none of that name
   };

   void typeIs( Output & out, LogRecord const & record );
   void orphanIs( Output & out, LogRecord const & record );
   void markerIs( Output & out, LogRecord const & record, Vorn::VornType const & type );
   void groupIs( Output & out, LogRecord const & record, Vorn::VornType const & type );
   void attributeIs( Output & out, LogRecord const & record, Vorn::VornType const & type, U32 attribute );
   void unknownMember( Output & out, LogRecord const & record );
   Vorn::VornAttr const & logged( Vorn::VornType const & type, U32 attribute ) const;
   void value( Output & out, Vorn::VornType const & type );
   void arguments( Output & out, Vorn::VornType const & type );
   Type const & typeOf( U32 number ) const;
   /// The next number of an entity, which is of that type from now on.
   void entityIs( Output & out, Vorn::VornType const * type );

   Vorn::Ptr< Vorn::NboAttrLog::Demuxer > demuxer_; ///< by which values are read; no record is applied
   Vorn::Ptr< Vorn::NboAttrLog::In > in_;
   std::vector< Type > types_;                      ///< number n at n - 1
   std::vector< Vorn::VornType const * > entities_; ///< the same; null where the type is not known
};

} // namespace LdpTool
