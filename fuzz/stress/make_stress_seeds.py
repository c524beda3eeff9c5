#!/usr/bin/env python3
"""Writes the stress seeds: provisioning documents close to the 64 KB input
limit that push the decoder, the context and the getters to their sizes
(deep nesting, long chains, long texts, many values, more live blocks than the
leak tracker's table holds). Bodies go to wbxml_tree/, the same bodies wrapped
in a push PDU to pipeline/, the first of them to push_header/. They seed the
large-input runs; the 4 KB runs start from ../seeds. Run from anywhere; the
output is committed."""
import os

HERE = os.path.dirname(os.path.abspath(__file__))
LIMIT = 65536
HEADER = bytes([0x03, 0x0B, 0x6A, 0x00])  # WBXML 1.3, PROV 1.0, UTF-8, no string table


def s(text):
    return b"\x03" + text.encode() + b"\x00"


def parm(token, value=b""):
    return b"\x87" + bytes([token]) + (b"\x06" + value if value else b"") + b"\x01"


def inline_parm(name, value):
    return b"\x87\x05" + s(name) + b"\x06" + s(value) + b"\x01"


def char(type_attrs, content):
    return b"\xc6" + type_attrs + b"\x01" + content + b"\x01"


def doc(content):
    return HEADER + b"\xc5\x46\x01" + content + b"\x01"


def repeat_to_fit(prefix, unit, suffix, size=LIMIT - 128):
    n = max(1, (size - len(prefix) - len(suffix)) // len(unit))
    return prefix + unit * n + suffix


NAPDEF = b"\x55"
PXLOGICAL, PXPHYSICAL, PORT = b"\x51", b"\x52", b"\x53"
APPLICATION_P1 = b"\x00\x01\x55"
APPAUTH_P1 = b"\x00\x01\x57"
BACK_TO_P0 = b"\x00\x00"


def seeds():
    napdef = char(NAPDEF, parm(0x11, s("N")) + inline_parm("INIT", "1"))
    yield "many-napdefs", doc(repeat_to_fit(b"", napdef, b""))

    yield "many-dns-addr", doc(char(NAPDEF, repeat_to_fit(parm(0x11, s("N")), parm(0x48, s("1.2.3.4")), b"")))

    yield "many-services", doc(char(PXLOGICAL, parm(0x15, s("P")) + char(
        PORT, repeat_to_fit(parm(0x23, s("80")), parm(0x24, b"\xca"), b""))))

    # Characteristics nested as deep as the input allows.
    depth = (LIMIT - 64) // 8
    yield "deep-nesting", doc(b"\xc6\x51\x01" * depth + b"\x01" * depth)

    yield "long-inline-string", doc(char(NAPDEF, parm(0x11, s("N" * (LIMIT - 64)))))

    many_values = repeat_to_fit(b"\x87\x33\x06", b"\x03a\x00", b"\x01")
    yield "many-joined-values", doc(char(APPLICATION_P1, parm(0x36, s("w2")) + char(APPAUTH_P1, many_values)))

    roaming = char(b"\x50" + s("ROAMING"), inline_parm("SYNC-ALLOWED", "1"))
    wifi = char(BACK_TO_P0 + b"\x50" + s("WI-FI"), inline_parm("NETSSID", "x"))
    app = char(APPLICATION_P1, parm(0x36, s("w5")) + roaming)
    yield "many-kept-blocks", doc(repeat_to_fit(b"", app + wifi, b""))

    # A string table as long as the input allows, referenced many times.
    table = b"T" * 30000 + b"\x00"
    refs = repeat_to_fit(b"", parm(0x07, b"\x83\x00"), b"", LIMIT - 64 - len(table))
    body = bytes([0x03, 0x0B, 0x6A]) + bytes([0x81, 0xEA, 0x31]) + table  # mb_u_int32 30001
    body += b"\xc5\x46\x01" + char(NAPDEF, parm(0x11, s("N")) + refs) + b"\x01"
    yield "long-string-table", body

    proxies = char(PXLOGICAL, parm(0x15, s("P")) + char(PXPHYSICAL, parm(0x20, s("1.1.1.1")) +
                                                        char(PORT, parm(0x23, s("80")))))
    yield "many-proxies", doc(repeat_to_fit(b"", proxies, b""))


def write(target, name, data):
    with open(os.path.join(HERE, target, "stress-" + name), "wb") as f:
        f.write(data)


def main():
    for i, (name, body) in enumerate(seeds()):
        assert len(body) <= LIMIT - 4, (name, len(body))
        pdu = bytes([0x01, 0x06, 0x01, 0xB6]) + body
        write("wbxml_tree", name + ".wbxml", body)
        write("pipeline", name + ".pdu", pdu)
        if i == 0:
            write("push_header", name + ".pdu", pdu)


if __name__ == "__main__":
    main()
