<?xml version="1.0" encoding="utf-8"?>
<!-- The nodes of wireless networks in a report for managers: access points, then stations. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" encoding="utf-8"/>

  <xsl:template match="/">
    <article class="view">
      <xsl:for-each select="StatsReport/WirelessNodeStatistics">
        <header class="view-head">
          <h1>Wireless nodes</h1>
          <p><xsl:value-of select="Summary/TimeSaved"/></p>
        </header>
        <xsl:for-each select="Summary"><xsl:call-template name="wireless-totals"/></xsl:for-each>
        <xsl:for-each select="Stats/Type[@Name = 'AP'][*]">
          <xsl:call-template name="wireless-nodes">
            <xsl:with-param name="title" select="'Access points'"/>
          </xsl:call-template>
        </xsl:for-each>
        <xsl:for-each select="Stats/Type[@Name = 'STA'][*]">
          <xsl:call-template name="wireless-nodes">
            <xsl:with-param name="title" select="'Stations'"/>
          </xsl:call-template>
        </xsl:for-each>
      </xsl:for-each>
      <xsl:if test="not(StatsReport/WirelessNodeStatistics/Stats/Type/*)">
        <xsl:call-template name="no-wireless">
          <xsl:with-param name="title" select="'No wireless nodes'"/>
        </xsl:call-template>
      </xsl:if>
    </article>
  </xsl:template>

  <?include cards?>
  <?include empty?>
  <?include wireless-totals?>
  <?include wireless-head?>
  <?include wireless-nodes?>
  <?include no-wireless?>
</xsl:stylesheet>
