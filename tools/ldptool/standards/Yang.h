#pragma once

// A speaker's state and what changes in it as a network management system takes them: RFC 7951 JSON of the
// modules `ietf-mpls-ldp` and `ietf-mpls-ldp-extended` (RFC 9070). What these have and messages do not show
// is left out.

#include "monitor/Monitor.h"
#include "text/JsonWriter.h"

#include <optional>

namespace LdpTool {

/// A document for each speaker, or for that one: the modules allow one LDP instance in each.
void writeYang( Output & out, Network const & network, Monitor & monitor,
                std::optional< Ldp::LdpIdentifier > const & speaker );

/// Writes the notifications of RFC 9070, each as `ietf-restconf:notification` (RFC 8040, 6.4) on a line of
/// its own.
class YangEvents : public JournalListener {
 public:
   /// Of all speakers, or of that one.
   YangEvents( Output & out, Network const & network, Monitor & monitor,
               std::optional< Ldp::LdpIdentifier > const & speaker );
   ~YangEvents() override;
   YangEvents( YangEvents const & ) = delete;
   YangEvents & operator=( YangEvents const & ) = delete;

   void onChange( Change const & change, Ldp::LdpAdjId const * adjacency ) override;
   void onFec( Ldp::LdpIdentifier const & speaker, Mpls::FwdEqvClass const & fec, bool bound ) override;

 private:
   bool isShared( Ldp::LdpIdentifier const & speaker, Ldp::LdpAdjId const & adjacency ) const;
   bool isWanted( Ldp::LdpIdentifier const & speaker ) const { return !speaker_ || speaker == *speaker_; }
   template< class Content >
   void write( char const * event, bool up, Content const & content );

   JsonWriter json_;
   Network const & network_;
   Monitor & monitor_;
   std::optional< Ldp::LdpIdentifier > speaker_;
};

} // namespace LdpTool
