  <!-- The totals above a list of conversations. -->
  <xsl:template name="conversation-head">
    <header class="view-head">
      <h1>Conversations</h1>
      <p><xsl:value-of select="Summary/TimeSaved"/></p>
    </header>
    <dl class="cards">
      <xsl:for-each select="Summary">
        <xsl:call-template name="card">
          <xsl:with-param name="label" select="'Conversations'"/>
          <xsl:with-param name="value" select="string(ConvoCount)"/>
          <xsl:with-param name="kind" select="'number'"/>
        </xsl:call-template>
        <xsl:call-template name="card">
          <xsl:with-param name="label" select="'Nodes'"/>
          <xsl:with-param name="value" select="string(NodeCount)"/>
          <xsl:with-param name="kind" select="'number'"/>
        </xsl:call-template>
        <xsl:call-template name="totals"/>
      </xsl:for-each>
    </dl>
  </xsl:template>

