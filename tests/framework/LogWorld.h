/// \file
/// An original of many types, and random operations on it, for the tests that drive an attribute log as a
/// hostile network would.
#pragma once

#include "framework/AllKinds.h"
#include "framework/LogPair.h"
#include "support/LogKinds.h"

#include "Ldp/LdpAdj.h"

#include <random>

namespace Test {

class LogWorld {
 public:
   /// `keys` is how many keys each collection draws from.
   LogWorld( std::mt19937_64 & random, U32 keys );

   /// Does something to one of the entities.
   void step();
   void steps( U32 number );
   /// Puts the entities on a log, each by itself.
   void attach( Ptr< Out > const & out, bool otherReadsOnly = true );
   std::vector< Ptr< Vorn::Entity > > const & roots() const { return roots_; }
   /// Only ever grows, by one at a time.
   double height() const { return tree_->height(); }
   Tree const & tree() const { return *tree_; }
   /// From now on somebody else writes the trees' age.
   void leaveAge() { ownsAge_ = false; }

   U32 below( U32 limit ) { return U32( random_() % limit ); }

 private:
   void treeStep();
   void branchStep( Branch & branch );
   void twigStep( Twig & twig, Branch & branch );
   void everythingStep();
   void adjStep();
   Ptr< Branch > branch();
   Vorn::String word();
   Ldp::LdpAdjId adjId();

   std::mt19937_64 & random_;
   U32 keys_;
   bool ownsAge_ = true;
   Ptr< Tree > tree_;
   Ptr< Derived > everything_;
   Ptr< Ldp::LdpAdjStatusColl > status_;
   Ptr< Ldp::LdpAdjConfigColl > config_;
   std::vector< Ptr< Vorn::Entity > > roots_;
};

} // namespace Test
