<?xml version="1.0" encoding="utf-8"?>
<!-- The overview of a report: totals, charts, and who and what was busiest. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" encoding="utf-8"/>

  <xsl:template match="/">
    <article class="view">
      <xsl:for-each select="StatsReport">
        <header class="view-head">
          <h1>Network report</h1>
          <p><xsl:value-of select="(SummaryStatistics/Summary/TimeSaved | */Summary/TimeSaved | ExpertStatistics/*/@TimeSaved)[1]"/></p>
        </header>
        <dl class="cards">
          <xsl:call-template name="figures"/>
        </dl>
        <xsl:for-each select="ExpertStatistics/EventCounts[Stats]">
          <section class="part">
            <div class="part-head">
              <h2>Expert events</h2>
              <p><a href="Expert.htm">What they mean</a></p>
            </div>
            <xsl:call-template name="severities"/>
          </section>
        </xsl:for-each>
        <div class="pair">
          <xsl:for-each select="NodeStatistics/Stats">
            <xsl:for-each select="(Type[@Name = 'IP'][NodeStat] | Type[NodeStat][not(../Type[@Name = 'IP'][NodeStat])])[1]">
              <xsl:call-template name="top-nodes"><xsl:with-param name="links" select="true()"/></xsl:call-template>
            </xsl:for-each>
          </xsl:for-each>
          <xsl:for-each select="ProtocolStatistics/Stats[ProtoStat]">
            <xsl:call-template name="top-protocols"><xsl:with-param name="links" select="true()"/></xsl:call-template>
          </xsl:for-each>
          <xsl:for-each select="SummaryStatistics/Stats/Snapshot[1]/Group[@Name = 'Packet Sizes'][SummaryStat/PacketsValue != '']">
            <section class="part">
              <div class="part-head"><h2>Packet sizes</h2></div>
              <table class="chart-columns">
                <caption>Packets by their size in bytes</caption>
                <thead><tr><th scope="col">Size</th><th scope="col">Packets</th></tr></thead>
                <tbody>
                  <xsl:for-each select="SummaryStat[PacketsValue != '']">
                    <tr>
                      <th scope="row"><xsl:value-of select="Name"/></th>
                      <td><xsl:value-of select="PacketsValue"/></td>
                    </tr>
                  </xsl:for-each>
                </tbody>
              </table>
            </section>
          </xsl:for-each>
          <xsl:for-each select="Graphs/TrafficGraph">
            <figure class="part picture">
              <figcaption>Traffic over time</figcaption>
              <img data-picture="{@src}" alt="Graph of the traffic over time"/>
            </figure>
          </xsl:for-each>
        </div>
        <xsl:for-each select="SummaryStatistics/Stats/Snapshot[1]">
          <xsl:call-template name="summary"/>
        </xsl:for-each>
        <xsl:if test="not(*)">
          <xsl:call-template name="empty">
            <xsl:with-param name="title" select="'This report is empty'"/>
            <xsl:with-param name="reason" select="'The settings that it was made with leave out everything, or nothing was captured.'"/>
          </xsl:call-template>
        </xsl:if>
      </xsl:for-each>
    </article>
  </xsl:template>

  <xsl:template name="figures">
    <xsl:for-each select="(NodeStatistics | ProtocolStatistics | WirelessNodeStatistics)[1]/Summary">
      <xsl:call-template name="totals"/>
    </xsl:for-each>
    <xsl:if test="not(NodeStatistics or ProtocolStatistics or WirelessNodeStatistics)">
      <xsl:for-each select="SummaryStatistics/Stats/Snapshot[1]/Group/SummaryStat[Name = 'Total Packets']">
        <xsl:call-template name="card">
          <xsl:with-param name="label" select="'Packets'"/>
          <xsl:with-param name="value"><xsl:call-template name="statistic-value"/></xsl:with-param>
          <xsl:with-param name="kind" select="'number'"/>
        </xsl:call-template>
      </xsl:for-each>
      <xsl:for-each select="SummaryStatistics/Stats/Snapshot[1]/Group/SummaryStat[Name = 'Total Bytes']">
        <xsl:call-template name="card">
          <xsl:with-param name="label" select="'Bytes'"/>
          <xsl:with-param name="value"><xsl:call-template name="statistic-value"/></xsl:with-param>
          <xsl:with-param name="kind" select="'bytes'"/>
        </xsl:call-template>
      </xsl:for-each>
    </xsl:if>
    <xsl:for-each select="SummaryStatistics/Summary">
      <xsl:call-template name="card">
        <xsl:with-param name="label" select="'Began'"/>
        <xsl:with-param name="value" select="concat(StartDate, ' ', StartTime)"/>
      </xsl:call-template>
      <xsl:call-template name="card">
        <xsl:with-param name="label" select="'Duration'"/>
        <xsl:with-param name="value" select="string(Duration)"/>
      </xsl:call-template>
    </xsl:for-each>
    <xsl:for-each select="SummaryStatistics/Stats/Snapshot[1]/Group/SummaryStat[Name = 'Total Bytes'][BytesPerSec != '']">
      <xsl:call-template name="card">
        <xsl:with-param name="label" select="'Average rate'"/>
        <xsl:with-param name="value" select="string(BytesPerSec)"/>
        <xsl:with-param name="kind" select="'rate-bytes'"/>
      </xsl:call-template>
    </xsl:for-each>
    <xsl:call-template name="card">
      <xsl:with-param name="label" select="'Nodes'"/>
      <xsl:with-param name="value" select="string(NodeStatistics/Summary/NodeCount)"/>
      <xsl:with-param name="kind" select="'number'"/>
    </xsl:call-template>
    <xsl:call-template name="card">
      <xsl:with-param name="label" select="'Protocols'"/>
      <xsl:with-param name="value" select="string(ProtocolStatistics/Summary/ProtocolCount)"/>
      <xsl:with-param name="kind" select="'number'"/>
    </xsl:call-template>
    <xsl:if test="ExpertStatistics/FlowStatistics">
      <xsl:call-template name="card">
        <xsl:with-param name="label" select="'Flows'"/>
        <xsl:with-param name="value" select="count(ExpertStatistics/FlowStatistics/Stats)"/>
        <xsl:with-param name="kind" select="'number'"/>
      </xsl:call-template>
    </xsl:if>
    <xsl:if test="VoIPStatistics">
      <xsl:call-template name="card">
        <xsl:with-param name="label" select="'Media streams'"/>
        <xsl:with-param name="value" select="count(VoIPStatistics/VoIPMediaStatistics/Stats)"/>
        <xsl:with-param name="kind" select="'number'"/>
      </xsl:call-template>
    </xsl:if>
    <xsl:if test="WirelessNodeStatistics">
      <xsl:call-template name="card">
        <xsl:with-param name="label" select="'Access points'"/>
        <xsl:with-param name="value" select="string(WirelessNodeStatistics/Summary/APNodeCount)"/>
        <xsl:with-param name="kind" select="'number'"/>
      </xsl:call-template>
    </xsl:if>
  </xsl:template>

  <!-- All statistics of a snapshot, in their groups. -->
  <xsl:template name="summary">
    <section class="part">
      <div class="part-head"><h2>Summary statistics</h2></div>
      <table class="grid">
        <caption>Summary statistics</caption>
        <thead>
          <tr>
            <th data-kind="text">Statistic</th>
            <xsl:if test="Group/SummaryStat/PacketsValue"><th data-kind="number">Packets</th></xsl:if>
            <xsl:if test="Group/SummaryStat/PctOfPkts"><th data-kind="percent">Share of packets</th></xsl:if>
            <xsl:if test="Group/SummaryStat/PktsPerSec"><th data-kind="rate">Packets/s</th></xsl:if>
            <th data-kind="bytes">Bytes</th>
            <xsl:if test="Group/SummaryStat/PctOfBytes"><th data-kind="percent">Share of bytes</th></xsl:if>
            <xsl:if test="Group/SummaryStat/BytesPerSec"><th data-kind="rate-bytes">Bytes/s</th></xsl:if>
            <th data-kind="value">Value</th>
          </tr>
        </thead>
        <tbody>
          <xsl:for-each select="Group">
            <tr class="group">
              <th scope="rowgroup"><xsl:value-of select="@Name"/></th>
              <xsl:if test="SummaryStat/PacketsValue"><td></td></xsl:if>
              <xsl:if test="SummaryStat/PctOfPkts"><td></td></xsl:if>
              <xsl:if test="SummaryStat/PktsPerSec"><td></td></xsl:if>
              <td></td>
              <xsl:if test="SummaryStat/PctOfBytes"><td></td></xsl:if>
              <xsl:if test="SummaryStat/BytesPerSec"><td></td></xsl:if>
              <td></td>
            </tr>
            <xsl:for-each select="SummaryStat">
              <tr>
                <th scope="row"><xsl:value-of select="Name"/></th>
                <xsl:if test="PacketsValue"><td><xsl:value-of select="PacketsValue"/></td></xsl:if>
                <xsl:if test="PctOfPkts"><td><xsl:value-of select="PctOfPkts"/></td></xsl:if>
                <xsl:if test="PktsPerSec"><td><xsl:value-of select="PktsPerSec"/></td></xsl:if>
                <td><xsl:value-of select="BytesValue"/></td>
                <xsl:if test="PctOfBytes"><td><xsl:value-of select="PctOfBytes"/></td></xsl:if>
                <xsl:if test="BytesPerSec"><td><xsl:value-of select="BytesPerSec"/></td></xsl:if>
                <td><xsl:value-of select="Values"/></td>
              </tr>
            </xsl:for-each>
          </xsl:for-each>
        </tbody>
      </table>
    </section>
  </xsl:template>

  <?include cards?>
  <?include empty?>
  <?include severities?>
  <?include top-nodes?>
  <?include top-protocols?>
  <?include statistic-value?>
</xsl:stylesheet>
