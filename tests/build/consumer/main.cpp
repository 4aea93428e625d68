// The least that shows an installed library at work: make an object of it and use it.
#include "Vorn/String.h"

int main() { return Vorn::String( "a" ) + "b" == Vorn::String( "ab" ) ? 0 : 1; }
