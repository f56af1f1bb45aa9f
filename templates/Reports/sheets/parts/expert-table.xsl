  <!-- A table that the engine made, the current node, with all of its columns. -->
  <xsl:template name="expert-table">
    <xsl:param name="title"/>
    <section class="part">
      <div class="part-head">
        <h2><xsl:value-of select="$title"/><span class="count"><xsl:value-of select="count(Stats)"/></span></h2>
      </div>
      <table class="grid">
        <caption><xsl:value-of select="$title"/></caption>
        <thead>
          <tr>
            <xsl:for-each select="Stats[1]/*"><xsl:call-template name="expert-head"/></xsl:for-each>
          </tr>
        </thead>
        <tbody>
          <xsl:for-each select="Stats">
            <tr>
              <xsl:for-each select="*"><td><xsl:value-of select="@Value"/></td></xsl:for-each>
            </tr>
          </xsl:for-each>
        </tbody>
      </table>
    </section>
  </xsl:template>

