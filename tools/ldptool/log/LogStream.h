#pragma once

// The octets of an attribute log (docs/attribute-log.md) cut into records.

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace LdpTool {

/// Octets that are no attribute log.
class LogError : public std::runtime_error {
 public:
   using std::runtime_error::runtime_error;
};

/// What frames a record.
struct LogRecord {
   std::uint64_t offset; ///< where in the stream its length stands
   std::uint8_t kind;
   std::uint32_t entity;
   std::uint32_t attribute;
   std::string_view value;
   std::string_view octets; ///< all of it
};

/// Takes a stream in pieces of any size. What it keeps is the record that is not whole yet, as far as it has
/// come.
class LogStream {
 public:
   /// Told of the header, as a record without anything but octets, and of each record.
   explicit LogStream( std::function< void( LogRecord const & ) > onRecord )
        : onRecord_( std::move( onRecord ) ) {}

   /// Throws LogError where no record can be, and lets through what the function throws; from then on the
   /// stream is of no use.
   void octetsIs( std::string_view octets );
   /// The stream ends here. Throws LogError if that is within a record or the header.
   void endIs() const;
   /// Where the unit begins that is being read.
   std::uint64_t offset() const { return offset_; }

 private:
   std::size_t wanted( std::string_view octets ) const;
   std::size_t unitsOf( std::string_view octets );
   void unitIs( std::string_view octets );

   std::function< void( LogRecord const & ) > onRecord_;
   std::string part_;
   std::uint64_t offset_ = 0;
};

} // namespace LdpTool
