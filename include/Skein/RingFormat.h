/// \file
/// Layout of a ring trace file, the same for its writer and its readers. docs/ring-trace.md tells it in
/// words.
///
///     FileHeader | descriptions (call sites, enumerations) | Block | Block | ... | Block
///
/// All numbers stand in the byte order of the machine that wrote the file. Records never straddle blocks.
#pragma once

#include "Vorn/Api.h"

namespace Skein {

/// First octets of the file; the last of them written, so that a file with them is complete.
inline constexpr char fileMagic[8] = { 'S', 'K', 'E', 'I', 'N', '\r', '\n', '\x1a' };
inline constexpr U32 fileVersion = 1;            ///< of this layout
inline constexpr U32 byteOrderMark = 0x01020304; ///< reads otherwise on a machine of the other byte order

/// Stands at offset 0. Regions are given as offset and size in octets, within the file.
struct FileHeader {
   /// `fileMagic`.
   char magic[8];
   /// `fileVersion`.
   U32 version;
   /// `byteOrderMark`, in the byte order of the machine that wrote the file.
   U32 byteOrder;
   /// Id of the process that traced.
   U32 processId;
   U32 blockBytes;         ///< size of a block, its head included
   U64 ticksPerSecond;     ///< rate of the clock of the records
   U64 descriptionsOffset; ///< where the descriptions begin
   U64 descriptionsBytes;  ///< how much of them is written
   U64 blocksOffset;       ///< where the first block begins
   U64 blockNum;           ///< number of blocks
};
static_assert( sizeof( FileHeader ) == 64 );

/// Head of a block; its records follow.
struct Block {
   /// 0 when empty; otherwise the greater, the younger. Block n holds those that are n modulo blockNum.
   U64 sequence;
   U64 ticks;       ///< clock of the records when the block was begun
   U64 nanoseconds; ///< wall clock at the same moment, since 1970-01-01 UTC
   U32 writer;      ///< number of the thread that wrote it, from 1
   U32 used;        ///< octets of the block that are written, this head included
};
static_assert( sizeof( Block ) == 32 );

inline constexpr U32 blockBytes = 16384;    ///< size of the blocks that are written
inline constexpr U32 maxRecordBytes = 1024; ///< no record is larger
inline constexpr U32 maxOctets = 256;       ///< no run of octets in a record is larger; longer ones are cut

/// A record begins with a 16-bit word: the number of its call site, with these flags. With `clockFlag` the
/// clock (64 bits) follows, then the arguments. With `closeFlag` the clock follows and nothing else: the
/// block that the same site opened is closed.
inline constexpr U16 closeFlag = 0x8000;
inline constexpr U16 clockFlag = 0x4000;
/// The greatest number of a call site.
inline constexpr U16 maxMsgId = 0x3fff;

/// Length word of a run of octets: this flag if it was cut.
inline constexpr U16 cutFlag = 0x8000;

/// A description begins with its size in octets as a 16-bit word, itself included, then its kind.
enum class Description : U8 {
   /// U8 level, U8 flags (bit 0: opens a block), U16 message id, U32 line, then text file, text function, and
   /// items to the end.
   site = 1,
   /// U8 zero, U16 enumeration id, then text name, and to the end a U32 number and a text for each
   /// enumerator.
   enumeration = 2,
};
// Every text in a description ends with a zero octet.

/// What a message is made of: pieces of text and arguments, in order. An item is one octet and what is named.
enum class Item : U8 {
   end = 0,        ///< ends the items of one alternative
   text = 1,       ///< a text follows; nothing in the record
   u8 = 2,         ///< unsigned number in the record
   u16 = 3,        ///< likewise
   u32 = 4,        ///< likewise
   u64 = 5,        ///< likewise
   s32 = 6,        ///< signed number
   s64 = 7,        ///< likewise
   boolean = 8,    ///< one octet, 0 or 1
   enumerator = 9, ///< U16 enumeration id follows; the record has the number (U32)
   octets = 10,    ///< in the record: length word, octets, to be shown as text
   hexOctets = 11, ///< the same, to be shown in hexadecimal
   ipv4 = 12,      ///< 4 octets in the record
   ipv6 = 13,      ///< 16 octets in the record
   choice = 14,    ///< U8 number of alternatives; for each a U8 tag, items, `end`. The record has a tag (U8)
};

} // namespace Skein
