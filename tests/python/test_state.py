"""watch(): live objects, their attributes and collections, observers, history."""

import gc
import json
import subprocess
import os
import weakref

import ldp
import pytest
from support import BASIC, SMALL, canonical, ldptool, plain


@pytest.mark.parametrize("capture", SMALL)
def test_snapshot_is_the_tree_of_ldptool(capture):
    [expected] = ldptool("watch", "--json", capture)
    assert canonical(plain(ldp.watch(capture).run().root.snapshot())) == canonical(expected)


def visit(thing, seen):
    """Reads every attribute of an object and of all that it leads to."""
    if not isinstance(thing, ldp.Entity) or thing in seen:
        return
    seen.add(thing)
    for name in dir(type(thing)):
        if name.startswith("_") or name in ("observe", "snapshot"):
            continue
        value = getattr(thing, name)
        visit(value, seen)
        if not isinstance(value, ldp.Collection):
            continue
        assert len(value) == len(list(value))
        if isinstance(value, ldp.Mapping):
            assert all(key in value and value[key] == member for key, member in value.items() if member == member)
            for member in value.values():
                visit(member, seen)


@pytest.mark.parametrize("capture", SMALL)
def test_every_attribute_can_be_read(capture):
    seen = set()
    visit(ldp.watch(capture).run().root, seen)
    assert len(seen) > 200 and ldp.LdpSessionStatus in map(type, seen)


def session(root):
    status = root.speaker["10.255.0.1:0"].ldpStatusColl.status["default"]
    return status.ldpSessionStatusColl.sessionStatus["10.255.0.3:0"]


def test_objects():
    watch = ldp.watch(BASIC).run()
    one = session(watch.root)  # which is over in the end
    assert one == session(watch.root) and hash(one) == hash(session(watch.root)) and one != watch.root
    assert one.ldpSessionState == ("stateNonExist", "shutdown") and isinstance(one, ldp.Entity)
    speakers = watch.root.speaker
    assert speakers.keys() == sorted(speakers.keys()) and one.parent.sessionStatus.get("10.0.0.99:0", 7) == 7
    assert "nonsense" not in speakers and None not in speakers and "\u1234" not in speakers
    with pytest.raises(KeyError):
        speakers["10.0.0.99:0"]
    with pytest.raises(AttributeError):
        one.ldpSessionState = "x"
    with pytest.raises(TypeError):
        ldp.LdpSessionStatus()
    del watch, speakers
    gc.collect()
    assert one.ldpSessionState.code == "shutdown"  # it is held


def test_keys_with_parts():
    status = ldp.watch(BASIC).run().root.speaker["10.255.0.1:0"].ldpStatusColl.status["default"]
    adjacencies = status.ldpAdjStatusColl.adjStatus
    key = adjacencies.keys()[0]
    assert type(key) is ldp.LdpAdjId and adjacencies[key].ldpAdjId == key == adjacencies[tuple(key)].ldpAdjId
    assert adjacencies[f"{key.ldpIdentifier}_{key.intfId}"] == adjacencies[key]


def test_steps_and_history():
    watch, frames, states = ldp.watch(BASIC), [], []
    watch.observe(lambda thing, attribute, key: states.append((watch.frame, attribute)) if attribute == "ldpSessionState" else 0)
    for frame in watch:
        frames.append(frame)
        assert frame == watch.frame
    assert frames == sorted(set(frames)) and len(frames) > 300 and states[0][0] > 40
    expected = json.loads(subprocess.run([os.environ["LDPTOOL"], "watch", "--json", "--history", BASIC],
                                         capture_output=True).stdout)["history"]
    ours = [{**row, "from": row["from"] or "-", "to": row["to"] or "-"} for row in watch.history]
    assert plain(ours) == expected
    assert session(ldp.watch(BASIC, frame=42).run().root).ldpSessionState.sessionState == "stateOpenRecv"
    assert watch.step() is False and watch.run() is watch


def test_observers(capsys, monkeypatch):
    unraisable = []
    monkeypatch.setattr("sys.unraisablehook", unraisable.append)
    watch, calls = ldp.watch(BASIC), []

    def callback(thing, attribute, key):
        calls.append((thing, attribute, key))
        if len(calls) == 3:
            raise ValueError("of a callback")
        if len(calls) == 5:
            watch.run()  # which is under way
        if len(calls) == 10:
            observation.stop()

    observation = watch.observe(callback)
    others = []
    with watch.root.observe(lambda *change: others.append(change)) as own:
        watch.run()
        assert own.active and not observation.active and len(calls) == 10
    assert [type(each.exc_value) for each in unraisable] == [ValueError, ldp.Error]
    assert [attribute for _, attribute, _ in others] == ["speaker"] * 3
    assert calls[0] == (watch.root, "speaker", "10.255.0.1:0")
    with pytest.raises(TypeError):
        watch.observe(None)
    watch = ldp.watch(BASIC)
    watch.observe(lambda *change: (_ for _ in ()).throw(KeyboardInterrupt))
    with pytest.raises(KeyboardInterrupt):
        watch.run()


def test_nothing_is_left_of_a_dropped_watch():
    class Witness:
        pass

    def make():
        watch, witness = ldp.watch(BASIC), Witness()
        watch.observe(lambda *change: (watch, witness))
        next(watch)
        return weakref.ref(witness)

    left = make()
    gc.collect()
    assert left() is None
