// JSON straight to the output.
#include "text/JsonWriter.h"

namespace LdpTool {

void JsonWriter::time( std::int64_t seconds, std::uint32_t nanoseconds ) {
   bool const below = seconds < 0 && nanoseconds; // the part behind the point counts away from zero
   char digits[sizeof "-9223372036854775808.4294967295"];
   int const size = std::snprintf( digits, sizeof digits, "%s%lld.%09u", below && seconds == -1 ? "-" : "",
                                   static_cast< long long >( seconds + below ),
                                   below ? 1000000000 - nanoseconds : nanoseconds );
   Prefix( rapidjson::kNumberType );
   stream_.out << std::string_view( digits, std::size_t( size ) );
}

} // namespace LdpTool
