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
  return {name, kKeys<keys...>, {}, nullptr};
}

constexpr LayerKey Ether(std::uint16_t type) {
  return {Layer::kEtherType, type};
}
constexpr LayerKey Sap(std::uint8_t sap) {
  return {Layer::kSap, sap};
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

constexpr std::array kLinkProtocols{
    Named<Ether(0x8137), Sap(0xE0)>("IPX"),
    Named<Ether(0x809B)>("AppleTalk"),
    Named<Ether(0x80F3)>("AARP"),
    Named<Ether(0x6003)>("DECnet"),
    Named<Ether(0x6001), Ether(0x6002)>("DEC MOP"),
    Named<Ether(0x6004)>("DEC LAT"),
    Named<Ether(0x8847), Ether(0x8848)>("MPLS"),
    Named<Ether(0x8863)>("PPPoE Discovery"),
    Named<Ether(0x8864)>("PPPoE"),
    Named<Ether(0x888E)>("802.1X"),
    Named<Ether(0x88CC)>("LLDP"),
    Named<Ether(0x8809)>("Slow Protocols"),
    Named<Ether(0x88E5)>("MACsec"),
    Named<Ether(0x88F7)>("PTP"),
    Named<Ether(0x8892)>("PROFINET"),
    Named<Ether(0x88A4)>("EtherCAT"),
    Named<Ether(0x0842)>("Wake-on-LAN"),
    Named<Ether(0x9000)>("Ethernet Loopback"),
    Named<Sap(0x42)>("STP"),
    Named<Sap(0xF0)>("NetBEUI"),
    Named<Sap(0xFE)>("ISO CLNP"),
};

constexpr std::array kIpProtocols{
    Named<Ip(2)>("IGMP"),   Named<Ip(8)>("EGP"),        Named<Ip(33)>("DCCP"),  Named<Ip(46)>("RSVP"),
    Named<Ip(47)>("GRE"),   Named<Ip(50)>("ESP"),       Named<Ip(51)>("AH"),    Named<Ip(88)>("EIGRP"),
    Named<Ip(89)>("OSPF"),  Named<Ip(103)>("PIM"),      Named<Ip(112)>("VRRP"), Named<Ip(115)>("L2TPv3"),
    Named<Ip(132)>("SCTP"), Named<Ip(136)>("UDP-Lite"),
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
    Named<Udp(319), Udp(320)>("PTP over UDP"),
    Named<Tcp(443), Tcp(8443)>("HTTPS"),
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
    Named<Udp(2152)>("GTP-U"),
    Named<Tcp(3128)>("HTTP Proxy"),
    Named<Tcp(3260)>("iSCSI"),
    Named<Tcp(3306)>("MySQL"),
    Named<Tcp(3389), Udp(3389)>("RDP"),
    Named<Udp(3478), Tcp(3478)>("STUN"),
    Named<Udp(3702)>("WS-Discovery"),
    Named<Udp(3784)>("BFD"),
    Named<Udp(4500)>("IPsec NAT Traversal"),
    Named<Udp(4789)>("VXLAN"),
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
    Named<Udp(6081)>("Geneve"),
    Named<Udp(6343)>("sFlow"),
    Named<Udp(2055), Udp(9995)>("NetFlow"),
    Named<Tcp(9100)>("Printer"),
    Named<Tcp(27017)>("MongoDB"),
    Named<Udp(47808)>("BACnet"),
    Named<Udp(51820)>("WireGuard"),
};

const ProtocolRegistration kLinkRegistration(kLinkProtocols);
const ProtocolRegistration kIpRegistration(kIpProtocols);
const ProtocolRegistration kApplicationRegistration(kApplications);

}  // namespace
}  // namespace orvo
