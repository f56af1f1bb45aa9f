  <!-- What stands in the place of a list that is empty. -->
  <xsl:template name="no-conversations">
    <xsl:if test="not(ConversationStatistics/Stats/Type/*)">
      <xsl:call-template name="empty">
        <xsl:with-param name="title" select="'No conversations'"/>
        <xsl:with-param name="reason" select="'No two nodes of the types of addresses that the settings ask for spoke to each other.'"/>
      </xsl:call-template>
    </xsl:if>
  </xsl:template>

