  <!-- Packets of all rows below the current node by the rates at which they were sent, as a chart. -->
  <xsl:template name="data-rates">
    <xsl:if test="*/DataRate[contains(@Name, 'Packets')][@Value &gt; 0]">
      <section class="part">
        <div class="part-head"><h2>Data rates</h2><p>in Mbit/s</p></div>
        <table class="chart-columns">
          <caption>Packets by data rate in Mbit/s</caption>
          <thead><tr><th scope="col">Rate</th><th scope="col">Packets</th></tr></thead>
          <tbody>
            <xsl:for-each select="*[DataRate][1]/DataRate[contains(@Name, 'Packets')]">
              <xsl:variable name="rate" select="@Name"/>
              <xsl:if test="../../*/DataRate[@Name = $rate][@Value &gt; 0]">
                <tr>
                  <th scope="row"><xsl:value-of select="substring-before(@Name, ' ')"/></th>
                  <td><xsl:value-of select="sum(../../*/DataRate[@Name = $rate]/@Value)"/></td>
                </tr>
              </xsl:if>
            </xsl:for-each>
          </tbody>
        </table>
      </section>
    </xsl:if>
  </xsl:template>

