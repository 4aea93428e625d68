"""decode() and read(): the shape of the JSON, typed values, errors that name the defect."""

import ipaddress
import threading

import ldp
import pytest
from ldpcap import ETHERNET, hello, keepalive, mapping, message, pdu, prefix, tlv
from support import BASIC, CAPTURES, canonical, ldptool, plain

GOOD = pdu(hello(1), keepalive(2)) + pdu(mapping(3), mapping(4, "2001:db8::", 32))


@pytest.mark.parametrize("capture", CAPTURES)
def test_shape(capture):
    messages = list(ldp.read(capture, text=True))
    expected = ldptool("decode", "--json", "--full", capture)
    assert len(messages) == len(expected)
    for ours, json_object in zip(messages, expected):
        assert canonical(plain(ours)) == canonical(json_object)


def test_values():
    first, _, third, fourth = ldp.decode(GOOD)
    assert first["lsrId"] == ipaddress.IPv4Address("10.0.0.1") and first["hello"]["targeted"] is False
    assert [m["msgId"] for m in ldp.decode(bytearray(GOOD))] == [1, 2, 3, 4]
    assert third["fec"]["elements"][0]["prefix"] == ipaddress.ip_network("10.1.0.0/16")
    assert fourth["fec"]["elements"][0]["prefix"] == ipaddress.ip_network("2001:db8::/32")
    assert third["offset"] == fourth["offset"] == len(pdu(hello(1), keepalive(2)))
    assert ldp.decode(b"") == []


BAD = pdu(message(0x0400, 7, tlv(0x0100, prefix("10.1.0.0", 16)), tlv(0x0200, b"\0\0\0")))


@pytest.mark.parametrize("octets, status, offset", [
    (GOOD + BAD, "malformedTlv", len(GOOD) + 28),
    (GOOD + GOOD[:5], "badPduLength", len(GOOD)),
    (pdu(hello(1), version=2), "badVersion", 0),
    (GOOD + pdu(message(0x0100, 1, tlv(0x0400, length=0xfffc))), "badTlvLength", len(GOOD) + 18),
])
def test_defects(octets, status, offset):
    last = ldp.decode(octets)[-1]
    assert "fault" in last
    with pytest.raises(ldp.DecodeError, match=status) as raised:
        ldp.decode(octets, strict=True)
    error = raised.value
    assert (error.status, error.offset, error.message) == (status, offset, last)
    assert error.reason in str(error) and isinstance(error, ldp.Error)


def test_selection():
    assert {m["type"] for m in ldp.read(BASIC, types=["LdpInit", 0x400])} == {"LdpInit", "LdpLabelMapping"}
    assert {m["proto"] for m in ldp.read(BASIC, filter="udp")} == {"udp"}
    assert all("fault" in m for m in ldp.read(BASIC, bad=True))
    with pytest.raises(ValueError, match="LdpFoo"):
        ldp.read(BASIC, types=["LdpFoo"])
    with pytest.raises(ValueError, match="syntax error"):
        ldp.read(BASIC, filter="no such thing")


def test_damaged_files(tmp_path):
    with pytest.raises(OSError, match="nowhere: No such file") as raised:
        ldp.read(tmp_path / "nowhere")
    assert isinstance(raised.value, ldp.CaptureError)
    cut = tmp_path / "cut.pcap"
    cut.write_bytes(open(BASIC, "rb").read()[:-20])
    messages = []
    with pytest.raises(ldp.CaptureError, match="cut.pcap: truncated"):
        for each in ldp.read(cut):
            messages.append(each)
    assert len(messages) > 400  # what stands before the damage was given


def test_threads_decode_at_once():
    expected = ldp.decode(GOOD)
    wrong = []

    def work():
        for _ in range(300):
            wrong.extend(m for m in [ldp.decode(GOOD * 5)[:4]] if m != expected)
        assert sum(1 for _ in ldp.read(BASIC)) == 430

    threads = [threading.Thread(target=work) for _ in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not wrong
