/// \file
/// Wire forms of the FEC elements (RFC 5036, 3.4.1; RFC 6388, 2.2), and the values of multicast LDP.
///
/// The headers are views in the manner of `LdpHdr.h`, laid over the first octet of an element; the elements
/// of pseudowires stand in `LdpPwHdr.h`. The opaque value of a P2MP element stays opaque: the records of what
/// stands inside it are for tools, and the FEC parser does not read them.
#pragma once

#include "Ldp/LdpEnums.h"
#include "Lumo/Ip.h"
#include "Lumo/Net.h"

namespace Ldp {

/// The type octet of a FEC element.
class VORN_API LdpFecTlvElementHdrTypeField : public Lumo::NetU8 {
   VORN_REFLECTED( LdpFecTlvElementHdrTypeField, Lumo::NetU8 )

 public:
   using NetU8::NetU8;

   /// The octet; an `LdpFecElementType` or any other number.
   U8 type() const noexcept { return value(); }
   void typeIs( U8 type ) noexcept { valueIs( type ); }
};

/// What every FEC element begins with. A Wildcard element is this octet alone.
class VORN_API LdpFecTlvElementHdr : public Vorn::NrcPtrInterface {
   VORN_REFLECTED( LdpFecTlvElementHdr, void )

 public:
   /// The type as it stands on the wire.
   LdpFecTlvElementHdrTypeField typeField() const noexcept { return typeField_; }
   void typeFieldIs( LdpFecTlvElementHdrTypeField field ) noexcept { typeField_ = field; }
   /// The type; any octet may come, it need not be an enumerator.
   LdpFecElementType type() const noexcept { return LdpFecElementType( typeField_.type() ); }
   void typeIs( LdpFecElementType type ) noexcept { typeField_.typeIs( U8( type ) ); }

 private:
   LdpFecTlvElementHdrTypeField typeField_;
};
static_assert( sizeof( LdpFecTlvElementHdr ) == 1 );

/// Wildcard element (RFC 5036, 3.4.1).
class VORN_API LdpFecTlvWildcardElementHdr : public LdpFecTlvElementHdr {
   VORN_REFLECTED( LdpFecTlvWildcardElementHdr, LdpFecTlvElementHdr )
};
static_assert( sizeof( LdpFecTlvWildcardElementHdr ) == 1 );

/// Prefix element: 4 octets, then the leading octets of the prefix, as many as `prefixBits` needs.
class VORN_API LdpFecTlvPrefixElementHdr : public LdpFecTlvElementHdr {
   VORN_REFLECTED( LdpFecTlvPrefixElementHdr, LdpFecTlvElementHdr )

 public:
   /// Address family, the raw field.
   Lumo::NetU16 familyNbo() const noexcept { return family_; }
   void familyNboIs( Lumo::NetU16 family ) noexcept { family_ = family; }
   /// Address family; any number may come, it need not be an enumerator.
   Lumo::AddressFamily family() const noexcept { return Lumo::AddressFamily( family_.value() ); }
   /// Prefix length in bits.
   U8 prefixBits() const noexcept { return prefixBits_; }
   void prefixBitsIs( U8 bits ) noexcept { prefixBits_ = bits; }

 private:
   Lumo::NetU16 family_;
   U8 prefixBits_ = 0;
};
static_assert( sizeof( LdpFecTlvPrefixElementHdr ) == 4 && alignof( LdpFecTlvPrefixElementHdr ) == 1 );

/// Host Address element: 4 octets, then the address. It left the protocol with RFC 5036 and is still
/// accepted.
class VORN_API LdpFecTlvHostAddressElementHdr : public LdpFecTlvElementHdr {
   VORN_REFLECTED( LdpFecTlvHostAddressElementHdr, LdpFecTlvElementHdr )

 public:
   /// Address family, the raw field.
   Lumo::NetU16 familyNbo() const noexcept { return family_; }
   void familyNboIs( Lumo::NetU16 family ) noexcept { family_ = family; }
   /// Address family; any number may come, it need not be an enumerator.
   Lumo::AddressFamily family() const noexcept { return Lumo::AddressFamily( family_.value() ); }
   /// Length of the address in octets, not bits.
   U8 hostAddrLen() const noexcept { return hostAddrLen_; }
   void hostAddrLenIs( U8 octets ) noexcept { hostAddrLen_ = octets; }

 private:
   Lumo::NetU16 family_;
   U8 hostAddrLen_ = 0;
};
static_assert( sizeof( LdpFecTlvHostAddressElementHdr ) == 4 &&
               alignof( LdpFecTlvHostAddressElementHdr ) == 1 );

/// P2MP element (RFC 6388, 2.2): 4 octets, the root address, the opaque length, the opaque value.
class VORN_API LdpFecTlvP2mpElementHdr : public LdpFecTlvElementHdr {
   VORN_REFLECTED( LdpFecTlvP2mpElementHdr, LdpFecTlvElementHdr )

 public:
   /// Address family of the root, the raw field.
   Lumo::NetU16 familyNbo() const noexcept { return family_; }
   void familyNboIs( Lumo::NetU16 family ) noexcept { family_ = family; }
   /// Address family of the root; any number may come, it need not be an enumerator.
   Lumo::AddressFamily family() const noexcept { return Lumo::AddressFamily( family_.value() ); }
   /// Length of the root address in octets.
   U8 rootIpLenOctets() const noexcept { return rootIpLenOctets_; }
   void rootIpLenOctetsIs( U8 octets ) noexcept { rootIpLenOctets_ = octets; }

 private:
   Lumo::NetU16 family_;
   U8 rootIpLenOctets_ = 0;
};
static_assert( sizeof( LdpFecTlvP2mpElementHdr ) == 4 && alignof( LdpFecTlvP2mpElementHdr ) == 1 );

/// The opaque length of a P2MP element: the octets of all its opaque sub-elements, their headers included,
/// and nothing else.
class VORN_API LdpFecTlvP2mpOpaqueLength {
   VORN_REFLECTED( LdpFecTlvP2mpOpaqueLength, void )

 public:
   LdpFecTlvP2mpOpaqueLength() noexcept = default;
   /// The length in octets.
   Lumo::NetU16 totalOpaqueLen() const noexcept { return totalOpaqueLen_; }
   void totalOpaqueLenIs( Lumo::NetU16 octets ) noexcept { totalOpaqueLen_ = octets; }

   VORN_FROM_LOG( LdpFecTlvP2mpOpaqueLength )
   /// Whether the value equals a default one.
   bool operator!() const noexcept { return !totalOpaqueLen_; }
   friend bool operator==( LdpFecTlvP2mpOpaqueLength, LdpFecTlvP2mpOpaqueLength ) noexcept = default;

 private:
   Lumo::NetU16 totalOpaqueLen_;
};
static_assert( sizeof( LdpFecTlvP2mpOpaqueLength ) == 2 );
VORN_TEXT( LdpFecTlvP2mpOpaqueLength )

/// Head of any one opaque sub-element (RFC 6388, 2.3).
class VORN_API LdpMPBasicOpaqueValueElementHdr {
   VORN_REFLECTED( LdpMPBasicOpaqueValueElementHdr, void )

 public:
   LdpMPBasicOpaqueValueElementHdr() noexcept = default;
   /// Type of the sub-element.
   U8 type() const noexcept { return type_; }
   void typeIs( U8 type ) noexcept { type_ = type; }
   /// Length of the sub-element's value, in octets.
   Lumo::NetU16 opaqueLenNbo() const noexcept { return opaqueLen_; }
   void opaqueLenNboIs( Lumo::NetU16 octets ) noexcept { opaqueLen_ = octets; }

   VORN_FROM_LOG( LdpMPBasicOpaqueValueElementHdr )
   /// Whether the value equals a default one.
   bool operator!() const noexcept { return *this == LdpMPBasicOpaqueValueElementHdr(); }
   friend bool operator==( LdpMPBasicOpaqueValueElementHdr const &,
                           LdpMPBasicOpaqueValueElementHdr const & ) noexcept = default;

 private:
   U8 type_ = 0;
   Lumo::NetU16 opaqueLen_;
};
static_assert( sizeof( LdpMPBasicOpaqueValueElementHdr ) == 3 );
VORN_TEXT( LdpMPBasicOpaqueValueElementHdr )

/// Generic LSP identifier (RFC 6388, 2.3.1): that head with a 32-bit identifier behind it.
class VORN_API LdpGenericLSPId {
   VORN_REFLECTED( LdpGenericLSPId, void )

 public:
   LdpGenericLSPId() noexcept = default;
   /// Type of the sub-element; 1 for a generic LSP identifier.
   U8 type() const noexcept { return type_; }
   void typeIs( U8 type ) noexcept { type_ = type; }
   /// Length of the identifier in octets: 4.
   Lumo::NetU16 opaqueLenNbo() const noexcept { return opaqueLen_; }
   void opaqueLenNboIs( Lumo::NetU16 octets ) noexcept { opaqueLen_ = octets; }
   /// The identifier.
   Lumo::NetU32 opaqueId() const noexcept { return opaqueId_; }
   void opaqueIdIs( Lumo::NetU32 id ) noexcept { opaqueId_ = id; }

   VORN_FROM_LOG( LdpGenericLSPId )
   /// Whether the value equals a default one.
   bool operator!() const noexcept { return *this == LdpGenericLSPId(); }
   friend bool operator==( LdpGenericLSPId const &, LdpGenericLSPId const & ) noexcept = default;

 private:
   U8 type_ = 0;
   Lumo::NetU16 opaqueLen_;
   Lumo::NetU32 opaqueId_;
};
static_assert( sizeof( LdpGenericLSPId ) == 7 );
VORN_TEXT( LdpGenericLSPId )

/// What a parsed P2MP element says: the root of the tree, and the opaque value as it stood on the wire.
class VORN_API LdpP2mpFecElement {
   VORN_REFLECTED( LdpP2mpFecElement, void )

 public:
   LdpP2mpFecElement() noexcept = default;
   /// Address of the root.
   Lumo::IpGenAddr const & rootIp() const noexcept { return rootIp_; }
   void rootIpIs( Lumo::IpGenAddr const & rootIp ) noexcept { rootIp_ = rootIp; }
   /// Raw octets of the opaque value; any octet may occur, zero included.
   Vorn::String const & opaqueStr() const noexcept { return opaqueStr_; }
   void opaqueStrIs( Vorn::String const & opaqueStr ) noexcept { opaqueStr_ = opaqueStr; }

   /// Root, "_", and the raw octets.
   Vorn::String stringValue() const;

   VORN_FROM_LOG( LdpP2mpFecElement )
   /// Whether the value equals a default one.
   bool operator!() const noexcept { return *this == LdpP2mpFecElement(); }
   friend bool operator==( LdpP2mpFecElement const &, LdpP2mpFecElement const & ) noexcept = default;

 private:
   Lumo::IpGenAddr rootIp_;
   Vorn::String opaqueStr_;
};
VORN_TEXT( LdpP2mpFecElement )

/// Identity of a P2MP FEC whose opaque value is a generic LSP identifier.
class VORN_API LdpP2mpFecGenericOpaqueId {
   VORN_REFLECTED( LdpP2mpFecGenericOpaqueId, void )

 public:
   /// Name of the attribute that stands for the whole value.
   static constexpr char const * defaultAttribute = "stringValue";

   /// The default has no root and identifier 0.
   LdpP2mpFecGenericOpaqueId() noexcept = default;
   LdpP2mpFecGenericOpaqueId( Lumo::IpGenAddr const & rootIp, U32 gOpaqueId ) noexcept
        : rootIp_( rootIp ), gOpaqueId_( gOpaqueId ) {}

   /// Address of the root.
   Lumo::IpGenAddr const & rootIp() const noexcept { return rootIp_; }
   /// The identifier that the root gave the LSP.
   U32 gOpaqueId() const noexcept { return gOpaqueId_; }

   /// Root, "_", identifier in decimal.
   Vorn::String stringValue() const;
   /// Reads that form, whole. Throws RangeException, and then the value stays as it was.
   void stringValueIs( Vorn::String const & text );

   /// Equal values have equal hashes.
   U32 hash() const noexcept;
   VORN_FROM_LOG( LdpP2mpFecGenericOpaqueId )
   /// Whether the value equals a default one.
   bool operator!() const noexcept { return *this == LdpP2mpFecGenericOpaqueId(); }
   friend bool operator==( LdpP2mpFecGenericOpaqueId const &,
                           LdpP2mpFecGenericOpaqueId const & ) noexcept = default;
   /// By root, then by identifier.
   friend bool operator<( LdpP2mpFecGenericOpaqueId const & a,
                          LdpP2mpFecGenericOpaqueId const & b ) noexcept {
      return a.rootIp_ == b.rootIp_ ? a.gOpaqueId_ < b.gOpaqueId_ : a.rootIp_ < b.rootIp_;
   }

 private:
   Lumo::IpGenAddr rootIp_;
   U32 gOpaqueId_ = 0;
};
VORN_TEXT( LdpP2mpFecGenericOpaqueId )

/// In the attribute log the fields in their order.
VORN_API void logOut( Vorn::NboAttrLog::Out & out, LdpP2mpFecGenericOpaqueId const & value );
VORN_API void logIn( Vorn::NboAttrLog::In & in, LdpP2mpFecGenericOpaqueId * value );

} // namespace Ldp
