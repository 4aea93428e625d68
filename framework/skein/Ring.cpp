// The ring's file: made, mapped, and given to threads block by block.
#include "Skein/Ring.h"

#include "RingStore.h"

#include <cerrno>
#include <fcntl.h>
#include <new>
#include <pthread.h>
#include <string>
#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

namespace Skein {

TraceHandle defaultSkeinHandle;

namespace {

/// A thread's own place. Its block may be taken by others once the thread has gone.
struct ThreadFile : TraceFile {
   ~ThreadFile() {
      Ring & ring = Ring::ring();
      std::scoped_lock const lock( ring.mutex );
      ring.releaseBlock( *this );
   }
};
thread_local ThreadFile threadFile;

U64 nanoseconds( clockid_t id ) noexcept {
   timespec now{};
   clock_gettime( id, &now );
   return U64( now.tv_sec ) * 1000000000u + U64( now.tv_nsec );
}

/// Path of the file: the first `%d` is the instance.
std::string pathOf( char const * fileNameFormat, char const * folder, int instance ) {
   std::string path = fileNameFormat;
   if ( std::size_t const at = path.find( "%d" ); at != std::string::npos )
      path.replace( at, 2, std::to_string( instance ? instance : int( getpid() ) ) );
   if ( folder && path[0] != '/' ) path = std::string( folder ) + "/" + path;
   return path;
}

/// What stands under a name: 0 for a ring or an empty file, which may be replaced; ENOENT for nothing; EEXIST
/// for anything else; else why it cannot be known.
int replaceable( std::string const & path, bool & ring ) {
   int const fd = open( path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC );
   if ( fd < 0 ) return errno == ELOOP ? EEXIST : errno;
   struct stat found {};
   char magic[sizeof fileMagic];
   bool const file = fstat( fd, &found ) == 0 && S_ISREG( found.st_mode );
   ssize_t const read = file ? pread( fd, magic, sizeof magic, 0 ) : -1;
   close( fd );
   ring = read == sizeof magic && std::memcmp( magic, fileMagic, sizeof magic ) == 0;
   return ring || read == 0 ? 0 : EEXIST;
}

/// Clears the way for a new file. A ring goes aside, or away; so does an empty file. Anything else stays,
/// also under the name to which a ring would go, and is EEXIST.
int clearPath( std::string const & path, bool keepPrevious ) {
   bool ring = false;
   if ( int const found = replaceable( path, ring ) ) return found == ENOENT ? 0 : found;
   if ( !ring || !keepPrevious ) return unlink( path.c_str() ) ? errno : 0;
   std::string const aside = path + ".old";
   int const found = replaceable( aside, ring );
   if ( found && found != ENOENT ) return found;
   return rename( path.c_str(), aside.c_str() ) ? errno : 0;
}

/// In the child of a fork the ring is the parent's alone: the child is as before `initialize`.
void lockForFork() { Ring::ring().mutex.lock(); }
void unlockParent() { Ring::ring().mutex.unlock(); }
void unlockChild() {
   Ring::ring().forget();
   Ring::ring().mutex.unlock();
}

} // namespace

Ring & Ring::ring() noexcept {
   static Ring & one = *new Ring; // never destroyed: destructors of static objects may trace
   return one;
}

int Ring::create( std::string const & path, U64 ringBytes, U64 descriptionsBytes ) {
   U64 const blockNum = ringBytes / blockBytes;
   U64 const blocksOffset = sizeof( FileHeader ) + descriptionsBytes;
   U64 const bytes = blocksOffset + blockNum * blockBytes;
   // Taking room beyond the process's limit would be answered with a signal that ends it.
   rlimit limit{};
   if ( getrlimit( RLIMIT_FSIZE, &limit ) == 0 && bytes > limit.rlim_cur ) return EFBIG;
   int const fd = open( path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0640 );
   if ( fd < 0 ) return errno;
   // Room is taken now, so that a full disk is found here and not by a signal in the middle of a record.
   int failed = posix_fallocate( fd, 0, off_t( bytes ) );
   void * const map =
        failed ? nullptr : mmap( nullptr, bytes, PROT_READ | PROT_WRITE, MAP_SHARED | MAP_POPULATE, fd, 0 );
   if ( map == MAP_FAILED ) failed = errno;
   close( fd );
   if ( failed ) {
      unlink( path.c_str() );
      return failed;
   }
   map_ = static_cast< char * >( map );
   mapBytes_ = bytes;
   header_ = new ( map_ ) FileHeader{};
   header_->version = fileVersion;
   header_->byteOrder = byteOrderMark;
   header_->processId = U32( getpid() );
   header_->blockBytes = blockBytes;
   header_->descriptionsOffset = sizeof( FileHeader );
   header_->blocksOffset = blocksOffset;
   header_->blockNum = blockNum;
   descriptionsRoom_ = descriptionsBytes;
   blockTaken_.assign( blockNum, false );
   lastSequence_ = 0;
   lastWriter_ = 0;
   startTicks_ = clock();
   startNanoseconds_ = nanoseconds( CLOCK_MONOTONIC );
   // A first measure of the clock's rate; each block begun refines it.
   while ( nanoseconds( CLOCK_MONOTONIC ) - startNanoseconds_ < 2000000 ) {}
   measureClock();
   std::memcpy( header_->magic, fileMagic, sizeof fileMagic );
   return 0;
}

void Ring::measureClock() noexcept {
   double const seconds = double( nanoseconds( CLOCK_MONOTONIC ) - startNanoseconds_ ) / 1e9;
   header_->ticksPerSecond = U64( double( clock() - startTicks_ ) / seconds );
}

void Ring::begin( TraceFile & file ) noexcept {
   releaseBlock( file );
   // The oldest block that no thread is writing into.
   U64 index = 0;
   for ( U64 tried = 0;; ++tried ) {
      if ( tried == header_->blockNum ) return;
      index = ++lastSequence_ % header_->blockNum;
      if ( !blockTaken_[index] ) break;
   }
   blockTaken_[index] = true;
   measureClock();

   auto * const block = reinterpret_cast< Block * >( map_ + header_->blocksOffset + index * blockBytes );
   // Empty before it is anything else, so that whoever reads meanwhile finds no mixture.
   __atomic_store_n( &block->sequence, U64( 0 ), __ATOMIC_SEQ_CST );
   __atomic_store_n( &block->used, U32( sizeof( Block ) ), __ATOMIC_SEQ_CST );
   block->ticks = clock();
   block->nanoseconds = nanoseconds( CLOCK_REALTIME );
   if ( !file.writer_ ) file.writer_ = ++lastWriter_;
   block->writer = file.writer_;
   __atomic_store_n( &block->sequence, lastSequence_, __ATOMIC_SEQ_CST );
   file.block_ = block;
}

void Ring::releaseBlock( TraceFile & file ) noexcept {
   if ( !file.block_ ) return;
   U64 const offset = U64( reinterpret_cast< char * >( file.block_ ) - map_ ) - header_->blocksOffset;
   blockTaken_[offset / blockBytes] = false;
   file.block_ = nullptr;
}

void Ring::enable( MultiThreading multiThreading ) noexcept {
   if ( multiThreading == MultiThreading::perThread ) {
      defaultSkeinHandle.multiThreaded_ = true;
   } else {
      begin( defaultSkeinHandle.single_ );
   }
}

void Ring::forget() noexcept {
   if ( !header_ ) return;
   munmap( map_, mapBytes_ );
   header_ = nullptr;
   for ( int * msgId : msgIds )
      *msgId = 0;
   msgIds.clear();
   enumerations.clear();
   defaultSkeinHandle.single_ = TraceFile();
   defaultSkeinHandle.multiThreaded_ = false;
   static_cast< TraceFile & >( threadFile ) = TraceFile();
}

char * Ring::addDescription( std::size_t bytes ) noexcept {
   U64 const used = header_->descriptionsBytes;
   return bytes <= descriptionsRoom_ - used ? map_ + header_->descriptionsOffset + used : nullptr;
}

void Ring::descriptionAdded( std::size_t bytes ) noexcept {
   __atomic_store_n( &header_->descriptionsBytes, header_->descriptionsBytes + bytes, __ATOMIC_RELEASE );
}

void TraceFile::nextBlock() noexcept {
   Ring & ring = Ring::ring();
   std::scoped_lock const lock( ring.mutex );
   ring.begin( *this ); // the block given up can always be had again
}

TraceFile * TraceHandle::mtTraceFile() noexcept {
   if ( !threadFile.on() ) threadFile.nextBlock();
   return threadFile.on() ? &threadFile : nullptr;
}

int initialize( char const * fileNameFormat, SizeSpec * sizes, char const * folder, int instance,
                int sizeBits, MultiThreading multiThreading, bool keepPrevious,
                unsigned int descriptionsKiB ) {
   Ring & ring = Ring::ring();
   std::scoped_lock const lock( ring.mutex );
   if ( ring.on() ) return 0;
   if ( !*fileNameFormat || sizeBits < 16 || sizeBits > 32 ) return EINVAL;
   U64 const descriptionsBytes = U64( descriptionsKiB ) * 1024;
   U64 const most = U64( 1 ) << sizeBits;
   U64 ringBytes = U64( ( sizes ? *sizes : SizeSpec() ).ringKiB ) * 1024;
   if ( descriptionsBytes + sizeof( FileHeader ) > most ) return EINVAL;
   ringBytes = std::min( ringBytes, most - descriptionsBytes - sizeof( FileHeader ) );
   if ( ringBytes < 2 * blockBytes ) return EINVAL;

   std::string const path = pathOf( fileNameFormat, folder, instance );
   if ( int const failed = clearPath( path, keepPrevious ) ) return failed;
   if ( int const failed = ring.create( path, ringBytes, descriptionsBytes ) ) return failed;
   static int const forkHandlers = pthread_atfork( lockForFork, unlockParent, unlockChild );
   if ( forkHandlers ) return forkHandlers;
   ring.enable( multiThreading );
   return 0;
}

} // namespace Skein
