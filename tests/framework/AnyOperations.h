/// \file
/// A container against a plain model: random operations on both, and a comparison after each.
#pragma once

#include "Vorn/Api.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <ostream>
#include <rapidcheck.h>
#include <vector>

namespace Test {

/// One operation: which, on what, and with what. A model takes it modulo what exists.
struct Op {
   U32 what;
   U32 number;
   U32 token;
};

inline void showValue( Op const & op, std::ostream & out ) {
   out << "{ " << op.what << ", " << op.number << ", " << op.token << " }";
}

/// Applies operations of `kinds` kinds, on numbers below one of `limits`, to a model made from that limit.
template< class Model >
void anyOperations( U32 kinds, std::vector< U32 > const & limits ) {
   EXPECT_TRUE( rc::check( [&] {
      U32 const limit = *rc::gen::elementOf( limits );
      auto const op =
           rc::gen::build< Op >( rc::gen::set( &Op::what, rc::gen::inRange( 0u, kinds ) ),
                                 rc::gen::set( &Op::number, rc::gen::inRange( 0u, std::max( limit, 1u ) ) ),
                                 rc::gen::set( &Op::token, rc::gen::inRange( 0u, 1000u ) ) );
      auto const ops = *rc::gen::container< std::vector< Op > >( op );
      Model model( limit );
      for ( Op const & each : ops ) {
         model.apply( each );
         model.check();
      }
      model.finish();
   } ) );
}

} // namespace Test
