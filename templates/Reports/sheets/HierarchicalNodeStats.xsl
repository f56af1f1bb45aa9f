<?xml version="1.0" encoding="utf-8"?>
<!-- The addresses that were seen behind each physical address, in groups or, in long lists, without. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" encoding="utf-8"/>

  <xsl:template match="/">
    <article class="view">
      <xsl:for-each select="HierarchicalNodeStatistics">
        <header class="view-head">
          <h1>Hierarchy of nodes</h1>
          <p><xsl:value-of select="Summary/TimeSaved"/></p>
        </header>
        <dl class="cards">
          <xsl:for-each select="Summary"><xsl:call-template name="totals"/></xsl:for-each>
        </dl>
        <xsl:for-each select="Stats">
          <section class="part">
            <div class="part-head">
              <h2>Addresses behind physical addresses<span class="count"><xsl:value-of select="count(.//NodeStat)"/></span></h2>
            </div>
            <table class="grid">
              <caption>Hierarchy of nodes</caption>
              <thead>
                <tr>
                  <th data-kind="address">Physical address</th>
                  <th data-kind="address">Address</th>
                  <th data-kind="bytes" data-sorted="">Bytes</th>
                  <th data-kind="number">Packets</th>
                  <th data-kind="bytes">Bytes sent</th>
                  <th data-kind="ratio">Share sent</th>
                  <th data-kind="bytes">Bytes received</th>
                  <th data-kind="ratio">Share received</th>
                  <th data-kind="number">Packets sent</th>
                  <th data-kind="number">Packets received</th>
                </tr>
              </thead>
              <xsl:choose>
                <xsl:when test="NodeStat">
                  <tbody>
                    <xsl:for-each select="NodeStat">
                      <tr>
                        <th scope="row"><xsl:value-of select="PhysicalAddress"/></th>
                        <td><xsl:value-of select="LogicalAddress"/></td>
                        <td><xsl:value-of select="Bytes"/></td>
                        <td><xsl:value-of select="Packets"/></td>
                        <td><xsl:value-of select="BytesSent"/></td>
                        <td><xsl:value-of select="PctBytesSent"/></td>
                        <td><xsl:value-of select="BytesReceived"/></td>
                        <td><xsl:value-of select="PctBytesReceived"/></td>
                        <td><xsl:value-of select="PacketsSent"/></td>
                        <td><xsl:value-of select="PacketsReceived"/></td>
                      </tr>
                    </xsl:for-each>
                  </tbody>
                </xsl:when>
                <xsl:otherwise>
                  <tbody>
                    <xsl:for-each select="PhysicalAddress">
                      <tr class="group">
                        <th scope="rowgroup"><xsl:value-of select="@Address"/></th>
                        <td></td>
                        <td><xsl:value-of select="sum(NodeStat/Bytes)"/></td>
                        <td><xsl:value-of select="sum(NodeStat/Packets)"/></td>
                        <td><xsl:value-of select="sum(NodeStat/BytesSent)"/></td>
                        <td></td>
                        <td><xsl:value-of select="sum(NodeStat/BytesReceived)"/></td>
                        <td></td>
                        <td><xsl:value-of select="sum(NodeStat/PacketsSent)"/></td>
                        <td><xsl:value-of select="sum(NodeStat/PacketsReceived)"/></td>
                      </tr>
                      <xsl:for-each select="NodeStat">
                        <tr>
                          <td></td>
                          <td><xsl:value-of select="LogicalAddress"/></td>
                          <td><xsl:value-of select="Bytes"/></td>
                          <td><xsl:value-of select="Packets"/></td>
                          <td><xsl:value-of select="BytesSent"/></td>
                          <td><xsl:value-of select="PctBytesSent"/></td>
                          <td><xsl:value-of select="BytesReceived"/></td>
                          <td><xsl:value-of select="PctBytesReceived"/></td>
                          <td><xsl:value-of select="PacketsSent"/></td>
                          <td><xsl:value-of select="PacketsReceived"/></td>
                        </tr>
                      </xsl:for-each>
                    </xsl:for-each>
                  </tbody>
                </xsl:otherwise>
              </xsl:choose>
            </table>
          </section>
        </xsl:for-each>
      </xsl:for-each>
      <xsl:if test="not(HierarchicalNodeStatistics/Stats)">
        <xsl:call-template name="empty">
          <xsl:with-param name="title" select="'No hierarchy'"/>
          <xsl:with-param name="reason" select="'No address was seen behind a physical one.'"/>
        </xsl:call-template>
      </xsl:if>
    </article>
  </xsl:template>

  <?include cards?>
  <?include empty?>
</xsl:stylesheet>
