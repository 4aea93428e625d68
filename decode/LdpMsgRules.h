/// \file
/// The rules of a message type as a constant table, which `LdpMsgParser::obey` walks a message by.
///
/// Every check of a TLV comes in the order of the fields of `LdpTlvRule`, and the first failure decides. A
/// TLV type without a row is passed over.
#pragma once

#include "Ldp/LdpMsgParser.h"

#include <span>

namespace Ldp {

/// Where a parser keeps its view of a TLV, and how that TLV's body is judged.
struct LdpViewRule {
   void ( *store )( LdpMsgParser & parser, LdpTlvHdr const & tlv );
   bool ( *has )( LdpMsgParser const & parser );
   LdpStatusCode ( *validate )( LdpTlvHdr const & tlv );
};

template< auto member >
struct LdpViewOf;

/// The rule of a view that stands in a member of the parser.
template< class Parser, class Body, Body const * Parser::*member >
struct LdpViewOf< member > {
   static void store( LdpMsgParser & parser, LdpTlvHdr const & tlv ) {
      static_cast< Parser & >( parser ).*member = static_cast< Body const * >( &tlv );
   }
   static bool has( LdpMsgParser const & parser ) { return static_cast< Parser const & >( parser ).*member; }
   static LdpStatusCode validate( LdpTlvHdr const & tlv ) {
      return static_cast< Body const & >( tlv ).validate();
   }

   static constexpr LdpViewRule rule{ store, has, validate };
};
template< auto member >
inline constexpr LdpViewRule ldpView = LdpViewOf< member >::rule;

/// What is demanded of one type of TLV.
struct LdpTlvRule {
   struct Position {
      static constexpr U32 any = ~U32( 0 );
      U32 index;           ///< the one index where the TLV may stand, or `any`
      char const * reason; ///< fails with `missingMessageParams`
   };
   struct Size {
      enum Kind : U8 { unchecked, length, totalAtLeast, lengthTellTotal };
      Kind kind;
      U16 octets;
      char const *
           reason; ///< fails with `malformedTlv`; `lengthTellTotal` adds the total length in parentheses
   };
   struct Exclusion {
      bool ( *has )( LdpMsgParser const & parser ); ///< a view that must not be set, or null
      char const * reason;                          ///< fails with `malformedTlv`
   };

   LdpTlvType type;
   Position position;
   Size size;
   Exclusion exclusion;
   LdpViewRule view;     ///< stored before the body is judged
   char const * invalid; ///< the reason if the body's own code is not `success`; null: the name of that code
};

inline constexpr LdpTlvRule::Position ldpAnywhere{ LdpTlvRule::Position::any, nullptr };
inline constexpr LdpTlvRule::Size ldpAnySize{ LdpTlvRule::Size::unchecked, 0, nullptr };
inline constexpr LdpTlvRule::Exclusion ldpNoExclusion{ nullptr, nullptr };

/// How far a label message trusts its FEC TLV. The five differ, and what a peer is answered shows it.
struct LdpFecRule {
   enum Refused : U8 {
      keepsItsCode,  ///< the message is refused with the FEC parser's code
      isMalformed,   ///< the message is refused with `malformedTlv`, whatever that code
      isForTheCaller ///< the message stays good
   };
   Refused refused;
   char const * wildcard; ///< the reason to refuse a wildcard with `unknownFec`; null where one is allowed
};

/// A view without which the message is refused, with `missingMessageParams`.
struct LdpRequiredView {
   bool ( *has )( LdpMsgParser const & parser );
   char const * reason;
};

/// The rules of one message type.
struct LdpMsgRules {
   LdpMsgType type;
   char const * typeAssertion; ///< text of the assertion that the message has that type
   U32 minTlvNum;
   char const * tooFewTlvs; ///< fails with `missingMessageParams`
   bool countsBeforeType;   ///< the number of TLVs is tested before the type is asserted
   char const * firstTlv;   ///< the reason if the first TLV is not the first row's; null where it may be any
   LdpFecRule const * fec;  ///< for messages that look for a FEC TLV, first in the message
   std::span< LdpTlvRule const > tlvs;
   std::span< LdpRequiredView const > required; ///< tested in this order when all TLVs are good
};

} // namespace Ldp
