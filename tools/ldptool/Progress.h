#pragma once

// How far the reading of a large file has come, on stderr when that is a terminal.

#include <cstdint>
#include <cstdio>

namespace LdpTool {

class Progress {
 public:
   /// `file` is the stream being read; null shows nothing.
   explicit Progress( std::FILE * file );

   void show();
   /// Take the text away again.
   void clear();

 private:
   std::FILE * file_ = nullptr;
   std::int64_t size_ = 0;
   int shown_ = -1; ///< per cent
};

} // namespace LdpTool
