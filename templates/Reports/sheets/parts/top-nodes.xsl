  <!-- The nodes of the type that is the current node which sent and received most, with a link to all if wanted. -->
  <xsl:template name="top-nodes">
    <xsl:param name="links" select="false()"/>
    <section class="part">
      <div class="part-head">
        <h2>Top talkers</h2>
        <p><xsl:value-of select="@Name"/></p>
        <xsl:if test="$links"><p class="more"><a href="Nodes.htm">All nodes</a></p></xsl:if>
      </div>
      <table class="plain">
        <caption>Top talkers</caption>
        <thead>
          <tr>
            <th data-kind="address">Address</th>
            <th data-kind="bytes">Sent</th>
            <th data-kind="bytes">Received</th>
            <th data-kind="bytes" data-bar="">Both</th>
          </tr>
        </thead>
        <tbody>
          <xsl:for-each select="NodeStat">
            <xsl:sort select="BytesSent + BytesReceived" data-type="number" order="descending"/>
            <xsl:if test="position() &lt;= 8">
              <tr>
                <th scope="row"><xsl:value-of select="Addr"/></th>
                <td><xsl:value-of select="BytesSent"/></td>
                <td><xsl:value-of select="BytesReceived"/></td>
                <td><xsl:value-of select="BytesSent + BytesReceived"/></td>
              </tr>
            </xsl:if>
          </xsl:for-each>
        </tbody>
      </table>
    </section>
  </xsl:template>

