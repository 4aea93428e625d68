/// \file
/// A list whose members carry its links: each knows its neighbours, so that it leaves in one step. It holds
/// no reference to them.
#pragma once

namespace Vorn::NboAttrLog {

template< class T, class Tag >
class LinkedList;

/// Base of what can stand in one list of that tag at a time. Only the list touches it.
template< class T, class Tag >
class ListLink {
   friend class LinkedList< T, Tag >;
   T * next_ = nullptr; // the last points to null
   T * prev_ = nullptr; // the first points to the last
};

template< class T, class Tag >
class LinkedList {
   using Link = ListLink< T, Tag >;

 public:
   T * first() const noexcept { return first_; }
   static T * next( T const & member ) noexcept { return static_cast< Link const & >( member ).next_; }

   void pushFront( T & member ) noexcept {
      link( member ).next_ = first_;
      link( member ).prev_ = first_ ? link( *first_ ).prev_ : &member;
      if ( first_ ) link( *first_ ).prev_ = &member;
      first_ = &member;
   }
   void pushBack( T & member ) noexcept {
      if ( !first_ ) return pushFront( member );
      T & last = *link( *first_ ).prev_;
      link( member ).next_ = nullptr;
      link( member ).prev_ = &last;
      link( last ).next_ = link( *first_ ).prev_ = &member;
   }
   /// Takes out a member, which must be in this list.
   void remove( T & member ) noexcept {
      Link & at = link( member );
      if ( T * const behind = at.next_ ) {
         link( *behind ).prev_ = at.prev_;
      } else if ( &member != first_ ) {
         link( *first_ ).prev_ = at.prev_;
      }
      ( &member == first_ ? first_ : link( *at.prev_ ).next_ ) = at.next_;
      at.next_ = at.prev_ = nullptr;
   }

 private:
   static Link & link( T & member ) noexcept { return member; }

   T * first_ = nullptr;
};

} // namespace Vorn::NboAttrLog
