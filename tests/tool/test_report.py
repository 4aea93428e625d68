"""The page that ldptool report makes: what a browser shows of it, and what it does with hostile names."""

import os
import re
import shutil
import subprocess
import tempfile
import unittest

from ldptool import *
from talk import P2MP, Talk, fec, label, pw_id

CHROMIUM = shutil.which("chromium") or shutil.which("chromium-browser")
HOSTILE = "<!--<script>&amp;'\"\\.pcap"


def page_of(talk, folder):
    path, page = os.path.join(folder, HOSTILE), os.path.join(folder, "report.html")
    with open(path, "wb") as file:
        file.write(pcap(talk.frames))
    result = run("report", path, "-o", page)
    assert (result.status, result.out, result.err) == (0, "", "")
    with open(page, encoding="utf-8") as file:
        return file.read()


class Report(unittest.TestCase):
    def setUp(self):
        self.talk = Talk()
        for i in range(300):
            self.talk.say(2, 0x0400, fec(prefix(f"10.{i >> 8}.{i & 255}.0", 24)), label(100 + i))
        self.talk.say(2, 0x0400, fec(pw_id(7)), label(5000))
        self.talk.say(2, 0x0400, fec(P2MP), label(6000))

    def test_page_stands_alone(self):
        with tempfile.TemporaryDirectory() as folder:
            page = page_of(self.talk, folder)
            self.assertEqual(re.findall(r'\b(?:src|href)="[^#]|@import|url\(', page), [])
            data = re.search(r'<script type="application/json" id="data">(.*?)</script>', page, re.S).group(1)
            self.assertNotIn("<", data)
            self.assertIn("\\u003c!--\\u003cscript>", data)
            self.assertEqual(run("report", os.path.join(folder, HOSTILE), "-o", "/nowhere/page").status, 2)
            self.assertEqual(run("report", os.path.join(folder, HOSTILE)).out, page)

    @unittest.skipUnless(CHROMIUM, "chromium is not installed")
    def test_in_a_browser(self):
        probe = """<script>
        const rows = id => document.querySelectorAll(`#${id} tbody tr, #${id} .session, #${id} article`).length;
        const all = ["findings", "times", "bindings", "pseudowires"].map(rows).join();
        const input = document.querySelector("#bindings input");
        input.value = "10.1.7. 10.0.0.2"; input.dispatchEvent(new Event("input"));
        document.title = [all, rows("bindings"), document.querySelectorAll("#topology a").length,
           document.documentElement.scrollWidth <= innerWidth, document.scripts.length].join("; ");
        </script>"""
        with tempfile.TemporaryDirectory() as folder:
            with open(os.path.join(folder, "probed.html"), "w", encoding="utf-8") as file:
                file.write(page_of(self.talk, folder) + probe)
            command = [CHROMIUM, "--headless", "--disable-gpu", "--window-size=600,800", "--user-data-dir=" + folder, "--dump-dom", file.name]
            if os.geteuid() == 0:
                command.insert(1, "--no-sandbox")
            dom = subprocess.run(command, capture_output=True, timeout=120).stdout.decode()
        # Of 602 rows of bindings 200 at first; then one of each end. Two scripts and the data's: no name has become another.
        self.assertIn("<title>1,1,200,2; 2; 2; true; 3</title>", dom)
        self.assertIn(HOSTILE.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;"), dom)


if __name__ == "__main__":
    unittest.main()
