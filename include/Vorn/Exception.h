/// \file
/// Exceptions: a bad value from text, from the attribute log or in a mutator. The object stays as it was.
/// Nothing that a peer sends on the wire throws.
#pragma once

#include "Vorn/String.h"

#include <exception>

namespace Vorn {

/// Base of all exceptions of the library.
class VORN_API Exception : public std::exception {
 public:
   /// Numbers of exceptions that have a name of their own.
   enum Id : U32 { nameInUse = 16 };

   explicit Exception( String message ) : message_( std::move( message ) ) {}
   ~Exception() override;

   /// What was wrong, for a person.
   String const & message() const noexcept { return message_; }
   /// The same as a C string.
   char const * what() const noexcept override { return message_.charPtr(); }

 private:
   String message_;
};

/// A value outside what its type or its reader allows.
class VORN_API RangeException : public Exception {
 public:
   using Exception::Exception;
   /// With arguments for a message that is a pattern of `format`. A message alone is taken as it stands.
   template< class... More >
   RangeException( String const & message, auto first, More... more )
        : Exception( format( message.charPtr(), first, more... ) ) {}
   ~RangeException() override;
};

/// An entity that exists was asked for again with other constructor arguments.
class VORN_API NameInUseException : public Exception {
 public:
   using Exception::Exception;
   ~NameInUseException() override;
};

/// A record of the attribute log that cannot be: cut short, of an unknown entity or type, with a value out of
/// range. Nothing of it was applied.
class VORN_API AttrLogRecordException : public RangeException {
 public:
   using RangeException::RangeException;
   ~AttrLogRecordException() override;
};

/// Stands around a call that is expected to raise a named exception, so that whoever looks at exceptions as
/// they are raised can tell it from one that nobody reckoned with.
class VORN_API Expect {
 public:
   explicit Expect( Exception::Id id ) noexcept : id_( id ), outer_( std::exchange( innermost_, this ) ) {}
   ~Expect() { innermost_ = outer_; }
   Expect( Expect const & ) = delete;
   Expect & operator=( Expect const & ) = delete;

   /// Whether this thread is within a call that is expected to raise that exception.
   static bool expected( Exception::Id id ) noexcept;

 private:
   static thread_local Expect * innermost_;

   Exception::Id id_;
   Expect * outer_;
};

/// Throws a RangeException with that text.
[[noreturn]] VORN_API void throwRangeException( char const * message );
/// Throws a NameInUseException with that text.
[[noreturn]] VORN_API void throwNameInUseException( String const & message );

} // namespace Vorn
