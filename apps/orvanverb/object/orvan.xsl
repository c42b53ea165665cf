<?xml version="1.0" encoding="utf-8"?>
<!-- Turns the reference file of an object, NAME.ref.xml, into a page: attributes by their category, then messages. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
<xsl:output method="html" encoding="utf-8" doctype-system="about:legacy-compat"/>

<xsl:key name="category" match="attribute" use="category"/>

<xsl:template match="/external">
  <html lang="en">
    <head>
      <meta name="viewport" content="width=device-width, initial-scale=1"/>
      <title><xsl:value-of select="name"/></title>
      <style>
        :root { color-scheme: light dark; }
        body { font: 16px/1.5 system-ui, sans-serif; max-width: 60rem; margin: 2rem auto; padding: 0 1rem; }
        h1 { margin-bottom: 0; }
        h2 { margin: 2rem 0 0.5rem; text-transform: capitalize; }
        table { border-collapse: collapse; width: 100%; }
        th, td { text-align: left; vertical-align: top; padding: 0.3rem 0.8rem 0.3rem 0; border-bottom: 1px solid #8884; }
        th { font-weight: 600; }
        code { font: 0.95em ui-monospace, monospace; white-space: nowrap; }
        .quiet { opacity: 0.7; }
        .methods { columns: 12rem; padding-left: 1.2rem; }
        @media (max-width: 40rem) { table { display: block; overflow-x: auto; } }
      </style>
    </head>
    <body>
      <h1><code><xsl:value-of select="name"/></code></h1>
      <p><xsl:value-of select="brief"/></p>
      <p class="quiet">Version <xsl:value-of select="version"/></p>

      <!-- One table for each category: at the first attribute that has it. -->
      <xsl:for-each select="attribute[generate-id() = generate-id(key('category', category)[1])]">
        <xsl:sort select="category"/>
        <h2>
          <xsl:choose>
            <xsl:when test="string(category)"><xsl:value-of select="category"/></xsl:when>
            <xsl:otherwise>size and positions</xsl:otherwise>
          </xsl:choose>
        </h2>
        <table>
          <thead><tr><th>Attribute</th><th>What it is</th><th>Type</th><th>Default</th><th>Range</th><th>Unit</th></tr></thead>
          <tbody><xsl:apply-templates select="key('category', category)"/></tbody>
        </table>
      </xsl:for-each>

      <h2>Messages</h2>
      <ul class="methods">
        <xsl:for-each select="method"><li><code><xsl:value-of select="name"/></code></li></xsl:for-each>
      </ul>
      <p class="quiet"><xsl:value-of select="copyright"/></p>
    </body>
  </html>
</xsl:template>

<xsl:template match="attribute">
  <tr id="{name}">
    <td><code><xsl:value-of select="name"/></code></td>
    <td>
      <xsl:value-of select="brief"/>
      <xsl:if test="string(description)"><br/><span class="quiet"><xsl:value-of select="description"/></span></xsl:if>
      <xsl:if test="normalize-space(enum)"><br/><span class="quiet">One of <xsl:value-of select="normalize-space(enum)"/></span></xsl:if>
    </td>
    <td><xsl:value-of select="type"/></td>
    <td><xsl:value-of select="default"/></td>
    <td><xsl:if test="string(min)"><xsl:value-of select="min"/> to <xsl:value-of select="max"/></xsl:if></td>
    <td><xsl:value-of select="units"/></td>
  </tr>
</xsl:template>

</xsl:stylesheet>
