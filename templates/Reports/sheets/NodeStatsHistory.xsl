<?xml version="1.0" encoding="utf-8"?>
<!-- The nodes of earlier reports into the folder, one report at a time. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" encoding="utf-8"/>

  <xsl:template match="/">
    <article class="view">
      <header class="view-head">
        <h1>History of nodes</h1>
        <p>earlier reports; the latest is under Overview</p>
      </header>
      <xsl:for-each select="NodeStatistics">
        <xsl:call-template name="history-totals"/>
        <div class="steps">
          <xsl:for-each select="History">
            <div data-step="{Summary/TimeSaved}">
              <dl class="cards">
                <xsl:for-each select="Summary">
                  <xsl:call-template name="card">
                    <xsl:with-param name="label" select="'Report'"/>
                    <xsl:with-param name="value" select="string(TimeSaved)"/>
                  </xsl:call-template>
                  <xsl:call-template name="card">
                    <xsl:with-param name="label" select="'Nodes'"/>
                    <xsl:with-param name="value" select="string(NodeCount)"/>
                    <xsl:with-param name="kind" select="'number'"/>
                  </xsl:call-template>
                  <xsl:call-template name="totals"/>
                </xsl:for-each>
              </dl>
              <xsl:for-each select="Stats/Type[*]">
                <xsl:call-template name="nodes"/>
              </xsl:for-each>
            </div>
          </xsl:for-each>
        </div>
      </xsl:for-each>
      <xsl:if test="not(NodeStatistics/History)">
        <xsl:call-template name="empty">
          <xsl:with-param name="title" select="'No history yet'"/>
          <xsl:with-param name="reason" select="'When another report is made into this folder, the nodes of this one move here.'"/>
        </xsl:call-template>
      </xsl:if>
    </article>
  </xsl:template>

  <?include cards?>
  <?include empty?>
  <?include history-totals?>
  <?include nodes?>
</xsl:stylesheet>
