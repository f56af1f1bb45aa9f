  <!-- The conversations with most bytes, from the ConversationStatistics that is the current node. -->
  <xsl:template name="busiest">
    <xsl:if test="Stats/Type/*">
      <section class="part">
        <div class="part-head"><h2>Busiest conversations</h2></div>
        <table class="plain">
          <caption>Busiest conversations</caption>
          <thead>
            <tr>
              <th data-kind="address">From</th>
              <th data-kind="address">To</th>
              <th data-kind="text">Protocol</th>
              <th data-kind="bytes" data-bar="">Bytes</th>
            </tr>
          </thead>
          <tbody>
            <xsl:for-each select="Stats/Type//ConversationStat">
              <xsl:sort select="Bytes" data-type="number" order="descending"/>
              <xsl:if test="position() &lt;= 10">
                <tr>
                  <th scope="row"><xsl:value-of select="SourceAddress | parent::SourceAddress/@Name"/></th>
                  <td><xsl:value-of select="DestinationAddress"/></td>
                  <td><xsl:value-of select="Protocol"/></td>
                  <td><xsl:value-of select="Bytes"/></td>
                </tr>
              </xsl:if>
            </xsl:for-each>
          </tbody>
        </table>
      </section>
    </xsl:if>
  </xsl:template>

