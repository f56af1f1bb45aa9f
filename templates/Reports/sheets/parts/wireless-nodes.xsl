  <!-- The wireless nodes below the current node as a table, with all of their columns. -->
  <xsl:template name="wireless-nodes">
    <xsl:param name="title"/>
    <section class="part">
      <div class="part-head">
        <h2><xsl:value-of select="$title"/><span class="count"><xsl:value-of select="count(WirelessNodeStat)"/></span></h2>
      </div>
      <table class="grid">
        <caption><xsl:value-of select="$title"/></caption>
        <thead>
          <tr>
            <th data-kind="address">Node</th>
            <xsl:if test="WirelessNodeStat/ESSID"><th data-kind="text">Network</th></xsl:if>
            <xsl:for-each select="WirelessNodeStat[1]/*[not(self::Node or self::ESSID)]">
              <xsl:call-template name="wireless-head"/>
            </xsl:for-each>
          </tr>
        </thead>
        <tbody>
          <xsl:for-each select="WirelessNodeStat">
            <tr>
              <th scope="row"><xsl:value-of select="Node"/></th>
              <xsl:if test="ESSID"><td><xsl:value-of select="ESSID"/></td></xsl:if>
              <xsl:for-each select="*[not(self::Node or self::ESSID)]">
                <td>
                  <xsl:choose>
                    <xsl:when test="self::DataRate"><xsl:value-of select="@Value"/></xsl:when>
                    <xsl:otherwise><xsl:value-of select="."/></xsl:otherwise>
                  </xsl:choose>
                </td>
              </xsl:for-each>
            </tr>
          </xsl:for-each>
        </tbody>
      </table>
    </section>
  </xsl:template>

