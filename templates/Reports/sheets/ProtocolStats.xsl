<?xml version="1.0" encoding="utf-8"?>
<!-- The protocols of a report. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" encoding="utf-8"/>

  <xsl:template match="/">
    <article class="view">
      <xsl:for-each select="StatsReport/ProtocolStatistics">
        <header class="view-head">
          <h1>Protocols</h1>
          <p><xsl:value-of select="Summary/TimeSaved"/></p>
        </header>
        <dl class="cards">
          <xsl:for-each select="Summary">
            <xsl:call-template name="card">
              <xsl:with-param name="label" select="'Protocols'"/>
              <xsl:with-param name="value" select="string(ProtocolCount)"/>
              <xsl:with-param name="kind" select="'number'"/>
            </xsl:call-template>
            <xsl:call-template name="totals"/>
          </xsl:for-each>
        </dl>
        <xsl:for-each select="Stats[ProtoStat]">
          <xsl:call-template name="top-protocols"/>
          <section class="part">
            <div class="part-head">
              <h2>All protocols<span class="count"><xsl:value-of select="count(ProtoStat)"/></span></h2>
            </div>
            <table class="grid">
              <caption>Protocols</caption>
              <thead>
                <tr>
                  <th data-kind="text">Protocol</th>
                  <th data-kind="path">Inside of</th>
                  <xsl:if test="ProtoStat/Packets"><th data-kind="number">Packets</th></xsl:if>
                  <th data-kind="bytes">Bytes</th>
                  <th data-kind="ratio">Share of bytes</th>
                </tr>
              </thead>
              <tbody>
                <xsl:for-each select="ProtoStat">
                  <tr>
                    <th scope="row"><xsl:value-of select="Name"/></th>
                    <td><xsl:value-of select="Path"/></td>
                    <xsl:if test="Packets"><td><xsl:value-of select="Packets"/></td></xsl:if>
                    <td><xsl:value-of select="Bytes"/></td>
                    <td><xsl:value-of select="PctBytes"/></td>
                  </tr>
                </xsl:for-each>
              </tbody>
            </table>
          </section>
        </xsl:for-each>
      </xsl:for-each>
      <xsl:if test="not(StatsReport/ProtocolStatistics/Stats/ProtoStat)">
        <xsl:call-template name="empty">
          <xsl:with-param name="title" select="'No protocols'"/>
          <xsl:with-param name="reason" select="'This report was made without statistics of protocols (setting OutputProtocolStats), or nothing was captured.'"/>
        </xsl:call-template>
      </xsl:if>
    </article>
  </xsl:template>

  <?include cards?>
  <?include empty?>
  <?include top-protocols?>
</xsl:stylesheet>
