<?xml version="1.0" encoding="utf-8"?>
<!-- The nodes of a report, by the types of their addresses. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" encoding="utf-8"/>

  <xsl:template match="/">
    <article class="view">
      <xsl:for-each select="StatsReport/NodeStatistics">
        <header class="view-head">
          <h1>Nodes</h1>
          <p><xsl:value-of select="Summary/TimeSaved"/></p>
        </header>
        <dl class="cards">
          <xsl:for-each select="Summary">
            <xsl:call-template name="card">
              <xsl:with-param name="label" select="'Nodes'"/>
              <xsl:with-param name="value" select="string(NodeCount)"/>
              <xsl:with-param name="kind" select="'number'"/>
            </xsl:call-template>
            <xsl:call-template name="totals"/>
          </xsl:for-each>
        </dl>
        <xsl:for-each select="Stats">
          <xsl:for-each select="Type[*]">
            <xsl:call-template name="nodes"/>
          </xsl:for-each>
          <xsl:call-template name="types-without-rows"/>
        </xsl:for-each>
      </xsl:for-each>
      <xsl:if test="not(StatsReport/NodeStatistics)">
        <xsl:call-template name="empty">
          <xsl:with-param name="title" select="'No nodes'"/>
          <xsl:with-param name="reason" select="'This report was made without statistics of nodes (setting OutputNodeStats).'"/>
        </xsl:call-template>
      </xsl:if>
    </article>
  </xsl:template>

  <?include cards?>
  <?include empty?>
  <?include no-rows?>
  <?include nodes?>
</xsl:stylesheet>
