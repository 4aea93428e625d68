// Changes, in order.
#include "monitor/speaker/Journal.h"

namespace LdpTool {

void Journal::add( Change change, Ldp::LdpAdjId const * adjacency ) {
   change.at = arrival_;
   if ( listener_ ) listener_->onChange( change, adjacency );
   if ( most_ == 0 ) return;
   if ( changes_.size() >= most_ ) {
      changes_.pop_front();
      ++turnedAway_.changes;
   }
   changes_.push_back( std::move( change ) );
}

void Journal::releasedIs( Ldp::LdpIdentifier const & speaker, Ldp::LdpIdentifier const & peer,
                          std::string const & fec ) {
   Released & released = released_[{ speaker, peer }];
   if ( !released.times++ ) {
      released.first = arrival_.frame;
      released.fec = fec;
   }
}

Journal::Released Journal::released( Ldp::LdpIdentifier const & speaker,
                                     Ldp::LdpIdentifier const & peer ) const {
   auto const known = released_.find( { speaker, peer } );
   return known == released_.end() ? Released() : known->second;
}

void Journal::downIs( Ldp::LdpIdentifier const & speaker, Ldp::LdpIdentifier const & peer,
                      std::string cause ) {
   downs_[{ speaker, peer }] = { arrival_, std::move( cause ) };
}

std::optional< Journal::Down > Journal::lastDown( Ldp::LdpIdentifier const & speaker,
                                                  Ldp::LdpIdentifier const & peer ) const {
   auto const known = downs_.find( { speaker, peer } );
   if ( known == downs_.end() ) return {};
   return known->second;
}

} // namespace LdpTool
