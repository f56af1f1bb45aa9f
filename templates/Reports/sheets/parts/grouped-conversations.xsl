  <!-- The conversations of one type of addresses, the current node, folded under those who sent. -->
  <xsl:template name="grouped-conversations">
    <section class="part">
      <div class="part-head">
        <h2><xsl:value-of select="@Name"/><span class="count"><xsl:value-of select="count(SourceAddress/ConversationStat)"/></span></h2>
        <p>by sender; the share of a sender is that of all traffic</p>
      </div>
      <table class="grid" data-folded="">
        <caption>Conversations - <xsl:value-of select="@Name"/></caption>
        <thead>
          <tr>
            <th data-kind="address">From</th>
            <th data-kind="address">To</th>
            <th data-kind="text">Protocol</th>
            <th data-kind="bytes" data-sorted="">Bytes</th>
            <th data-kind="number">Packets</th>
            <th data-kind="ratio">Share of sender</th>
            <th data-kind="ratio">Share of receiver</th>
            <th data-kind="ratio">Share of protocol</th>
          </tr>
        </thead>
        <tbody>
          <xsl:for-each select="SourceAddress">
            <tr class="group">
              <th scope="rowgroup"><xsl:value-of select="@Name"/></th>
              <td></td>
              <td></td>
              <td><xsl:value-of select="sum(ConversationStat/Bytes)"/></td>
              <td><xsl:value-of select="sum(ConversationStat/Packets)"/></td>
              <td><xsl:value-of select="TotalPctBytesSent"/></td>
              <td></td>
              <td></td>
            </tr>
            <xsl:for-each select="ConversationStat">
              <tr>
                <td></td>
                <td><xsl:value-of select="DestinationAddress"/></td>
                <td><xsl:value-of select="Protocol"/></td>
                <td><xsl:value-of select="Bytes"/></td>
                <td><xsl:value-of select="Packets"/></td>
                <td><xsl:value-of select="PctBytesSent"/></td>
                <td><xsl:value-of select="PctBytesReceived"/></td>
                <td><xsl:value-of select="PctBytesProtocol"/></td>
              </tr>
            </xsl:for-each>
          </xsl:for-each>
        </tbody>
      </table>
    </section>
  </xsl:template>

