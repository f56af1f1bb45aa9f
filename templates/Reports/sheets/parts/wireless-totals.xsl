  <!-- The figures of a Summary of wireless nodes, the current node. -->
  <xsl:template name="wireless-totals">
    <dl class="cards">
      <xsl:call-template name="card">
        <xsl:with-param name="label" select="'Networks'"/>
        <xsl:with-param name="value" select="string(BSSNetworkCount)"/>
        <xsl:with-param name="kind" select="'number'"/>
      </xsl:call-template>
      <xsl:call-template name="card">
        <xsl:with-param name="label" select="'Access points'"/>
        <xsl:with-param name="value" select="string(APNodeCount)"/>
        <xsl:with-param name="kind" select="'number'"/>
      </xsl:call-template>
      <xsl:call-template name="card">
        <xsl:with-param name="label" select="'Ad hoc networks'"/>
        <xsl:with-param name="value" select="string(AdHocNetworkCount)"/>
        <xsl:with-param name="kind" select="'number'"/>
      </xsl:call-template>
      <xsl:call-template name="card">
        <xsl:with-param name="label" select="'Stations'"/>
        <xsl:with-param name="value" select="string(ClientNodeCount)"/>
        <xsl:with-param name="kind" select="'number'"/>
      </xsl:call-template>
      <xsl:call-template name="totals"/>
    </dl>
  </xsl:template>

