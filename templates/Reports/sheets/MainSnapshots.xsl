<?xml version="1.0" encoding="utf-8"?>
<!-- Every statistic of the summary in all snapshots, side by side. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" encoding="utf-8"/>

  <xsl:template match="/">
    <article class="view">
      <header class="view-head">
        <h1>Snapshots</h1>
        <p><xsl:value-of select="StatsReport/SummaryStatistics/Summary/TimeSaved"/></p>
      </header>
      <xsl:for-each select="StatsReport/SummaryStatistics/Stats[Snapshot]">
        <xsl:if test="count(Snapshot) = 1">
          <p class="note">There is only the current state: the engine took no snapshots, or the report leaves them out (setting OutputSnapshots).</p>
        </xsl:if>
        <section class="part">
          <div class="part-head">
            <h2>Snapshots<span class="count"><xsl:value-of select="count(Snapshot)"/></span></h2>
          </div>
          <table class="grid">
            <caption>Snapshots</caption>
            <thead>
              <tr>
                <th data-kind="text">Statistic</th>
                <xsl:for-each select="Snapshot"><th data-kind="value"><xsl:value-of select="@Name"/></th></xsl:for-each>
              </tr>
            </thead>
            <tbody>
              <xsl:for-each select="Snapshot[1]/Group">
                <xsl:variable name="group" select="@Name"/>
                <tr class="group">
                  <th scope="rowgroup"><xsl:value-of select="@Name"/></th>
                  <xsl:for-each select="/StatsReport/SummaryStatistics/Stats/Snapshot"><td></td></xsl:for-each>
                </tr>
                <xsl:for-each select="SummaryStat">
                  <xsl:variable name="name" select="Name"/>
                  <tr>
                    <th scope="row"><xsl:value-of select="Name"/></th>
                    <xsl:for-each select="/StatsReport/SummaryStatistics/Stats/Snapshot">
                      <td>
                        <xsl:for-each select="Group[@Name = $group]/SummaryStat[Name = $name][1]">
                          <xsl:call-template name="statistic-value"/>
                        </xsl:for-each>
                      </td>
                    </xsl:for-each>
                  </tr>
                </xsl:for-each>
              </xsl:for-each>
            </tbody>
          </table>
        </section>
      </xsl:for-each>
      <xsl:if test="not(StatsReport/SummaryStatistics/Stats/Snapshot)">
        <xsl:call-template name="empty">
          <xsl:with-param name="title" select="'No summary'"/>
          <xsl:with-param name="reason" select="'The engine gave no summary statistics for this report.'"/>
        </xsl:call-template>
      </xsl:if>
    </article>
  </xsl:template>

  <?include empty?>
  <?include statistic-value?>
</xsl:stylesheet>
