// Protocols that are recognised by their number alone: EtherTypes and service access points (IEEE registration
// authority), protocol numbers and ports (IANA service name and port number registries).

#include <array>

#include "capture/decode/protocol_registry.h"

namespace orvo {
namespace {

template <LayerKey... keys>
constexpr std::array kKeys{keys...};

template <LayerKey... keys>
constexpr Protocol Named(std::string_view name) {
  return {name, kKeys<keys...>};
}

constexpr LayerKey Ether(std::uint16_t type) {
  return {Layer::kEtherType, type};
}
constexpr LayerKey Sap(std::uint8_t sap) {
  return {Layer::kSap, sap};
}
constexpr LayerKey Cisco(std::uint16_t number) {
  return {Layer::kSnapCisco, number};
}
constexpr LayerKey Slow(std::uint8_t subtype) {
  return {Layer::kSlowSubtype, subtype};
}
constexpr LayerKey Osi(std::uint8_t number) {
  return {Layer::kOsi, number};
}
constexpr LayerKey Ppp(std::uint16_t number) {
  return {Layer::kPpp, number};
}
constexpr LayerKey Ipx(std::uint16_t socket) {
  return {Layer::kIpxSocket, socket};
}
constexpr LayerKey Ddp(std::uint8_t type) {
  return {Layer::kDdpType, type};
}
constexpr LayerKey Ip(std::uint8_t number) {
  return {Layer::kIpProtocol, number};
}
constexpr LayerKey Tcp(std::uint16_t port) {
  return {Layer::kTcpPort, port};
}
constexpr LayerKey Udp(std::uint16_t port) {
  return {Layer::kUdpPort, port};
}
constexpr LayerKey Sctp(std::uint16_t port) {
  return {Layer::kSctpPort, port};
}

constexpr std::array kLinkProtocols{
    Named<Ether(0x6001), Ether(0x6002)>("DEC MOP"),
    Named<Ether(0x6004)>("DEC LAT"),
    Named<Ether(0x88E5)>("MACsec"),
    Named<Ether(0x8892)>("PROFINET"),
    Named<Ether(0x88A4)>("EtherCAT"),
    Named<Ether(0x9000)>("Ethernet Loopback"),
    Named<Sap(0x04), Sap(0x08)>("SNA"),
    Named<Sap(0x80), Ether(0x0600)>("XNS"),
    Named<Sap(0xBC), Ether(0x0BAD)>("VINES"),
    Named<Sap(0xF0)>("NetBEUI"),
    Named<Sap(0xF4)>("LAN Manager"),
    Named<Sap(0xF8), Sap(0xFC)>("RPL"),
    Named<Ether(0x22EA)>("MSRP"),
    Named<Ether(0x22F0)>("AVTP"),
    Named<Ether(0x22F3)>("TRILL"),
    Named<Ether(0x8808)>("Ethernet Flow Control"),
    Named<Ether(0x88B8)>("GOOSE"),
    Named<Ether(0x88BA)>("Sampled Values"),
    Named<Ether(0x8902)>("Ethernet CFM"),
    Named<Ether(0x8906)>("FCoE"),
    Named<Ether(0x8914)>("FCoE Initialization"),
    Named<Ether(0x88BE), Ether(0x22EB)>("ERSPAN"),
};

constexpr std::array kSnapProtocols{
    Named<Cisco(0x0104)>("PAgP"), Named<Cisco(0x0111)>("UDLD"), Named<Cisco(0x2000)>("CDP"),
    Named<Cisco(0x2003)>("VTP"),  Named<Cisco(0x2004)>("DTP"),
};

constexpr std::array kSlowProtocols{
    Named<Slow(1)>("LACP"),
    Named<Slow(2)>("LACP Marker"),
    Named<Slow(3)>("Ethernet OAM"),
    Named<Slow(10)>("OSSP"),
};

constexpr std::array kOsiProtocols{
    Named<Osi(0x81)>("CLNP"),
    Named<Osi(0x82)>("ES-IS"),
    Named<Osi(0x83)>("IS-IS"),
};

/// Control protocols of PPP: RFC 1661, 1334, 1994, 3748, 1332, 5072, 1962, 1968, 1990, 1144.
constexpr std::array kPppProtocols{
    Named<Ppp(0xC021)>("LCP"),
    Named<Ppp(0xC023)>("PAP"),
    Named<Ppp(0xC025)>("LQR"),
    Named<Ppp(0xC223)>("CHAP"),
    Named<Ppp(0xC227)>("EAP"),
    Named<Ppp(0x8021)>("IPCP"),
    Named<Ppp(0x8057)>("IPv6CP"),
    Named<Ppp(0x80FD)>("CCP"),
    Named<Ppp(0x8053)>("ECP"),
    Named<Ppp(0x003D)>("PPP Multilink"),
    Named<Ppp(0x00FD)>("PPP Compressed"),
    Named<Ppp(0x002D), Ppp(0x002F)>("TCP/IP Compressed"),
};

constexpr std::array kIpxProtocols{
    Named<Ipx(0x0451)>("NCP"),
    Named<Ipx(0x0452)>("SAP"),
    Named<Ipx(0x0453)>("RIP (IPX)"),
    Named<Ipx(0x0455)>("NetBIOS (IPX)"),
    Named<Ipx(0x0456)>("IPX Diagnostics"),
    Named<Ipx(0x0457)>("IPX Serialization"),
    Named<Ipx(0x0553)>("NMPI"),
};

constexpr std::array kDdpProtocols{
    Named<Ddp(1), Ddp(5)>("RTMP"), Named<Ddp(2)>("NBP"), Named<Ddp(3)>("ATP"),
    Named<Ddp(4)>("AEP"),          Named<Ddp(6)>("ZIP"), Named<Ddp(7)>("ADSP"),
};

constexpr std::array kIpProtocols{
    Named<Ip(8)>("EGP"),      Named<Ip(33)>("DCCP"),  Named<Ip(46)>("RSVP"),    Named<Ip(50)>("ESP"),
    Named<Ip(55)>("MOBILE"),  Named<Ip(88)>("EIGRP"), Named<Ip(94)>("IPIP"),    Named<Ip(103)>("PIM"),
    Named<Ip(108)>("IPComp"), Named<Ip(112)>("VRRP"), Named<Ip(115)>("L2TPv3"), Named<Ip(136)>("UDP-Lite"),
};

constexpr std::array kApplications{
    Named<Tcp(20)>("FTP Data"),
    Named<Tcp(21)>("FTP"),
    Named<Tcp(22)>("SSH"),
    Named<Tcp(23)>("Telnet"),
    Named<Tcp(25), Tcp(587)>("SMTP"),
    Named<Tcp(43)>("WHOIS"),
    Named<Tcp(49)>("TACACS"),
    Named<Tcp(53), Udp(53)>("DNS"),
    Named<Udp(67), Udp(68)>("DHCP"),
    Named<Udp(69)>("TFTP"),
    Named<Tcp(70)>("Gopher"),
    Named<Tcp(79)>("Finger"),
    Named<Tcp(80), Tcp(8080)>("HTTP"),
    Named<Tcp(88), Udp(88)>("Kerberos"),
    Named<Tcp(110)>("POP3"),
    Named<Tcp(111), Udp(111)>("Portmapper"),
    Named<Tcp(113)>("Ident"),
    Named<Tcp(119)>("NNTP"),
    Named<Udp(123)>("NTP"),
    Named<Tcp(135), Udp(135)>("DCE RPC"),
    Named<Udp(137)>("NetBIOS Name"),
    Named<Udp(138)>("NetBIOS Datagram"),
    Named<Tcp(139)>("NetBIOS Session"),
    Named<Tcp(143)>("IMAP"),
    Named<Udp(161), Tcp(161)>("SNMP"),
    Named<Udp(162), Tcp(162)>("SNMP Trap"),
    Named<Tcp(179)>("BGP"),
    Named<Tcp(194), Tcp(6667)>("IRC"),
    Named<Tcp(389), Udp(389)>("LDAP"),
    Named<Tcp(443), Tcp(8443)>("TLS"),
    Named<Udp(443)>("QUIC"),
    Named<Tcp(445)>("SMB"),
    Named<Tcp(465)>("SMTPS"),
    Named<Udp(500)>("IKE"),
    Named<Tcp(502)>("Modbus"),
    Named<Tcp(514)>("RSH"),
    Named<Udp(514)>("Syslog"),
    Named<Tcp(515)>("LPD"),
    Named<Udp(520)>("RIP"),
    Named<Udp(521)>("RIPng"),
    Named<Udp(546), Udp(547)>("DHCPv6"),
    Named<Tcp(554), Udp(554)>("RTSP"),
    Named<Tcp(631), Udp(631)>("IPP"),
    Named<Tcp(636)>("LDAPS"),
    Named<Udp(646), Tcp(646)>("LDP"),
    Named<Tcp(853), Udp(853)>("DNS over TLS"),
    Named<Tcp(873)>("rsync"),
    Named<Tcp(989), Tcp(990)>("FTPS"),
    Named<Tcp(993)>("IMAPS"),
    Named<Tcp(995)>("POP3S"),
    Named<Tcp(1080)>("SOCKS"),
    Named<Udp(1194), Tcp(1194)>("OpenVPN"),
    Named<Tcp(1433), Udp(1434)>("SQL Server"),
    Named<Tcp(1521)>("Oracle TNS"),
    Named<Udp(1701)>("L2TP"),
    Named<Tcp(1720)>("H.323"),
    Named<Tcp(1723)>("PPTP"),
    Named<Udp(1812), Udp(1645)>("RADIUS"),
    Named<Udp(1813), Udp(1646)>("RADIUS Accounting"),
    Named<Tcp(1883)>("MQTT"),
    Named<Udp(1900)>("SSDP"),
    Named<Udp(1985)>("HSRP"),
    Named<Tcp(2049), Udp(2049)>("NFS"),
    Named<Udp(2123)>("GTP-C"),
    Named<Tcp(3128)>("HTTP Proxy"),
    Named<Tcp(3260)>("iSCSI"),
    Named<Udp(3544)>("Teredo"),
    Named<Tcp(3868), Sctp(3868)>("Diameter"),
    Named<Tcp(3306)>("MySQL"),
    Named<Tcp(3389), Udp(3389)>("RDP"),
    Named<Udp(3478), Tcp(3478)>("STUN"),
    Named<Udp(3702)>("WS-Discovery"),
    Named<Sctp(2905)>("M3UA"),
    Named<Sctp(36412)>("S1AP"),
    Named<Sctp(36422)>("X2AP"),
    Named<Sctp(38412)>("NGAP"),
    Named<Udp(3784)>("BFD"),
    Named<Udp(4500)>("IPsec NAT Traversal"),
    Named<Tcp(5060), Udp(5060)>("SIP"),
    Named<Tcp(5061)>("SIPS"),
    Named<Tcp(5222), Tcp(5269)>("XMPP"),
    Named<Udp(5353)>("mDNS"),
    Named<Udp(5355), Tcp(5355)>("LLMNR"),
    Named<Tcp(5432)>("PostgreSQL"),
    Named<Tcp(5672)>("AMQP"),
    Named<Udp(5683)>("CoAP"),
    Named<Tcp(5900)>("VNC"),
    Named<Tcp(6379)>("Redis"),
    Named<Udp(6343)>("sFlow"),
    Named<Udp(2055), Udp(9995)>("NetFlow"),
    Named<Tcp(9100)>("Printer"),
    Named<Tcp(27017)>("MongoDB"),
    Named<Udp(47808)>("BACnet"),
    Named<Udp(51820)>("WireGuard"),
};

const ProtocolRegistration kLinkRegistration(kLinkProtocols);
const ProtocolRegistration kSnapRegistration(kSnapProtocols);
const ProtocolRegistration kSlowRegistration(kSlowProtocols);
const ProtocolRegistration kOsiRegistration(kOsiProtocols);
const ProtocolRegistration kPppRegistration(kPppProtocols);
const ProtocolRegistration kIpxRegistration(kIpxProtocols);
const ProtocolRegistration kDdpRegistration(kDdpProtocols);
const ProtocolRegistration kIpRegistration(kIpProtocols);
const ProtocolRegistration kApplicationRegistration(kApplications);

}  // namespace
}  // namespace orvo
