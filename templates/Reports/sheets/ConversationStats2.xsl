<?xml version="1.0" encoding="utf-8"?>
<!-- Conversations without groups: lists of more than 5000. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" encoding="utf-8"/>

  <xsl:template match="/">
    <article class="view">
      <xsl:for-each select="ConversationStatistics">
        <xsl:call-template name="conversation-head"/>
        <xsl:for-each select="Stats">
          <xsl:for-each select="Type[ConversationStat]">
            <xsl:call-template name="flat-conversations"/>
          </xsl:for-each>
          <xsl:call-template name="types-without-rows"/>
        </xsl:for-each>
      </xsl:for-each>
      <xsl:call-template name="no-conversations"/>
    </article>
  </xsl:template>

  <?include cards?>
  <?include empty?>
  <?include no-rows?>
  <?include no-conversations?>
  <?include conversation-head?>
  <?include flat-conversations?>
</xsl:stylesheet>
