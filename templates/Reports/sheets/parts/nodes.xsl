  <!-- The nodes of one type, the current node, as a table. Columns that the settings leave out are left out. -->
  <xsl:template name="nodes">
    <section class="part">
      <div class="part-head">
        <h2><xsl:value-of select="@Name"/><span class="count"><xsl:value-of select="count(NodeStat)"/></span></h2>
      </div>
      <table class="grid">
        <caption>Nodes - <xsl:value-of select="@Name"/></caption>
        <thead>
          <tr>
            <th data-kind="address">Address</th>
            <th data-kind="bytes" data-sorted="">Bytes</th>
            <th data-kind="bytes">Bytes sent</th>
            <th data-kind="ratio">Share sent</th>
            <th data-kind="bytes">Bytes received</th>
            <th data-kind="ratio">Share received</th>
            <xsl:if test="NodeStat/PacketsSent"><th data-kind="number">Packets sent</th></xsl:if>
            <xsl:if test="NodeStat/PacketsReceived"><th data-kind="number">Packets received</th></xsl:if>
            <xsl:if test="NodeStat/BroadcastPackets"><th data-kind="number">Broadcast packets</th></xsl:if>
            <xsl:if test="NodeStat/BroadcastBytes"><th data-kind="bytes" data-hidden="">Broadcast bytes</th></xsl:if>
            <xsl:if test="NodeStat/MulticastPackets"><th data-kind="number">Multicast packets</th></xsl:if>
            <xsl:if test="NodeStat/MulticastBytes"><th data-kind="bytes" data-hidden="">Multicast bytes</th></xsl:if>
            <xsl:if test="NodeStat/MinSizeSent"><th data-kind="number" data-hidden="">Smallest sent</th></xsl:if>
            <xsl:if test="NodeStat/MaxSizeSent"><th data-kind="number" data-hidden="">Largest sent</th></xsl:if>
            <xsl:if test="NodeStat/MinSizeReceived"><th data-kind="number" data-hidden="">Smallest received</th></xsl:if>
            <xsl:if test="NodeStat/MaxSizeReceived"><th data-kind="number" data-hidden="">Largest received</th></xsl:if>
            <xsl:if test="NodeStat/FirstTimeSent"><th data-kind="time">First sent</th></xsl:if>
            <xsl:if test="NodeStat/LastTimeSent"><th data-kind="time">Last sent</th></xsl:if>
            <xsl:if test="NodeStat/FirstTimeReceived"><th data-kind="time" data-hidden="">First received</th></xsl:if>
            <xsl:if test="NodeStat/LastTimeReceived"><th data-kind="time" data-hidden="">Last received</th></xsl:if>
          </tr>
        </thead>
        <tbody>
          <xsl:for-each select="NodeStat">
            <tr>
              <th scope="row"><xsl:value-of select="Addr"/></th>
              <td><xsl:value-of select="BytesSent + BytesReceived"/></td>
              <td><xsl:value-of select="BytesSent"/></td>
              <td><xsl:value-of select="PctBytesSent"/></td>
              <td><xsl:value-of select="BytesReceived"/></td>
              <td><xsl:value-of select="PctBytesReceived"/></td>
              <xsl:if test="PacketsSent"><td><xsl:value-of select="PacketsSent"/></td></xsl:if>
              <xsl:if test="PacketsReceived"><td><xsl:value-of select="PacketsReceived"/></td></xsl:if>
              <xsl:if test="BroadcastPackets"><td><xsl:value-of select="BroadcastPackets"/></td></xsl:if>
              <xsl:if test="BroadcastBytes"><td><xsl:value-of select="BroadcastBytes"/></td></xsl:if>
              <xsl:if test="MulticastPackets"><td><xsl:value-of select="MulticastPackets"/></td></xsl:if>
              <xsl:if test="MulticastBytes"><td><xsl:value-of select="MulticastBytes"/></td></xsl:if>
              <xsl:if test="MinSizeSent"><td><xsl:value-of select="MinSizeSent"/></td></xsl:if>
              <xsl:if test="MaxSizeSent"><td><xsl:value-of select="MaxSizeSent"/></td></xsl:if>
              <xsl:if test="MinSizeReceived"><td><xsl:value-of select="MinSizeReceived"/></td></xsl:if>
              <xsl:if test="MaxSizeReceived"><td><xsl:value-of select="MaxSizeReceived"/></td></xsl:if>
              <xsl:if test="FirstTimeSent"><td><xsl:value-of select="FirstTimeSent"/></td></xsl:if>
              <xsl:if test="LastTimeSent"><td><xsl:value-of select="LastTimeSent"/></td></xsl:if>
              <xsl:if test="FirstTimeReceived"><td><xsl:value-of select="FirstTimeReceived"/></td></xsl:if>
              <xsl:if test="LastTimeReceived"><td><xsl:value-of select="LastTimeReceived"/></td></xsl:if>
            </tr>
          </xsl:for-each>
        </tbody>
      </table>
    </section>
  </xsl:template>

