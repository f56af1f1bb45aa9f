  <!-- Packets and bytes of the reports of a history, the root that is the current node, as lines. -->
  <xsl:template name="history-totals">
    <xsl:if test="count(History) &gt; 1">
      <div class="pair">
        <section class="part">
          <div class="part-head"><h2>Packets of each report</h2></div>
          <table class="chart-line">
            <caption>Packets of each report</caption>
            <thead><tr><th scope="col">Report</th><th scope="col">Packets</th></tr></thead>
            <tbody>
              <xsl:for-each select="History/Summary">
                <tr>
                  <th scope="row"><xsl:value-of select="TimeSaved"/></th>
                  <td><xsl:value-of select="Packets"/></td>
                </tr>
              </xsl:for-each>
            </tbody>
          </table>
        </section>
        <section class="part">
          <div class="part-head"><h2>Bytes of each report</h2></div>
          <table class="chart-line" data-unit="bytes">
            <caption>Bytes of each report</caption>
            <thead><tr><th scope="col">Report</th><th scope="col">Bytes</th></tr></thead>
            <tbody>
              <xsl:for-each select="History/Summary">
                <tr>
                  <th scope="row"><xsl:value-of select="TimeSaved"/></th>
                  <td><xsl:value-of select="Bytes"/></td>
                </tr>
              </xsl:for-each>
            </tbody>
          </table>
        </section>
      </div>
    </xsl:if>
  </xsl:template>

