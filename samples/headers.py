"""Headers of packets, put together from their fields with checksums that are right: what the generators share."""
import ipaddress
import struct

START = 1_700_000_000_000_000_000  # nanoseconds since 1970: 2023-11-14 22:13:20 UTC

A4, B4 = '192.0.2.1', '198.51.100.2'
A6, B6 = '2001:db8:1::1', '2001:db8:2::2'
INNER_A4, INNER_B4 = '10.1.0.1', '10.2.0.2'
INNER_A6, INNER_B6 = 'fd00:1::1', 'fd00:2::2'
MAC_A, MAC_B = '02:00:5e:00:00:01', '02:00:5e:00:00:02'
INNER_MAC_A, INNER_MAC_B = '02:00:5e:00:01:01', '02:00:5e:00:01:02'


# --- fields ----------------------------------------------------------------------------------------------------------

def mac(text):
    return bytes.fromhex(text.replace(':', ''))


def ip(text):
    return ipaddress.ip_address(text).packed


def be16(*values):
    return struct.pack(f'!{len(values)}H', *values)


def be32(*values):
    return struct.pack(f'!{len(values)}I', *values)


def checksum(data):
    """RFC 1071."""
    data += b'\0' * (len(data) % 2)
    total = sum(struct.unpack(f'!{len(data) // 2}H', data))
    while total >> 16:
        total = (total & 0xFFFF) + (total >> 16)
    return ~total & 0xFFFF


def with_checksum(data, at, covered_first=b''):
    """Puts the checksum of pseudo header and data into the two bytes at that offset, which are zero."""
    return data[:at] + be16(checksum(covered_first + data) or 0xFFFF) + data[at + 2:]


def crc32c(data):
    crc = 0xFFFFFFFF
    for byte in data:
        crc ^= byte
        for _ in range(8):
            crc = (crc >> 1) ^ (0x82F63B78 if crc & 1 else 0)
    return crc ^ 0xFFFFFFFF


# --- headers: each takes its payload and returns itself with it ----------------------------------------------------------

def ethernet(kind, payload, source=MAC_A, destination=MAC_B):
    frame = mac(destination) + mac(source) + be16(kind) + payload
    return frame + b'\0' * max(0, 60 - len(frame))


def ieee8023(payload, destination=MAC_B):
    return ethernet(len(payload), payload, destination=destination)


def llc(sap, payload):
    return bytes([sap, sap, 3]) + payload


def snap(organisation, number, payload):
    return llc(0xAA, organisation.to_bytes(3, 'big') + be16(number) + payload)


def vlan(identifier, kind, payload):
    return be16(identifier, kind) + payload


def mpls(labels, payload):
    last = len(labels) - 1
    return b''.join(be32(label << 12 | (i == last) << 8 | 64) for i, label in enumerate(labels)) + payload


def ipv4(protocol, payload, source=A4, destination=B4, identifier=1, options=b'', fragment=0, ttl=64):
    header = struct.pack('!BBHHHBBH', 0x45 + len(options) // 4, 0, 20 + len(options) + len(payload), identifier, fragment,
                         ttl, protocol, 0) + ip(source) + ip(destination) + options
    return with_checksum(header, 10) + payload


def ipv6(following, payload, source=A6, destination=B6, hops=64):
    return struct.pack('!IHBB', 6 << 28, len(payload), following, hops) + ip(source) + ip(destination) + payload


def pseudo(source, destination, protocol, length):
    return ip(source) + ip(destination) + be32(length, protocol) if ':' in source else \
        ip(source) + ip(destination) + be16(protocol, length)


def udp(source_port, destination_port, payload, source=A4, destination=B4):
    length = 8 + len(payload)
    segment = be16(source_port, destination_port, length, 0) + payload
    return with_checksum(segment, 6, pseudo(source, destination, 17, length))


def tcp(source_port, destination_port, payload, source=A4, destination=B4, sequence=1):
    segment = struct.pack('!HHIIBBHHH', source_port, destination_port, sequence, 1, 0x50, 0x18, 8192, 0, 0) + payload
    return with_checksum(segment, 16, pseudo(source, destination, 6, len(segment)))


def sctp(source_port, destination_port, chunks):
    packet = be16(source_port, destination_port) + be32(0x01020304, 0) + chunks
    return packet[:8] + struct.pack('<I', crc32c(packet)) + packet[12:]


def sctp_data(payload, identifier, number=1):
    length = 16 + len(payload)
    return struct.pack('!BBHIHHI', 0, 3, length, number, 1, 0, identifier) + payload + b'\0' * (-length % 4)


def gre(kind, payload, flags=0, fields=b''):
    return be16(flags, kind) + fields + payload


def pppoe(code, payload, session=0):
    return struct.pack('!BBHH', 0x11, code, session, len(payload)) + payload


def ppp(protocol, payload):
    return be16(protocol) + payload
