  <!-- The head of a column of a wireless table, the current node: what it is called, what it holds, and whether it shows
       from the start. -->
  <xsl:template name="wireless-head">
    <xsl:choose>
      <xsl:when test="self::Node"><th data-kind="address">Node</th></xsl:when>
      <xsl:when test="self::NodeType"><th data-kind="text">Type</th></xsl:when>
      <xsl:when test="self::ESSID"><th data-kind="text">Network</th></xsl:when>
      <xsl:when test="self::Channel"><th data-kind="number">Channel</th></xsl:when>
      <xsl:when test="self::Frequency"><th data-kind="megahertz">Frequency</th></xsl:when>
      <xsl:when test="self::Band"><th data-kind="text">Band</th></xsl:when>
      <xsl:when test="self::TotalBytes"><th data-kind="bytes">Bytes</th></xsl:when>
      <xsl:when test="self::TotalPackets"><th data-kind="number">Packets</th></xsl:when>
      <xsl:when test="self::Bytes"><th data-kind="bytes">Bytes</th></xsl:when>
      <xsl:when test="self::Packets"><th data-kind="number">Packets</th></xsl:when>
      <xsl:when test="self::BytesSent"><th data-kind="bytes">Bytes sent</th></xsl:when>
      <xsl:when test="self::BytesSentPct"><th data-kind="ratio">Share sent</th></xsl:when>
      <xsl:when test="self::BytesRec"><th data-kind="bytes">Bytes received</th></xsl:when>
      <xsl:when test="self::BytesRecPct"><th data-kind="ratio">Share received</th></xsl:when>
      <xsl:when test="self::PktsSent"><th data-kind="number">Packets sent</th></xsl:when>
      <xsl:when test="self::PktsRec"><th data-kind="number">Packets received</th></xsl:when>
      <xsl:when test="self::RetryPackets"><th data-kind="number">Retries</th></xsl:when>
      <xsl:when test="self::BeaconPackets"><th data-kind="number">Beacons</th></xsl:when>
      <xsl:when test="self::SignalCur"><th data-kind="signal">Signal</th></xsl:when>
      <xsl:when test="self::SignaldBmCur"><th data-kind="dbm">Signal (dBm)</th></xsl:when>
      <xsl:when test="self::NoiseCur"><th data-kind="signal">Noise</th></xsl:when>
      <xsl:when test="self::NoisedBmCur"><th data-kind="dbm">Noise (dBm)</th></xsl:when>
      <xsl:when test="self::SignalAvg"><th data-kind="rate" data-hidden="">Average signal</th></xsl:when>
      <xsl:when test="self::SignaldBmAvg"><th data-kind="rate" data-hidden="">Average signal (dBm)</th></xsl:when>
      <xsl:when test="self::NoiseAvg"><th data-kind="rate" data-hidden="">Average noise</th></xsl:when>
      <xsl:when test="self::NoisedBmAvg"><th data-kind="rate" data-hidden="">Average noise (dBm)</th></xsl:when>
      <xsl:when test="self::Encryption"><th data-kind="text">Encryption</th></xsl:when>
      <xsl:when test="self::Authentication"><th data-kind="text">Authentication</th></xsl:when>
      <xsl:when test="self::Trust"><th data-kind="text">Trust</th></xsl:when>
      <xsl:when test="self::Associations"><th data-kind="text">Association</th></xsl:when>
      <xsl:when test="self::Duration"><th data-kind="duration" data-hidden="">Duration</th></xsl:when>
      <xsl:when test="self::Privacy"><th data-kind="text" data-hidden="">Privacy</th></xsl:when>
      <xsl:when test="self::BeaconESSID"><th data-kind="text" data-hidden="">Network in beacons</th></xsl:when>
      <xsl:when test="self::FirstTimeSent"><th data-kind="time" data-hidden="">First sent</th></xsl:when>
      <xsl:when test="self::LastTimeSent"><th data-kind="time" data-hidden="">Last sent</th></xsl:when>
      <xsl:when test="self::FirstTimeRec"><th data-kind="time" data-hidden="">First received</th></xsl:when>
      <xsl:when test="self::LastTimeRec"><th data-kind="time" data-hidden="">Last received</th></xsl:when>
      <xsl:when test="self::BroadcastPkts"><th data-kind="number" data-hidden="">Broadcast packets</th></xsl:when>
      <xsl:when test="self::BroadcastBytes"><th data-kind="bytes" data-hidden="">Broadcast bytes</th></xsl:when>
      <xsl:when test="self::MulticastPkts"><th data-kind="number" data-hidden="">Multicast packets</th></xsl:when>
      <xsl:when test="self::MulticastBytes"><th data-kind="bytes" data-hidden="">Multicast bytes</th></xsl:when>
      <xsl:when test="self::MinSizeSent"><th data-kind="number" data-hidden="">Smallest sent</th></xsl:when>
      <xsl:when test="self::MaxSizeSent"><th data-kind="number" data-hidden="">Largest sent</th></xsl:when>
      <xsl:when test="self::AvgSizeSent"><th data-kind="number" data-hidden="">Average sent</th></xsl:when>
      <xsl:when test="self::MinSizeRec"><th data-kind="number" data-hidden="">Smallest received</th></xsl:when>
      <xsl:when test="self::MaxSizeRec"><th data-kind="number" data-hidden="">Largest received</th></xsl:when>
      <xsl:when test="self::AvgSizeRec"><th data-kind="number" data-hidden="">Average received</th></xsl:when>
      <xsl:when test="self::WEPPackets"><th data-kind="number" data-hidden="">Encrypted packets</th></xsl:when>
      <xsl:when test="self::WEPICVPackets"><th data-kind="number" data-hidden="">Packets with wrong checksums</th></xsl:when>
      <xsl:when test="self::WEPKey"><th data-kind="number" data-hidden="">WEP key</th></xsl:when>
      <xsl:when test="self::SignalMin"><th data-kind="signal" data-hidden="">Least signal</th></xsl:when>
      <xsl:when test="self::SignalMax"><th data-kind="signal" data-hidden="">Most signal</th></xsl:when>
      <xsl:when test="self::SignaldBmMin"><th data-kind="dbm" data-hidden="">Least signal (dBm)</th></xsl:when>
      <xsl:when test="self::SignaldBmMax"><th data-kind="dbm" data-hidden="">Most signal (dBm)</th></xsl:when>
      <xsl:when test="self::NoiseMin"><th data-kind="signal" data-hidden="">Least noise</th></xsl:when>
      <xsl:when test="self::NoiseMax"><th data-kind="signal" data-hidden="">Most noise</th></xsl:when>
      <xsl:when test="self::NoisedBmMin"><th data-kind="dbm" data-hidden="">Least noise (dBm)</th></xsl:when>
      <xsl:when test="self::NoisedBmMax"><th data-kind="dbm" data-hidden="">Most noise (dBm)</th></xsl:when>
      <xsl:when test="self::DataPackets"><th data-kind="number">Data packets</th></xsl:when>
      <xsl:when test="self::DataBytes"><th data-kind="bytes" data-hidden="">Data bytes</th></xsl:when>
      <xsl:when test="self::MngtPackets"><th data-kind="number">Management packets</th></xsl:when>
      <xsl:when test="self::MngtBytes"><th data-kind="bytes" data-hidden="">Management bytes</th></xsl:when>
      <xsl:when test="self::CtrlPackets"><th data-kind="number">Control packets</th></xsl:when>
      <xsl:when test="self::CtrlBytes"><th data-kind="bytes" data-hidden="">Control bytes</th></xsl:when>
      <xsl:when test="self::LocalPackets"><th data-kind="number" data-hidden="">Local packets</th></xsl:when>
      <xsl:when test="self::LocalBytes"><th data-kind="bytes" data-hidden="">Local bytes</th></xsl:when>
      <xsl:when test="self::FromDSPackets"><th data-kind="number" data-hidden="">Packets from the network</th></xsl:when>
      <xsl:when test="self::FromDSBytes"><th data-kind="bytes" data-hidden="">Bytes from the network</th></xsl:when>
      <xsl:when test="self::ToDSPackets"><th data-kind="number" data-hidden="">Packets to the network</th></xsl:when>
      <xsl:when test="self::ToDSBytes"><th data-kind="bytes" data-hidden="">Bytes to the network</th></xsl:when>
      <xsl:when test="self::DS2DSPackets"><th data-kind="number" data-hidden="">Packets between access points</th></xsl:when>
      <xsl:when test="self::DS2DSBytes"><th data-kind="bytes" data-hidden="">Bytes between access points</th></xsl:when>
      <xsl:when test="self::RetryBytes"><th data-kind="bytes" data-hidden="">Bytes of retries</th></xsl:when>
      <xsl:when test="self::ProtectedPackets"><th data-kind="number">Protected packets</th></xsl:when>
      <xsl:when test="self::ProtectedBytes"><th data-kind="bytes" data-hidden="">Protected bytes</th></xsl:when>
      <xsl:when test="self::OrderPackets"><th data-kind="number" data-hidden="">Ordered packets</th></xsl:when>
      <xsl:when test="self::OrderBytes"><th data-kind="bytes" data-hidden="">Ordered bytes</th></xsl:when>
      <xsl:when test="self::CRCPackets"><th data-kind="number">Damaged packets</th></xsl:when>
      <xsl:when test="self::WEPICVErrors"><th data-kind="number" data-hidden="">Wrong checksums</th></xsl:when>
      <xsl:when test="@Name"><th data-kind="auto" data-hidden=""><xsl:value-of select="@Name"/></th></xsl:when>
      <xsl:otherwise><th data-kind="auto" data-hidden=""><xsl:value-of select="name()"/></th></xsl:otherwise>
    </xsl:choose>
  </xsl:template>

