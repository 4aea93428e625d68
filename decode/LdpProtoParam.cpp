#include "Ldp/LdpProtoParam.h"

#include "Vorn/VornType.h"

namespace Ldp {

VORN_OBJECT_RECORD( Ldp, LdpProtoParam, nullptr )

LdpProtoParam::~LdpProtoParam() = default;

Vorn::Ptr< LdpProtoParam > ldpProtoParamFactory( Vorn::Name const & name ) {
   return Vorn::newObject< LdpProtoParam >( name );
}

} // namespace Ldp
