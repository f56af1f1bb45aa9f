<?xml version="1.0" encoding="utf-8"?>
<!-- Flows of a report on nodes or for managers, those with events before the others, and the kinds of events. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" encoding="utf-8"/>

  <xsl:template match="/">
    <article class="view">
      <header class="view-head">
        <h1>Flows and events</h1>
        <p><xsl:value-of select="StatsReport/ExpertStatistics/*/@TimeSaved"/></p>
      </header>
      <xsl:for-each select="StatsReport/ExpertStatistics">
        <xsl:for-each select="EventCounts[Stats]">
          <xsl:call-template name="severities"/>
        </xsl:for-each>
        <xsl:for-each select="FlowStatistics[Stats]">
          <xsl:call-template name="flows"/>
        </xsl:for-each>
        <xsl:for-each select="EventCounts[Stats]">
          <xsl:call-template name="events"/>
        </xsl:for-each>
      </xsl:for-each>
      <xsl:call-template name="no-events"/>
    </article>
  </xsl:template>

  <!-- The columns of flows that tell at a glance how they fared. -->
  <xsl:template name="flows">
    <section class="part">
      <div class="part-head">
        <h2>Flows<span class="count"><xsl:value-of select="count(Stats)"/></span></h2>
        <p>of these, <xsl:value-of select="count(Stats[PROBLEM_COUNT/@Value &gt; 0])"/> with events</p>
      </div>
      <table class="grid">
        <caption>Flows</caption>
        <thead>
          <tr>
            <xsl:for-each select="Stats[1]/*[self::CLIENT_ADDRESS or self::SERVER_ADDRESS or self::SERVER_PORT or self::APPLICATION or self::PROTOCOL or self::PROBLEM_COUNT or self::EVENT_SEVERITY_MAX or self::APDEX_SCORE or self::DELAY or self::PACKETS or self::BYTES or self::DURATION]">
              <xsl:call-template name="expert-head"/>
            </xsl:for-each>
          </tr>
        </thead>
        <tbody>
          <xsl:for-each select="Stats">
            <xsl:sort select="PROBLEM_COUNT/@Value" data-type="number" order="descending"/>
            <tr>
              <xsl:for-each select="*[self::CLIENT_ADDRESS or self::SERVER_ADDRESS or self::SERVER_PORT or self::APPLICATION or self::PROTOCOL or self::PROBLEM_COUNT or self::EVENT_SEVERITY_MAX or self::APDEX_SCORE or self::DELAY or self::PACKETS or self::BYTES or self::DURATION]">
                <td><xsl:value-of select="@Value"/></td>
              </xsl:for-each>
            </tr>
          </xsl:for-each>
        </tbody>
      </table>
    </section>
  </xsl:template>

  <?include empty?>
  <?include severities?>
  <?include expert-head?>
  <?include events?>
  <?include no-events?>
</xsl:stylesheet>
