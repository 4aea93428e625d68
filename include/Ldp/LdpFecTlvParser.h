/// \file
/// The FEC TLV (RFC 5036, 3.4.1): a row of FEC elements, parsed into objects that own their values and
/// outlive the packet.
///
/// One received input never returns from here, and is required to: a P2MP element where 256 octets or more of
/// the FEC TLV remain, its own type octet included, because the octet dump of the trace counts in 8 bits.
/// What the element's own lengths say plays no part: the dump comes before they are read. Ask `ldpPduGuard`
/// (LdpUtils.h) first where peers are not trusted.
#pragma once

#include "Ldp/LdpFecHdr.h"
#include "Ldp/LdpIndexed.h"
#include "Ldp/LdpProtoParam.h"
#include "Ldp/LdpTlvParser.h"
#include "Ldp/PwTypes.h"
#include "Mpls/FwdEqvClass.h"

namespace Ldp {

/// A parsed FEC element. One object has room for the values of all kinds; the accessors of a value assert
/// unless the element is of its kind.
class VORN_API LdpFecTlvElement : public Vorn::PtrInterface {
   VORN_REFLECTED_OBJECT( LdpFecTlvElement, void )

 public:
   LdpFecTlvElement() noexcept = default;
   ~LdpFecTlvElement() override;

   /// Kind of the element.
   virtual LdpFecElementType type() const;
   /// Text of the element. The base has none and asserts.
   virtual Vorn::String stringValue() const;

   /// The FEC of a Prefix or Host Address element; the default FEC of a Wildcard.
   Mpls::FwdEqvClass const & fwdEqvCls() const;
   void fwdEqvClsIs( Mpls::FwdEqvClass const & fec );
   /// The pseudowire FEC of a PW ID element.
   PwFwdEqvClassInfo const & pwFwdEqvCls() const;
   void pwFwdEqvClsIs( PwFwdEqvClassInfo const & fec );
   /// Root and opaque value of a P2MP element.
   LdpP2mpFecElement const & p2mpFecElem() const;
   void p2mpFecElemIs( LdpP2mpFecElement const & fec );

 private:
   bool isIp() const {
      return type() == prefixElement || type() == hostAddrElement || type() == wildcardElement;
   }
   bool isPw() const { return type() == pwIdElement; }
   bool isP2mp() const { return type() == p2mpElement; }
   void assertIp() const;
   void assertPw() const;
   void assertP2mp() const;

   /// Whether `stringValue()` has one: the base itself, of which nobody makes objects, asserts.
   bool hasText() const noexcept { return fwkType() != &_vornType; }

   LdpFecElementType type_ = wildcardElement;
   Mpls::FwdEqvClass fwdEqvCls_;
   PwFwdEqvClassInfo pwFwdEqvCls_;
   LdpP2mpFecElement p2mpFecElem_;
};

/// Wildcard: all FECs of the message's kind.
class VORN_API LdpFecTlvWildcardElement : public LdpFecTlvElement {
   VORN_REFLECTED_OBJECT( LdpFecTlvWildcardElement, LdpFecTlvElement )

 public:
   ~LdpFecTlvWildcardElement() override;
   Vorn::String stringValue() const override;
};

/// An address prefix.
class VORN_API LdpFecTlvPrefixElement : public LdpFecTlvElement {
   VORN_REFLECTED_OBJECT( LdpFecTlvPrefixElement, LdpFecTlvElement )

 public:
   ~LdpFecTlvPrefixElement() override;
   LdpFecElementType type() const override { return prefixElement; }
   Vorn::String stringValue() const override;
};

/// A host address; its FEC equals that of a prefix of full length.
class VORN_API LdpFecTlvHostAddrElement : public LdpFecTlvElement {
   VORN_REFLECTED_OBJECT( LdpFecTlvHostAddrElement, LdpFecTlvElement )

 public:
   ~LdpFecTlvHostAddrElement() override;
   LdpFecElementType type() const override { return hostAddrElement; }
   Vorn::String stringValue() const override;
};

/// A point-to-multipoint LSP (RFC 6388).
class VORN_API LdpFecTlvP2mpElement : public LdpFecTlvElement {
   VORN_REFLECTED_OBJECT( LdpFecTlvP2mpElement, LdpFecTlvElement )

 public:
   ~LdpFecTlvP2mpElement() override;
   LdpFecElementType type() const override { return p2mpElement; }
   /// Root, number of opaque octets, and those octets in hexadecimal, joined by "_".
   Vorn::String stringValue() const override;
};

/// New elements without a value.
VORN_API Vorn::Ptr< LdpFecTlvWildcardElement > ldpFecTlvWildcardElementFactory();
VORN_API Vorn::Ptr< LdpFecTlvPrefixElement > ldpFecTlvPrefixElementFactory();
VORN_API Vorn::Ptr< LdpFecTlvHostAddrElement > ldpFecTlvHostAddrElementFactory();
VORN_API Vorn::Ptr< LdpFecTlvP2mpElement > ldpFecTlvP2mpElementFactory();

/// Parses a FEC TLV at construction. It throws nothing on what the packet holds.
class VORN_API LdpFecTlvParser : public LdpTlvParser {
   VORN_REFLECTED_OBJECT( LdpFecTlvParser, LdpTlvParser )

 public:
   /// The elements by their position.
   using Indexed = LdpIndexed< LdpFecTlvParser, Vorn::Ptr< LdpFecTlvElement >, 1 >;
   /// The elements with their positions, for a walk.
   using FecElements = Indexed::Map;

   /// Parses the TLV at `offset`. `param` says whether a Wildcard must stand alone; null means that it must.
   LdpFecTlvParser( Vorn::Ptr< Lumo::Pkt > pkt, U32 offset, Vorn::Ptr< LdpProtoParam const > param );
   ~LdpFecTlvParser() override;

   /// What the constructor was given; may be null.
   Vorn::Ptr< LdpProtoParam const > const & ldpProtoParam() const noexcept { return ldpProtoParam_; }

   /// Whether the elements may be used.
   bool valid() const noexcept { return statusCode_ == success; }
   /// What is wrong; `success` for a good TLV.
   LdpStatusCode statusCode() const noexcept { return statusCode_; }
   /// Text of the failure; empty for a good TLV.
   Vorn::String const & reason() const noexcept { return reason_; }
   void reasonIs( Vorn::String const & reason ) { reason_ = reason; }
   /// Offset from the packet's front of the element that was refused, or of the TLV where no element was
   /// come to. Of a good TLV its own.
   U32 faultOffset() const noexcept { return faultOffset_; }

   /// The element at that position, from 0; null behind the last. After a failure the elements in front of
   /// the bad one are there.
   Vorn::Ptr< LdpFecTlvElement > fecElement( U32 index ) const { return fecElement_.value( index ); }
   /// Puts an element at a position; null removes it.
   void fecElementIs( U32 index, Vorn::Ptr< LdpFecTlvElement > const & element );
   /// Removes the element at that position and returns it, or null.
   Vorn::Ptr< LdpFecTlvElement > fecElementDel( U32 index ) { return fecElement_.del( index ); }
   /// Removes all elements.
   void fecElementDelAll() { fecElement_.delAll(); }
   /// All elements with their positions, for a walk; in the map's order, not in that of the positions.
   FecElements const & fecElementColl() const { return fecElement_.coll(); }
   /// Number of elements.
   U32 fecElements() const noexcept { return fecElement_.members(); }

   /// Whether a Wildcard was met, or a PW ID element without a PW ID.
   bool hasWildcardFecElement() const noexcept { return hasWildcardFecElement_; }

   /// A mark for the caller: parsing neither sets nor reads it.
   bool initialized() const noexcept { return initialized_; }
   void initializedIs( bool initialized ) noexcept { initialized_ = initialized; }

   /// The elements' texts in brackets, whether or not the TLV is good.
   Vorn::String stringValue() const;

   /// Walks the elements, as the constructor has done already. True on failure.
   bool parseElements();
   /// The same: the last step of construction.
   void handleInitialized() { parseElements(); }

 private:
   /// Keeps why, and says true: what the functions below say of an element that ends the walk.
   bool failed( LdpStatusCode status, Vorn::String const & reason );
   bool parseWildcard( U32 & cur, U32 end, bool strict, U32 index );
   bool parsePrefix( U32 & cur, U32 end, U32 index );
   bool parseHostAddr( U32 & cur, U32 end, U32 index );
   bool parseP2mp( U32 & cur, U32 end, U32 index );
   bool parsePwId( U32 & cur, U32 end, U32 index );

   Vorn::Ptr< LdpProtoParam const > ldpProtoParam_;
   LdpStatusCode statusCode_ = success;
   U32 faultOffset_ = offset_;
   bool hasWildcardFecElement_ = false;
   bool initialized_ = false;
   Vorn::String reason_;
   Indexed fecElement_;
};
/// A new parser, which has parsed.
VORN_API Vorn::Ptr< LdpFecTlvParser > ldpFecTlvParserFactory(
     Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset, Vorn::Ptr< LdpProtoParam const > const & param );

} // namespace Ldp
