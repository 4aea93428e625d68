// Counts of messages, as tables.
#include "reporters/Stats.h"

#include "text/Words.h"

#include <algorithm>

namespace LdpTool {

namespace {

// A hostile capture can name any number of peers and reasons; memory stays flat.
constexpr std::size_t mostPeers = 4096;
constexpr std::size_t mostReasons = 4096;

constexpr int countWidth = 10;
constexpr int nameWidth = 22;

std::string nameOf( Ldp::LdpMsgType type ) { return std::string( valueToStrep( type ).view() ); }

std::string padLeft( std::string const & text, int width ) {
   std::size_t const blanks = text.size() < std::size_t( width ) ? std::size_t( width ) - text.size() : 1;
   return std::string( blanks, ' ' ) + text;
}

std::string padRight( std::string text, int width ) {
   text.resize( std::max( text.size() + 1, std::size_t( width ) ), ' ' );
   return text;
}

} // namespace

void StatsReporter::onPdu( Pdu const & pdu ) {
   ++pdus_;
   Ldp::LdpIdentifier const identifier = pdu.pdu.ldpIdentifier();
   auto place = peers_.find( identifier );
   if ( place == peers_.end() && peers_.size() < mostPeers ) place = peers_.try_emplace( identifier ).first;
   peer_ = place == peers_.end() ? &otherPeers_ : &place->second;
   ++peer_->pdus;
}

void StatsReporter::onMessage( Message const & message ) {
   ++peer_->messages[message.parser.type()];
   if ( !message.bad() ) return;
   ++peer_->badMessages;
   Ldp::LdpMsgParser const & refused = message.capability ? *message.capability : message.parser;
   bad( valueToStrep( refused.statusCode() ).view(), refused.reason().view() );
}

void StatsReporter::onBadPdu( Pdu const & pdu ) {
   ++badPdus_;
   bad( valueToStrep( pdu.pdu.statusCode() ).view(), pdu.pdu.reason().view() );
}

void StatsReporter::onFatalPdu( Pdu const &, Ldp::LdpPduGuardResult const & fatal ) {
   ++fatalPdus_;
   bad( "fatal", fatalName( fatal ) );
}

void StatsReporter::bad( std::string_view status, std::string_view reason ) {
   std::string key = padRight( std::string( status ), nameWidth ) + std::string( reason );
   if ( bad_.size() >= mostReasons && !bad_.contains( key ) ) key = "others";
   ++bad_[key];
}

void StatsReporter::print( Output & out, CaptureCounters const * capture, Gap const & gaps ) const {
   printMessages( out );
   printBad( out );
   auto const row = [&]( char const * what, std::uint64_t count ) {
      out << padRight( what, nameWidth + 10 ) << padLeft( std::to_string( count ), countWidth ) << '\n';
   };
   out << '\n';
   row( "PDUs good", pdus_ );
   row( "PDUs bad", badPdus_ );
   row( "PDUs fatal, not parsed", fatalPdus_ );
   if ( !capture ) return;
   row( "packets", capture->packets );
   row( "packets of LDP", capture->ldpPackets );
   row( "packets cut off by the capture", capture->truncated );
   row( "IP fragments", capture->fragments );
   row( "IP packets put together", capture->reassembled );
   row( "TCP octets repeated", capture->repeatedOctets );
   row( "TCP octets missing", gaps.missing );
   row( "TCP octets skipped", gaps.skipped );
}

// Peers in columns would make the table too wide, so each has a block of rows.
void StatsReporter::printMessages( Output & out ) const {
   ByType totals;
   std::uint64_t badMessages = 0;
   auto const block = [&]( std::string const & name, Peer const & peer ) {
      for ( auto const & [type, count] : peer.messages ) {
         out << padRight( name, nameWidth ) << padRight( nameOf( type ), nameWidth )
             << padLeft( std::to_string( count ), countWidth ) << '\n';
      }
      if ( peer.badMessages ) {
         out << padRight( name, nameWidth ) << padRight( "bad ones among them", nameWidth )
             << padLeft( std::to_string( peer.badMessages ), countWidth ) << '\n';
      }
   };
   auto const add = [&]( Peer const & peer ) {
      for ( auto const & [type, count] : peer.messages )
         totals[type] += count;
      badMessages += peer.badMessages;
   };
   out << padRight( "peer", nameWidth ) << padRight( "message type", nameWidth )
       << padLeft( "messages", countWidth ) << '\n';
   for ( auto const & [identifier, peer] : peers_ ) {
      block( std::string( identifier.stringValue().view() ), peer );
      add( peer );
   }
   if ( otherPeers_.pdus ) block( "others", otherPeers_ ), add( otherPeers_ );
   Peer all;
   all.messages = std::move( totals );
   all.badMessages = badMessages;
   block( "all", all );
}

void StatsReporter::printBad( Output & out ) const {
   if ( bad_.empty() ) return;
   out << '\n' << padLeft( "bad", countWidth ) << "  " << padRight( "status", nameWidth ) << "reason" << '\n';
   for ( auto const & [what, count] : bad_ ) {
      out << padLeft( std::to_string( count ), countWidth ) << "  ";
      out.escaped( what ) << '\n';
   }
}

} // namespace LdpTool
