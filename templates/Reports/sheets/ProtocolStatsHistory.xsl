<?xml version="1.0" encoding="utf-8"?>
<!-- How the protocols went from one report into the folder to the next. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" encoding="utf-8"/>

  <xsl:template match="/">
    <article class="view">
      <header class="view-head"><h1>History of protocols</h1></header>
      <xsl:for-each select="ProtocolStatistics">
        <dl class="cards">
          <xsl:call-template name="card">
            <xsl:with-param name="label" select="'Reports'"/>
            <xsl:with-param name="value" select="count(History)"/>
            <xsl:with-param name="kind" select="'number'"/>
          </xsl:call-template>
        </dl>
        <xsl:if test="count(History) = 1">
          <p class="note">This is the first report into its folder. With every further one, trends grow here.</p>
        </xsl:if>
        <xsl:call-template name="history-totals"/>
        <xsl:for-each select="History[last()]">
          <section class="part">
            <div class="part-head"><h2>Trends of bytes</h2><p>of the protocols in the latest report</p></div>
            <table class="grid">
              <caption>History of protocols</caption>
              <thead>
                <tr>
                  <th data-kind="text">Protocol</th>
                  <th data-kind="path">Inside of</th>
                  <th data-kind="trend">Trend</th>
                  <th data-kind="bytes">First</th>
                  <th data-kind="bytes">Latest</th>
                  <th data-kind="change">Change</th>
                </tr>
              </thead>
              <tbody>
                <xsl:for-each select="Stats/ProtoStat">
                  <tr>
                    <xsl:variable name="name" select="Name"/>
                    <xsl:variable name="path" select="Path"/>
                    <xsl:variable name="latest" select="Bytes"/>
                    <xsl:variable name="first" select="/ProtocolStatistics/History[1]/Stats/ProtoStat[Path = $path][Name = $name][1]/Bytes"/>
                    <th scope="row"><xsl:value-of select="Name"/></th>
                    <td><xsl:value-of select="Path"/></td>
                    <td>
                      <xsl:for-each select="/ProtocolStatistics/History/Stats/ProtoStat[Path = $path][Name = $name]">
                        <xsl:value-of select="Bytes"/>
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
        </xsl:for-each>
      </xsl:for-each>
      <xsl:if test="not(ProtocolStatistics/History)">
        <xsl:call-template name="empty">
          <xsl:with-param name="title" select="'No history yet'"/>
          <xsl:with-param name="reason" select="'No report with protocols was made into this folder.'"/>
        </xsl:call-template>
      </xsl:if>
    </article>
  </xsl:template>

  <?include cards?>
  <?include empty?>
  <?include history-totals?>
</xsl:stylesheet>
