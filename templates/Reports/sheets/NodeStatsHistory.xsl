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
        <xsl:if test="count(History) &gt; 1">
          <xsl:for-each select="History[last()]/Stats/Type[NodeStat]">
            <xsl:call-template name="trends-of-nodes"/>
          </xsl:for-each>
        </xsl:if>
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

  <!-- How the bytes of each node went, for the nodes of one type, the current node, that the latest of these reports has.
       In a report without it a node has 0. -->
  <xsl:template name="trends-of-nodes">
    <xsl:variable name="type" select="@Name"/>
    <section class="part">
      <div class="part-head">
        <h2>Trends - <xsl:value-of select="@Name"/></h2>
        <p>bytes sent and received, from report to report</p>
      </div>
      <table class="grid">
        <caption>Trends of nodes - <xsl:value-of select="@Name"/></caption>
        <thead>
          <tr>
            <th data-kind="address">Address</th>
            <th data-kind="trend">Trend</th>
            <th data-kind="bytes">First</th>
            <th data-kind="bytes" data-sorted="">Latest</th>
            <th data-kind="change">Change</th>
          </tr>
        </thead>
        <tbody>
          <xsl:for-each select="NodeStat">
            <tr>
              <xsl:variable name="address" select="Addr"/>
              <xsl:variable name="first" select="sum(/NodeStatistics/History[1]/Stats/Type[@Name = $type]/NodeStat[Addr = $address]/*[self::BytesSent or self::BytesReceived])"/>
              <xsl:variable name="latest" select="BytesSent + BytesReceived"/>
              <th scope="row"><xsl:value-of select="Addr"/></th>
              <td>
                <xsl:for-each select="/NodeStatistics/History">
                  <xsl:value-of select="sum(Stats/Type[@Name = $type]/NodeStat[Addr = $address]/*[self::BytesSent or self::BytesReceived])"/>
                  <xsl:text>|</xsl:text>
                </xsl:for-each>
              </td>
              <td><xsl:value-of select="$first"/></td>
              <td><xsl:value-of select="$latest"/></td>
              <td><xsl:value-of select="concat($first, '|', $latest)"/></td>
            </tr>
          </xsl:for-each>
        </tbody>
      </table>
    </section>
  </xsl:template>

  <?include cards?>
  <?include empty?>
  <?include history-totals?>
  <?include nodes?>
</xsl:stylesheet>
