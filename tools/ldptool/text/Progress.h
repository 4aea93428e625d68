#pragma once

// How far the reading of a large file has come, on stderr when that is a terminal.

#include <cstdint>

namespace LdpTool {

class Progress {
 public:
   /// So many octets of a file of that size have been read. All of them take the text away again.
   void show( std::int64_t read, std::int64_t size );

 private:
   int shown_ = -1; ///< per cent
};

} // namespace LdpTool
