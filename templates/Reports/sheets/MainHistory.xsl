<?xml version="1.0" encoding="utf-8"?>
<!-- How the statistics of the summary went from one report into the folder to the next. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" encoding="utf-8"/>

  <xsl:template match="/">
    <article class="view">
      <header class="view-head">
        <h1>History</h1>
        <p>
          <xsl:value-of select="History/Snapshot[1]/@Time"/>
          <xsl:text> – </xsl:text>
          <xsl:value-of select="History/Snapshot[last()]/@Time"/>
        </p>
      </header>
      <dl class="cards">
        <xsl:call-template name="card">
          <xsl:with-param name="label" select="'Reports'"/>
          <xsl:with-param name="value" select="count(History/Snapshot)"/>
          <xsl:with-param name="kind" select="'number'"/>
        </xsl:call-template>
      </dl>
      <xsl:if test="count(History/Snapshot) = 1">
        <p class="note">This is the first report into its folder. With every further one, trends grow here.</p>
      </xsl:if>
      <xsl:if test="count(History/Snapshot) &gt; 1">
        <div class="pair">
          <xsl:call-template name="line">
            <xsl:with-param name="title" select="'Packets of each report'"/>
            <xsl:with-param name="name" select="'Total Packets'"/>
          </xsl:call-template>
          <xsl:call-template name="line">
            <xsl:with-param name="title" select="'Bytes of each report'"/>
            <xsl:with-param name="name" select="'Total Bytes'"/>
            <xsl:with-param name="unit" select="'bytes'"/>
          </xsl:call-template>
        </div>
      </xsl:if>
      <xsl:for-each select="History/Snapshot[last()]">
        <section class="part">
          <div class="part-head"><h2>Trends</h2><p>from the first report to the latest</p></div>
          <table class="grid">
            <caption>History of statistics</caption>
            <thead>
              <tr>
                <th data-kind="text">Statistic</th>
                <th data-kind="trend">Trend</th>
                <th data-kind="value">First</th>
                <th data-kind="value">Latest</th>
                <th data-kind="change">Change</th>
              </tr>
            </thead>
            <tbody>
              <xsl:for-each select="Group">
                <xsl:variable name="group" select="@Name"/>
                <tr class="group">
                  <th scope="rowgroup"><xsl:value-of select="@Name"/></th><td></td><td></td><td></td><td></td>
                </tr>
                <xsl:for-each select="SummaryStat">
                  <xsl:variable name="name" select="Name"/>
                  <xsl:variable name="first">
                    <xsl:for-each select="/History/Snapshot[1]/Group[@Name = $group]/SummaryStat[Name = $name][1]">
                      <xsl:call-template name="statistic-value"/>
                    </xsl:for-each>
                  </xsl:variable>
                  <xsl:variable name="latest"><xsl:call-template name="statistic-value"/></xsl:variable>
                  <tr>
                    <th scope="row"><xsl:value-of select="Name"/></th>
                    <td>
                      <xsl:for-each select="/History/Snapshot/Group[@Name = $group]/SummaryStat[Name = $name]">
                        <xsl:call-template name="statistic-value"/>
                        <xsl:text>|</xsl:text>
                      </xsl:for-each>
                    </td>
                    <td><xsl:value-of select="$first"/></td>
                    <td><xsl:value-of select="$latest"/></td>
                    <td><xsl:value-of select="concat($first, '|', $latest)"/></td>
                  </tr>
                </xsl:for-each>
              </xsl:for-each>
            </tbody>
          </table>
        </section>
      </xsl:for-each>
      <xsl:if test="not(History/Snapshot)">
        <xsl:call-template name="empty">
          <xsl:with-param name="title" select="'No history yet'"/>
          <xsl:with-param name="reason" select="'No report with a summary was made into this folder.'"/>
        </xsl:call-template>
      </xsl:if>
    </article>
  </xsl:template>

  <!-- One statistic of all reports as a line; nothing when the engine has no statistic of that name. -->
  <xsl:template name="line">
    <xsl:param name="title"/>
    <xsl:param name="name"/>
    <xsl:param name="unit"/>
    <xsl:if test="/History/Snapshot/Group/SummaryStat[Name = $name]">
      <section class="part">
        <div class="part-head"><h2><xsl:value-of select="$title"/></h2></div>
        <table class="chart-line" data-unit="{$unit}">
          <caption><xsl:value-of select="$title"/></caption>
          <thead><tr><th scope="col">Report</th><th scope="col">Value</th></tr></thead>
          <tbody>
            <xsl:for-each select="/History/Snapshot/Group/SummaryStat[Name = $name]">
              <tr>
                <th scope="row"><xsl:value-of select="../../@Time"/></th>
                <td><xsl:call-template name="statistic-value"/></td>
              </tr>
            </xsl:for-each>
          </tbody>
        </table>
      </section>
    </xsl:if>
  </xsl:template>

  <?include cards?>
  <?include empty?>
  <?include statistic-value?>
</xsl:stylesheet>
