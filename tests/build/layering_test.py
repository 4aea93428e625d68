#!/usr/bin/env python3
"""layering.py itself: a sound tree passes, and each kind of wrong include is named."""

import pathlib
import tempfile
import unittest

import layering

SOUND = {
    "include/Vorn/Ptr.h": "#include <memory>\n",
    "include/Vorn/Impl/Block.h": "#include <memory>\n",
    "include/Ldp/LdpIdentifier.h": "#include <Vorn/Ptr.h>\n",
    "decode/LdpIdentifier.cpp": '#include "Ldp/LdpIdentifier.h"\n',
    "include/Ldp/LdpMsgParser.h": '#include "LdpIdentifier.h"\n',
    "include/Ldp/LdpTlvParser.h": "#include <Ldp/LdpIdentifier.h>\n",
    "decode/LdpTlvParser.cpp": "#include <Ldp/LdpTlvParser.h>\n",
    "include/Ldp/LdpAdj.h": "#include <Ldp/LdpIdentifier.h>\n",
    "model/LdpAdj.cpp": "#include <Ldp/LdpAdj.h>\n",
    "decode/LdpMsgParser.cpp": '#include <Ldp/LdpMsgParser.h>\n#include "Walk.h"\n#include <algorithm>\n',
    "decode/Walk.h": "#include <Ldp/LdpIdentifier.h>\n",
    "framework/vorn/Ptr.cpp": "#include <Vorn/Ptr.h>\n#include <sys/mman.h>\n",
    "tools/ldptool/capture/Flow.h": "",
    "tools/ldptool/monitor/speaker/Agent.h": '#include "capture/Flow.h"\n',
    "tools/ldptool/monitor/Monitor.h": '#include "monitor/speaker/Agent.h"\n',
    "tools/ldptool/commands/watch/Watch.cpp": '#include "monitor/Monitor.h"\n',
    "framework/vorn/Ptr.cpp": "#include <Vorn/Ptr.h>\n#include <Vorn/Impl/Block.h>\n#include <sys/mman.h>\n",
    "tools/ldptool/main.cpp": "#include <Ldp/LdpMsgParser.h>\n#include <Ldp/LdpAdj.h>\n#include <tins/tins.h>\n",
}

WRONG = [
    ("framework on decode", "framework/vorn/Ptr.cpp", "#include <Ldp/LdpIdentifier.h>"),
    ("framework header on model", "include/Vorn/Ptr.h", "#include <Ldp/LdpAdj.h>"),
    ("decode on model", "decode/LdpMsgParser.cpp", "#include <Ldp/LdpAdj.h>"),
    ("decode on tools", "decode/LdpMsgParser.cpp", '#include "../tools/ldptool/main.cpp"'),
    ("model on a parser", "model/LdpAdj.cpp", "#include <Ldp/LdpTlvParser.h>"),
    ("public header on a private one", "include/Ldp/LdpMsgParser.h", '#include "../../decode/Walk.h"'),
    ("library on a tool's library", "decode/Walk.h", "#include <tins/tins.h>"),
    ("library on a test's library", "framework/vorn/Ptr.cpp", " # include <gtest/gtest.h>"),
    ("library on JSON", "include/Vorn/Ptr.h", "#include <rapidjson/writer.h>"),
    ("library on a header that is nowhere", "decode/Walk.h", '#include "Gone.h"'),
    ("example on a private header", "examples/one.cpp", '#include "../decode/Walk.h"'),
    ("captures on the monitor", "tools/ldptool/capture/Flow.h", '#include "monitor/Monitor.h"'),
    ("a subject on the monitor", "tools/ldptool/monitor/speaker/Agent.h", '#include "../Monitor.h"'),
    ("machine room", "include/Ldp/LdpAdj.h", "#include <Vorn/Impl/Block.h>"),
    ("header of neither layer", "include/Ldp/LdpNew.h", ""),
]


class Layering(unittest.TestCase):
    def offences(self, changes):
        with tempfile.TemporaryDirectory() as folder:
            root = pathlib.Path(folder).resolve()
            for name, text in (SOUND | changes).items():
                (root / name).parent.mkdir(parents=True, exist_ok=True)
                (root / name).write_text(text)
            return list(layering.offences(root))

    def test_sound_tree(self):
        self.assertEqual(self.offences({}), [])

    def test_each_wrong_include_is_named(self):
        for what, path, line in WRONG:
            with self.subTest(what):
                found = self.offences({path: SOUND.get(path, "") + line + "\n"})
                self.assertEqual([one.split(":")[0] for one in found], [path])


if __name__ == "__main__":
    unittest.main()
