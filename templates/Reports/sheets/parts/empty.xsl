  <!-- What stands where there is nothing to show, with the reason. -->
  <xsl:template name="empty">
    <xsl:param name="title"/>
    <xsl:param name="reason"/>
    <div class="empty">
      <strong><xsl:value-of select="$title"/></strong>
      <xsl:value-of select="$reason"/>
    </div>
  </xsl:template>

