#!/usr/bin/env python3
"""Writes the two captures that bench/compare reads: the same bytes on every machine and every time.

usage: bench/make_captures.py FOLDER [--packets N] [--flows N] [--only office|crowd]

  office.pcap   the project's samples again and again, a few hundred flows at a time with ports of their own
  crowd.pcap    50,000 flows between 20,000 addresses: names, web requests, TLS greetings, and bytes of no protocol

  --packets N   packets of each, a million when not given
  --flows N     flows of crowd.pcap
  --only NAME   write this one alone
"""

import argparse
import functools
import pathlib
import random
import struct
import sys

SAMPLES = pathlib.Path(__file__).resolve().parent.parent / "samples"
ETHERNET = 1
START = 1_700_000_000
FLOWS = 50_000
ADDRESSES = 20_000


def pcapng_packets(data):
    """Time in microseconds and frame of each packet on an Ethernet interface of a pcapng file."""
    order, links, at = "<", [], 0
    while at + 12 <= len(data):
        if data[at:at + 4] == b"\n\r\r\n":
            order = "<" if data[at + 8:at + 12] == b"\x4d\x3c\x2b\x1a" else ">"
            links = []
        kind, length = struct.unpack_from(order + "II", data, at)
        if kind == 1:
            links.append(struct.unpack_from(order + "H", data, at + 8)[0])
        elif kind == 6:
            interface, high, low, captured, _ = struct.unpack_from(order + "IIIII", data, at + 8)
            if links[interface] == ETHERNET:
                yield high << 32 | low, data[at + 28:at + 28 + captured]
        at += length


def pcap_packets(data):
    order = "<" if data[:4] in (b"\xd4\xc3\xb2\xa1", b"\x4d\x3c\xb2\xa1") else ">"
    at = 24
    while at + 16 <= len(data):
        seconds, fraction, captured, _ = struct.unpack_from(order + "IIII", data, at)
        yield seconds * 1_000_000 + fraction, data[at + 16:at + 16 + captured]
        at += 16 + captured


def read_samples():
    """Frames of both samples with their times, which begin at 0."""
    packets = []
    for name, reader in (("office.pcapng", pcapng_packets), ("ipv6.pcap", pcap_packets)):
        found = list(reader((SAMPLES / name).read_bytes()))
        first = min(time for time, _ in found)
        packets += [(time - first, frame) for time, frame in found]
    packets.sort(key=lambda packet: packet[0])
    return packets


def transport_offset(frame):
    """Where the ports stand; 0 in frames without, or with headers that are not worth the trouble here."""
    if frame[12:14] == b"\x08\x00" and frame[23] in (6, 17) and not frame[20] & 0x1F and not frame[21]:
        return 14 + (frame[14] & 15) * 4
    if frame[12:14] == b"\x86\xdd" and frame[20] in (6, 17):
        return 54
    return 0


def shift_ports(frame, shift):
    """The frame as of another connection: ports that no service has are moved. Checksums are left alone."""
    at = transport_offset(frame)
    if not at or len(frame) < at + 4:
        return frame
    ports = [port if port < 10_000 else 10_000 + (port - 10_000 + shift) % 55_000
             for port in struct.unpack_from(">HH", frame, at)]
    return frame[:at] + struct.pack(">HH", *ports) + frame[at + 4:]


class Writer:
    def __init__(self, path):
        self.file = open(path, "wb", buffering=1 << 20)
        self.file.write(struct.pack("<IHHiIII", 0xA1B2C3D4, 2, 4, 0, 0, 262_144, ETHERNET))
        self.count = 0

    def put(self, time, frame):
        """`time` is in microseconds since the capture's start."""
        header = struct.pack("<IIII", START + time // 1_000_000, time % 1_000_000, len(frame), len(frame))
        self.file.write(header + frame)
        self.count += 1


def write_office(path, packets):
    samples = read_samples()
    length = samples[-1][0] + 1_000_000
    writer = Writer(path)
    round_number = 0
    while True:
        for time, frame in samples:
            if writer.count == packets:
                return
            writer.put(round_number * length + time, shift_ports(frame, round_number * 7))
        round_number += 1


def ipv4(source, destination, protocol, content, number):
    header = struct.pack(">BBHHHBBH4s4s", 0x45, 0, 20 + len(content), number & 0xFFFF, 0x4000, 64, protocol, 0,
                         source, destination)
    total = sum(struct.unpack(">10H", header))
    total = (total & 0xFFFF) + (total >> 16)
    total = (total & 0xFFFF) + (total >> 16)
    return header[:10] + struct.pack(">H", 0xFFFF - total) + header[12:] + content


def tcp(source, destination, sequence, acknowledged, flags, content=b""):
    return struct.pack(">HHIIBBHHH", source, destination, sequence, acknowledged, 0x50, flags, 65_535, 0, 0) + content


def udp(source, destination, content):
    return struct.pack(">HHHH", source, destination, 8 + len(content), 0) + content


def host_name(generator):
    return "host%d.example%d.net" % (generator.randrange(5_000), generator.randrange(200))


def dns(generator, name, answer):
    labels = b"".join(bytes([len(label)]) + label.encode() for label in name.split(".")) + b"\0"
    message = struct.pack(">HHHHHH", generator.randrange(65_536), 0x8180 if answer else 0x0100, 1, int(answer), 0, 0)
    message += labels + struct.pack(">HH", 1, 1)
    if answer:
        message += struct.pack(">HHHIH4s", 0xC00C, 1, 1, 300, 4, generator.randbytes(4))
    return message


def client_hello(generator, name):
    server = struct.pack(">HBH", len(name) + 3, 0, len(name)) + name.encode()
    extensions = struct.pack(">HH", 0, len(server)) + server
    hello = b"\x03\x03" + generator.randbytes(32) + b"\0" + struct.pack(">HHH", 4, 0xC02F, 0xC030) + b"\1\0"
    hello += struct.pack(">H", len(extensions)) + extensions
    handshake = b"\1\0" + struct.pack(">H", len(hello)) + hello
    return b"\x16\3\1" + struct.pack(">H", len(handshake)) + handshake


class Flow:
    """One conversation, which gives its packets one by one for as long as it is asked."""

    KINDS = ("dns", "http", "tls", "noise-udp", "noise-tcp")
    PORTS = {"dns": 53, "http": 80, "tls": 443}

    def __init__(self, generator, addresses):
        self.generator = generator
        self.kind = generator.choice(self.KINDS)
        self.ends = generator.sample(addresses, 2)
        self.client = 32_768 + generator.randrange(28_000)
        self.server = self.PORTS.get(self.kind) or 20_000 + generator.randrange(12_000)
        self.name = host_name(generator)
        self.step = 0

    def content(self, forth):
        generator = self.generator
        if self.kind == "dns":
            return dns(generator, self.name, not forth)
        if self.kind.startswith("noise"):
            return generator.randbytes(generator.randrange(20, 300))
        if self.kind == "http" and forth:
            return ("GET /%x HTTP/1.1\r\nHost: %s\r\nAccept: */*\r\n\r\n" % (generator.getrandbits(32), self.name)).encode()
        if self.kind == "http":
            return b"HTTP/1.1 200 OK\r\nContent-Type: text/html\r\nContent-Length: 900\r\n\r\n" + b"x" * 900
        if self.step == 3:
            return client_hello(generator, self.name)
        return b"\x17\3\3" + struct.pack(">H", 600) + generator.randbytes(600)

    def packet(self, number):
        step = self.step
        forth = step % 2 == 0
        over_udp = self.kind in ("dns", "noise-udp")
        ports = (self.client, self.server) if forth else (self.server, self.client)
        if over_udp:
            inner = udp(*ports, self.content(forth))
        elif step < 3:
            inner = tcp(*ports, step, step, (2, 18, 16)[step])
        else:
            forth = step % 2 == 1
            ports = (self.client, self.server) if forth else (self.server, self.client)
            inner = tcp(*ports, step * 1000, step * 1000, 24, self.content(forth))
        self.step += 1
        sender, receiver = self.ends if forth else reversed(self.ends)
        network = ipv4(sender, receiver, 17 if over_udp else 6, inner, number)
        return b"\2\0" + receiver + b"\2\0" + sender + b"\x08\0" + network


def write_crowd(path, packets, flow_count=FLOWS):
    generator = random.Random(20_000)
    addresses = [struct.pack(">I", 0x0A000000 + number * 5 + 1) for number in range(ADDRESSES)]
    flows = [Flow(generator, addresses) for _ in range(flow_count)]
    writer = Writer(path)
    while writer.count < packets:
        writer.put(writer.count * 100, generator.choice(flows).packet(writer.count))


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--packets", type=int, default=1_000_000)
    parser.add_argument("--flows", type=int, default=FLOWS)
    parser.add_argument("--only", choices=("office", "crowd"))
    arguments = parser.parse_args()
    arguments.folder.mkdir(parents=True, exist_ok=True)
    writers = {"office": write_office, "crowd": functools.partial(write_crowd, flow_count=arguments.flows)}
    for name in [arguments.only] if arguments.only else writers:
        path = arguments.folder / f"{name}.pcap"
        print(f"make_captures: {path}", file=sys.stderr)
        writers[name](path, arguments.packets)


if __name__ == "__main__":
    main()
