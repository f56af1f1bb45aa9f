"""Sends datagrams to everybody on the network of the host it runs on; its arguments name which."""
import socket
import struct
import sys

# A question for the printers of the network, as multicast DNS puts it (RFC 6762).
MDNS_QUESTION = struct.pack('!6H', 0, 0, 1, 0, 0, 0) + b'\4_ipp\4_tcp\5local\0' + struct.pack('!2H', 12, 1)
SSDP_SEARCH = (b'M-SEARCH * HTTP/1.1\r\nHOST: 239.255.255.250:1900\r\nMAN: "ssdp:discover"\r\nMX: 1\r\n'
               b'ST: ssdp:all\r\n\r\n')


def multicast4(group, port, payload):
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as s:
        index = socket.if_nametoindex('eth0')
        member = struct.pack('4s4si', socket.inet_aton(group), socket.inet_aton('0.0.0.0'), index)
        s.setsockopt(socket.IPPROTO_IP, socket.IP_ADD_MEMBERSHIP, member)
        s.setsockopt(socket.IPPROTO_IP, socket.IP_MULTICAST_IF, member)
        s.bind(('', port))
        s.sendto(payload, (group, port))


def multicast6(group, port, payload):
    with socket.socket(socket.AF_INET6, socket.SOCK_DGRAM) as s:
        index = socket.if_nametoindex('eth0')
        member = socket.inet_pton(socket.AF_INET6, group) + struct.pack('I', index)
        s.setsockopt(socket.IPPROTO_IPV6, socket.IPV6_JOIN_GROUP, member)
        s.bind(('', port))
        s.sendto(payload, (group, port, 0, index))


def broadcast():
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as s:
        s.setsockopt(socket.SOL_SOCKET, socket.SO_BROADCAST, 1)
        s.setsockopt(socket.SOL_SOCKET, socket.SO_BINDTODEVICE, b'eth0')
        for number in range(5):
            s.sendto(b'is anybody there? %d' % number, ('255.255.255.255', 9999))


SHOUTS = {
    'mdns': lambda: multicast4('224.0.0.251', 5353, MDNS_QUESTION),
    'mdns6': lambda: multicast6('ff02::fb', 5353, MDNS_QUESTION),
    'ssdp': lambda: multicast4('239.255.255.250', 1900, SSDP_SEARCH),
    'broadcast': broadcast,
}

for name in sys.argv[1:]:
    SHOUTS[name]()
