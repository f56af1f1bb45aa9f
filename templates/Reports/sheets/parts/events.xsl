  <!-- The events of the EventCounts that is the current node, those of each severity together. -->
  <xsl:template name="events">
    <section class="part">
      <div class="part-head">
        <h2>Events by severity</h2>
      </div>
      <table class="grid">
        <caption>Expert events</caption>
        <thead>
          <tr>
            <th data-kind="severity">Severity</th>
            <xsl:for-each select="Stats[1]/*[not(self::EVENT_NAME or self::EVENT_SEVERITY_MAX)]">
              <xsl:call-template name="expert-head"/>
            </xsl:for-each>
          </tr>
        </thead>
        <tbody>
          <xsl:for-each select="Stats[EVENT_SEVERITY_MAX/@Value = 'Severe']">
            <xsl:call-template name="event"/>
          </xsl:for-each>
          <xsl:for-each select="Stats[EVENT_SEVERITY_MAX/@Value = 'Major']">
            <xsl:call-template name="event"/>
          </xsl:for-each>
          <xsl:for-each select="Stats[EVENT_SEVERITY_MAX/@Value = 'Minor']">
            <xsl:call-template name="event"/>
          </xsl:for-each>
          <xsl:for-each select="Stats[not(EVENT_SEVERITY_MAX/@Value = 'Severe' or EVENT_SEVERITY_MAX/@Value = 'Major' or EVENT_SEVERITY_MAX/@Value = 'Minor')]">
            <xsl:call-template name="event"/>
          </xsl:for-each>
        </tbody>
      </table>
    </section>
  </xsl:template>

  <xsl:template name="event">
    <tr>
      <td><xsl:value-of select="EVENT_SEVERITY_MAX/@Value"/></td>
      <xsl:for-each select="*[not(self::EVENT_NAME or self::EVENT_SEVERITY_MAX)]">
        <td><xsl:value-of select="@Value"/></td>
      </xsl:for-each>
    </tr>
  </xsl:template>

