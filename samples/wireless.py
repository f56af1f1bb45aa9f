"""The air around a small office, as one radio hears it that hops between channels: frames of IEEE 802.11 behind radiotap
headers, with the frame check sequence that each ends with."""
import itertools
import struct
import zlib

from headers import START, be16, ip, ipv4, snap, tcp, udp

RADIOTAP = 127
ALL = 'ff:ff:ff:ff:ff:ff'
MULTICAST = '01:00:5e:00:00:fb'

LAB_24 = '02:00:5e:10:00:01'  # lab, channel 6, WPA2 with a password
LAB_5 = '02:00:5e:10:00:02'  # lab again, channel 36
OFFICE = '02:00:5e:10:00:03'  # office, channel 1, WPA with 802.1X
STORE = '02:00:5e:10:00:04'  # hidden, channel 11, WEP, 802.11b
GUEST = '02:00:5e:10:00:05'  # guest, channel 6, open
BRIDGE = '02:00:5e:10:00:06'  # carries guest on by radio
PARTY = '02:00:5e:77:77:77'  # an ad hoc network's identifier, which is nobody's address

ROAMER = '02:00:5e:20:00:01'
CLERK = '02:00:5e:20:00:02'
SCANNER = '02:00:5e:20:00:03'
VISITOR = '02:00:5e:20:00:04'
FAR = '02:00:5e:20:00:05'
PROBER = '02:00:5e:20:00:06'
ANNA, BERT = '02:00:5e:30:00:01', '02:00:5e:30:00:02'
WIRED = '02:00:5e:40:00:01'  # the server behind the access points
OURS = '02:00:5e:50:00:01'  # of the radio that listens

# Bits of the second byte of the frame control field.
TO_DS, FROM_DS, MORE, RETRY, PROTECTED, ORDER = 1, 2, 4, 8, 0x40, 0x80
BEACON, PROBE_REQUEST, PROBE_RESPONSE, AUTHENTICATION, ACTION = 8, 4, 5, 11, 13
ASSOCIATION_REQUEST, ASSOCIATION_RESPONSE, REASSOCIATION_REQUEST, REASSOCIATION_RESPONSE = 0, 1, 2, 3
DISASSOCIATION, DEAUTHENTICATION = 10, 12
ESS, IBSS, PRIVACY = 1, 2, 0x10

SEQUENCE = itertools.count(1)
PORTS = itertools.count(50001)


def mac(text):
    return bytes.fromhex(text.replace(':', ''))


def le16(*values):
    return struct.pack(f'<{len(values)}H', *values)


# --- the radio's header --------------------------------------------------------------------------------------------------

def radiotap(channel, signal, rate=0, ht=None, noise=-95, flags=0x10):
    """Flags, rate, channel, signal, noise and antenna, and MCS (index, 40 MHz, short guard interval) in the rate's place."""
    frequency = 2407 + 5 * channel if channel < 15 else 5000 + 5 * channel
    present = 0x86A if ht else 0x86E
    header = bytes([flags])
    if ht:
        header += b'\0'
        kind = 0x0480 if channel < 15 else 0x0140
    else:
        header += bytes([rate])
        kind = (0x80 if channel < 15 else 0x100) | (0x20 if rate in (2, 4, 11, 22) else 0x40)
    header += struct.pack('<HHbbB', frequency, kind, signal, noise, 0)
    if ht:
        index, wide, short = ht
        present |= 1 << 19
        header += bytes([7, wide | short << 2, index])
    return struct.pack('<BBHI', 0, 0, 8 + len(header), present) + header


def antennas(channel, rate, signal, each):
    """The same with a signal for each of several antennas, in radiotap namespaces of their own, and a vendor's field."""
    header = struct.pack('<BBHHb', 0x10, rate, 2407 + 5 * channel, 0xA0, signal)
    header += b'\0' + b'\x02\0\x5e\0' + le16(4) + b'\1\2\3\4'
    for number, level in enumerate(each):
        header += struct.pack('<bB', level, number)
    words = [0xC000002E] + [0xA0000820] * len(each)
    words[-1] &= 0x7FFFFFFF
    return struct.pack(f'<BBH{len(words)}I', 0, 0, 4 + 4 * len(words) + len(header), *words) + header


def sent_by_us(frame):
    """What the radio sends itself has no level and no channel, and no frame check sequence."""
    return struct.pack('<BBHIBBH', 0, 0, 12, 0x8004, 2, 0, 8) + frame


# --- frames ------------------------------------------------------------------------------------------------------------

def management(subtype, destination, source, network, body, flags=0):
    return bytes([subtype << 4, flags]) + le16(314) + mac(destination) + mac(source) + mac(network) + \
        le16(next(SEQUENCE) << 4 & 0xFFFF) + body


def data(receiver, transmitter, third, payload, flags=0, fourth=None, qos=None, subtype=0, fragment=0):
    frame = bytes([(subtype | (8 if qos is not None else 0)) << 4 | 8, flags]) + le16(44) + mac(receiver) + mac(transmitter) + \
        mac(third) + le16((next(SEQUENCE) << 4 | fragment) & 0xFFFF)
    if fourth:
        frame += mac(fourth)
    if qos is not None:
        frame += le16(qos)
        if flags & ORDER:
            frame += b'\0' * 4
    return frame + payload


def control(subtype, receiver, transmitter=None, rest=b'', flags=0):
    return bytes([subtype << 4 | 4, flags]) + le16(44) + mac(receiver) + (mac(transmitter) if transmitter else b'') + rest


def acknowledgement(receiver):
    return control(13, receiver)


def up(station, access_point, destination, payload, flags=0, **more):
    return data(access_point, station, destination, payload, TO_DS | flags, **more)


def down(station, access_point, source, payload, flags=0, **more):
    return data(station, access_point, source, payload, FROM_DS | flags, **more)


# --- elements ----------------------------------------------------------------------------------------------------------

def element(number, value):
    return bytes([number, len(value)]) + value


def suites(organisation, *types):
    return le16(len(types)) + b''.join(organisation + bytes([kind]) for kind in types)


RSN = b'\0\x0f\xac'
WPA = b'\0\x50\xf2'
RSN_PSK = element(48, le16(1) + RSN + b'\4' + suites(RSN, 4) + suites(RSN, 2) + le16(0))
WPA_EAP = element(221, WPA + b'\1' + le16(1) + WPA + b'\2' + suites(WPA, 2) + suites(WPA, 1))
SLOW_RATES = element(1, bytes([0x82, 0x84, 0x8B, 0x96]))
RATES = element(1, bytes([0x82, 0x84, 0x8B, 0x96, 12, 18, 24, 36])) + element(50, bytes([48, 72, 96, 108]))
FAST_RATES = element(1, bytes([0x8C, 18, 0x98, 36, 0xB0, 72, 96, 108]))


def name(text):
    return element(0, text)


def announcement(capabilities, ssid, elements, channel):
    shown = element(3, bytes([channel])) if channel < 15 else element(61, bytes([channel]) + b'\0' * 21)
    return b'\0' * 8 + le16(100, capabilities) + name(ssid) + elements + shown


# Address, channel, signal, and the body of its beacons.
NETWORKS = [
    (OFFICE, 1, -61, announcement(ESS | PRIVACY, b'office', RATES + WPA_EAP, 1)),
    (LAB_24, 6, -48, announcement(ESS | PRIVACY, b'lab', RATES + RSN_PSK, 6)),
    (GUEST, 6, -55, announcement(ESS, b'guest', RATES, 6)),
    (STORE, 11, -72, announcement(ESS | PRIVACY, b'\0' * 5, SLOW_RATES, 11)),
    (LAB_5, 36, -52, announcement(ESS | PRIVACY, b'lab', FAST_RATES + RSN_PSK, 36)),
]


def beacons():
    for address, channel, signal, body in NETWORKS:
        rate = 12 if channel > 14 else 2
        yield radiotap(channel, signal, rate), management(BEACON, ALL, address, address, body)
    yield radiotap(11, -66, 2), management(BEACON, ALL, ANNA, PARTY, announcement(IBSS, b'party', SLOW_RATES, 11))


# --- what travels in them ------------------------------------------------------------------------------------------------

def question(source='192.0.2.50', destination='192.0.2.1'):
    query = struct.pack('!6H', 0x1234, 0x0100, 1, 0, 0, 0) + b'\3www\7example\3com\0' + be16(1, 1)
    return snap(0, 0x0800, ipv4(17, udp(next(PORTS), 53, query, source, destination), source, destination))


def segment(payload, source='192.0.2.50', destination='198.51.100.2'):
    return snap(0, 0x0800, ipv4(6, tcp(next(PORTS), 80, payload, source, destination), source, destination))


def arp():
    return snap(0, 0x0806, be16(1, 0x0800) + b'\6\4' + be16(1) + mac(VISITOR) + ip('192.0.2.50') + b'\0' * 6 + ip('192.0.2.1'))


def eap(code, identifier, method, body=b''):
    message = struct.pack('!BBHB', code, identifier, 5 + len(body), method) + body
    return snap(0, 0x888E, b'\2\0' + be16(len(message)) + message)


def key_message(information):
    """A message of the four-way handshake (IEEE 802.11-2020 clause 12.7.2)."""
    return snap(0, 0x888E, b'\2\3' + be16(95) + b'\2' + be16(information, 16) + b'\0' * 7 + b'\1' + b'\x33' * 32 + b'\0' * 50)


def ccmp(number, length):
    return struct.pack('<HBBI', number, 0, 0x20, 0) + b'\xc5' * length


def tkip(number, length):
    high = number >> 8
    return bytes([high, (high | 0x20) & 0x7F, number & 0xFF, 0x20]) + b'\0' * 4 + b'\x7a' * length


def wep(key, length):
    return b'\x11\x22\x33' + bytes([key << 6]) + b'\x5e' * length


def aggregate(*packets):
    joined = b''
    for destination, source, payload in packets:
        one = mac(destination) + mac(source) + be16(len(payload)) + payload
        joined += one + b'\0' * (-len(one) % 4)
    return joined


# --- what happens --------------------------------------------------------------------------------------------------------

def roaming():
    """A station joins lab at 2.4 GHz, speaks, and moves on to 5 GHz."""
    near = radiotap(6, -50, 22)
    capabilities = le16(ESS | PRIVACY, 10)
    yield radiotap(6, -51, 2), management(PROBE_REQUEST, ALL, ROAMER, ALL, name(b'lab') + RATES)
    yield radiotap(6, -48, 2), management(PROBE_RESPONSE, ROAMER, LAB_24, LAB_24, announcement(ESS | PRIVACY, b'lab', RATES + RSN_PSK, 6))
    yield near, management(AUTHENTICATION, LAB_24, ROAMER, LAB_24, le16(0, 1, 0))
    yield near, management(AUTHENTICATION, ROAMER, LAB_24, LAB_24, le16(0, 2, 0))
    yield near, management(ASSOCIATION_REQUEST, LAB_24, ROAMER, LAB_24, capabilities + name(b'lab') + RATES + RSN_PSK)
    yield near, management(ASSOCIATION_RESPONSE, ROAMER, LAB_24, LAB_24, le16(ESS | PRIVACY, 0, 0xC001) + RATES)
    yield near, down(ROAMER, LAB_24, LAB_24, key_message(0x008A))
    yield near, up(ROAMER, LAB_24, LAB_24, key_message(0x010A))
    for number in range(8):
        yield radiotap(6, -50 - number % 3, 108), up(ROAMER, LAB_24, WIRED, ccmp(number, 90), PROTECTED, qos=0)
        yield radiotap(6, -48, 48), acknowledgement(ROAMER)
        yield antennas(6, 22, -49, [-49, -57]), down(ROAMER, LAB_24, WIRED, ccmp(number, 400), PROTECTED, qos=0)
    there = radiotap(36, -58, 12)
    yield there, management(AUTHENTICATION, LAB_5, ROAMER, LAB_5, le16(0, 1, 0))
    yield there, management(AUTHENTICATION, ROAMER, LAB_5, LAB_5, le16(0, 2, 0))
    yield there, management(REASSOCIATION_REQUEST, LAB_5, ROAMER, LAB_5,
                            capabilities + mac(LAB_24) + name(b'lab') + FAST_RATES + RSN_PSK)
    yield there, management(REASSOCIATION_RESPONSE, ROAMER, LAB_5, LAB_5, le16(ESS | PRIVACY, 0, 0xC001) + FAST_RATES)
    for number in range(6):
        yield radiotap(36, -57, ht=(7, 1, 1)), up(ROAMER, LAB_5, WIRED, ccmp(number, 300), PROTECTED | ORDER, qos=0)
        yield radiotap(36, -52, ht=(5, 0, 0)), down(ROAMER, LAB_5, WIRED, ccmp(number, 1200), PROTECTED, qos=0)
        yield radiotap(36, -52, 48), control(9, LAB_5, ROAMER, le16(5, 16) + b'\xff' * 8)
    # On its way it looks around once more, which changes nothing.
    yield radiotap(6, -70, 2), management(PROBE_RESPONSE, ROAMER, GUEST, GUEST, announcement(ESS, b'guest', RATES, 6))


def enterprise():
    """A station joins office with PEAP and is encrypted with TKIP."""
    here = radiotap(1, -64, 22)
    yield here, management(AUTHENTICATION, OFFICE, CLERK, OFFICE, le16(0, 1, 0))
    yield here, management(AUTHENTICATION, CLERK, OFFICE, OFFICE, le16(0, 2, 0))
    yield here, management(ASSOCIATION_REQUEST, OFFICE, CLERK, OFFICE, le16(ESS | PRIVACY, 10) + name(b'office') + RATES + WPA_EAP)
    yield here, management(ASSOCIATION_RESPONSE, CLERK, OFFICE, OFFICE, le16(ESS | PRIVACY, 0, 0xC002) + RATES)
    yield here, down(CLERK, OFFICE, OFFICE, eap(1, 1, 1))
    yield here, up(CLERK, OFFICE, OFFICE, eap(2, 1, 1, b'clerk'))
    yield here, down(CLERK, OFFICE, OFFICE, eap(1, 2, 13, b'\x20'))
    yield here, up(CLERK, OFFICE, OFFICE, eap(2, 2, 3, b'\x19'))
    # Who refused the first method is offered the second.
    for number in range(3, 6):
        yield here, down(CLERK, OFFICE, OFFICE, eap(1, number, 25, b'\0' * 60))
        yield here, up(CLERK, OFFICE, OFFICE, eap(2, number, 25, b'\0' * 40))
    yield here, down(CLERK, OFFICE, OFFICE, snap(0, 0x888E, b'\2\0\0\4\3\5\0\4'))
    for number in range(0x101, 0x107):
        yield radiotap(1, -63, 72), up(CLERK, OFFICE, WIRED, tkip(number, 200), PROTECTED)
        yield radiotap(1, -61, 72), down(CLERK, OFFICE, WIRED, tkip(number, 700), PROTECTED)


def shop():
    """A scanner knows the hidden network's name; its frames are sent once more often than not, and one is too short."""
    here = radiotap(11, -79, 4)
    yield here, management(PROBE_REQUEST, STORE, SCANNER, STORE, name(b'store') + SLOW_RATES)
    yield radiotap(11, -72, 2), management(PROBE_RESPONSE, SCANNER, STORE, STORE, announcement(ESS | PRIVACY, b'store', SLOW_RATES, 11))
    yield here, management(ASSOCIATION_REQUEST, STORE, SCANNER, STORE, le16(ESS | PRIVACY, 10) + name(b'store') + SLOW_RATES)
    yield here, management(ASSOCIATION_RESPONSE, SCANNER, STORE, STORE, le16(ESS | PRIVACY, 0, 0xC001) + SLOW_RATES)
    for number in range(5):
        frame = up(SCANNER, STORE, WIRED, wep(2, 60), PROTECTED)
        yield radiotap(11, -80 - number, 11), frame
        yield radiotap(11, -80 - number, 4), frame[:1] + bytes([frame[1] | RETRY]) + frame[2:]
        yield radiotap(11, -72, 22), down(SCANNER, STORE, WIRED, wep(0, 120), PROTECTED)
    yield radiotap(11, -85, 4), up(SCANNER, STORE, WIRED, wep(2, 2), PROTECTED)
    yield radiotap(11, -72, 2), management(DISASSOCIATION, SCANNER, STORE, STORE, le16(8))


def guests():
    """Without protection everything can be read."""
    here = radiotap(6, -57, 108)
    yield radiotap(6, -57, 2), management(AUTHENTICATION, GUEST, VISITOR, GUEST, le16(0, 1, 0))
    yield radiotap(6, -55, 2), management(ASSOCIATION_RESPONSE, VISITOR, GUEST, GUEST, le16(ESS, 0, 0xC003) + RATES)
    yield here, up(VISITOR, GUEST, ALL, arp())
    yield here, down(ALL, GUEST, VISITOR, arp())
    yield here, up(VISITOR, GUEST, WIRED, question(), qos=0)
    yield radiotap(6, -55, 108), down(VISITOR, GUEST, WIRED, question('192.0.2.1', '192.0.2.50'), qos=0)
    yield here, up(VISITOR, GUEST, WIRED, segment(b'GET / HTTP/1.1\r\nHost: www.example.com\r\n\r\n'), qos=0)
    yield radiotap(6, -55, 72), down(VISITOR, GUEST, GUEST, aggregate((VISITOR, WIRED, segment(b'x' * 200)), (VISITOR, WIRED, question())),
                                     qos=0x80)
    whole = segment(b'y' * 600)
    yield here, up(VISITOR, GUEST, WIRED, whole[:300], MORE)
    yield here, up(VISITOR, GUEST, WIRED, whole[300:], fragment=1)
    yield here, up(VISITOR, GUEST, MULTICAST, question('192.0.2.50', '224.0.0.251'))
    yield radiotap(6, -60, 48), data(BRIDGE, GUEST, WIRED, question(), TO_DS | FROM_DS, fourth=VISITOR)
    yield radiotap(6, -63, 48), data(GUEST, BRIDGE, VISITOR, question('192.0.2.1', '192.0.2.50'), TO_DS | FROM_DS, fourth=WIRED)
    yield radiotap(6, -57, 12), up(VISITOR, GUEST, GUEST, b'', subtype=4)
    yield radiotap(6, -57, 12), control(10, GUEST, VISITOR)
    yield radiotap(6, -57, 12), control(11, GUEST, VISITOR)
    yield radiotap(6, -57, 12), control(12, VISITOR)


def distance():
    """One is far away: heard at the edge, damaged as often as not, refused in the end."""
    faint = radiotap(6, -90, 2, noise=-94)
    damaged = radiotap(6, -92, 2, noise=-94, flags=0x50)
    probe = management(PROBE_REQUEST, ALL, FAR, ALL, name(b'') + RATES)
    for _ in range(3):
        yield faint, probe
        yield damaged, probe[:10] + bytes([probe[10] ^ 0x40]) + probe[11:]
    yield faint, management(AUTHENTICATION, LAB_24, FAR, LAB_24, le16(0, 1, 0))
    yield faint, management(ASSOCIATION_REQUEST, LAB_24, FAR, LAB_24, le16(ESS, 10) + name(b'lab') + RATES, RETRY)
    yield radiotap(6, -48, 2), management(ASSOCIATION_RESPONSE, FAR, LAB_24, LAB_24, le16(ESS, 17, 0) + RATES)
    yield radiotap(6, -48, 2), management(DEAUTHENTICATION, FAR, LAB_24, LAB_24, le16(6))
    yield radiotap(1, -83, 2), management(PROBE_REQUEST, ALL, PROBER, ALL, name(b'elsewhere') + RATES)


def ad_hoc():
    for number in range(4):
        yield radiotap(11, -66, 22), data(BERT, ANNA, PARTY, question('169.254.1.1', '169.254.1.2'))
        yield radiotap(11, -69, 22), data(ANNA, BERT, PARTY, question('169.254.1.2', '169.254.1.1'), RETRY if number == 2 else 0)
    yield radiotap(11, -69, 2), data(ALL, BERT, PARTY, arp())


def frames():
    stories = [roaming(), enterprise(), shop(), guests(), distance(), ad_hoc()]
    for turn in itertools.count():
        if turn % 8 == 0:
            yield from beacons()
        told = [next(story, None) for story in stories]
        yield from filter(None, told)
        if not any(told):
            break
    yield sent_by_us, management(PROBE_REQUEST, ALL, OURS, ALL, name(b'') + RATES)


def capture():
    yield struct.pack('<IHHiIII', 0xA1B2C3D4, 2, 4, 0, 0, 65535, RADIOTAP)
    for number, (radio, frame) in enumerate(frames()):
        if callable(radio):
            packet = radio(frame)
        else:
            fcs = zlib.crc32(frame) ^ (1 if radio[8] & 0x40 else 0)
            packet = radio + frame + struct.pack('<I', fcs)
        time = START // 1000 + number * 12_800
        yield struct.pack('<IIII', time // 10**6, time % 10**6, len(packet), len(packet)) + packet
