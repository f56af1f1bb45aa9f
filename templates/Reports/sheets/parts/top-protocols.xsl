  <!-- The largest of the protocols below the current node that carry no other of its list, with a link to all if
       wanted. -->
  <xsl:template name="top-protocols">
    <xsl:param name="links" select="false()"/>
    <section class="part">
      <div class="part-head">
        <h2>Top protocols</h2>
        <xsl:if test="$links"><p class="more"><a href="Protocols.htm">All protocols</a></p></xsl:if>
      </div>
      <table class="plain">
        <caption>Top protocols</caption>
        <thead>
          <tr>
            <th data-kind="text">Protocol</th>
            <th data-kind="path">Inside of</th>
            <xsl:if test="ProtoStat/Packets"><th data-kind="number">Packets</th></xsl:if>
            <th data-kind="bytes">Bytes</th>
            <th data-kind="ratio">Share</th>
          </tr>
        </thead>
        <tbody>
          <xsl:for-each select="ProtoStat">
            <xsl:sort select="Bytes" data-type="number" order="descending"/>
            <xsl:if test="position() &lt;= 8">
              <tr>
                <th scope="row"><xsl:value-of select="Name"/></th>
                <td><xsl:value-of select="Path"/></td>
                <xsl:if test="Packets"><td><xsl:value-of select="Packets"/></td></xsl:if>
                <td><xsl:value-of select="Bytes"/></td>
                <td><xsl:value-of select="PctBytes"/></td>
              </tr>
            </xsl:if>
          </xsl:for-each>
        </tbody>
      </table>
    </section>
  </xsl:template>

