#pragma once

// Metrics over HTTP (GNU libmicrohttpd). Its thread answers with the last text; whoever reads the capture
// makes a new one when somebody has asked, at most once a second. So no client holds up the capture, however
// slow it is.

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>

struct MHD_Connection;
struct MHD_Daemon;

namespace LdpTool {

class MetricsServer {
 public:
   /// Whether that is an address and a port: `127.0.0.1:9646`, `[::1]:9646`.
   static bool isAddress( std::string const & where );

   /// Listens there. Throws InputError.
   explicit MetricsServer( std::string const & where );
   ~MetricsServer();
   MetricsServer( MetricsServer const & ) = delete;
   MetricsServer & operator=( MetricsServer const & ) = delete;

   /// Where it listens, as a URL; the port is what the system has chosen if none was asked for.
   std::string const & url() const { return url_; }

   /// Whether somebody waits for a new text.
   bool wanted() const { return wanted_.load( std::memory_order_relaxed ); }
   void textIs( std::string text );

 private:
   struct Handler;
   std::shared_ptr< std::string const > text();

   MHD_Daemon * daemon_ = nullptr;
   std::string url_;
   std::atomic< bool > wanted_ = false;
   std::mutex mutex_;
   std::condition_variable made_;
   std::shared_ptr< std::string const > text_;    ///< guarded by the mutex, as all below
   std::chrono::steady_clock::time_point madeAt_; ///< of the text
   bool stopping_ = false;
};

} // namespace LdpTool
