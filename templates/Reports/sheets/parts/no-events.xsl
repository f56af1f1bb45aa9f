  <xsl:template name="no-events">
    <xsl:if test="not(StatsReport/ExpertStatistics/EventCounts/Stats)">
      <xsl:call-template name="empty">
        <xsl:with-param name="title" select="'No events'"/>
        <xsl:with-param name="reason" select="'The expert analysis found nothing to tell, or the report was made without it (setting OutputExpertStats).'"/>
      </xsl:call-template>
    </xsl:if>
  </xsl:template>

