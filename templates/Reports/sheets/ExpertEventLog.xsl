<?xml version="1.0" encoding="utf-8"?>
<!-- What the expert analysis noticed, event by event. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" encoding="utf-8"/>

  <xsl:template match="/">
    <article class="view">
      <header class="view-head">
        <h1>Event log</h1>
        <p><xsl:value-of select="ExpertLog/@TimeSaved"/></p>
      </header>
      <xsl:for-each select="ExpertLog[Stats]">
        <xsl:call-template name="expert-table">
          <xsl:with-param name="title" select="'Event log'"/>
        </xsl:call-template>
      </xsl:for-each>
      <xsl:if test="not(ExpertLog/Stats)">
        <xsl:call-template name="empty">
          <xsl:with-param name="title" select="'No events'"/>
          <xsl:with-param name="reason" select="'The expert analysis found nothing to tell: nothing went wrong on the network.'"/>
        </xsl:call-template>
      </xsl:if>
    </article>
  </xsl:template>

  <?include empty?>
  <?include expert-head?>
  <?include expert-table?>
</xsl:stylesheet>
