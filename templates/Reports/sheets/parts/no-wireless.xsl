  <xsl:template name="no-wireless">
    <xsl:param name="title"/>
    <xsl:call-template name="empty">
      <xsl:with-param name="title" select="$title"/>
      <xsl:with-param name="reason" select="'The capture is not of a wireless network, or the report leaves this out (settings OutputWLANStats and OutputWChannelsStats).'"/>
    </xsl:call-template>
  </xsl:template>

