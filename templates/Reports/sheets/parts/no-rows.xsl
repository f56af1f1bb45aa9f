  <!-- Names the types of addresses, among those below the current node, that have no rows. -->
  <xsl:template name="types-without-rows">
    <xsl:if test="Type[not(*)]">
      <p class="note">
        <xsl:text>Nothing was seen of: </xsl:text>
        <xsl:for-each select="Type[not(*)]">
          <xsl:value-of select="@Name"/>
          <xsl:if test="position() != last()">, </xsl:if>
        </xsl:for-each>
        <xsl:text>.</xsl:text>
      </p>
    </xsl:if>
  </xsl:template>

