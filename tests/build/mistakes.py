#!/usr/bin/env python3
"""The likeliest mistakes in declaring a type: the error says what to do and where, and is the only one where that can be.

Usage: mistakes.py COMPILER INCLUDE_DIR
"""
import re
import subprocess
import sys
import tempfile
from pathlib import Path

GOOD = """\
#include "Vorn/Attributes.h"
#include "Vorn/AttributeRows.h"

struct Key {
   U32 hash() const { return 0; }
   bool operator==( Key const & ) const = default;
   bool operator<( Key const & ) const { return false; }
};
VORN_OUTSIDE_VALUE( Key )

class Value {
   VORN_VALUE( Value )
   VORN_FIELD( 0x2, U32, field );

 public:
   Value() noexcept = default;
   friend bool operator==( Value const &, Value const & ) noexcept = default;
};

class Thing : public Vorn::Entity {
   VORN_ENTITY( Thing, Vorn::Entity )

 public:
   explicit Thing( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   VORN_MUTABLE( 0x102, U32, number, Number, local );
   VORN_SET( 0x103, Key, table, Table, replicated );
   VORN_COUNTER( 0x104, U16, count, Count, replicated ) = 1;
   VORN_OBSERVERS;
};
VORN_RECORD( Test, Thing )

class Below : public Thing {
   VORN_ENTITY( Below, Thing )

 public:
   explicit Below( Vorn::Name const & name ) : Thing( name ) {}

   VORN_BASE_OBSERVERS;
};
VORN_RECORD_BUT_DESTRUCTOR( Test, Below )
Below::~Below() {}

class View : public Vorn::NrcPtrInterface {
   VORN_REFLECTED( View, void )

 public:
   U32 octets() const { return 0; }
};
using namespace Vorn::Rows;
constexpr Vorn::VornAttr View::vornRows[] = { read< &Self::octets >( "octets" ) };
VORN_VIEW_RECORD( Test, View )
"""

TYPE = "an attribute's type has a record"
KEY = "a key has a record, U32 hash() const, == and <"
ORDER = "attribute ids begin with the type's first one and follow each other without a gap"
LAST = "attribute lines stand before VORN_OBSERVERS"
# What is written, what is written instead, what the first error says, the line that it names, and how many errors there are at
# most where others follow from it.
MISTAKES = [
    ("U32, number", "int, number", TYPE, "VORN_MUTABLE"),
    ("U32, number", "float, number", TYPE, "VORN_MUTABLE"),
    ("U32, number", "std::string, number", TYPE, "VORN_MUTABLE"),
    ("   U32 hash() const { return 0; }\n", "", KEY, "VORN_SET"),
    ("   bool operator==( Key const & ) const = default;\n", "", KEY, "VORN_SET"),
    ("   bool operator<( Key const & ) const { return false; }\n", "", KEY, "VORN_SET"),
    ("VORN_OUTSIDE_VALUE( Key )\n", "", KEY, "VORN_SET"),
    ("Number, local", "Number, remote", "the last word of an attribute line is replicated or local", "VORN_MUTABLE"),
    ("   VORN_OBSERVERS;\n};", "};", "the type lacks its last line: VORN_OBSERVERS", "VORN_RECORD(", 2),
    ("   VORN_BASE_OBSERVERS;\n", "", "the type lacks its last line: VORN_OBSERVERS", "VORN_RECORD_BUT"),
    ("VORN_BASE_OBSERVERS", "VORN_OBSERVERS", "the base has the list of observers already", "VORN_OBSERVERS"),
    ("VORN_OBSERVERS;\n};\nVORN_RECORD(", "VORN_BASE_OBSERVERS;\n};\nVORN_RECORD(", "the base has no list of observers: VORN_OBSERVERS",
     "VORN_BASE_", 2),
    ("   VORN_COUNTER( 0x104, U16, count, Count, replicated ) = 1;\n   VORN_OBSERVERS;\n",
     "   VORN_OBSERVERS;\n   VORN_COUNTER( 0x104, U16, count, Count, replicated ) = 1;\n", LAST, "VORN_COUNTER"),
    ("   VORN_OBSERVERS;\n};", "   VORN_OBSERVERS;\n   VORN_NEXT_LINK;\n};", LAST, "VORN_NEXT_LINK"),
    ("0x102, U32", "0x101, U32", ORDER, "VORN_MUTABLE", 2),
    ("0x104, U16", "0x105, U16", ORDER, "VORN_COUNTER"),
    ("0x102, U32", "0x105, U32", ORDER, "VORN_MUTABLE", 2),
    ("0x102, U32", "0x103, U32", ORDER, "VORN_MUTABLE", 4),
    ("0x2, U32", "0x80, U32", ORDER, "VORN_FIELD"),
    (" = 1;", ' = "one";', "", "VORN_COUNTER"),
    ("&Self::octets", "&Self::octet", "octet", "View::vornRows", 8),
]


def errors(compiler: str, include: str, source: str) -> tuple[list[str], str]:
    with tempfile.TemporaryDirectory() as folder:
        file = Path(folder) / "mistake.cpp"
        file.write_text(source)
        run = subprocess.run([compiler, "-std=c++20", "-fsyntax-only", "-I", include, file], capture_output=True, text=True)
    return re.findall(r"^.*\berror: .*$", run.stderr, re.M), run.stderr


def main() -> int:
    compiler, include = sys.argv[1:]
    broken = 0
    found, output = errors(compiler, include, GOOD)
    if found:
        sys.exit(output)
    for right, wrong, says, line, *most in MISTAKES:
        assert GOOD.count(right) == 1, right
        source = GOOD.replace(right, wrong)
        found, output = errors(compiler, include, source)
        lines = [number for number, text in enumerate(source.splitlines(), 1) if line in text]
        named = any(f"mistake.cpp:{number}:" in output for number in lines)
        if not 1 <= len(found) <= (most or [1])[0] or says not in found[0] or not named:
            broken += 1
            print(f"{wrong!r} for {right!r}: not {says!r} alone, naming {line}, but {len(found)} errors:")
            print(*found[:4], sep="\n")
    return 1 if broken else 0


if __name__ == "__main__":
    sys.exit(main())
