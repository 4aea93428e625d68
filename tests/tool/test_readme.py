"""What the pages show of ldptool is what ldptool prints."""

import os
import re
import shlex
import unittest

from ldptool import CAPTURES, run

ROOT = os.path.join(CAPTURES, os.pardir, os.pardir)


class Pages(unittest.TestCase):
    def test_console_blocks(self):
        os.chdir(ROOT)
        for page in ("README.md", "docs/session-down.md"):
            with open(page, encoding="utf-8") as file:
                blocks = re.findall(r"```console\n(.*?)```", file.read(), re.S)
            shown = [part.split("\n", 1) for block in blocks for part in re.split(r"(?m)^\$ ldptool ", block)[1:]]
            self.assertGreater(len(shown), 1)
            for command, output in shown:
                with self.subTest(page=page, command=command):
                    self.assertEqual(run(*shlex.split(command)).out, output)


if __name__ == "__main__":
    unittest.main()
