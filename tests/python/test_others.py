"""Replica and ring(), the types for checkers, and the examples."""

import pathlib
import re
import shutil
import socket
import struct
import subprocess
import sys
import threading

import ldp
import pytest
from ldpcap import CAPTURES
from support import BASIC, SMALL
from test_ring import ENUMERATION, FUNCTION, RECORDS, UNIT, block, ring, timed, untimed

ROOT = pathlib.Path(__file__).parents[2]


def published(capture, end, watches, begin=None):
    """Reads a capture in a thread of its own, once told to begin, and sends the log of its state to a socket."""
    def work():
        watch = ldp.watch(capture)
        watch.publish(end)
        if begin:
            begin.wait(10)
        watches.append(watch.run())
        end.close()

    thread = threading.Thread(target=work)
    thread.start()
    return thread


@pytest.mark.parametrize("capture", SMALL)
def test_replica(capture):
    ours, theirs = socket.socketpair()
    watches, changes, begin = [], [], threading.Event()
    thread = published(capture, theirs, watches, begin)
    replica = ldp.Replica(ours)
    while replica.root is None:
        assert replica.poll(10)
    with replica.root.observe(lambda *change: changes.append(change), below=True):
        begin.set()
        replica.run()
    thread.join()
    [watch] = watches
    assert replica.poll() is False and replica.records > 500 and replica.roots == [replica.root]
    assert changes and all(isinstance(change[0], ldp.Entity) for change in changes)
    speakers, copies = watch.root.speaker, replica.root.speaker
    assert copies.keys() == speakers.keys()
    for one, copy in zip(speakers.values(), copies.values()):
        for name in ("ldpAdjStatusColl", "ldpSessionStatusColl"):  # all of these is logged
            here, there = (each.ldpStatusColl.status["default"] for each in (one, copy))
            assert getattr(here, name).snapshot().keys() == getattr(there, name).snapshot().keys()
        assert ([(key, each.ldpSessionState) for key, each in here.ldpSessionStatusColl.sessionStatus.items()] ==
                [(key, each.ldpSessionState) for key, each in there.ldpSessionStatusColl.sessionStatus.items()])


def test_replica_of_a_path_and_of_nonsense(tmp_path):
    with socket.socket(socket.AF_UNIX) as server:
        server.bind(str(tmp_path / "log"))
        server.listen()
        thread = threading.Thread(target=lambda: published(BASIC, server.accept()[0], []).join())
        thread.start()
        assert ldp.Replica(tmp_path / "log").run().root.speaker.keys()[0] == "10.255.0.1:0"
        thread.join()
    ours, theirs = socket.socketpair()
    theirs.send(b"no log at all")
    replica = ldp.Replica(ours.fileno())
    with pytest.raises(ldp.LogError, match="attribute log"):
        replica.poll(10)
    assert replica.root is None and replica.poll() is False
    with pytest.raises(TypeError):
        ldp.Replica(1.5)
    watch = ldp.watch(BASIC)
    with pytest.raises(OSError):  # nobody is there to read
        ours.close()
        watch.publish(theirs)
        watch.run()


def test_ring(tmp_path):
    path = tmp_path / "ring"
    path.write_bytes(ring(FUNCTION + UNIT + ENUMERATION, block(2, b""), block(1, RECORDS)))
    records = ldp.ring(path)
    assert records.process_id == 4711 and iter(records) is records
    rows = list(records)
    assert [row["kind"] for row in rows] == ["open", "message", "open", "message", "close", "close"]
    assert rows[1] == {"nanoseconds": 1_700_000_000_000_000_100, "timed": False, "kind": "message", "thread": 1, "depth": 1,
                       "file": "LdpHdr", "line": 20, "function": "parse", "level": 6, "text": "   unit 7 is five"}
    assert (rows[4]["tookAtMost"], rows[5]["took"]) == (250, 1000)
    path.write_bytes(ring(UNIT, block(2, b""), block(1, untimed(2, struct.pack("=II", 7, 5)) + timed(9, 0))))
    with pytest.warns(ldp.CaptureWarning, match="1 place"):
        assert len(list(ldp.ring(path))) == 1
    path.write_bytes(b"GIF89a")
    with pytest.raises(ldp.RingError, match="ring: no ring trace"):
        ldp.ring(path)


def test_stubs_and_texts():
    stub = pathlib.Path(ldp.__file__).with_suffix(".pyi").read_text()
    for record in ldp.records():
        assert re.search(rf"^(class )?{record['name']}\b", stub, re.M), record["name"]
        if record["kind"] == "entity":
            kind = getattr(ldp, record["name"])
            assert issubclass(kind, ldp.Entity) and all(hasattr(kind, name) for name, _, _ in record["attributes"])
    for name in (name for name in dir(ldp) if not name.startswith("_")):
        assert re.search(rf"^(class|def) {name}\b", stub, re.M), name
    assert "seconds" in ldp.LdpAdjStatus.operHoldTime.__doc__ and "Hold time in force" in stub
    assert stub.count('"""') > 800


@pytest.mark.skipif(not shutil.which("mypy"), reason="no mypy")
def test_stubs_by_mypy():
    package = pathlib.Path(ldp.__file__).parents[1]
    result = subprocess.run(["mypy", "--strict", "--cache-dir", "/dev/null", "--python-executable", sys.executable,
                             str(package / "ldp" / "__init__.pyi")], capture_output=True, text=True)
    assert result.returncode == 0, result.stdout[:2000]


@pytest.mark.parametrize("name, modules, output", [
    ("bindings", ["pandas"], "10.255.0.3/32"),
    ("sessions", ["matplotlib"], "sessions.png"),
    ("many_captures", ["pandas", "dask", "distributed"], "20076 messages"),
])
def test_examples(name, modules, output, tmp_path):
    for module in modules:
        pytest.importorskip(module)
    arguments = {"bindings": [BASIC, "200"], "sessions": [BASIC, str(tmp_path / "sessions.png")],
                 "many_captures": ["--workers", "1", CAPTURES]}[name]
    path = ROOT / "examples" / "python" / f"{name}.py"
    result = subprocess.run([sys.executable, str(path), *arguments], capture_output=True, text=True, timeout=300)
    assert result.returncode == 0 and output in result.stdout, result.stderr[-2000:]
    if name == "sessions":
        assert (tmp_path / "sessions.png").read_bytes().startswith(b"\x89PNG")
