// The forms of values in the attribute log.
#include "commands/types/WireForm.h"

#include "Bridging/VlanId.h"
#include "L3/VrfName.h"
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

void writeWireForm( JsonWriter & json, VornType const & type ) {
   if ( char const * const form = formOf( type ) ) return json.value( form );
   if ( !type.methods || !type.methods->logOut || !type.attributes ) return json.null();
   json.array();
   for ( VornAttr const * attr = type.attributes; attr->name; ++attr )
      if ( attr->isField() ) writeField( json, attr->name, *attr->type );
   json.endArray();
}

} // namespace LdpTool
