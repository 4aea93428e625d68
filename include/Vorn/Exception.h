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
   explicit Exception( String message ) : message_( std::move( message ) ) {}
   ~Exception() override;

   /// What was wrong, for a person.
   String const & message() const noexcept { return message_; }
   char const * what() const noexcept override { return message_.charPtr(); }

 private:
   String message_;
};

/// A value outside what its type or its reader allows.
class VORN_API RangeException : public Exception {
 public:
   using Exception::Exception;
   ~RangeException() override;
};

/// An entity that exists was asked for again with other constructor arguments.
class VORN_API NameInUseException : public Exception {
 public:
   using Exception::Exception;
   ~NameInUseException() override;
};

/// Throws a RangeException with that text.
[[noreturn]] VORN_API void throwRangeException( char const * message );
/// Throws a NameInUseException with that text.
[[noreturn]] VORN_API void throwNameInUseException( String const & message );

} // namespace Vorn
