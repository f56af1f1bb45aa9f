<?xml version="1.0" encoding="utf-8"?>
<!-- The wireless nodes of all reports into the folder, one report at a time. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" encoding="utf-8"/>

  <xsl:template match="/">
    <article class="view">
      <header class="view-head"><h1>History of wireless nodes</h1></header>
      <xsl:for-each select="WirelessNodeStatistics">
        <xsl:call-template name="history-totals"/>
        <div class="steps">
          <xsl:for-each select="History">
            <div data-step="{Summary/TimeSaved}">
              <xsl:for-each select="Summary"><xsl:call-template name="wireless-totals"/></xsl:for-each>
              <xsl:for-each select="Stats[WirelessNodeStat]">
                <xsl:call-template name="wireless-nodes">
                  <xsl:with-param name="title" select="concat('Wireless nodes, ', ../Summary/TimeSaved)"/>
                </xsl:call-template>
              </xsl:for-each>
            </div>
          </xsl:for-each>
        </div>
      </xsl:for-each>
      <xsl:if test="not(WirelessNodeStatistics/History)">
        <xsl:call-template name="no-wireless">
          <xsl:with-param name="title" select="'No history of wireless nodes'"/>
        </xsl:call-template>
      </xsl:if>
    </article>
  </xsl:template>

  <?include cards?>
  <?include empty?>
  <?include history-totals?>
  <?include wireless-totals?>
  <?include wireless-head?>
  <?include wireless-nodes?>
  <?include no-wireless?>
</xsl:stylesheet>
