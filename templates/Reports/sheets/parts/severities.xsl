  <!-- How many events of each severity there were, from the EventCounts that is the current node. -->
  <xsl:template name="severities">
    <dl class="cards">
      <xsl:call-template name="severity"><xsl:with-param name="name" select="'Severe'"/></xsl:call-template>
      <xsl:call-template name="severity"><xsl:with-param name="name" select="'Major'"/></xsl:call-template>
      <xsl:call-template name="severity"><xsl:with-param name="name" select="'Minor'"/></xsl:call-template>
      <xsl:call-template name="severity"><xsl:with-param name="name" select="'Informational'"/></xsl:call-template>
    </dl>
  </xsl:template>

  <xsl:template name="severity">
    <xsl:param name="name"/>
    <xsl:variable name="kinds" select="count(Stats[EVENT_SEVERITY_MAX/@Value = $name])"/>
    <div class="card">
      <xsl:choose>
        <xsl:when test="$kinds = 0"><xsl:attribute name="class">card quiet</xsl:attribute></xsl:when>
        <xsl:when test="$name = 'Severe'"><xsl:attribute name="class">card severe</xsl:attribute></xsl:when>
        <xsl:when test="$name = 'Major'"><xsl:attribute name="class">card major</xsl:attribute></xsl:when>
        <xsl:when test="$name = 'Minor'"><xsl:attribute name="class">card minor</xsl:attribute></xsl:when>
        <xsl:otherwise><xsl:attribute name="class">card informational</xsl:attribute></xsl:otherwise>
      </xsl:choose>
      <dt><xsl:value-of select="$name"/></dt>
      <dd data-figure="number">
        <xsl:value-of select="sum(Stats[EVENT_SEVERITY_MAX/@Value = $name]/PROBLEM_COUNT/@Value)"/>
      </dd>
      <dd class="note">
        <xsl:choose>
          <xsl:when test="$kinds = 0">none</xsl:when>
          <xsl:when test="$kinds = 1">of one kind</xsl:when>
          <xsl:otherwise>of <xsl:value-of select="$kinds"/> kinds</xsl:otherwise>
        </xsl:choose>
      </dd>
    </div>
  </xsl:template>

