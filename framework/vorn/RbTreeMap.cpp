// The red-black tree: links, rotations, replacement in place.
#include "Vorn/RbTreeMap.h"

namespace Vorn {

// Linking.

void RbTreeMapGeneric::memberNewChild( NodeBase * parent, Side side, NodeBase * node ) noexcept {
   childIs( parent, side, node );
   node->red_ = true;
   node->linked_ = true;
   ++members_;
   ++modificationCount_;
   // A red node has no red child.
   while ( red( node->parent_ ) ) {
      parent = node->parent_;
      NodeBase * const grandparent = parent->parent_; // the root is black
      Side const outer = RbTreeMapGeneric::side( parent );
      NodeBase * const uncle = grandparent->child_[opposite( outer )];
      if ( red( uncle ) ) {
         parent->red_ = uncle->red_ = false;
         grandparent->red_ = true;
         node = grandparent;
         continue;
      }
      if ( RbTreeMapGeneric::side( node ) != outer ) {
         rotate( parent, outer );
         parent = node;
      }
      parent->red_ = false;
      grandparent->red_ = true;
      rotate( grandparent, opposite( outer ) );
      break;
   }
   root_->red_ = false;
}

void RbTreeMapGeneric::memberReplace( NodeBase * old, NodeBase * node ) noexcept {
   placeIs( old, node );
   childIs( node, lesser, old->child_[lesser] );
   childIs( node, greater, old->child_[greater] );
   node->red_ = old->red_;
   node->linked_ = true;
   old->linked_ = false;
}

void RbTreeMapGeneric::_memberDelG( NodeBase * node ) noexcept {
   // With two children, the next node leaves its own place and takes over this one.
   bool const inner = node->child_[lesser] && node->child_[greater];
   NodeBase * const leaving = inner ? first( node->child_[greater] ) : node;
   unlink( leaving );
   if ( leaving != node ) memberReplace( node, leaving );
   --members_;
   ++modificationCount_;
}

/// Takes out a node that has at most one child.
void RbTreeMapGeneric::unlink( NodeBase * node ) noexcept {
   NodeBase * const parent = node->parent_;
   NodeBase * const only = node->child_[lesser] ? node->child_[lesser] : node->child_[greater];
   Side const at = parent ? side( node ) : lesser;
   placeIs( node, only );
   node->linked_ = false;
   if ( node->red_ ) return;
   if ( only ) {
      only->red_ = false; // it was red, having no sibling
   } else {
      blackRestore( parent, at );
   }
}

/// The paths through that child of `parent` have one black node too few.
void RbTreeMapGeneric::blackRestore( NodeBase * parent, Side at ) noexcept {
   while ( parent ) {
      Side const other = opposite( at );
      NodeBase * sibling = parent->child_[other];
      if ( sibling->red_ ) {
         sibling->red_ = false;
         parent->red_ = true;
         rotate( parent, at );
         sibling = parent->child_[other];
      }
      if ( red( sibling->child_[lesser] ) || red( sibling->child_[greater] ) ) {
         if ( !red( sibling->child_[other] ) ) {
            sibling->child_[at]->red_ = false;
            sibling->red_ = true;
            rotate( sibling, other );
            sibling = parent->child_[other];
         }
         sibling->red_ = parent->red_;
         sibling->child_[other]->red_ = false;
         parent->red_ = false;
         rotate( parent, at );
         return;
      }
      sibling->red_ = true;
      if ( parent->red_ ) {
         parent->red_ = false;
         return;
      }
      // Now all paths through `parent` are short.
      NodeBase * const above = parent->parent_;
      if ( above ) at = side( parent );
      parent = above;
   }
}

void RbTreeMapGeneric::childIs( NodeBase * parent, Side side, NodeBase * node ) noexcept {
   ( parent ? parent->child_[side] : root_ ) = node;
   if ( node ) node->parent_ = parent;
}

void RbTreeMapGeneric::placeIs( NodeBase * old, NodeBase * node ) noexcept {
   childIs( old->parent_, old->parent_ ? side( old ) : lesser, node );
}

/// Moves the node down to that side; its child on the other side takes its place.
void RbTreeMapGeneric::rotate( NodeBase * node, Side down ) noexcept {
   NodeBase * const rising = node->child_[opposite( down )];
   placeIs( node, rising );
   childIs( node, opposite( down ), rising->child_[down] );
   childIs( rising, down, node );
}

// Order.

RbTreeNode * RbTreeMapGeneric::first( NodeBase * node ) noexcept {
   while ( node && node->child_[lesser] ) {
      node = node->child_[lesser];
   }
   return node;
}

RbTreeNode * RbTreeMapGeneric::next( NodeBase * node ) noexcept {
   if ( node->child_[greater] ) return first( node->child_[greater] );
   while ( node->parent_ && side( node ) == greater ) {
      node = node->parent_;
   }
   return node->parent_;
}

// Emptying, which is a loop: the tree is unrolled from its least key.

RbTreeNode * RbTreeMapGeneric::takeRoot() noexcept {
   if ( root_ ) ++modificationCount_;
   members_ = 0;
   // Nodes that are pinned meanwhile must not seem to be in the map.
   for ( NodeBase * node = first( root_ ); node; node = next( node ) ) {
      node->linked_ = false;
   }
   return std::exchange( root_, nullptr );
}

RbTreeNode * RbTreeMapGeneric::takeAny( NodeBase *& tree ) noexcept {
   if ( !tree ) return nullptr;
   while ( NodeBase * const left = tree->child_[lesser] ) {
      tree->child_[lesser] = left->child_[greater];
      left->child_[greater] = tree;
      tree = left;
   }
   return std::exchange( tree, tree->child_[greater] );
}

} // namespace Vorn
