// Counts of messages, as tables.
#include "reporters/Stats.h"

#include "messages/Fault.h"
#include "text/Words.h"

#include <algorithm>

namespace LdpTool {

namespace {

// A hostile capture can name any number of peers and reasons; memory stays flat.
constexpr std::size_t mostPeers = 4096;
constexpr std::size_t mostReasons = 4096;

constexpr int countWidth = 10;
constexpr int nameWidth = 22;

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
   bool const wrong = message.verdict == Verdict::wrong;
   ++( wrong ? peer_->badMessages : peer_->unsupportedMessages );
   Ldp::LdpMsgParser const & judge = message.judge();
   bad( wrong ? bad_ : unsupported_, nameText( judge.statusCode() ), judge.reason().view() );
}

void StatsReporter::onBadPdu( Pdu const & pdu ) {
   ++badPdus_;
   bad( bad_, nameText( pdu.pdu.statusCode() ), pdu.pdu.reason().view() );
}

void StatsReporter::onFatalPdu( Pdu const &, Ldp::LdpPduGuardResult const & fatal ) {
   ++fatalPdus_;
   bad( verdictOf( fatal ) == Verdict::wrong ? bad_ : unsupported_, "fatal", fatalName( fatal ) );
}

void StatsReporter::bad( Reasons & reasons, std::string_view status, std::string_view reason ) {
   std::string key = padRight( std::string( status ), nameWidth ) + std::string( reason );
   if ( reasons.size() >= mostReasons && !reasons.contains( key ) ) key = "others";
   ++reasons[key];
}

void StatsReporter::print( Output & out, CaptureCounters const * capture, Gap const & gaps ) const {
   printMessages( out );
   printReasons( out, "bad", bad_ );
   printReasons( out, "not here", unsupported_ );
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
   Peer all;
   auto const block = [&]( std::string const & name, Peer const & peer ) {
      for ( auto const & [type, count] : peer.messages ) {
         out << padRight( name, nameWidth ) << padRight( nameText( type ), nameWidth )
             << padLeft( std::to_string( count ), countWidth ) << '\n';
      }
      for ( auto const & [what, count] : { std::pair( "bad ones among them", peer.badMessages ),
                                           std::pair( "unsupported ones", peer.unsupportedMessages ) } ) {
         if ( !count ) continue;
         out << padRight( name, nameWidth ) << padRight( what, nameWidth )
             << padLeft( std::to_string( count ), countWidth ) << '\n';
      }
   };
   auto const add = [&]( Peer const & peer ) {
      for ( auto const & [type, count] : peer.messages )
         all.messages[type] += count;
      all.badMessages += peer.badMessages;
      all.unsupportedMessages += peer.unsupportedMessages;
   };
   out << padRight( "peer", nameWidth ) << padRight( "message type", nameWidth )
       << padLeft( "messages", countWidth ) << '\n';
   for ( auto const & [identifier, peer] : peers_ ) {
      block( std::string( identifier.stringValue().view() ), peer );
      add( peer );
   }
   if ( otherPeers_.pdus ) block( "others", otherPeers_ ), add( otherPeers_ );
   block( "all", all );
}

void StatsReporter::printReasons( Output & out, char const * heading, Reasons const & reasons ) const {
   if ( reasons.empty() ) return;
   out << '\n'
       << padLeft( heading, countWidth ) << "  " << padRight( "status", nameWidth ) << "reason" << '\n';
   for ( auto const & [what, count] : reasons ) {
      out << padLeft( std::to_string( count ), countWidth ) << "  ";
      out.escaped( what ) << '\n';
   }
}

} // namespace LdpTool
