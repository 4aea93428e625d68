"""The command line: forms of output, selection, exit status, and one clear line for every mistake."""

import os
import pty
import re
import shutil
import tempfile
import unittest

from ldptool import *

MANUAL = os.path.join(os.path.dirname(__file__), "..", "..", "docs", "ldptool.1")
BASIC = os.path.join(CAPTURES, "basic-v4.pcap")
GOOD = pdu(hello(1), keepalive(2), lsr="10.0.0.9")
BAD = pdu(message(0x0100, 3), mapping(4))


class Forms(unittest.TestCase):
    def test_lines(self):
        frames = [(ether(udp(GOOD)), None, 3661.5), (ether(udp(pdu(mapping(4)), src="2001:db8::1", dst="ff02::2")), None, 3662)]
        self.assertEqual(decode(pcap(frames)).out, (
            "1 13:27:41.500000 10.0.0.1 > 10.0.0.2 10.0.0.9:0 LdpHello id 1 holdTime 15\n"
            "1 13:27:41.500000 10.0.0.1 > 10.0.0.2 10.0.0.9:0 LdpKeepAlive id 2\n"
            "2 13:27:42.000000 2001:db8::1 > ff02::2 10.0.0.1:0 LdpLabelMapping id 4 10.1.0.0/16 label 100\n"))
        result = decode_hex([BAD, pdu(keepalive(9), version=7)])
        self.assertEqual((result.status, result.out), (1, (
            "line 1 10.0.0.1:0 LdpHello id 3 BAD missingMessageParams: Message has 0 TLV [whole message; > 0100000400000003]\n"
            "line 1 10.0.0.1:0 LdpLabelMapping id 4 10.1.0.0/16 label 100\n"
            "line 2 10.0.0.1:0 BAD PDU badVersion: LDP Version 7 not supported [whole PDU; > 0007000e0a00000100000201000400000009]\n")))

    def test_a_file_is_decoded_without_a_command(self):
        self.assertEqual(run(BASIC).out, run("decode", BASIC).out)
        self.assertEqual(run(BASIC, "--count").out, run("decode", "--count", BASIC).out)

    def test_every_message_has_one_line_and_one_object(self):
        for name in sorted(os.listdir(CAPTURES)):
            if name.endswith(".pcap"):
                path = os.path.join(CAPTURES, name)
                lines, objects = run("decode", path).out.splitlines(), run("decode", "--json", path).objects
                self.assertEqual(len(lines), len(objects))
                self.assertEqual(run("decode", "--count", path).out, f"{len(objects)}\n")
                for line, o in zip(lines, objects):
                    self.assertIn(f" {o['src']} > {o['dst']} {o['lsrId']}:{o['labelSpace']} {o['type']} id {o['msgId']}", line)

    def test_on_a_terminal(self):
        def seen(*arguments, **environment):
            master, slave = pty.openpty()
            subprocess.run([LDPTOOL, *arguments], stdout=slave, env=os.environ | environment, timeout=60)
            os.close(slave)
            with open(master, "rb", buffering=0) as file:
                return file.read(1 << 16).decode().replace("\r\n", "\n")
        timers = os.path.join(CAPTURES, "timers.pcap")
        self.assertTrue(all(len(line) <= 100 for line in seen("watch", timers).splitlines()[1:]))
        self.assertEqual(seen("watch", timers).split(), run("watch", timers).out.split())
        with tempfile.NamedTemporaryFile() as file:
            file.write(BAD.hex().encode())
            file.flush()
            (bad, good), plain = seen("decode", "--hex", file.name).splitlines(), run("decode", "--hex", file.name).out.splitlines()
            self.assertEqual((bad, good), (f"\33[31m{plain[0]}\33[0m", plain[1]))
            self.assertEqual(seen("decode", "--hex", file.name, NO_COLOR="1").splitlines(), plain)

    def test_completion(self):
        options = set(re.findall(r"(?<= )--[a-z]+", run("watch", "--help").out))
        self.assertGreater(len(options), 15)
        for shell in ("bash", "zsh"):
            script = run("completion", shell).out
            self.assertTrue(all(option in script for option in options), shell)
            if shutil.which(shell):
                self.assertEqual(subprocess.run([shell, "-n"], input=script.encode(), timeout=60).returncode, 0)
        words = subprocess.run(["bash", "-c", run("completion", "bash").out + "COMP_WORDS=(ldptool watch --ne) COMP_CWORD=2; _ldptool; echo ${COMPREPLY[@]}"],
                               capture_output=True, timeout=60).stdout
        self.assertEqual(words, b"--neighbors\n")

    @unittest.skipUnless(shutil.which("zsh"), "zsh is not installed")
    def test_zsh_completes(self):
        with tempfile.TemporaryDirectory() as folder:
            with open(os.path.join(folder, "_ldptool"), "w", encoding="utf-8") as file:
                file.write(run("completion", "zsh").out)
            typing = rf"""zmodload zsh/zpty; zpty z zsh -f -i; zpty -w z "fpath+=({folder}); autoload -Uz compinit; compinit -u -D; echo rea''dy"
                zpty -r -m z line '*ready*'; zpty -w -n z $'ldptool watch --nei\t'; zpty -r -m z line '*--neighbors*'; echo found"""
            self.assertEqual(subprocess.run(["zsh", "-f", "-c", typing], capture_output=True, timeout=60).stdout, b"found\n")

    def test_full(self):
        out = decode_hex([GOOD], "--full").out
        self.assertEqual(out, (
            "line 1 LdpPduHdr: Ver(1),Len(30),LdpId: 10.0.0.9:0\n"
            '   line 1, lsrId 10.0.0.9, labelSpace 0, pduLength 30, pduStatus success, pduReason ""\n'
            "LDP Hello Msg:\n   Msg Id: 1,   CommonHelloTlv: HT(15),0,0\n"
            '   type LdpHello, typeValue 0x0100, unknownBit false, msgId 1, msgLength 12, status success, reason "", valid true\n'
            "   hello holdTime 15, targeted false, requestTargeted false\n"
            "LdpKeepAlive, Id: 0x00000002, numTlv: 0\n"
            '   type LdpKeepAlive, typeValue 0x0201, unknownBit false, msgId 2, msgLength 4, status success, reason "", valid true\n'))
        self.assertIn("Error LDP PDU: LDP Version 7 not supported [whole PDU; > ", decode_hex([pdu(keepalive(9), version=7)], "--full").out)

    def test_stats(self):
        result = decode(pcap([ether(udp(GOOD)), ether(udp(BAD)), ether(udp(GOOD))]), "--stats")
        self.assertEqual(result.status, 1)
        for row in (r"^10\.0\.0\.1:0 +LdpHello +1$", r"^10\.0\.0\.1:0 +LdpLabelMapping +1$", r"^10\.0\.0\.9:0 +LdpHello +2$",
                    r"^10\.0\.0\.9:0 +LdpKeepAlive +2$", r"^all +LdpHello +3$", r"^10\.0\.0\.1:0 +bad ones among them +1$",
                    r"^ +1  missingMessageParams +Message has 0 TLV$", r"^packets +3$", r"^PDUs good +3$"):
            self.assertRegex(result.out, "(?m)" + row)

    def test_filter(self):
        for types in ("LdpHello", "hello", "HELLO", "256", "0x100", "0x0100", "ldphello,LabelRequest"):
            with self.subTest(types):
                self.assertEqual([o["msgId"] for o in decode_hex([GOOD], "--json", "--filter", types).objects], [1])
        both = decode_hex([GOOD], "--json", "--filter", "hello", "--filter", "keepalive")
        self.assertEqual([o["msgId"] for o in both.objects], [1, 2])
        # What is not asked for is not judged; a PDU that is bad as a whole may hide what is asked for.
        self.assertEqual(decode_hex([BAD], "--filter", "LabelMapping").status, 0)
        self.assertEqual(decode_hex([pdu(keepalive(1), version=2)], "--filter", "hello").status, 1)

    def test_bad_only(self):
        result = decode_hex([GOOD, BAD, GOOD], "--bad", "--json")
        self.assertEqual(([o["msgId"] for o in result.objects], result.status), ([3], 1))
        self.assertEqual(decode_hex([GOOD, BAD], "--bad", "--count").out, "1\n")

    def test_hex_forms(self):
        packet = GOOD.hex()
        text = f"# a comment\n\n  \t\n{packet}\n{packet.upper()} # behind it\r\n{' '.join(packet)}\n{packet}00ff"
        result = run("decode", "--hex", "-", "--json", stdin=text.encode())
        self.assertEqual([(o["line"], o["msgId"]) for o in result.objects], [(n, i) for n in (4, 5, 6, 7) for i in (1, 2)])
        self.assertEqual((result.err, result.status), ("", 0))

    def test_standard_input_is_a_capture_too(self):
        with open(BASIC, "rb") as file:
            result = run("decode", "-", "--count", stdin=file.read())
        self.assertEqual((result.out, result.status), ("430\n", 0))


class Mistakes(unittest.TestCase):
    def check(self, result, words, status=2):
        self.assertEqual(result.status, status, result.err)
        self.assertEqual(len(result.err.splitlines()), 1, result.err)
        self.assertTrue(result.err.startswith("ldptool: "), result.err)
        self.assertIn(words, result.err)

    def test_arguments(self):
        for arguments, words in (
            ([], "subcommand"), (["decode"], "one of FILE, -i IFACE and --hex FILE"), (["decode", BASIC, "--hex", "-"], "one of FILE"),
            (["decode", BASIC, "--json", "--count"], "excludes"), (["decode", BASIC, "--nonsense"], "--nonsense"), (["nonsense"], "subcommand"),
            (["decode", BASIC, "--filter", "hallo"], "'hallo'"), (["decode", BASIC, "--filter", "0x8000"], "'0x8000'"),
            (["decode", BASIC, "--filter", ""], "''"), (["decode", BASIC, "--filter"], "--filter"),
            (["decode", "-i", "no-such-interface"], "no-such-interface"),
        ):
            with self.subTest(arguments):
                self.check(run(*arguments), words)

    def test_unreadable_files(self):
        self.check(run("decode", "/no/such/file"), "/no/such/file: No such file or directory")
        self.check(run("decode", "--hex", "/no/such/file"), "/no/such/file: No such file or directory")
        self.check(run("decode", CAPTURES), "captures")
        self.check(run("decode", "--hex", CAPTURES), "captures")
        self.check(decode(b"this is no capture, is it?"), "unknown file format")
        self.check(decode(pcap([b"\0" * 40], link=105)), "link type IEEE802_11 is not supported")

    def test_what_stands_before_the_damage_is_printed(self):
        whole = pcap([ether(udp(GOOD)), ether(udp(GOOD))])
        result = decode(whole[:-1], "--json")
        self.check(result, "truncated")
        self.assertEqual([o["msgId"] for o in result.objects], [1, 2])
        for text, words in ((f"{GOOD.hex()}\n00x0\n", "line 2: not a hexadecimal digit"), (f"{GOOD.hex()}\n\n000\n", "line 3: an odd number")):
            result = run("decode", "--hex", "-", "--json", stdin=text.encode())
            self.check(result, words)
            self.assertEqual([o["msgId"] for o in result.objects], [1, 2])

    def test_full_disk(self):
        with open("/dev/full", "wb") as full:
            process = subprocess.run([LDPTOOL, "decode", BASIC], stdout=full, stderr=subprocess.PIPE, timeout=60)
        self.assertEqual((process.returncode, process.stderr.decode()),
                         (2, "ldptool: cannot write the output: No space left on device\n"))

    def test_help(self):
        for arguments in (["--help"], ["decode", "--help"]):
            result = run(*arguments)
            self.assertEqual((result.status, result.err), (0, ""))
        self.assertIn("ldptool decode --json session.pcap", result.out)
        self.assertIn("Exit status:", result.out)

    def test_the_manual_page_has_every_option(self):
        commands = re.findall(r"^  ([a-z]+) ", run("--help").out.split("Subcommands:")[1], re.M)
        helps = [run("--help").out, *(run(command, "--help").out for command in commands)]
        options = {name for text in helps for names in re.findall(r"^  (-[a-z,-]+)", text, re.M) for name in names.split(",")}
        with open(MANUAL) as file:
            page = re.sub(r"\\f.", "", file.read().replace("\\-", "-"))
        bold = re.findall(r"^\.(?:TP\n|[BRI]+ )(.*)", page, re.M)
        self.assertEqual(set(re.findall(r"(?<![\w-])--?[a-z]+", "\n".join(bold))), options)
        for command in commands:
            self.assertIn(f".B ldptool {command}\n", page)


if __name__ == "__main__":
    unittest.main()
