/// \file
/// Numbers and switches of the protocol that the decoders share with the agent.
#pragma once

#include "Vorn/String.h"

namespace Ldp {

/// Parameters of the protocol in one VRF: constants, and the switch that says how strictly a FEC TLV is read.
/// A parser that is given one reads it while it parses; later changes concern later parsers only.
class VORN_API LdpProtoParam : public Vorn::PtrInterface {
   VORN_OBJECT( LdpProtoParam )

 public:
   /// Size of a packet buffer in octets: the largest PDU that is received, and the largest maximum PDU length
   /// that a peer may propose.
   static constexpr U16 ldpPktBufferSize = 9600;
   /// The one version of the protocol.
   static constexpr U16 ldpProtocolVersion = 1;

   /// The parameters of the VRF of that name, with their defaults.
   explicit LdpProtoParam( Vorn::Name name ) : name_( std::move( name ) ) {}
   ~LdpProtoParam() override;

   /// Name of the VRF.
   Vorn::Name const & name() const noexcept { return name_; }
   /// Whether a Wildcard element must be alone in its FEC TLV (RFC 5036, 3.4.1). True by default.
   bool fecTlvStrictPrefixWildcardOnlyElement() const noexcept { return strictWildcard_; }
   void fecTlvStrictPrefixWildcardOnlyElementIs( bool strict ) noexcept { strictWildcard_ = strict; }

 private:
   Vorn::Name name_;
   bool strictWildcard_ = true;
};

/// New parameters, with their defaults.
VORN_API Vorn::Ptr< LdpProtoParam > ldpProtoParamFactory( Vorn::Name const & name );

} // namespace Ldp
