#!/usr/bin/env python3
"""What would the suite notice? Makes small faults in the library's sources by chance, one at a time, and runs the tests on each.

mutants.py [--seed N] [--count N] [--build DIR] [--only PATTERN] [--list FILE]

A mutant is one changed line of decode/, framework/ or model/: a comparison or a connective turned, a number off by one, a statement
dropped. Its object is compiled with the build's own command and linked with the other objects into a shared library of its own;
the test programs of the build run with that library, and the first one that fails has noticed. Nothing in the tree or the build
is written. The same seed gives the same mutants as long as the sources are the same, so that two states of the tests can be
compared: --list writes a line for each mutant, to be compared with diff.

The build must be up to date and have shared test programs (preset release or debug).
"""

import argparse
import json
import os
import pathlib
import random
import re
import shlex
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
FOLDERS = ("decode", "framework", "model")
PROGRAMS = ("framework_tests", "decode_tests", "model_tests")
SECONDS = 120  # that a test program may take; one that takes longer has noticed

# What a place is turned into. Blanks on both sides tell an operator from a template's bracket.
TURNS = [(" < ", " <= "), (" <= ", " < "), (" > ", " >= "), (" >= ", " > "), (" == ", " != "), (" != ", " == "),
         (" && ", " || "), (" || ", " && "), (" + ", " - "), (" - ", " + ")]
NUMBER = re.compile(r"(?<![\w.\"'])(\d+)(?![\w.\"'])")
STATEMENT = re.compile(r"^\s+(?!return\b|using\b|static\b|constexpr\b|case\b|default\b|break\b|else\b|throw\b|}|#)[\w:*.>-]+( =|\(|\+\+|--|->).*;$")


def mutations(line):
    """Each way to change a line of code."""
    code = re.sub(r"//.*", "", line)
    if not code.strip() or code.lstrip().startswith(("#", "*", "/*", "static_assert", "template")):
        return
    outside = [not code[:at].count('"') % 2 for at in range(len(code))]
    for old, new in TURNS:
        for match in re.finditer(re.escape(old), code):
            if outside[match.start()]:
                yield f"{old.strip()} to {new.strip()}", code[: match.start()] + new + code[match.end() :]
    for match in NUMBER.finditer(code):
        if outside[match.start()]:
            yield f"{match[0]} to {int(match[0]) + 1}", code[: match.start()] + str(int(match[0]) + 1) + code[match.end() :]
    if STATEMENT.match(code.rstrip()):
        yield "dropped", ";"


def candidates(only):
    files = subprocess.run(["git", "ls-files", *(f"{folder}/*.cpp" for folder in FOLDERS)], cwd=ROOT, check=True,
                           capture_output=True, text=True).stdout.split()
    for file in files:
        if only in file:
            lines = (ROOT / file).read_text().split("\n")
            for number, line in enumerate(lines):
                for what, changed in mutations(line):
                    yield file, number, what, changed


class Bench:
    """Compiles and tests mutants with the commands and objects of a build."""

    def __init__(self, build, work):
        self.build, self.work = build, pathlib.Path(work)
        with open(build / "compile_commands.json", encoding="utf-8") as file:
            self.commands = {entry["file"]: shlex.split(entry["command"]) for entry in json.load(file)
                             if "LdpObjects.dir" in entry["command"]}
        if not self.commands:
            sys.exit(f"mutants.py: no build in {build}")
        self.objects = {source: build / self.output(command) for source, command in self.commands.items()}
        self.others = sorted(map(str, build.glob("CMakeFiles/LdpAllTypes.dir/*.o")))  # what the build makes of them

    @staticmethod
    def output(command):
        return command[command.index("-o") + 1]

    def made(self, file, number, changed):
        """Whether the mutant compiles and links; its library is then in the work folder."""
        source = ROOT / file
        lines = source.read_text().split("\n")
        lines[number] = changed
        mutant, target = self.work / "mutant.cpp", self.work / "mutant.o"
        mutant.write_text("\n".join(lines))
        # What takes time and changes nothing that a test sees is left out.
        command = [re.sub("^-O[123]$", "-O0", part) for part in self.commands[str(source)] if part not in ("-Werror", "-MD", "-g")]
        command[command.index("-o") + 1] = str(target)
        command[command.index(str(source))] = str(mutant)
        for option in ("-MT", "-MF"):
            if option in command:
                del command[command.index(option) : command.index(option) + 2]
        command += ["-w", "-iquote", str(source.parent)]
        objects = [str(target if place == str(source) else path) for place, path in self.objects.items()]
        link = [next(part for part in command if part.endswith("++")), "-shared", "-Wl,-soname,libLdp.so.0",
                "-o", str(self.work / "libLdp.so.0"), *objects, *self.others]
        quiet = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL, "cwd": self.build}
        return subprocess.run(command, **quiet).returncode == 0 and subprocess.run(link, **quiet).returncode == 0

    def noticed(self):
        """The name of the first test program that fails, or None."""
        environment = os.environ | {"LD_LIBRARY_PATH": str(self.work)}
        for program in PROGRAMS:
            try:
                run = subprocess.run([self.build / "bin" / program, "--gtest_brief=1", "--gtest_fail_fast"], env=environment, cwd=self.work,
                                     stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=SECONDS)
            except subprocess.TimeoutExpired:
                return program
            if run.returncode:
                return program
        return None


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--count", type=int, default=20)
    parser.add_argument("--build", type=pathlib.Path, default=ROOT / "build" / "release")
    parser.add_argument("--only", default="", help="only files whose name holds this")
    parser.add_argument("--list", type=argparse.FileType("w"), help="a line for each mutant goes here")
    args = parser.parse_args()

    drawn = list(candidates(args.only))
    random.Random(args.seed).shuffle(drawn)
    tried = noticed = 0
    with tempfile.TemporaryDirectory() as work:
        bench = Bench(args.build.resolve(), work)
        file, number, *_ = drawn[0]
        if not bench.made(file, number, (ROOT / file).read_text().split("\n")[number]) or bench.noticed():
            sys.exit("mutants.py: the tests fail without a fault: is the build up to date?")
        for file, number, what, changed in drawn:
            if tried == args.count:
                break
            if not bench.made(file, number, changed):
                continue
            tried += 1
            program = bench.noticed()
            noticed += bool(program)
            text = f"{'noticed' if program else 'SURVIVED':8} {file}:{number + 1}: {what}"
            print(text, f"({program})" if program else "", flush=True)
            if args.list:
                print(text, file=args.list, flush=True)
    print(f"{tried} mutants, {noticed} noticed")


if __name__ == "__main__":
    main()
