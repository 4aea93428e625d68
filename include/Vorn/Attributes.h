/// \file
/// The attribute lines of entities: one line declares an attribute, and all that is mechanical follows from
/// it: field, accessor, mutator, notification, reflection record, log.
///
///     /// Run-time state of one hello adjacency.
///     class VORN_API LdpAdjStatus : public Vorn::Entity {
///        VORN_ENTITY( LdpAdjStatus, Vorn::Entity )
///
///      public:
///        explicit LdpAdjStatus( LdpAdjId const & ldpAdjId ) : ldpAdjId_( ldpAdjId ) {}
///
///        VORN_KEY( 0x102, LdpAdjId, ldpAdjId );
///        /// Last status of the adjacency.
///        VORN_MUTABLE( 0x103, LdpStatusCode, adjStatusCode, AdjStatusCode, replicated ) = success;
///        /// Id of the last message.
///        VORN_COUNTER( 0x104, U32, msgId, MsgId, local ) = 0;
///
///        VORN_NEXT_LINK; // the entities are members of a collection
///        VORN_OBSERVERS;
///     };
///     VORN_FACTORY( LdpAdjStatus, ldpAdjStatusFactory )
///
/// and in the source file `VORN_RECORD( Ldp, LdpAdjStatus )`.
///
/// A line ends in the field's declaration, so the default stands behind it; without one it is `Type{}`. Each
/// line declares one overload of `vornAttr( AttrId< id > )`, whose result is the attribute's record; the
/// type's table is the overloads of consecutive ids. `Name` in a line is the attribute's name with a capital,
/// for the callback `onName` of the type's `NotifieeConst`: each line adds its own, in a class over that of
/// the line before.
///
/// A mutator compares, stores, and tells the observers if there are any; that is all that it does.
#pragma once

#include "Vorn/Impl/EntityRecord.h"

namespace Vorn {

/// How far the lines of a type have come. What stands for more of them converts to what stands for less.
template< int rank >
struct LineRank; /// \cond Doxygen takes this for a recursion.
template<>
struct LineRank< 0 > {};
template< int rank >
struct LineRank : LineRank< rank - 1 > {}; /// \endcond
/// The rank of an attribute's line, or of one `offset` further.
template< U32 id, U32 first, int offset >
using LineOf = LineRank< ( isAttrIdOf( id, first ) ? int( id - first ) : 0 ) + 1 + offset >;
/// Behind all lines.
using LastLine = LineRank< 0x82 >;

} // namespace Vorn

/// Opens an entity type. `Base` is `Vorn::Entity` or an entity type.
#define VORN_ENTITY( Type, Base )                                                                            \
   VORN_OBJECT( Type )                                                                                       \
   using Self = Type;                                                                                        \
                                                                                                             \
 public:                                                                                                     \
   ~Type() override;                                                                                         \
   using VornBase = Base;                                                                                    \
   static constexpr U32 vornFirstId = Base::vornChildFirstId;                                                \
   static constexpr U32 vornChildFirstId = vornFirstId + 0x80;                                               \
   /** A new object without a parent. */                                                                     \
   template< class... Args >                                                                                 \
   static ::Vorn::MadeFrom< Type, Args... > Type##Is( Args const &... args ) {                               \
      return ::Vorn::newObject< Type >( args... );                                                           \
   }                                                                                                         \
   /** What `genericIfNotifiee` makes: forwards every change to a generic observer. */                       \
   using GenericIfNotifiee_ = ::Vorn::GenericIfNotifieeOf< Type >;                                           \
   bool vornHasAttrLogInterface() const override { return _vornType.newEntityForAttrLog; }                   \
                                                                                                             \
 private:                                                                                                    \
   /* Behind the lines so far stands the class with their callbacks. */                                      \
   static ::std::type_identity< Base::NotifieeConst > vornTells( ::Vorn::LineRank< 0 > );                    \
   static void vornClosed( ... ); /* until VORN_OBSERVERS */                                                 \
   VORN_FIRST_LINE_

/// What a line's last word stands for.
#define VORN_REPLICATION_( word ) ::Vorn::replicationOf( #word )

/// Stands in the lines that end in a field and add no callback.
#define VORN_BEFORE_OBSERVERS_                                                                               \
   static_assert( ::std::is_void_v< decltype( vornClosed( 0 ) ) >,                                           \
                  "attribute lines stand before VORN_OBSERVERS" );
/// The callbacks that a line adds.
#define VORN_CALLBACKS_( id, X, word, ... )                                                                  \
   VORN_BEFORE_OBSERVERS_                                                                                    \
 public:                                                                                                     \
   static_assert( ::Vorn::isReplicationWord( #word ),                                                        \
                  "the last word of an attribute line is replicated or local" );                             \
   class On##X##_ : public decltype( vornTells( ::Vorn::LineOf< id, vornFirstId, -1 >{} ) )::type {          \
    public:                                                                                                  \
      __VA_ARGS__                                                                                            \
   };                                                                                                        \
   static ::std::type_identity< On##X##_ > vornTells( ::Vorn::LineOf< id, vornFirstId, 0 > );
/// The callback of a scalar or a single child.
#define VORN_ON_( id, X, word ) VORN_CALLBACKS_( id, X, word, virtual void on##X(){} )
/// The callbacks of a keyed attribute, of which mutators call the one with the key.
#define VORN_ON_KEYED_( id, Key, X, word )                                                                   \
   VORN_CALLBACKS_(                                                                                          \
        id, X, word, virtual void on##X( ::Vorn::Arg< Key > ) {} virtual void on##X##vornImmediate() {       \
        } virtual void on##X(){} )

/// The name that a named entity is constructed with. Its constructor passes it on: `explicit T( Vorn::Name
/// name )`.
#define VORN_NAME                                                                                            \
   VORN_BEFORE_OBSERVERS_                                                                                    \
 public:                                                                                                     \
   static constexpr bool vornNamed = true;                                                                   \
   ::Vorn::Name name() const override { return name_; }                                                      \
   ::Vorn::Name const & vornKey() const noexcept { return name_; }                                           \
                                                                                                             \
 private:                                                                                                    \
   ::Vorn::Name name_

/// Constructor argument, immutable.
#define VORN_CTOR_ARG( id, Type, x )                                                                         \
   VORN_CHECK_TYPE_( Type ) VORN_CTOR_ARG_( id, ::Vorn::AttrType< Type >, x, 0 )
#define VORN_CTOR_ARG_( id, Type, x, flags_ )                                                                \
   VORN_BEFORE_OBSERVERS_                                                                                    \
 public:                                                                                                     \
   ::Vorn::Arg< Type > x() const noexcept { return x##_; }                                                   \
   VORN_ATTR_( id ) {                                                                                        \
      auto attr = ::Vorn::attrRecord< VORN_SELF_, Type >(                                                    \
           #x, ::Vorn::VornKind::constructor, id, ::Vorn::local, &::Vorn::readOps< VORN_SELF_, &Self::x > ); \
      attr.flags |= flags_;                                                                                  \
      return attr;                                                                                           \
   }                                                                                                         \
                                                                                                             \
 private:                                                                                                    \
   Type x##_ = ::Vorn::Default< Type > {}

/// Constructor argument that is the key of the entity in its collection. It need not be the first.
#define VORN_KEY( id, Type, x )                                                                              \
 public:                                                                                                     \
   static constexpr bool vornNamed = false; /* even where the base goes by name */                           \
   ::Vorn::Arg< Type > vornKey() const noexcept { return x##_; }                                             \
   VORN_CTOR_ARG_( id, ::Vorn::AttrKey< Type >, x, ::Vorn::keyAccess )

/// The types of all constructor arguments in their order, for a type that takes more than its key or name.
#define VORN_CTOR_TYPES( ... )                                                                               \
 public:                                                                                                     \
   using VornCtorTypes = std::tuple< __VA_ARGS__ >;                                                          \
                                                                                                             \
 private:

/// What the mutable lines share. `flags` is or'ed to the record's.
#define VORN_SCALAR_( id, Type, x, X, kind, replication, flags_ )                                            \
   VORN_SCALAR_OPS_( id, Type, x, X, kind, replication, flags_,                                              \
                     VORN_ARG_( ::Vorn::scalarOps< VORN_SELF_, Type, &Self::x, &Self::x##Is > ) )
#define VORN_SCALAR_OPS_( id, Type, x, X, kind, replication, flags_, ops_ )                                  \
   VORN_ON_( id, X, replication )                                                                            \
   ::Vorn::Arg< Type > x() const noexcept { return x##_; }                                                   \
   void x##Is( ::Vorn::Arg< Type > value ) {                                                                 \
      ::Vorn::scalarIs( *this, x##_, value, ::Vorn::changeOf< Self, id, &On##X##_::on##X > );                \
   }                                                                                                         \
   VORN_ATTR_( id ) {                                                                                        \
      auto attr =                                                                                            \
           ::Vorn::attrRecord< VORN_SELF_, Type >( #x, kind, id, VORN_REPLICATION_( replication ), &ops_ );  \
      attr.flags |= flags_;                                                                                  \
      return attr;                                                                                           \
   }                                                                                                         \
                                                                                                             \
 private:                                                                                                    \
   Type x##_ = ::Vorn::Default< Type > {}

/// Scalar with a mutator.
#define VORN_MUTABLE( id, Type, x, X, replication )                                                          \
   VORN_CHECK_TYPE_( Type )                                                                                  \
   VORN_SCALAR_( id, ::Vorn::AttrType< Type >, x, X, ::Vorn::VornKind::mutableAttr, replication, 0 )
/// Constructor argument that can be changed afterwards.
#define VORN_MUTABLE_CTOR_ARG( id, Type, x, X, replication )                                                 \
   VORN_CHECK_TYPE_( Type )                                                                                  \
   VORN_SCALAR_( id, ::Vorn::AttrType< Type >, x, X, ::Vorn::VornKind::mutableAttr, replication,             \
                 ::Vorn::ctorArgAccess )
/// Reference to a counted object that somebody else owns; compared by identity.
#define VORN_REFERENCE( id, Type, x, X, replication )                                                        \
   VORN_SCALAR_( id, ::Vorn::Ptr< Type >, x, X, ::Vorn::VornKind::reference, replication, 0 )

/// Scalar with a mutator, and reference, whose place at times holds the context of a notification, of which
/// the attribute log knows nothing: `bool inContext( U32 id ) const` of the class says when.
#define VORN_CONTEXT_OPS_( Type, x )                                                                         \
   VORN_ARG_( ::Vorn::contextOps< VORN_SELF_, Type, &Self::x, &Self::x##Is, &Self::inContext > )
/// A scalar of that kind.
#define VORN_CONTEXT( id, Type, x, X )                                                                       \
   VORN_SCALAR_OPS_( id, Type, x, X, ::Vorn::VornKind::mutableAttr, replicated, 0,                           \
                     VORN_CONTEXT_OPS_( Type, x ) )
/// A reference of that kind.
#define VORN_CONTEXT_REFERENCE( id, Type, x, X )                                                             \
   VORN_SCALAR_OPS_( id, ::Vorn::Ptr< Type >, x, X, ::Vorn::VornKind::reference, replicated, 0,              \
                     VORN_CONTEXT_OPS_( ::Vorn::Ptr< Type >, x ) )

/// Mutable scalar that also counts: `xInc( n )` adds with wrap at the attribute's width, tells if the value
/// changed, and returns the new value.
#define VORN_COUNTER( id, Type, x, X, replication )                                                          \
 public:                                                                                                     \
   Type x##Inc( Type n ) {                                                                                   \
      Type const value = Type( x##_ + n );                                                                   \
      x##Is( value );                                                                                        \
      return value;                                                                                          \
   }                                                                                                         \
   VORN_MUTABLE( id, Type, x, X, replication )
/// A counter that counts down as well.
#define VORN_COUNTER_DEC( id, Type, x, X, replication )                                                      \
 public:                                                                                                     \
   Type x##Dec( Type n ) { return x##Inc( Type( 0 - n ) ); }                                                 \
   VORN_COUNTER( id, Type, x, X, replication )

/// State outside notification: stored as it is, told to nobody. Local scalars are of this kind.
#define VORN_STATE( id, Type, x )                                                                            \
   VORN_CHECK_TYPE_( Type ) VORN_STATE_CHECKED_( id, ::Vorn::AttrType< Type >, x )
#define VORN_STATE_CHECKED_( id, Type, x )                                                                   \
   VORN_STATE_( id, Type, x )                                                                                \
   Type x##_ = ::Vorn::Default< Type > {}
/// State that const functions change too.
#define VORN_SLOT( id, Type, x )                                                                             \
   VORN_CHECK_TYPE_( Type ) VORN_SLOT_CHECKED_( id, ::Vorn::AttrType< Type >, x )
#define VORN_SLOT_CHECKED_( id, Type, x )                                                                    \
   VORN_STATE_( id, Type, x )                                                                                \
   mutable Type x##_ = ::Vorn::Default< Type > {}
/// A local scalar that counts: `xInc( n )` adds with wrap at the attribute's width and returns the new value.
#define VORN_LOCAL_COUNTER( id, Type, x )                                                                    \
 public:                                                                                                     \
   Type x##Inc( Type n ) noexcept { return x##_ = Type( x##_ + n ); }                                        \
   VORN_STATE( id, Type, x )
#define VORN_STATE_( id, Type, x )                                                                           \
   VORN_BEFORE_OBSERVERS_                                                                                    \
 public:                                                                                                     \
   ::Vorn::Arg< Type > x() const noexcept { return x##_; }                                                   \
   void x##Is( ::Vorn::Arg< Type > value ) { x##_ = value; }                                                 \
   VORN_ATTR_( id ) {                                                                                        \
      return ::Vorn::attrRecord< VORN_SELF_, Type >(                                                         \
           #x, ::Vorn::VornKind::state, id, ::Vorn::local,                                                   \
           &::Vorn::scalarOps< VORN_SELF_, Type, &Self::x, &Self::x##Is > );                                 \
   }                                                                                                         \
                                                                                                             \
 private:

/// Computed on each read: a const member function that the class declares and defines by hand.
#define VORN_DERIVED( id, Type, x )                                                                          \
 public:                                                                                                     \
   Type x() const;                                                                                           \
   VORN_REFLECT_( id, Type, x, ::Vorn::VornKind::derived )
/// Constant that is computed on each read: a const member function that the class declares and defines by
/// hand.
#define VORN_DERIVED_CONSTANT( id, Type, x )                                                                 \
 public:                                                                                                     \
   Type x() const;                                                                                           \
   VORN_REFLECT_( id, Type, x, ::Vorn::VornKind::derivedConstant )
/// A const operation without arguments that gives a value and may do more than read.
#define VORN_READ_OPERATION( id, Type, x )                                                                   \
 public:                                                                                                     \
   Type x() const;                                                                                           \
   VORN_REFLECT_( id, Type, x, ::Vorn::VornKind::derivedLight )
/// What can be written, by a mutator that the class defines by hand, and not read.
#define VORN_WRITE_ONLY( id, Type, x )                                                                       \
 public:                                                                                                     \
   void x##Is( ::Vorn::Arg< Type > value );                                                                  \
   VORN_ATTR_( id ) {                                                                                        \
      return ::Vorn::attrRecord< VORN_SELF_, Type >( #x, ::Vorn::VornKind::state, id, ::Vorn::local,         \
                                                     &::Vorn::writeOps< VORN_SELF_, Type, &Self::x##Is > );  \
   }                                                                                                         \
   static_assert( true )
#define VORN_REFLECT_( id, Type, x, kind )                                                                   \
   VORN_ATTR_( id ) {                                                                                        \
      return ::Vorn::attrRecord< VORN_SELF_, Type >( #x, kind, id, ::Vorn::local,                            \
                                                     &::Vorn::readOps< VORN_SELF_, &Self::x > );             \
   }                                                                                                         \
   static_assert( true )

/// Constant of the type: `VORN_CONSTANT( 0x115, double, linkReadyTimeoutDefault, 60.0 );`
#define VORN_CONSTANT( id, Type, x, value )                                                                  \
 public:                                                                                                     \
   static constexpr ::Vorn::ConstantOf< Type, decltype( value ) > x() noexcept { return value; }             \
   VORN_ATTR_( id ) {                                                                                        \
      return ::Vorn::attrRecord< VORN_SELF_, Type >( #x, ::Vorn::VornKind::constant, id, ::Vorn::local,      \
                                                     &::Vorn::constantOps< Type, &Self::x > );               \
   }                                                                                                         \
   static_assert( true )

/// Reflects a member function with logic of its own, which the class declares beside the line.
#define VORN_FUNCTION( id, x )                                                                               \
 public:                                                                                                     \
   VORN_ATTR_( id ) { return ::Vorn::functionRecord< VORN_SELF_, &Self::x >( #x, id ); }                     \
   static_assert( true )

/// Owned single child. `xIs( args... )` gives the present child if it was made from the same arguments, and
/// else makes one in its place; `xDel()` takes it out and returns it.
#define VORN_CHILD( id, Type, x, X, replication )                                                            \
   VORN_ON_( id, X, replication )                                                                            \
   ::Vorn::Ptr< Type > x() const noexcept { return x##_.get(); }                                             \
   template< class... Args >                                                                                 \
   ::Vorn::MadeFrom< Type, Args... > x##Is( Args const &... args ) {                                         \
      return ::Vorn::childIs( ::Vorn::Owner( *this ), x##_, ::Vorn::changeOf< Self, id, &On##X##_::on##X >,  \
                              args... );                                                                     \
   }                                                                                                         \
   ::Vorn::Ptr< Type > x##Del() {                                                                            \
      return ::Vorn::childDel( ::Vorn::Owner( *this ), x##_,                                                 \
                               ::Vorn::changeOf< Self, id, &On##X##_::on##X > );                             \
   }                                                                                                         \
   VORN_ATTR_( id ) {                                                                                        \
      auto attr = ::Vorn::attrRecord< VORN_SELF_, Type >(                                                    \
           #x, ::Vorn::VornKind::child, id, VORN_REPLICATION_( replication ),                                \
           &::Vorn::childOps< VORN_SELF_, Type, &Self::x##_,                                                 \
                              &::Vorn::changeOf< Self, id, &On##X##_::on##X > > );                           \
      attr.memberCtorArgs = ::Vorn::memberCtorArgs< Type, VornWhenUsed >();                                  \
      return attr;                                                                                           \
   }                                                                                                         \
                                                                                                             \
 private:                                                                                                    \
   ::Vorn::Child< Type > x##_

/// What the collections share. `Map` is the container's type.
#define VORN_COLL_( id, Key, x, X, word, Map )                                                               \
   VORN_ON_KEYED_( id, Key, X, word )                                                                        \
   VORN_MEMBERS_( x, VORN_ARG_( Map ) )                                                                      \
   void x##Notify( ::Vorn::Arg< Key > key ) const { notify( x##Change_(), &key ); }                          \
   /* Public for the templates behind the line alone. */                                                     \
   static constexpr ::Vorn::NotifieeChange const & x##Change_() {                                            \
      return ::Vorn::keyedChangeOf<                                                                          \
           Self, id, Key, static_cast< void ( On##X##_::* )( ::Vorn::Arg< Key > ) >( &On##X##_::on##X ) >;   \
   }
/// The same for the local kinds, which tell nobody.
#define VORN_LOCAL_COLL_( x, Map )                                                                           \
   VORN_BEFORE_OBSERVERS_                                                                                    \
   VORN_MEMBERS_( x, VORN_ARG_( Map ) )                                                                      \
   static constexpr ::Vorn::Silence x##Change_() { return {}; }
#define VORN_MEMBERS_( x, Map )                                                                              \
 public:                                                                                                     \
   /** The members, for a walk that may delete as it goes. */                                                \
   Map const & x##Coll() const noexcept { return x##_; }                                                     \
   U32 x##s() const noexcept { return x##_.members(); }

/// Owned keyed collection of entities. `xIs` takes what the members' constructor takes, in its order: the
/// key, and further arguments in front of it or behind. It gives the member, which it makes if there is none.
#define VORN_ENTITY_COLL( id, Type, Key, x, X, replication )                                                 \
   VORN_CHECK_KEY_( Key ) VORN_ENTITY_COLL_CHECKED_( id, Type, ::Vorn::AttrKey< Key >, x, X, replication )
#define VORN_ENTITY_COLL_CHECKED_( id, Type, Key, x, X, replication )                                        \
   VORN_COLL_( id, Key, x, X, replication, VORN_ARG_( ::Vorn::HashMap< Self, Type, Key > ) )                 \
   VORN_ENTITY_COLL_( id, Type, Key, x, ::Vorn::VornKind::entityColl, replication )
/// The same, told to nobody.
#define VORN_LOCAL_ENTITY_COLL( id, Type, Key, x )                                                           \
   VORN_CHECK_KEY_( Key ) VORN_LOCAL_ENTITY_COLL_CHECKED_( id, Type, ::Vorn::AttrKey< Key >, x )
#define VORN_LOCAL_ENTITY_COLL_CHECKED_( id, Type, Key, x )                                                  \
   VORN_LOCAL_COLL_( x, VORN_ARG_( ::Vorn::HashMap< Self, Type, Key > ) )                                    \
   VORN_ENTITY_COLL_( id, Type, Key, x, ::Vorn::VornKind::localEntityColl, local )
#define VORN_ENTITY_COLL_( id, Type, Key, x, kind, replication )                                             \
   ::Vorn::Ptr< Type > x( ::Vorn::Arg< Key > key ) const { return x##_.member( key ); }                      \
   template< class First = Key, class... More >                                                              \
   ::Vorn::MadeFrom< Type, First, More... > x##Is( First const & first, More const &... more ) {             \
      return ::Vorn::memberIs( ::Vorn::Owner( *this ), x##_, x##Change_(), first, more... );                 \
   }                                                                                                         \
   ::Vorn::Ptr< Type > x##Del( ::Vorn::Arg< Key > key ) {                                                    \
      return ::Vorn::memberDel( ::Vorn::Owner( *this ), x##_, x##Change_(), key );                           \
   }                                                                                                         \
   void x##DelAll() { ::Vorn::membersDel( ::Vorn::Owner( *this ), x##_, x##Change_() ); }                    \
   VORN_ATTR_( id ) {                                                                                        \
      return ::Vorn::keyedRecord< VORN_SELF_, Type, Key >(                                                   \
           #x, kind, id, VORN_REPLICATION_( replication ), ::Vorn::memberKeyName< Type, VornWhenUsed >(),    \
           ::Vorn::memberCtorArgs< Type, VornWhenUsed >(),                                                   \
           &::Vorn::entityCollOps< VORN_SELF_, Type, Key, &Self::x##_, &Self::x##Change_ > );                \
   }                                                                                                         \
                                                                                                             \
 private:                                                                                                    \
   ::Vorn::HashMap< Self, Type, Key > x##_

/// Keyed collection of values.
#define VORN_VALUE_COLL( id, Type, Key, x, X, replication )                                                  \
   VORN_CHECK_TYPE_( Type )                                                                                  \
   VORN_CHECK_KEY_( Key )                                                                                    \
   VORN_VALUE_COLL_CHECKED_( id, ::Vorn::AttrType< Type >, ::Vorn::AttrKey< Key >, x, X, replication )
#define VORN_VALUE_COLL_CHECKED_( id, Type, Key, x, X, replication )                                         \
   VORN_COLL_( id, Key, x, X, replication, VORN_ARG_( ::Vorn::HashMap2018< Self, Key, Type > ) )             \
   VORN_VALUE_COLL_( id, Type, Key, x, ::Vorn::VornKind::valueColl, replication )
/// The same, told to nobody.
#define VORN_LOCAL_VALUE_COLL( id, Type, Key, x )                                                            \
   VORN_CHECK_TYPE_( Type )                                                                                  \
   VORN_CHECK_KEY_( Key )                                                                                    \
   VORN_LOCAL_VALUE_COLL_CHECKED_( id, ::Vorn::AttrType< Type >, ::Vorn::AttrKey< Key >, x )
#define VORN_LOCAL_VALUE_COLL_CHECKED_( id, Type, Key, x )                                                   \
   VORN_LOCAL_COLL_( x, VORN_ARG_( ::Vorn::HashMap2018< Self, Key, Type > ) )                                \
   VORN_VALUE_COLL_( id, Type, Key, x, ::Vorn::VornKind::localValueColl, local )
#define VORN_VALUE_COLL_( id, Type, Key, x, kind, replication )                                              \
   Type x( ::Vorn::Arg< Key > key ) const { return x##_.value( key ); }                                      \
   bool x##Has( ::Vorn::Arg< Key > key ) const { return x##_[key]; }                                         \
   void x##Is( ::Vorn::Arg< Key > key, ::Vorn::Arg< Type > value ) {                                         \
      ::Vorn::valueIs( ::Vorn::Owner( *this ), x##_, x##Change_(), key, value );                             \
   }                                                                                                         \
   Type x##Del( ::Vorn::Arg< Key > key ) {                                                                   \
      return ::Vorn::valueDel< Type >( ::Vorn::Owner( *this ), x##_, x##Change_(), key );                    \
   }                                                                                                         \
   void x##DelAll() { ::Vorn::valuesDel< Key >( ::Vorn::Owner( *this ), x##_, x##Change_() ); }              \
   VORN_ATTR_( id ) {                                                                                        \
      return ::Vorn::keyedRecord< VORN_SELF_, Type, Key >(                                                   \
           #x, kind, id, VORN_REPLICATION_( replication ), nullptr, nullptr,                                 \
           &::Vorn::valueCollOps< VORN_SELF_, Type, Key, &Self::x##_, &Self::x##Change_ > );                 \
   }                                                                                                         \
                                                                                                             \
 private:                                                                                                    \
   ::Vorn::HashMap2018< Self, Key, Type > x##_

/// Keyed counters: `xInc( key, n )` enters an absent key with 0 in silence, adds, and tells if the value
/// changed.
#define VORN_COUNTER_COLL( id, Type, Key, x, X, replication )                                                \
 public:                                                                                                     \
   Type x##Inc( ::Vorn::Arg< Key > key, Type n ) {                                                           \
      return ::Vorn::counterInc< Type >( ::Vorn::Owner( *this ), x##_, x##Change_(), key, n );               \
   }                                                                                                         \
   VORN_VALUE_COLL( id, Type, Key, x, X, replication )

/// Set of keys, reflected as a collection of `bool`.
#define VORN_SET( id, Key, x, X, replication )                                                               \
   VORN_CHECK_KEY_( Key ) VORN_SET_CHECKED_( id, ::Vorn::AttrKey< Key >, x, X, replication )
#define VORN_SET_CHECKED_( id, Key, x, X, replication )                                                      \
   VORN_COLL_( id, Key, x, X, replication, VORN_ARG_( ::Vorn::HashMap2018< Self, Key > ) )                   \
   bool x( ::Vorn::Arg< Key > key ) const { return x##_[key]; }                                              \
   bool x##Has( ::Vorn::Arg< Key > key ) const { return x##_[key]; }                                         \
   void x##Is( ::Vorn::Arg< Key > key ) {                                                                    \
      ::Vorn::keyIs( ::Vorn::Owner( *this ), x##_, x##Change_(), key );                                      \
   }                                                                                                         \
   bool x##Del( ::Vorn::Arg< Key > key ) {                                                                   \
      return ::Vorn::keyDel( ::Vorn::Owner( *this ), x##_, x##Change_(), key );                              \
   }                                                                                                         \
   void x##DelAll() { ::Vorn::valuesDel< Key >( ::Vorn::Owner( *this ), x##_, x##Change_() ); }              \
   VORN_ATTR_( id ) {                                                                                        \
      auto attr = ::Vorn::keyedRecord< VORN_SELF_, bool, Key >(                                              \
           #x, ::Vorn::VornKind::valueColl, id, VORN_REPLICATION_( replication ), nullptr, nullptr,          \
           &::Vorn::setOps< VORN_SELF_, Key, &Self::x##_, &Self::x##Change_ > );                             \
      attr.flags |= ::Vorn::setAccess;                                                                       \
      return attr;                                                                                           \
   }                                                                                                         \
                                                                                                             \
 private:                                                                                                    \
   ::Vorn::HashMap2018< Self, Key > x##_

/// References with the key beside them; a null reference removes the entry.
#define VORN_REFERENCE_COLL( id, Type, Key, x, X, replication )                                              \
   VORN_CHECK_KEY_( Key ) VORN_REFERENCE_COLL_CHECKED_( id, Type, ::Vorn::AttrKey< Key >, x, X, replication )
#define VORN_REFERENCE_COLL_CHECKED_( id, Type, Key, x, X, replication )                                     \
   VORN_COLL_( id, Key, x, X, replication,                                                                   \
               VORN_ARG_( ::Vorn::HashMap2018< Self, Key, ::Vorn::Ptr< Type > > ) )                          \
   ::Vorn::Ptr< Type > x( ::Vorn::Arg< Key > key ) const { return x##_.value( key ); }                       \
   void x##Is( ::Vorn::Arg< Key > key, ::Vorn::Ptr< Type > const & value ) {                                 \
      if ( value ) {                                                                                         \
         ::Vorn::valueIs( ::Vorn::Owner( *this ), x##_, x##Change_(), key, value );                          \
      } else {                                                                                               \
         x##Del( key );                                                                                      \
      }                                                                                                      \
   }                                                                                                         \
   ::Vorn::Ptr< Type > x##Del( ::Vorn::Arg< Key > key ) {                                                    \
      return ::Vorn::valueDel< ::Vorn::Ptr< Type > >( ::Vorn::Owner( *this ), x##_, x##Change_(), key );     \
   }                                                                                                         \
   void x##DelAll() { ::Vorn::valuesDel< Key >( ::Vorn::Owner( *this ), x##_, x##Change_() ); }              \
   VORN_ATTR_( id ) {                                                                                        \
      return ::Vorn::keyedRecord< VORN_SELF_, Type, Key >(                                                   \
           #x, ::Vorn::VornKind::referenceColl, id, VORN_REPLICATION_( replication ), nullptr, nullptr,      \
           &::Vorn::referenceCollOps< VORN_SELF_, Type, Key, &Self::x##_, &Self::x##Change_,                 \
                                      &Self::x##Is > );                                                      \
   }                                                                                                         \
                                                                                                             \
 private:                                                                                                    \
   ::Vorn::HashMap2018< Self, Key, ::Vorn::Ptr< Type > > x##_

/// References that hold their key, which `KeyFunktor` takes from them; a null reference is refused.
#define VORN_KEYED_REFERENCE_COLL( id, Type, Key, KeyFunktor, x, X, replication )                            \
   VORN_CHECK_KEY_( Key )                                                                                    \
   VORN_KEYED_REFERENCE_COLL_CHECKED_( id, Type, ::Vorn::AttrKey< Key >, KeyFunktor, x, X, replication )
#define VORN_KEYED_REFERENCE_COLL_CHECKED_( id, Type, Key, KeyFunktor, x, X, replication )                   \
   VORN_COLL_( id, Key, x, X, replication,                                                                   \
               VORN_ARG_( ::Vorn::HashMap2018< Self, Key, ::Vorn::Ptr< Type >, KeyFunktor > ) )              \
   ::Vorn::Ptr< Type > x( ::Vorn::Arg< Key > key ) const { return x##_.value( key ); }                       \
   void x##Is( ::Vorn::Ptr< Type > const & value ) {                                                         \
      if ( !value ) ::Vorn::throwNullReference( _vornType, #x );                                             \
      ::Vorn::keyedReferenceIs( ::Vorn::Owner( *this ), x##_, x##Change_(), KeyFunktor()( value ), value );  \
   }                                                                                                         \
   ::Vorn::Ptr< Type > x##Del( ::Vorn::Arg< Key > key ) {                                                    \
      return ::Vorn::valueDel< ::Vorn::Ptr< Type > >( ::Vorn::Owner( *this ), x##_, x##Change_(), key );     \
   }                                                                                                         \
   void x##DelAll() { ::Vorn::valuesDel< Key >( ::Vorn::Owner( *this ), x##_, x##Change_() ); }              \
   VORN_ATTR_( id ) {                                                                                        \
      return ::Vorn::keyedRecord< VORN_SELF_, Type, Key >(                                                   \
           #x, ::Vorn::VornKind::referenceColl, id, VORN_REPLICATION_( replication ), nullptr, nullptr,      \
           &::Vorn::referenceCollOps< VORN_SELF_, Type, Key, &Self::x##_, &Self::x##Change_,                 \
                                      &Self::x##Is > );                                                      \
   }                                                                                                         \
                                                                                                             \
 private:                                                                                                    \
   ::Vorn::HashMap2018< Self, Key, ::Vorn::Ptr< Type >, KeyFunktor > x##_

/// Queue of values, each with an index that rises.
#define VORN_QUEUE( id, Type, x, X, replication )                                                            \
   VORN_CHECK_TYPE_( Type ) VORN_QUEUE_CHECKED_( id, ::Vorn::AttrType< Type >, x, X, replication )
#define VORN_QUEUE_CHECKED_( id, Type, x, X, replication )                                                   \
   VORN_COLL_( id, U32, x, X, replication, VORN_ARG_( ::Vorn::LinkQueue< Self, U32, Type > ) )               \
   using Vorn##X = typename ::Vorn::LinkQueue< Self, U32, Type >::Node;                                      \
   ::Vorn::LinkQueue< Self, U32, Type > const & x() const noexcept { return x##_; }                          \
   Type x( U32 index ) const { return x##_.value( index ); }                                                 \
   U32 x##Enq( ::Vorn::Arg< Type > value ) {                                                                 \
      return ::Vorn::queueEnq( ::Vorn::Owner( *this ), x##_, x##Change_(), value );                          \
   }                                                                                                         \
   Type x##Deq() { return ::Vorn::queueDeq< Type >( ::Vorn::Owner( *this ), x##_, x##Change_() ); }          \
   void x##Is( U32 index, ::Vorn::Arg< Type > value ) {                                                      \
      ::Vorn::queueIs( ::Vorn::Owner( *this ), x##_, x##Change_(), index, value );                           \
   }                                                                                                         \
   Type x##Del( U32 index ) {                                                                                \
      return ::Vorn::queueDel< Type >( ::Vorn::Owner( *this ), x##_, x##Change_(), index );                  \
   }                                                                                                         \
   Type x##Del( ::Vorn::LinkQueue< Self, U32, Type >::IteratorConst const & at ) {                           \
      return at ? x##Del( at->index() ) : Type{};                                                            \
   }                                                                                                         \
   void x##DelAll() { ::Vorn::queueDelAll( ::Vorn::Owner( *this ), x##_, x##Change_() ); }                   \
   VORN_ATTR_( id ) {                                                                                        \
      return ::Vorn::keyedRecord< VORN_SELF_, Type, U32 >(                                                   \
           #x, ::Vorn::VornKind::queue, id, VORN_REPLICATION_( replication ), nullptr, nullptr,              \
           &::Vorn::queueOps< VORN_SELF_, Type, &Self::x##_, &Self::x##Change_ > );                          \
   }                                                                                                         \
                                                                                                             \
 private:                                                                                                    \
   ::Vorn::LinkQueue< Self, U32, Type > x##_

/// Stands behind the attributes of a type whose entities are members of a collection: the collection's link,
/// which the collection alone writes.
#define VORN_NEXT_LINK                                                                                       \
   VORN_BEFORE_OBSERVERS_                                                                                    \
 private:                                                                                                    \
   friend struct ::Vorn::NextLink;                                                                           \
   [[maybe_unused]] ::Vorn::Entity * next_ = nullptr /* counted, like every link of a chain */

/// Stands last in every type directly below `Entity`: the type's observer classes, and the head of the list
/// of observers, whom a mutator tells of what it has stored. What derives from the type shares the list.
#define VORN_OBSERVERS                                                                                       \
   VORN_NOTIFIEES_                                                                                           \
   /** The observers. */                                                                                     \
   ::Vorn::NotifieeList * notifieeList() const override { return &notifieeList_; }                           \
   /** Tells them of a change that is stored; for the mutators. */                                           \
   template< class Change >                                                                                  \
   void notify( Change const & change, void const * key = nullptr ) const {                                  \
      notifieeList_.tell( *this, change, key );                                                              \
   }                                                                                                         \
   using VornObserved = Self;                                                                                \
                                                                                                             \
 private:                                                                                                    \
   static_assert( !::Vorn::Observable< VornBase >,                                                           \
                  "the base has the list of observers already: VORN_BASE_OBSERVERS instead" );               \
   mutable ::Vorn::NotifieeList notifieeList_
/// Stands last in every other type: its observer classes.
#define VORN_BASE_OBSERVERS                                                                                  \
   VORN_NOTIFIEES_                                                                                           \
 private:                                                                                                    \
   static_assert( ::Vorn::Observable< VornBase >,                                                            \
                  "the base has no list of observers: VORN_OBSERVERS instead" )
#define VORN_NOTIFIEES_                                                                                      \
 public:                                                                                                     \
   /** Observer of the type. Each callback does nothing by default. */                                       \
   class VORN_API NotifieeConst : public decltype( vornTells( ::Vorn::LastLine{} ) )::type {                 \
    public:                                                                                                  \
      using VornNotifier = Self;                                                                             \
      NotifieeConst() { notifierTypeIs( &Self::_vornType ); }                                                \
   };                                                                                                        \
   /** Observer that also writes to what it watches. */                                                      \
   class VORN_API Notifiee : public NotifieeConst {};                                                        \
   static bool vornClosed( int );

/// Keeps commas of a template's arguments within one argument of a macro.
#define VORN_ARG_( ... ) __VA_ARGS__

/// All that a type needs in a source file, in its namespace: defines the record, the memory tracker and the
/// destructor, and registers the type.
#define VORN_RECORD( Namespace, Type )                                                                       \
   VORN_RECORD_BUT_DESTRUCTOR( Namespace, Type )                                                             \
   Type::~Type() = default;
/// The same for a type that defines its destructor by hand.
#define VORN_RECORD_BUT_DESTRUCTOR( Namespace, Type )                                                        \
   static_assert( ::Vorn::endsInObservers< Type >,                                                           \
                  "the type lacks its last line: VORN_OBSERVERS, or VORN_BASE_OBSERVERS where its base has " \
                  "observers" );                                                                             \
   constinit ::Vorn::VornType const Type::_vornType = ::Vorn::entityRecord< Type >( #Namespace "::" #Type ); \
   ::Vorn::AllocTrackTypeInfo Type::vornAllocTrackTypeInfo_{ &Type::_vornType };                             \
   VORN_REGISTER_( &Type::_vornType )

/// The free factory of an entity type: an exported function, `factory( key )`, that takes what the type's
/// constructor does. It stands in the library by the type's record.
#define VORN_FACTORY( Type, factory )                                                                        \
   VORN_API ::Vorn::EntityFactory< Type >::Fn factory;                                                       \
   template< class... Args >                                                                                 \
   struct factory##_ {                                                                                       \
      [[gnu::used]] friend ::Vorn::Ptr< Type > factory( ::Vorn::FactoryArg< Args >... args ) {               \
         return ::Vorn::newObject< Type >( args... );                                                        \
      }                                                                                                      \
      using Made = Type;                                                                                     \
      static constexpr auto function = &factory;                                                             \
   };                                                                                                        \
   ::Vorn::EntityFactory< Type >::With< factory##_ > vornFactory( Type const * );
