<?xml version="1.0" encoding="utf-8"?>
<!-- The wireless nodes of all reports into the folder, one report at a time. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" encoding="utf-8"/>

  <xsl:template match="/">
    <article class="view">
      <header class="view-head"><h1>History of wireless nodes</h1></header>
      <xsl:for-each select="WirelessNodeStatistics">
        <xsl:call-template name="history-totals"/>
        <xsl:if test="count(History) &gt; 1">
          <xsl:for-each select="History[last()]/Stats[WirelessNodeStat]">
            <xsl:call-template name="trends-of-wireless-nodes"/>
          </xsl:for-each>
        </xsl:if>
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

  <!-- How the bytes of each node of the latest report, the current node, went. In a report without it a node has 0. -->
  <xsl:template name="trends-of-wireless-nodes">
    <section class="part">
      <div class="part-head"><h2>Trends</h2><p>bytes of each node, from report to report</p></div>
      <table class="grid">
        <caption>Trends of wireless nodes</caption>
        <thead>
          <tr>
            <th data-kind="address">Node</th>
            <th data-kind="text">Network</th>
            <th data-kind="trend">Trend</th>
            <th data-kind="bytes">First</th>
            <th data-kind="bytes" data-sorted="">Latest</th>
            <th data-kind="change">Change</th>
          </tr>
        </thead>
        <tbody>
          <xsl:for-each select="WirelessNodeStat">
            <tr>
              <xsl:variable name="node" select="Node"/>
              <xsl:variable name="first" select="sum(/WirelessNodeStatistics/History[1]/Stats/WirelessNodeStat[Node = $node]/TotalBytes)"/>
              <th scope="row"><xsl:value-of select="Node"/></th>
              <td><xsl:value-of select="ESSID"/></td>
              <td>
                <xsl:for-each select="/WirelessNodeStatistics/History">
                  <xsl:value-of select="sum(Stats/WirelessNodeStat[Node = $node]/TotalBytes)"/>
                  <xsl:text>|</xsl:text>
                </xsl:for-each>
              </td>
              <td><xsl:value-of select="$first"/></td>
              <td><xsl:value-of select="TotalBytes"/></td>
              <td><xsl:value-of select="concat($first, '|', TotalBytes)"/></td>
            </tr>
          </xsl:for-each>
        </tbody>
      </table>
    </section>
  </xsl:template>

  <?include cards?>
  <?include empty?>
  <?include history-totals?>
  <?include wireless-totals?>
  <?include wireless-head?>
  <?include wireless-nodes?>
  <?include no-wireless?>
</xsl:stylesheet>
