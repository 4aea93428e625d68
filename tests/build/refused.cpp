// An attribute id outside its type's window: refused with -DVALUE_ID=0x80 and with -DENTITY_ID=0x182, for
// example. With the ids given here it compiles.
#include "Vorn/Attributes.h"

#ifndef VALUE_ID
#define VALUE_ID 0x2
#endif
#ifndef ENTITY_ID
#define ENTITY_ID 0x102
#endif

class Value {
   VORN_VALUE( Value )
   VORN_FIELD( VALUE_ID, U32, field ) = 0;

 public:
   Value() noexcept = default;
   friend bool operator==( Value const &, Value const & ) noexcept = default;
};

class Thing : public Vorn::Entity {
   VORN_ENTITY( Thing, Vorn::Entity )
   VORN_NOTIFIEE( VORN_ON( Number ); )
   VORN_MUTABLE( ENTITY_ID, U32, number, Number, local ) = 0;
   VORN_OBSERVERS;
};
