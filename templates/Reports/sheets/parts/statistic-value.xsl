  <!-- The value of the statistic that is the current node: its own kind of value stands first among those that are set. -->
  <xsl:template name="statistic-value">
    <xsl:value-of select="(PacketsValue | BytesValue | Values)[. != ''][1]"/>
  </xsl:template>

