#!/usr/bin/env python3
"""Writes the fuzzer's seed corpus: every body of the committed capture, and
bodies that lie about their lengths. A seed is the target's input: the row
(commands 0-14, then notifications), a byte whose value modulo 3 is the body
type and whose parity says whether the target adds a valid header (even),
then the body. Run from the top of the tree: fuzz/seeds.py"""
import hashlib
import os
import struct

OUT = "fuzz/corpus"
AS_IS = {0: 3, 1: 1}  # body type -> selector byte that adds no header
WITH_HEADER = {0: 0, 1: 4}


def el(tag, value, length=None):
    if isinstance(value, bytes):
        return struct.pack(">II", tag, len(value) if length is None else length) + value
    return struct.pack(">III", tag, 4 if length is None else length, value)


def text(tag, s, length=None):
    n = len(s)
    return el(tag, s + b"\0" * (n + 5 - (n + 1) % 4 - n), length)


seeds = []
for line in open("tests/data/demo.capture"):
    if line.startswith("#") or not line.strip():
        continue
    _, table, index, body_type, hexbody = line.split()
    row = int(index) + (15 if table == "IntfWifiApNtfy" else 0)
    seeds.append(bytes([row, AS_IS[int(body_type)]]) + bytes.fromhex(hexbody))

# Payloads after a valid header (the target writes it): row, body type, payload.
hostile = [
    (0, 0, el(3, 1, 8)),                                    # Configure: length past the end
    (2, 0, el(3, b"abcd")),                                 # SetIps: text without its NUL
    (2, 0, struct.pack(">II", 3, 0)),                       # SetIps: header ends the body
    (3, 1, text(3, b"ap0") + text(4, b"w" * 24)),           # Create response: text over capacity
    (6, 0, el(3, 5, 0xFFFFFFF8)),                           # StartWPS: length wraps
    (13, 1, el(3, 100) + text(4, b"stats")),                # GetAssocDevStats: count, no items
    (13, 1, el(3, 1) + text(4, b"") + text(3, b"m") + el(4, 1) + text(5, b"t") + text(3, b"")
     + struct.pack(">QQQ", (1 << 32) | 3, 8, 0)),           # wide element with a high tag half
    (18, 0, el(3, 7, 2)),                                   # EncryptionStatus: short value
]
for row, body_type, payload in hostile:
    seeds.append(bytes([row, WITH_HEADER[body_type]]) + payload)

os.makedirs(OUT, exist_ok=True)
for seed in seeds:
    with open(os.path.join(OUT, hashlib.sha1(seed).hexdigest()), "wb") as f:
        f.write(seed)
print(f"{len(seeds)} seeds in {OUT}")
