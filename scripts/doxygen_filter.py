#!/usr/bin/env python3
"""A header as Doxygen is to read it: each function of the interface with its text, and nothing of the machinery.

An attribute's line becomes the functions that it declares, each with the comment above the line, what this function does, and what the line
says of itself: id, default, who is told, whether the log carries it. The observer class gets the callbacks of the lines. A comment above a
paragraph of declarations (a getter and its mutator, two ends of a range) speaks for each of them, and that of an enumeration's list for the
enumeration. Lines keep their numbers.
"""

import pathlib
import re
import sys

# What each kind of line declares, and what each function does beside what the comment above the line says. `T` is the type, `K` the key's,
# `x` the attribute's name.
READ = {"T x() const": ""}
SCALAR = {**READ, "void xIs( T value )": ""}
COUNTER = {**SCALAR, "T xInc( T n )": "Adds `n`, with wrap, and gives the new value."}
WALK = {"Map const & xColl() const": "All members, for a walk that may delete as it goes.", "U32 xs() const": "The number of members."}
ALL_OUT = {"void xDelAll()": "Takes all members out.", **WALK}
ENTITIES = {
    "Vorn::Ptr< T > x( K key ) const": "The member of that key, or null.",
    "Vorn::Ptr< T > xIs( Args const &... args )": "The member that goes by these arguments, its key among them: the one that is there, or a new one.",
    "Vorn::Ptr< T > xDel( K key )": "Takes the member of that key out and gives it, or null.", **ALL_OUT}
VALUES = {
    "T x( K key ) const": "The value of that key, or a default one.", "bool xHas( K key ) const": "Whether there is a value of that key.",
    "void xIs( K key, T value )": "Enters or replaces the value of that key.",
    "T xDel( K key )": "Takes the value of that key out and gives it, or a default one.", **ALL_OUT}
REFERENCES = {
    "Vorn::Ptr< T > x( K key ) const": "The object of that key, or null.",
    "void xIs( K key, Vorn::Ptr< T > const & value )": "Enters or replaces the reference of that key; null takes it out.",
    "Vorn::Ptr< T > xDel( K key )": "Takes the reference of that key out and gives it, or null.", **ALL_OUT}
KEYED_REFERENCES = {form.replace("K key, ", "") if "xIs" in form else form: does for form, does in REFERENCES.items()}
KEYED_REFERENCES["void xIs( Vorn::Ptr< T > const & value )"] = "Enters the reference by the key that its object holds; null is refused."
REFERENCE = {"Vorn::Ptr< T > x() const": "", "void xIs( Vorn::Ptr< T > const & value )": ""}
DECLARED = {
    **dict.fromkeys(("KEY", "CTOR_ARG", "CTOR_FIELD", "DERIVED", "DERIVED_CONSTANT", "READ_OPERATION", "VALUE_DERIVED", "VALUE_FUNCTION"), READ),
    **dict.fromkeys(("MUTABLE", "MUTABLE_CTOR_ARG", "CONTEXT", "FIELD", "CHECKED_FIELD", "STATE", "SLOT"), SCALAR),
    "CONSTANT": {"static constexpr T x()": ""}, "WRITE_ONLY": {"void xIs( T value )": ""},
    "COUNTER": COUNTER, "LOCAL_COUNTER": COUNTER,
    "COUNTER_DEC": {**COUNTER, "T xDec( T n )": "Takes `n` away, with wrap, and gives the new value."},
    "REFERENCE": REFERENCE, "CONTEXT_REFERENCE": REFERENCE,
    "CHILD": {"Vorn::Ptr< T > x() const": "", "Vorn::Ptr< T > xDel()": "Takes the child out and gives it, or null.",
              "Vorn::Ptr< T > xIs( Args const &... args )": "The child made from these arguments: the one that is there, or a new one in its place."},
    "ENTITY_COLL": ENTITIES, "LOCAL_ENTITY_COLL": ENTITIES, "VALUE_COLL": VALUES, "LOCAL_VALUE_COLL": VALUES,
    "COUNTER_COLL": {**VALUES, "T xInc( K key, T n )": "Adds `n` to the value of that key, which begins with 0, and gives the new one."},
    "SET": {"bool x( K key ) const": "Whether the key is a member.", "bool xHas( K key ) const": "Whether the key is a member.",
            "void xIs( K key )": "Makes the key a member.", "bool xDel( K key )": "Takes the key out; whether it was there.", **ALL_OUT},
    "REFERENCE_COLL": REFERENCES, "KEYED_REFERENCE_COLL": KEYED_REFERENCES,
    "QUEUE": {"Queue const & x() const": "The queue, from head to tail.", "T x( U32 index ) const": "The value of that index, or a default one.",
              "U32 xEnq( T value )": "Puts a value at the tail and gives its index.",
              "T xDeq()": "Takes the value at the head out and gives it, or a default one.",
              "void xIs( U32 index, T value )": "Puts a value at that index.",
              "T xDel( U32 index )": "Takes the value of that index out and gives it, or a default one.", **ALL_OUT},
    "BIT": {"bool x() const": "", "void xIs( bool set )": ""},
    "VALUE_TEXT": {"Vorn::String x() const": "", "void y( Vorn::String const & text )": ""},
    "FUNCTION": {},  # the class declares it beside the line
}
KEYED = [kind for kind, forms in DECLARED.items() if any("K key" in form for form in forms)]
# What the places of a line's arguments behind its id stand for, where not (type, name, mutator) or (type, key, name).
PLACES = {"KEYED_REFERENCE_COLL": "TK-x", "SET": "Kx", "BIT": "-x", "VALUE_TEXT": "xy"}
TOLD = {kind for kind in DECLARED if kind.endswith(("COLL", "COUNTER", "COUNTER_DEC", "REFERENCE")) and not kind.startswith("LOCAL")} | {
    "MUTABLE", "MUTABLE_CTOR_ARG", "CONTEXT", "CHILD", "SET", "QUEUE"}
KEY_TEXT = "What the entity goes by: its key, which never changes."
PLAIN_CONSTRUCTOR = "With these values; all else has its default."
EQUAL = "Whether the two are equal."

ATTRIBUTE = re.compile(r"\s*VORN_([A-Z_]+)\( (0x.*?) \)(?: = (.*))?;$", re.S)
FACTORY = re.compile(r"VORN_FACTORY\( (\w+), (\w+) \)$")
TLV_FIELD = re.compile(r"\s*LDP_TLV_(FIELD|GETTER)\( (.*), (\w+) \)$")
CLASS = re.compile(r"(?:template<.*> *)?(?:class|struct) (?:VORN_API )?(\w+)(?: : public (.*))? \{$")
COMMENT = re.compile(r"\s*///(?!<)")
# What ends a paragraph: nothing, another comment, the head or the end of a class or an enumeration, or a word about access.
END = re.compile(r"\s*($|//|\}|#|(public|protected|private):|(template<.*> *)?(class|struct|enum)\b.*\{$)")
TEMPLATE = re.compile(r"\s*template<.*>$")


def arguments(text):
    """A macro's arguments; commas within brackets are not between them."""
    parts, depth, begin = [], 0, 0
    for at, char in enumerate(text):
        depth += (char in "(<{") - (char in ")>}")
        if char == "," and not depth:
            parts.append(text[begin:at].strip())
            begin = at + 1
    return [*parts, text[begin:].strip()]


def commented(text, declaration):
    return f"/** {text} */ {declaration}" if text else declaration


class Header:
    """The lines of a header on their way to Doxygen."""

    def __init__(self, text):
        self.lines = text.split("\n")
        self.callbacks = []  # of the class that is open
        self.owner, self.base = "", ""

    def comment_above(self, index):
        first = index
        while COMMENT.match(self.lines[first - 1]):
            first -= 1
        text = " ".join(line.strip().removeprefix("///").strip() for line in self.lines[first:index])
        return "" if "cond" in text.split("\\") else text

    def enumerations(self):
        """The comment above `#define LIST( X )` moves to the line of the VORN_ENUM that is made of the list."""
        above = {}
        for index, line in enumerate(self.lines):
            if found := re.match(r"#define (\w+)\( X \)", line):
                above[found[1]] = self.comment_above(index)
            elif (found := re.match(r"\s*VORN_ENUM\( \w+, (\w+) \)", line)) and found[1] in above:
                self.lines[index] = commented(above[found[1]], line)

    def attribute(self, kind, given, default, text):
        """What a line declares, each with its text."""
        ids, *given = given
        keyed = kind in KEYED
        of = dict(zip(PLACES.get(kind, "TKx" if keyed else "Tx"), given), **({"K": "U32"} if kind == "QUEUE" else {}))
        if kind == "VALUE_TEXT":
            of["T"] = "Vorn::String"
        text = text or (KEY_TEXT if kind == "KEY" else "")
        facts = [f"Id {ids}"]
        if kind == "CONSTANT" or default:
            value = default or given[-1]
            value = value.replace('"', "&quot;") if '"' in value else f"`{value}`"
            facts.append(value if kind == "CONSTANT" else f"{value} until it is set")
        if kind in TOLD:
            name = f"on{of['x'][0].upper()}{of['x'][1:]}"
            keyed = keyed or kind == "QUEUE"
            facts.append(f"tells `{name}({' key ' if keyed else ''})`")
            if given[-1] == "replicated" or kind.startswith("CONTEXT"):
                facts.append("on the attribute log")
            self.callbacks.append(f"/** Called behind a change of `{of['x']}`. */ virtual void {name}({' ' + of['K'] + ' key ' if keyed else ''});")
        words = re.compile(r"\b(T|K)\b|\b([xy])(?=[A-Z(s])")

        def told(form, does):
            if not text:
                return ""
            first, second = (text, does) if form.endswith(" x( K key ) const") else (does, text)
            return f"{first} {second} \\n {'; '.join(facts)}.".strip()

        declared = [commented(told(form, does), words.sub(lambda found: of[found[0]], form)) for form, does in DECLARED[kind].items()]
        return "".join(f" public: {one};" for one in declared)

    def observers(self):
        """The class of the observers, with a callback for each attribute that tells."""
        base = f" : public {self.base}::NotifieeConst" if self.base else ""
        return f"public: /** Observer of {self.owner} objects; derive from it. Each callback does nothing by default. */ " \
               f"class NotifieeConst{base} {{ public: {' '.join(self.callbacks)} }};"

    def one(self, index, code, text, first):
        """The line that stands for one declaration; None leaves it as it is."""
        line = self.lines[index]
        if found := ATTRIBUTE.match(code):
            if text and COMMENT.match(self.lines[index - 1]):
                self.blank_comment(index)
            return self.attribute(found[1], arguments(found[2]), found[3], text if first or found[1] != "KEY" else "")
        if found := FACTORY.match(line):
            return f"/** A new {found[1]} without a parent, from what its constructor takes. */ " \
                   f"Vorn::Ptr< {found[1]} > {found[2]}( Args const &... args );"
        if re.match(r"\s*VORN_(BASE_)?OBSERVERS;", line):
            return self.observers()
        if found := TLV_FIELD.match(line):
            text = f"\\copydoc {re.match('LdpBodyTlvParser< (.*) >', self.base)[1]}::{found[3]}"
            setter = commented(text, f" void {found[3]}Is( {found[2]} const & value );") if found[1] == "FIELD" else ""
            return commented(text, f"{found[2]} {found[3]}() const;") + setter
        if line == "VORN_LDP_TLV_PARSERS( LDP_TLV_PARSER_FACTORY )":
            rows = re.findall(r"X\( (\w+), (\w+) \)", "\n".join(self.lines))
            return " ".join(f"/** A new {made}. */ Vorn::Ptr< {made} > {name}( Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset );"
                            for made, name in rows)
        if first and text or "///<" in code or re.search(r"\boverride\b", code):
            return None  # Doxygen finds the comment by itself: above, behind, in the base
        if re.match(r"\s*(constexpr |explicit )*" + (self.owner or "-") + r"\( .* : .*\{\}$", code, re.S):
            return commented(PLAIN_CONSTRUCTOR, line)
        if re.match(r"\s*friend ", line):
            return commented(EQUAL, line) if "operator==" in line else None
        return commented(text, line) if not re.match(r"\s*(VORN|LDP)_\w+\(", line) else None

    def declarations(self):
        """Gives each declaration of a paragraph the comment above the paragraph, and each attribute its functions."""
        text, first, index = "", True, 0
        while index < len(self.lines):
            if TEMPLATE.match(self.lines[index]) and END.match(self.lines[index + 1]):
                index += 1  # belongs to the class below
            if END.match(self.lines[index]):
                text = self.comment_above(index + 1) if COMMENT.match(self.lines[index]) else ""
                if found := CLASS.match(self.lines[index]):
                    self.owner, self.base, self.callbacks = found[1], found[2], []
                while self.lines[index].endswith("\\"):  # a macro's definition
                    index += 1
                first = True
                index += 1
                continue
            end = index
            while end < len(self.lines) - 1 and not self.complete(index, end):
                end += 1
            code = "\n".join(self.lines[index:end + 1])
            if (line := self.one(index, code, text, first)) is not None:
                self.lines[index] = line
                if ATTRIBUTE.match(code):
                    self.lines[index + 1:end + 1] = [""] * (end - index)
            first = False
            index = end + 1

    def blank_comment(self, index):
        while COMMENT.match(self.lines[index - 1]):
            index -= 1
            self.lines[index] = ""

    def complete(self, begin, end):
        """Whether the declaration that begins there ends here, and not within its brackets or before its body."""
        text = "\n".join(self.lines[begin:end + 1])
        code = re.sub(r'"[^"]*"|//.*', "", text).rstrip()
        if code.count("(") != code.count(")"):
            return False
        if code.endswith(")"):
            return bool(re.match(r"\s*(/\*\*.*\*/ )?(VORN|LDP)_", text))
        scope = re.match(r"\s*(template<.*>\s*)?(class|struct|namespace|enum|extern)\b", code)
        return code.endswith((";", "}", "{")) and (code.count("{") == code.count("}") or bool(scope))


if __name__ == "__main__":
    source = pathlib.Path(sys.argv[1]).read_text()
    # A pointer to a function that returns a U32, in a form that Doxygen takes for one.
    header = Header(re.sub(r"\bU32\( \*(\w+) \)\n +\(", r"\nunsigned int ( *\1 )(", source))
    header.enumerations()
    header.declarations()
    print("\n".join(header.lines))
