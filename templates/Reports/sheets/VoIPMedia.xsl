<?xml version="1.0" encoding="utf-8"?>
<!-- The media streams of voice and video, and how good they sounded. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" encoding="utf-8"/>

  <xsl:template match="/">
    <article class="view">
      <header class="view-head">
        <h1>Voice and video</h1>
        <p><xsl:value-of select="StatsReport/VoIPStatistics/VoIPMediaStatistics/@TimeSaved"/></p>
      </header>
      <xsl:for-each select="StatsReport/VoIPStatistics/VoIPMediaStatistics[Stats]">
        <dl class="cards">
          <xsl:call-template name="card">
            <xsl:with-param name="label" select="'Media streams'"/>
            <xsl:with-param name="value" select="count(Stats)"/>
            <xsl:with-param name="kind" select="'number'"/>
          </xsl:call-template>
          <div class="card">
            <dt>Poor streams</dt>
            <dd data-figure="number"><xsl:value-of select="count(Stats[MOS_CQ/@Value &lt; 3.6])"/></dd>
            <dd class="note">MOS-CQ under 3.6</dd>
          </div>
          <xsl:for-each select="Stats[MOS_CQ/@Value != '']">
            <xsl:sort select="MOS_CQ/@Value" data-type="number"/>
            <xsl:if test="position() = 1">
              <xsl:call-template name="card">
                <xsl:with-param name="label" select="'Worst MOS-CQ'"/>
                <xsl:with-param name="value" select="string(MOS_CQ/@Value)"/>
                <xsl:with-param name="kind" select="'mos'"/>
              </xsl:call-template>
            </xsl:if>
          </xsl:for-each>
          <xsl:for-each select="Stats[PACKET_LOSS/@Value != '']">
            <xsl:sort select="PACKET_LOSS/@Value" data-type="number" order="descending"/>
            <xsl:if test="position() = 1">
              <xsl:call-template name="card">
                <xsl:with-param name="label" select="'Most packets lost'"/>
                <xsl:with-param name="value" select="concat(PACKET_LOSS/@Value, ' %')"/>
              </xsl:call-template>
            </xsl:if>
          </xsl:for-each>
          <xsl:for-each select="Stats[JITTER/@Value != '']">
            <xsl:sort select="JITTER/@Value" data-type="number" order="descending"/>
            <xsl:if test="position() = 1">
              <xsl:call-template name="card">
                <xsl:with-param name="label" select="'Most jitter'"/>
                <xsl:with-param name="value" select="concat(JITTER/@Value, ' ms')"/>
              </xsl:call-template>
            </xsl:if>
          </xsl:for-each>
        </dl>
        <section class="part">
          <div class="part-head"><h2>Media streams<span class="count"><xsl:value-of select="count(Stats)"/></span></h2></div>
          <table class="grid">
            <caption>Media streams</caption>
            <thead>
              <tr>
                <th data-kind="stream">Stream</th>
                <xsl:for-each select="Stats[1]/*"><xsl:call-template name="expert-head"/></xsl:for-each>
              </tr>
            </thead>
            <tbody>
              <xsl:for-each select="Stats">
                <tr>
                  <th scope="row">
                    <xsl:value-of select="concat(SOURCE_ADDRESS/@Value, ' → ', DESTINATION_ADDRESS/@Value)"/>
                  </th>
                  <xsl:for-each select="*"><td><xsl:value-of select="@Value"/></td></xsl:for-each>
                </tr>
              </xsl:for-each>
            </tbody>
          </table>
        </section>
      </xsl:for-each>
      <xsl:if test="not(StatsReport/VoIPStatistics/VoIPMediaStatistics/Stats)">
        <xsl:call-template name="empty">
          <xsl:with-param name="title" select="'No voice and video'"/>
          <xsl:with-param name="reason" select="'No call or media stream was seen, or the report leaves them out (setting OutputVoIPOnly).'"/>
        </xsl:call-template>
      </xsl:if>
    </article>
  </xsl:template>

  <?include cards?>
  <?include empty?>
  <?include expert-head?>
</xsl:stylesheet>
