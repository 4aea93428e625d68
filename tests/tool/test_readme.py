"""What the README shows of ldptool is what ldptool prints."""

import os
import re
import unittest

from ldptool import CAPTURES, run

ROOT = os.path.join(CAPTURES, os.pardir, os.pardir)


class Readme(unittest.TestCase):
    def test_console_blocks(self):
        with open(os.path.join(ROOT, "README.md"), encoding="utf-8") as file:
            blocks = re.findall(r"```console\n(.*?)```", file.read(), re.S)
        shown = [part.split("\n", 1) for block in blocks for part in re.split(r"(?m)^\$ ldptool ", block)[1:]]
        self.assertGreater(len(shown), 1)
        os.chdir(ROOT)
        for command, output in shown:
            with self.subTest(command=command):
                self.assertEqual(run(*command.split()).out, output)


if __name__ == "__main__":
    unittest.main()
