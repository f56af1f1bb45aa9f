<?xml version="1.0" encoding="utf-8"?>
<!-- The graphs of the engine, the latest picture of each first. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" encoding="utf-8"/>

  <xsl:template match="/">
    <article class="view">
      <header class="view-head"><h1>Graphs</h1></header>
      <div class="pictures">
        <xsl:for-each select="GraphCollection/Graph">
          <figure class="part picture">
            <figcaption><xsl:value-of select="@Name"/></figcaption>
            <img data-picture="{Image[last()]/@src}" alt="Graph: {@Name}"/>
            <xsl:if test="Image[@src != ../Image[last()]/@src]">
              <details class="earlier">
                <summary>Earlier reports</summary>
                <xsl:for-each select="Image[@src != ../Image[last()]/@src][not(@src = preceding-sibling::Image/@src)]">
                  <img data-picture="{@src}" alt="Earlier graph: {../@Name}"/>
                </xsl:for-each>
              </details>
            </xsl:if>
          </figure>
        </xsl:for-each>
      </div>
      <xsl:if test="not(GraphCollection/Graph)">
        <xsl:call-template name="empty">
          <xsl:with-param name="title" select="'No graphs'"/>
          <xsl:with-param name="reason" select="'The engine had no graphs when this report was made.'"/>
        </xsl:call-template>
      </xsl:if>
    </article>
  </xsl:template>

  <?include empty?>
</xsl:stylesheet>
