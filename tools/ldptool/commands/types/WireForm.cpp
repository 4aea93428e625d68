// The forms of values in the attribute log.
#include "commands/types/WireForm.h"

#include "Bridging/VlanId.h"
#include "L3/VrfName.h"
#include "Ldp/LdpConfig.h"
#include "Lumo/IntfId.h"
#include "Lumo/IpDscp.h"
#include "Lumo/IpMask.h"
#include "Lumo/MplsLabel.h"
#include "Lumo/NamespaceName.h"
#include "Lumo/Net.h"
#include "Lumo/Port.h"
#include "Lumo/TcpClient.h"
#include "Mpls/FwdEqvClass.h"
#include "Mpls/Types.h"
#include "Pseudowire/Types.h"
#include "Vorn/GenericIf.h"

namespace LdpTool {

using Vorn::VornAttr;
using Vorn::VornType;
using Vorn::GenericIf::attributeOp;
using Vorn::GenericIf::Value;

namespace {

template< class... Types >
bool isOneOf( VornType const & type ) {
   return ( ( &type == Vorn::recordOf< Types >() ) || ... );
}

/// Of the types whose records list no fields, those that the log carries: they lay themselves down.
char const * formOf( VornType const & type ) {
   using namespace Lumo;
   using namespace Pseudowire;
   if ( type.isEnum() ) return "U32";
   if ( isOneOf< bool >( type ) ) return "bool";
   if ( isOneOf< double >( type ) ) return "double";
   if ( isOneOf< U8, IpTtl, IpDscp, NetU8, VccvCvTypes >( type ) ) return "U8";
   if ( isOneOf< U16, Port, NetU16, Bridging::VlanIdOrNone >( type ) ) return "U16";
   if ( isOneOf< U32, NetU32, MplsLabel, TcpSocketOptions, TcpConnSocket, PseudowireId, GroupId,
                 PseudowireLdpStatusFlags >( type ) )
      return "U32";
   if ( isOneOf< U64 >( type ) ) return "U64";
   if ( isOneOf< Vorn::String, Vorn::Name, L3::VrfName, IntfId, NamespaceName >( type ) ) return "string";
   if ( isOneOf< IpAddr, Mpls::RouterId >( type ) ) return "ipv4";
   if ( isOneOf< Ip6Addr >( type ) ) return "ipv6";
   if ( isOneOf< IpGenAddr >( type ) ) return "address";
   if ( isOneOf< IpAddrWithMask >( type ) ) return "ipv4Prefix";
   if ( isOneOf< IpGenPrefix, IpGenAddrWithMask >( type ) ) return "prefix";
   if ( isOneOf< Mpls::FwdEqvClass >( type ) ) return "fec";
   if ( isOneOf< PseudowireLdpRequestKey >( type ) ) return "pwKey";
   return nullptr;
}

void writeField( JsonWriter & json, char const * name, VornType const & type ) {
   json.array();
   json.value( name );
   json.value( type.name );
   json.endArray();
}

} // namespace

std::optional< U64 > maskOf( VornType const & type, VornAttr const & flag ) {
   VornAttr const * word = nullptr;
   for ( VornAttr const * attr = type.attributes; attr->name; ++attr ) {
      if ( !attr->isField() ) continue;
      if ( word ) return std::nullopt;
      word = attr;
   }
   if ( !word || !flag.isView() || !isOneOf< bool >( *flag.type ) ) return std::nullopt;
   Value value( &type ), read( word->type );
   bool const set = true;
   void const * const arg = &set;
   attributeOp( type, nullptr, value.data(), flag, Vorn::GenericIf::write, nullptr, &arg );
   attributeOp( type, read.data(), value.data(), *word, Vorn::GenericIf::read, nullptr, nullptr );
   return std::stoull( std::string( read.stringValue().view() ) );
}

std::optional< U32 > limitOf( VornType const & type ) {
   if ( isOneOf< Lumo::MplsLabel >( type ) ) return Lumo::MplsLabel::luWithdraw;
   if ( isOneOf< Bridging::VlanIdOrNone >( type ) ) return Bridging::VlanIdOrNone::max;
   if ( isOneOf< Ldp::LdpGrOperationalFlag >( type ) )
      return Ldp::LdpGrOperationalFlag::grFlagSpeaker_() | Ldp::LdpGrOperationalFlag::grFlagHelper_();
   if ( isOneOf< L3::VrfName >( type ) ) return L3::VrfName::maxLength;
   if ( isOneOf< Lumo::NamespaceName >( type ) ) return Lumo::NamespaceName::maxLength;
   return std::nullopt;
}

void writeWireForm( JsonWriter & json, VornType const & type ) {
   if ( char const * const form = formOf( type ) ) return json.value( form );
   if ( !type.methods || !type.methods->logOut || !type.attributes ) return json.null();
   json.array();
   for ( VornAttr const * attr = type.attributes; attr->name; ++attr )
      if ( attr->isField() ) writeField( json, attr->name, *attr->type );
   json.endArray();
}

} // namespace LdpTool
