// Numbers for Prometheus. All samples of a metric stand together, behind what it is (HELP) and how to read it
// (TYPE). Values of labels are numbers, addresses and our own names: nothing in them needs an escape.
#include "standards/Metrics.h"

#include "text/Words.h"
#include "views/Rows.h"

#include <array>
#include <cstdio>
#include <initializer_list>
#include <map>
#include <vector>

namespace LdpTool {

using namespace Ldp;

namespace {

struct Label {
   char const * name;
   std::string const & value;
};
using Labels = std::initializer_list< Label >;

/// One metric: its heading is written with it, its samples follow.
class Metric {
 public:
   Metric( Output & out, char const * name, char const * type, char const * help )
        : out_( out ), name_( name ) {
      out << "# HELP " << name << ' ' << help << "\n# TYPE " << name << ' ' << type << '\n';
   }
   template< std::unsigned_integral Number >
   void sample( Labels labels, Number value ) {
      begin( labels ) << value << '\n';
   }
   void seconds( Labels labels, double value ) {
      char text[64];
      std::snprintf( text, sizeof text, "%.6f", value );
      begin( labels ) << std::string_view( text ) << '\n';
   }

 private:
   Output & begin( Labels labels ) {
      out_ << name_;
      char before = '{';
      for ( Label const & label : labels ) {
         ( out_ << before << label.name << '=' ).quoted( label.value );
         before = ',';
      }
      return before == '{' ? out_ << ' ' : out_ << "} ";
   }

   Output & out_;
   char const * name_;
};

std::string const & directionWord( bool sent ) {
   static std::string const words[] = { "received", "sent" };
   return words[sent];
}

class MetricsWriter {
 public:
   MetricsWriter( Output & out, Network const & network, Monitor & monitor,
                  std::optional< LdpIdentifier > const & about )
        : out_( out ), monitor_( monitor ) {
      eachVrf( network, [&]( LdpIdentifier const & id, Status const & status ) {
         bool wanted = !about || id == *about;
         std::size_t const index = speakers_.size();
         for ( LdpIdentifier const & peer :
               sorted( status.ldpSessionStatusColl()->sessionStatusColl(),
                       []( auto const & s ) { return s.ldpSessionId().peerLdpId(); } ) ) {
            SessionEnd const * const end = monitor.sessionEnd( id, peer );
            if ( !end || ( about && id != *about && peer != *about ) ) continue;
            sessions_.push_back( { index, peer, textOf( peer ), end } );
            wanted = true;
         }
         if ( wanted ) speakers_.push_back( { id, textOf( id ), &status } );
      } );
   }

   void write( CaptureCounters const & capture, BindingsToTell const & bindings ) {
      writeCapture( capture );
      writeRefusals();
      writeSpeakers();
      writeSessions();
      writeMessages();
      writeBindingCounts();
      if ( bindings.any ) writeBindings( bindings.within );
   }

 private:
   struct SpeakerRef {
      LdpIdentifier id;
      std::string name;
      Status const * status;
   };
   struct SessionRef {
      std::size_t speaker; ///< index
      LdpIdentifier peer;
      std::string peerName;
      SessionEnd const * end;
   };

   Metric metric( char const * name, char const * type, char const * help ) {
      return Metric( out_, name, type, help );
   }
   std::string const & nameOf( SessionRef const & session ) const { return speakers_[session.speaker].name; }

   void writeCapture( CaptureCounters const & capture );
   void writeRefusals();
   void writeSpeakers();
   void writeSessions();
   void writeMessages();
   void writeBindingCounts();
   void writeBindings( std::optional< Lumo::IpGenPrefix > const & within );
   template< class Counts >
   void writeCounts( Metric & metric, SessionRef const & session, bool sent, char const * label,
                     Counts const & counts );
   template< class Value >
   void writeBoth( char const * name, char const * help, Value const & value );

   Output & out_;
   Monitor & monitor_;
   std::vector< SpeakerRef > speakers_;
   std::vector< SessionRef > sessions_;
};

void MetricsWriter::writeCapture( CaptureCounters const & capture ) {
   metric( "ldp_capture_packets_total", "counter", "Packets that were read, LDP or not." )
        .sample( {}, capture.packets );
   metric( "ldp_capture_ldp_packets_total", "counter", "Packets to or from port 646." )
        .sample( {}, capture.ldpPackets );
   metric( "ldp_capture_dropped_packets_total", "counter",
           "Packets that the system had no room for, on an interface." )
        .sample( {}, capture.dropped );
   metric( "ldp_capture_truncated_packets_total", "counter", "Packets that the capture cut off." )
        .sample( {}, capture.truncated );
   metric( "ldp_capture_time_seconds", "gauge", "Time that the monitor has come to, since the epoch." )
        .seconds( {}, monitor_.journal().now() );
   TurnedAway const & away = monitor_.turnedAway();
   auto kept = metric( "ldp_monitor_turned_away_total", "counter",
                       "What was not kept, because there is too much of it." );
   for ( auto const & [what, number] : std::initializer_list< std::pair< std::string, std::uint64_t > >{
              { "speakers", away.speakers },
              { "adjacencies", away.adjacencies },
              { "fecs", away.fecs },
              { "changes", away.changes },
              { "typed_wildcards", away.typedWildcards } } )
      kept.sample( { { "what", what } }, number );
}

void MetricsWriter::writeRefusals() {
   auto refusals = metric( "ldp_refusals_total", "counter",
                           "Messages and PDUs that are refused, by the status that answers them." );
   for ( auto const & [code, times] : monitor_.refusals() )
      refusals.sample( { { "status", nameText( code ) } }, times );
}

void MetricsWriter::writeSpeakers() {
   metric( "ldp_speakers", "gauge", "Speakers that were heard." ).sample( {}, speakers_.size() );
   auto adjacencies = metric( "ldp_adjacencies", "gauge", "Hello adjacencies of a speaker." );
   for ( SpeakerRef const & speaker : speakers_ ) {
      std::size_t targeted = 0, all = 0;
      for ( auto & adj : speaker.status->ldpAdjStatusColl()->adjStatusColl() ) {
         ++all;
         targeted += adj.ldpAdjId().adjType() != LdpLinkAdj;
      }
      adjacencies.sample( { { "speaker", speaker.name }, { "type", "link" } }, all - targeted );
      adjacencies.sample( { { "speaker", speaker.name }, { "type", "targeted" } }, targeted );
   }
   auto hellos = metric( "ldp_hellos_total", "counter", "Hellos of a speaker." );
   for ( SpeakerRef const & speaker : speakers_ ) {
      std::uint64_t heard = 0, sent = 0;
      auto const add = [&]( auto & links ) {
         for ( auto & link : links ) {
            heard += link.rxPktCount();
            sent += link.txPktCount();
         }
      };
      add( speaker.status->ldpLinkStatusColl()->adjLinkStatusColl() );
      add( speaker.status->ldpTargetStatusColl()->adjTargetStatusColl() );
      hellos.sample( { { "speaker", speaker.name }, { "direction", directionWord( true ) } }, sent );
      hellos.sample( { { "speaker", speaker.name }, { "direction", directionWord( false ) } }, heard );
   }
   auto fecs = metric( "ldp_fecs", "gauge", "Prefixes that a speaker knows as FECs." );
   for ( SpeakerRef const & speaker : speakers_ )
      fecs.sample( { { "speaker", speaker.name } },
                   std::size_t( speaker.status->ldpFecConfigColl()->fecConfigs() ) );
}

void MetricsWriter::writeSessions() {
   constexpr std::array states = { stateUnknown,  stateNonExist,    stateInitialized, stateOpenSent,
                                   stateOpenRecv, stateOperational, stateExpired };
   std::vector< std::array< std::size_t, stateExpired + 1 > > counts( speakers_.size() );
   for ( SessionRef const & session : sessions_ )
      if ( auto const state = std::size_t( session.end->status->sessionState() ); state <= stateExpired )
         ++counts[session.speaker][state];
   auto byState = metric( "ldp_sessions", "gauge", "Sessions of a speaker by state." );
   for ( std::size_t i = 0; i < speakers_.size(); ++i )
      for ( SessionState const state : states )
         byState.sample( { { "speaker", speakers_[i].name }, { "state", stateName( state ) } },
                         counts[i][state] );
   auto up = metric( "ldp_session_up", "gauge", "Whether a session is operational." );
   for ( SessionRef const & session : sessions_ )
      up.sample( { { "speaker", nameOf( session ) }, { "peer", session.peerName } },
                 unsigned( session.end->status->sessionState() == stateOperational ) );
   auto start =
        metric( "ldp_session_start_time_seconds", "gauge",
                "When a session became operational, since the epoch; not of one that was up before." );
   for ( SessionRef const & session : sessions_ ) {
      LdpSessionStatus const & status = *session.end->status;
      if ( status.sessionUptime() != 0.0 && status.sessionStateReason() != seenAtWork )
         start.seconds( { { "speaker", nameOf( session ) }, { "peer", session.peerName } },
                        status.sessionUptime() );
   }
   auto established =
        metric( "ldp_session_established_total", "counter", "How often a session became operational." );
   for ( SessionRef const & session : sessions_ )
      established.sample( { { "speaker", nameOf( session ) }, { "peer", session.peerName } },
                          session.end->status->sessionStateCount( stateOperational ) );
}

/// A counter of both directions.
template< class Value >
void MetricsWriter::writeBoth( char const * name, char const * help, Value const & value ) {
   auto both = metric( name, "counter", help );
   for ( SessionRef const & session : sessions_ )
      for ( bool const sent : { true, false } )
         both.sample( { { "speaker", nameOf( session ) },
                        { "peer", session.peerName },
                        { "direction", directionWord( sent ) } },
                      std::uint64_t( value( *session.end, sent ) ) );
}

void MetricsWriter::writeMessages() {
   writeBoth( "ldp_pdus_total", "PDUs of a session's TCP connections.",
              []( SessionEnd const & end, bool sent ) {
                 return sent ? end.statistics->ldpPduTxCount() : end.statistics->ldpPduRxCount();
              } );
   writeBoth( "ldp_bytes_total", "Octets of these PDUs.", []( SessionEnd const & end, bool sent ) {
      return sent ? end.octetsSent : end.octetsReceived;
   } );
   auto bad = metric( "ldp_bad_pdus_total", "counter", "PDUs that a speaker has to refuse as a whole." );
   for ( SessionRef const & session : sessions_ )
      bad.sample( { { "speaker", nameOf( session ) }, { "peer", session.peerName } },
                  std::uint64_t( session.end->statistics->ldpPduRxErrorCount() ) );
   auto messages = metric( "ldp_messages_total", "counter", "Messages of sessions by type." );
   for ( SessionRef const & session : sessions_ ) {
      writeCounts( messages, session, true, "type", session.end->statistics->ldpMsgTxCountColl() );
      writeCounts( messages, session, false, "type", session.end->statistics->ldpMsgRxCountColl() );
   }
   auto notifications = metric( "ldp_notifications_total", "counter", "Notifications by what they say." );
   for ( SessionRef const & session : sessions_ ) {
      auto const & statistics = *session.end->statistics;
      writeCounts( notifications, session, true, "status", statistics.ldpMsgNotificationTxCountColl() );
      writeCounts( notifications, session, false, "status", statistics.ldpMsgNotificationRxCountColl() );
   }
}

/// A sample for each key of a collection of counters, which is what the label says.
template< class Counts >
void MetricsWriter::writeCounts( Metric & metric, SessionRef const & session, bool sent, char const * label,
                                 Counts const & counts ) {
   std::map< std::string, std::uint64_t > byName; // in an order that does not differ from run to run
   for ( auto const & count : counts )
      byName[nameText( count.key() )] = count.value();
   for ( auto const & [name, count] : byName )
      metric.sample( { { "speaker", nameOf( session ) },
                       { "peer", session.peerName },
                       { "direction", directionWord( sent ) },
                       { label, name } },
                     count );
}

void MetricsWriter::writeBindingCounts() {
   auto bindings =
        metric( "ldp_bindings", "gauge",
                "FECs of which the peer has the speaker's label (sent), or the speaker the peer's." );
   for ( SessionRef const & session : sessions_ )
      for ( bool const sent : { true, false } ) {
         SessionEnd const & end = *session.end;
         auto const tell = [&]( std::string const & kind, std::size_t number ) {
            bindings.sample( { { "speaker", nameOf( session ) },
                               { "peer", session.peerName },
                               { "direction", directionWord( sent ) },
                               { "kind", kind } },
                             number );
         };
         tell( "prefix", sent ? end.advertised : end.learned );
         tell( "p2mp", ( sent ? end.p2mpLocal : end.p2mpRemote ).present.size() );
         tell( "pseudowire", ( sent ? end.pwLocal : end.pwRemote ).present.size() );
      }
}

void MetricsWriter::writeBindings( std::optional< Lumo::IpGenPrefix > const & within ) {
   auto bindings = metric( "ldp_binding_info", "gauge", "A label of a prefix; the value is always 1." );
   for ( std::size_t i = 0; i < speakers_.size(); ++i ) {
      SpeakerRef const & speaker = speakers_[i];
      std::map< LdpIdentifier, std::string > peers;
      for ( SessionRef const & session : sessions_ )
         if ( session.speaker == i ) peers[session.peer] = session.peerName;
      monitor_.show( speaker.id, [&] {
         for ( auto const & fec : prefixesOf( *speaker.status, within ) )
            for ( BindingRow const & row : bindingsOfFec( *speaker.status, fec ) ) {
               auto const peer = peers.find( row.peer );
               if ( peer == peers.end() ) continue;
               for ( bool const sent : { true, false } )
                  for ( U32 const label : sent ? row.sent : row.remote )
                     bindings.sample( { { "speaker", speaker.name },
                                        { "peer", peer->second },
                                        { "direction", directionWord( sent ) },
                                        { "fec", row.fec },
                                        { "label", std::to_string( label ) } },
                                      1u );
            }
      } );
   }
}

} // namespace

void writeMetrics( Output & out, Network const & network, Monitor & monitor, CaptureCounters const & capture,
                   std::optional< LdpIdentifier > const & about, BindingsToTell const & bindings ) {
   MetricsWriter( out, network, monitor, about ).write( capture, bindings );
}

} // namespace LdpTool
