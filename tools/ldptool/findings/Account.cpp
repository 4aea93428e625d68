// Accounts of pairs.
#include "findings/Account.h"

#include "text/Words.h"

#include "Ldp/LdpStatus.h"

namespace LdpTool {

using namespace Ldp;

namespace {

using Pair = Evidence::Pair;

std::string textOf( auto const & value ) { return std::string( value.stringValue().view() ); }

std::string frameText( std::uint64_t frame ) { return "frame " + std::to_string( frame ); }

Pair ordered( LdpIdentifier const & a, LdpIdentifier const & b ) {
   return a < b ? Pair( a, b ) : Pair( b, a );
}

/// What an account is made of, one after the other.
class Account {
 public:
   virtual ~Account() = default;
   /// What follows is of the speaker, or of the pair.
   virtual void speaker( LdpIdentifier const & id ) = 0;
   virtual void pair( std::string const & a, std::string const & b ) = 0;
   virtual void fact( char const * topic, std::string const & text ) = 0;
   virtual void finding( Finding const & finding, std::vector< std::uint64_t > const & frames ) = 0;
};

class TextAccount : public Account {
 public:
   explicit TextAccount( Output & out ) : out_( out ) {}
   void speaker( LdpIdentifier const & id ) override { out_ << "speaker " << textOf( id ) << '\n'; }
   void pair( std::string const & a, std::string const & b ) override { out_ << a << " and " << b << '\n'; }
   void fact( char const * topic, std::string const & text ) override {
      std::string line = std::string( "  " ) + topic;
      line.resize( std::max< std::size_t >( line.size() + 1, 16 ), ' ' );
      out_.escaped( line + text ) << '\n';
   }
   void finding( Finding const & finding, std::vector< std::uint64_t > const & frames ) override {
      std::string text;
      for ( std::uint64_t frame : frames )
         text += ( text.empty() ? "" : ", " ) + std::to_string( frame );
      if ( !frames.empty() ) text = ( frames.size() == 1 ? " [frame " : " [frames " ) + text + "]";
      out_.escaped( "  ! " + finding.what + text ) << '\n';
      out_.escaped( "    look at: " + finding.look ) << '\n';
   }

 private:
   Output & out_;
};

/// An object for each speaker and each pair.
class JsonAccount : public Account {
 public:
   explicit JsonAccount( JsonWriter & json ) : json_( json ) { json_.array(); }
   ~JsonAccount() override {
      close();
      json_.endArray();
   }
   void speaker( LdpIdentifier const & id ) override {
      open();
      json_.member( "speaker", id.stringValue() );
   }
   void pair( std::string const & a, std::string const & b ) override {
      open();
      json_.key( "pair" );
      json_.array();
      json_.value( a );
      json_.value( b );
      json_.endArray();
   }
   void fact( char const * topic, std::string const & text ) override {
      in( "facts" );
      json_.object();
      json_.member( "topic", topic );
      json_.member( "text", text );
      json_.endObject();
   }
   void finding( Finding const & finding, std::vector< std::uint64_t > const & frames ) override {
      in( "findings" );
      json_.object();
      json_.member( "what", finding.what );
      json_.key( "frames" );
      json_.array();
      for ( std::uint64_t frame : frames )
         json_.value( frame );
      json_.endArray();
      json_.member( "look", finding.look );
      json_.endObject();
   }

 private:
   void open() {
      close();
      json_.object();
      open_ = true;
   }
   void in( std::string_view list ) {
      if ( list == list_ ) return;
      if ( !list_.empty() ) json_.endArray();
      json_.key( list );
      json_.array();
      list_ = list;
   }
   void close() {
      if ( !list_.empty() ) json_.endArray();
      if ( open_ ) json_.endObject();
      list_ = "";
      open_ = false;
   }

   JsonWriter & json_;
   bool open_ = false;     ///< an object
   std::string_view list_; ///< that is open in it; facts come before findings
};

/// Two of whom an account is, by name, and what each has sent to the other.
struct Two {
   std::string name[2];
   Sent const & there; ///< from the first to the second
   Sent const & back;
};

/// What both, one or none of two have done.
std::string sides( Seen const & a, Seen const & b, Two const & two ) {
   if ( a && b )
      return "both ways (frames " + std::to_string( a.first ) + " and " + std::to_string( b.first ) + ")";
   if ( !a && !b ) return "none";
   return "of " + two.name[a ? 0 : 1] + " only (" + frameText( ( a ? a : b ).first ) + ")";
}

void tellHellos( Account & account, Two const & two, Pair const & pair, Changes const & changes ) {
   Seen heard[2];
   std::string present[2];
   for ( Change const * change : changes ) {
      if ( change->subject == "session" ) continue;
      int const side = change->speaker == pair.first ? 0 : 1;
      if ( change->to == "hears" ) heard[side].at( change->at.frame );
      present[side] = change->to == "hears" ? ""
                                            : "; lost at " + timeText( change->at ) + " (" +
                                                   frameText( change->at.frame ) + "): " + change->cause;
   }
   std::string const last = present[0].empty() ? present[1] : present[0];
   // Who hears is the other one of who was heard.
   account.fact( "hellos", sides( heard[1], heard[0], two ) + last );
}

void tellConnection( Account & account, Two const & two ) {
   bool any = false;
   for ( int side : { 0, 1 } ) {
      Sent const & sent = side == 0 ? two.there : two.back;
      if ( !sent.syns ) continue;
      any = true;
      std::string text = two.name[side] + " connects: " + std::to_string( sent.syns.times ) +
                         ( sent.syns.times == 1 ? " SYN, " : " SYNs, " );
      text += sent.established ? "established in " + frameText( sent.established.last ) : "never established";
      account.fact( "connection", text );
   }
   bool const works = two.there.keepAlives || two.back.keepAlives;
   if ( !any ) account.fact( "connection", works ? "began before the capture" : "none was tried" );
}

void tellSession( Account & account, Two const & two, Pair const & pair, Changes const & changes ) {
   account.fact( "Initialization", sides( two.there.inits, two.back.inits, two ) );
   account.fact( "KeepAlive", sides( two.there.keepAlives, two.back.keepAlives, two ) );
   bool any = false;
   for ( Change const * change : changes ) {
      if ( change->subject != "session" || change->speaker != pair.first ) continue;
      if ( change->to != "Operational" && change->from != "Operational" ) continue;
      any = true;
      account.fact( "session", timeText( change->at ) + " " + change->to + " (" +
                                    frameText( change->at.frame ) + "): " + change->cause );
   }
   if ( !any ) account.fact( "session", "never operational" );
}

/// What the sender may well mean, but nobody here knows what comes of it.
void tellUnsupported( Account & account, Evidence const & evidence, Pair const & pair ) {
   for ( auto const & [own, peer] : { pair, Pair( pair.second, pair.first ) } )
      for ( auto const & [reason, seen] : evidence.sentTo( own, peer ).unsupported )
         account.fact( "not followed", std::to_string( seen.times ) + " message(s) of " + textOf( own ) +
                                            ", not supported here (" + frameText( seen.first ) +
                                            "): " + reason );
}

/// Returns how many they are.
std::size_t tellFindings( Account & account, std::vector< Finding > const & findings ) {
   for ( Finding const & finding : findings ) {
      std::vector< std::uint64_t > frames;
      for ( std::uint64_t frame : finding.frames )
         if ( frame && ( frames.empty() || frame != frames.back() ) ) frames.push_back( frame );
      account.finding( finding, frames );
   }
   return findings.size();
}

/// What was found, and of whom.
struct Told {
   std::size_t findings = 0;
   bool anySpeaker = false;
   bool anyPair = false;
};

/// Pairs of addresses, where one at least has not shown by a hello or a PDU that it speaks LDP.
void tellStrangers( Account & account, Evidence const & evidence,
                    std::optional< LdpIdentifier > const & about, Told & told ) {
   static Sent const nothing;
   auto const & strangers = evidence.strangers();
   auto const nameOf = [&]( Addr const & address ) {
      LdpIdentifier const speaker = evidence.at( address );
      return !!speaker ? textOf( speaker ) : "address " + textOf( address );
   };
   for ( auto const & [addresses, there] : strangers ) {
      auto const & [a, b] = addresses;
      auto const answer = strangers.find( { b, a } );
      bool const answered = answer != strangers.end();
      if ( answered && b < a ) continue; // told of already
      if ( about && evidence.at( a ) != *about && evidence.at( b ) != *about ) continue;
      Two const two{ { nameOf( a ), nameOf( b ) }, there, answered ? answer->second : nothing };
      told.anyPair = true;
      account.pair( two.name[0], two.name[1] );
      for ( int side : { 0, 1 } )
         if ( !evidence.at( side == 0 ? a : b ) )
            account.fact( "hellos", "none of " + two.name[side] + ", nor any other PDU" );
      tellConnection( account, two );
      if ( there.inits || two.back.inits )
         account.fact( "Initialization", sides( there.inits, two.back.inits, two ) );
      told.findings += tellFindings( account, strangerFindings( two.name[0], there, two.name[1], two.back ) );
   }
}

Told tellAll( Account & account, Evidence const & evidence, Network const & network, Monitor & monitor,
              std::optional< LdpIdentifier > const & about ) {
   Journal const & journal = monitor.journal();
   std::map< Pair, Changes > pairs;
   std::map< LdpIdentifier, Status const * > states;
   for ( auto const & [pair, sent] : evidence.sent() )
      pairs[ordered( pair.first, pair.second )];
   for ( Change const & change : journal.changes() )
      pairs[ordered( change.speaker, change.peer )].push_back( &change );
   for ( auto & speaker : network.speakerColl() )
      for ( auto & status : speaker.ldpStatusColl()->statusColl() )
         states[speaker.ldpIdentifier()] = &status;
   Told told;
   told.anySpeaker = !states.empty();
   for ( auto const & [id, status] : states ) {
      if ( about && id != *about ) continue;
      auto const findings = findingsOf( evidence, id );
      if ( findings.empty() ) continue;
      account.speaker( id );
      told.findings += tellFindings( account, findings );
   }
   for ( auto const & [pair, changes] : pairs ) {
      if ( about && pair.first != *about && pair.second != *about ) continue;
      told.anyPair = true;
      Two const two{ { textOf( pair.first ), textOf( pair.second ) },
                     evidence.sentTo( pair.first, pair.second ),
                     evidence.sentTo( pair.second, pair.first ) };
      account.pair( two.name[0], two.name[1] );
      tellHellos( account, two, pair, changes );
      tellConnection( account, two );
      tellSession( account, two, pair, changes );
      tellUnsupported( account, evidence, pair );
      told.findings +=
           tellFindings( account, sessionFindings( evidence, journal, changes, pair.first, pair.second ) );
      for ( auto const & [own, peer] : { pair, Pair( pair.second, pair.first ) } )
         if ( auto const state = states.find( own ); state != states.end() )
            monitor.show( own, peer, [&, &own = own, &peer = peer] {
               told.findings += tellFindings( account, labelFindings( *state->second, own, peer ) );
            } );
   }
   tellStrangers( account, evidence, about, told );
   return told;
}

} // namespace

std::size_t printAccounts( Output & out, Evidence const & evidence, Network const & network,
                           Monitor & monitor, std::optional< LdpIdentifier > const & about ) {
   TextAccount account( out );
   Told const told = tellAll( account, evidence, network, monitor, about );
   if ( !told.anyPair )
      out << ( told.anySpeaker ? "no two speakers have anything to do with each other\n"
                               : "no speaker: no good hello or session message was seen\n" );
   return told.findings;
}

std::size_t writeAccounts( JsonWriter & json, Evidence const & evidence, Network const & network,
                           Monitor & monitor, std::optional< LdpIdentifier > const & about ) {
   JsonAccount account( json );
   return tellAll( account, evidence, network, monitor, about ).findings;
}

} // namespace LdpTool
