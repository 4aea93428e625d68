// Record of the protocol's parameters.
#include "Ldp/LdpProtoParam.h"

namespace Ldp {

VORN_RECORD( Ldp, LdpProtoParam )
VORN_VALUE_RECORD( Ldp, LdpProtoParamSetting )

Vorn::String valueToStrep( LdpProtoParamSetting const & value ) {
   return Vorn::valueToStrep( value.value() );
}

void sequenceToValue( Vorn::String::IteratorConst & it, Vorn::String::IteratorConst const & end,
                      LdpProtoParamSetting * value ) {
   U64 word;
   Vorn::sequenceToValue( it, end, &word );
   value->valueIs( word );
}

VORN_TEXT_STREAM( LdpProtoParamSetting )

} // namespace Ldp
