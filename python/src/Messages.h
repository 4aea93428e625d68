#pragma once

// Messages of octets and of captures, and what reading a capture tells besides.

#include "Tape.h"

#include "capture/Capture.h"
#include "messages/Decoder.h"

#include <filesystem>
#include <optional>

namespace LdpPython {

/// A decoder that prints nothing: what it has to say becomes warnings.
class QuietDecoder : public LdpTool::Decoder {
 public:
   QuietDecoder( LdpTool::Reporter & reporter, LdpTool::Selection selection )
        : Decoder( reporter, std::move( selection ), nowhere_ ) {}

   void onWarning( LdpTool::Origin const & origin, std::string const & text ) override;
   void onIdle() override {}
   void onProgress( std::int64_t, std::int64_t ) override {}

   /// Issues what has come up since the last call. Throws where warnings are errors.
   void warnNow( std::string const & name );

 private:
   static constexpr std::size_t mostWarnings = 100; ///< at once
   std::string octets_;
   LdpTool::Output nowhere_{ octets_ };
   std::vector< std::string > warnings_;
   std::uint64_t more_ = 0;
};

/// The messages of a capture, one by one.
class Reader {
 public:
   /// Opens the file. Throws InputError.
   Reader( std::string const & path, LdpTool::CaptureRange range, LdpTool::Selection selection, bool texts );

   py::dict next();

 private:
   std::string const path_;
   TapeReporter reporter_;
   QuietDecoder decoder_;
   LdpTool::Capture capture_;
   Player player_;
   bool more_ = true;
   std::exception_ptr failure_;
   bool busy_ = false;
};

void addMessages( py::module_ & module );

} // namespace LdpPython
