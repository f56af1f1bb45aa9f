<?xml version="1.0" encoding="utf-8"?>
<!-- The flows that the expert analysis followed. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" encoding="utf-8"/>

  <xsl:template match="/">
    <article class="view">
      <header class="view-head">
        <h1>Flows</h1>
        <p><xsl:value-of select="StatsReport/ExpertStatistics/FlowStatistics/@TimeSaved"/></p>
      </header>
      <xsl:for-each select="StatsReport/ExpertStatistics/FlowStatistics[Stats]">
        <xsl:call-template name="expert-table">
          <xsl:with-param name="title" select="'Flows'"/>
        </xsl:call-template>
      </xsl:for-each>
      <xsl:if test="not(StatsReport/ExpertStatistics/FlowStatistics/Stats)">
        <xsl:call-template name="empty">
          <xsl:with-param name="title" select="'No flows'"/>
          <xsl:with-param name="reason" select="'The expert analysis followed no flow, or the report leaves them out (setting ExpertFlows).'"/>
        </xsl:call-template>
      </xsl:if>
    </article>
  </xsl:template>

  <?include empty?>
  <?include expert-head?>
  <?include expert-table?>
</xsl:stylesheet>
