<?xml version="1.0" encoding="utf-8"?>
<!-- The channels of wireless networks. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" encoding="utf-8"/>

  <xsl:template match="/">
    <article class="view">
      <xsl:for-each select="StatsReport/WirelessChannelStatistics">
        <header class="view-head">
          <h1>Wireless channels</h1>
          <p><xsl:value-of select="Summary/TimeSaved"/></p>
        </header>
        <xsl:for-each select="Stats[ChannelStat]">
          <dl class="cards">
            <xsl:call-template name="card">
              <xsl:with-param name="label" select="'Channels'"/>
              <xsl:with-param name="value" select="count(ChannelStat)"/>
              <xsl:with-param name="kind" select="'number'"/>
            </xsl:call-template>
            <xsl:for-each select="../Summary"><xsl:call-template name="totals"/></xsl:for-each>
          </dl>
          <div class="pair">
            <section class="part">
              <div class="part-head"><h2>Packets by channel</h2></div>
              <table class="chart-columns">
                <caption>Packets by channel</caption>
                <thead><tr><th scope="col">Channel</th><th scope="col">Packets</th></tr></thead>
                <tbody>
                  <xsl:for-each select="ChannelStat">
                    <tr>
                      <th scope="row"><xsl:value-of select="Channel"/></th>
                      <td><xsl:value-of select="Packets"/></td>
                    </tr>
                  </xsl:for-each>
                </tbody>
              </table>
            </section>
            <xsl:call-template name="data-rates"/>
          </div>
          <section class="part">
            <div class="part-head"><h2>Channels<span class="count"><xsl:value-of select="count(ChannelStat)"/></span></h2></div>
            <table class="grid">
              <caption>Wireless channels</caption>
              <thead>
                <tr>
                  <xsl:for-each select="ChannelStat[1]/*"><xsl:call-template name="wireless-head"/></xsl:for-each>
                </tr>
              </thead>
              <tbody>
                <xsl:for-each select="ChannelStat">
                  <tr>
                    <xsl:for-each select="*">
                      <td>
                        <xsl:choose>
                          <xsl:when test="self::DataRate"><xsl:value-of select="@Value"/></xsl:when>
                          <xsl:otherwise><xsl:value-of select="."/></xsl:otherwise>
                        </xsl:choose>
                      </td>
                    </xsl:for-each>
                  </tr>
                </xsl:for-each>
              </tbody>
            </table>
          </section>
        </xsl:for-each>
      </xsl:for-each>
      <xsl:if test="not(StatsReport/WirelessChannelStatistics/Stats/ChannelStat)">
        <xsl:call-template name="no-wireless">
          <xsl:with-param name="title" select="'No wireless channels'"/>
        </xsl:call-template>
      </xsl:if>
    </article>
  </xsl:template>

  <?include cards?>
  <?include empty?>
  <?include wireless-head?>
  <?include data-rates?>
  <?include no-wireless?>
</xsl:stylesheet>
