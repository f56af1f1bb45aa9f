  <!-- One figure with its name; nothing when there is no figure. -->
  <xsl:template name="card">
    <xsl:param name="label"/>
    <xsl:param name="value"/>
    <xsl:param name="kind" select="'text'"/>
    <xsl:if test="$value != ''">
      <div class="card">
        <dt><xsl:value-of select="$label"/></dt>
        <dd data-figure="{$kind}"><xsl:value-of select="$value"/></dd>
      </div>
    </xsl:if>
  </xsl:template>

  <!-- The totals of a category's Summary, the current node. -->
  <xsl:template name="totals">
    <xsl:call-template name="card">
      <xsl:with-param name="label" select="'Packets'"/>
      <xsl:with-param name="value" select="string(Packets)"/>
      <xsl:with-param name="kind" select="'number'"/>
    </xsl:call-template>
    <xsl:call-template name="card">
      <xsl:with-param name="label" select="'Bytes'"/>
      <xsl:with-param name="value" select="string(Bytes)"/>
      <xsl:with-param name="kind" select="'bytes'"/>
    </xsl:call-template>
  </xsl:template>

