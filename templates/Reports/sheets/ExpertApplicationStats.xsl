<?xml version="1.0" encoding="utf-8"?>
<!-- The applications of all flows, and how fast they answered. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" encoding="utf-8"/>

  <xsl:template match="/">
    <article class="view">
      <header class="view-head">
        <h1>Applications</h1>
        <p><xsl:value-of select="StatsReport/ExpertStatistics/ApplicationStatistics/@TimeSaved"/></p>
      </header>
      <xsl:for-each select="StatsReport/ExpertStatistics/ApplicationStatistics[Stats]">
        <xsl:call-template name="expert-table">
          <xsl:with-param name="title" select="'Applications'"/>
        </xsl:call-template>
      </xsl:for-each>
      <xsl:if test="not(StatsReport/ExpertStatistics/ApplicationStatistics/Stats)">
        <xsl:call-template name="empty">
          <xsl:with-param name="title" select="'No applications'"/>
          <xsl:with-param name="reason" select="'No application answered anything, or the report leaves them out (setting ExpertApplications).'"/>
        </xsl:call-template>
      </xsl:if>
    </article>
  </xsl:template>

  <?include empty?>
  <?include expert-head?>
  <?include expert-table?>
</xsl:stylesheet>
