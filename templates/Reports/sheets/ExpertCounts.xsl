<?xml version="1.0" encoding="utf-8"?>
<!-- The events of the expert analysis: how many of each severity, and of what kinds. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" encoding="utf-8"/>

  <xsl:template match="/">
    <article class="view">
      <header class="view-head">
        <h1>Expert summary</h1>
        <p><xsl:value-of select="StatsReport/ExpertStatistics/EventCounts/@TimeSaved"/></p>
      </header>
      <xsl:for-each select="StatsReport/ExpertStatistics/EventCounts[Stats]">
        <xsl:call-template name="severities"/>
        <xsl:call-template name="events"/>
      </xsl:for-each>
      <xsl:call-template name="no-events"/>
    </article>
  </xsl:template>

  <?include empty?>
  <?include severities?>
  <?include expert-head?>
  <?include events?>
  <?include no-events?>
</xsl:stylesheet>
