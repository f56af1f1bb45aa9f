  <!-- The head of a column that the engine named, the current node; what it holds follows from its element's name. -->
  <xsl:template name="expert-head">
    <th>
      <xsl:attribute name="data-kind">
        <xsl:choose>
          <xsl:when test="self::EVENT_SEVERITY_MAX">severity</xsl:when>
          <xsl:when test="contains(name(), 'ADDRESS')">address</xsl:when>
          <xsl:when test="contains(name(), '_PORT') or self::FLOW_ID or self::EVENT_NUMBER">identifier</xsl:when>
          <xsl:when test="self::BYTES or self::CLIENT_BYTES or self::SERVER_BYTES">bytes</xsl:when>
          <xsl:when test="self::FIRST_PACKET or self::LAST_PACKET">time</xsl:when>
          <xsl:when test="self::FIRST_TIME or self::LAST_TIME or self::EVENT_TIME or self::START_TIME or self::FINISH_TIME">time</xsl:when>
          <xsl:when test="self::DURATION">duration</xsl:when>
          <xsl:when test="starts-with(name(), 'MOS_')">mos</xsl:when>
          <xsl:when test="starts-with(name(), 'R_')">rfactor</xsl:when>
          <xsl:when test="self::PACKET_LOSS">percent-value</xsl:when>
          <xsl:when test="self::PROTOCOL or self::APPLICATION or self::NAME or self::CAUSE or self::ADVICE or self::DETAIL">text</xsl:when>
          <xsl:otherwise>auto</xsl:otherwise>
        </xsl:choose>
      </xsl:attribute>
      <xsl:value-of select="@Name"/>
    </th>
  </xsl:template>

