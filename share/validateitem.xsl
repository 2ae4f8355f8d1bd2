<?xml version="1.0" encoding="UTF-8"?>
<!-- The Validation page: what the site says of an auction before it is listed. A reply with errors
     shows each error's code and message; one without shows the listing's times and its fees. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:output method="html" encoding="UTF-8" indent="yes"/>

  <xsl:template match="/">
    <html>
      <head><title>Auction Validation</title></head>
      <body>
        <xsl:for-each select="eBay/Item/url[normalize-space(.) != '']">
          <p><img src="{normalize-space(.)}" alt="eBay"/></p>
        </xsl:for-each>
        <xsl:choose>
          <xsl:when test="eBay/Errors">
            <h2>Errors</h2>
            <table border="1">
              <tr><th>Code</th><th>Message</th></tr>
              <xsl:for-each select="eBay/Errors/Error">
                <tr>
                  <td><xsl:value-of select="Code"/></td>
                  <td>
                    <xsl:choose>
                      <xsl:when test="normalize-space(LongMessage) != ''"><xsl:value-of select="LongMessage"/></xsl:when>
                      <xsl:otherwise><xsl:value-of select="ShortMessage"/></xsl:otherwise>
                    </xsl:choose>
                  </td>
                </tr>
              </xsl:for-each>
            </table>
          </xsl:when>
          <xsl:otherwise>
            <h2>Listing Fees</h2>
            <table border="1">
              <tr><td>Start</td><td><xsl:value-of select="eBay/Item/StartTime"/></td></tr>
              <tr><td>End</td><td><xsl:value-of select="eBay/Item/EndTime"/></td></tr>
            </table>
            <table border="1">
              <tr><th>Fee</th><th>Amount</th></tr>
              <xsl:for-each select="eBay/Item/Fees/*">
                <tr>
                  <td><xsl:apply-templates select="." mode="name"/></td>
                  <td><xsl:value-of select="."/></td>
                </tr>
              </xsl:for-each>
            </table>
          </xsl:otherwise>
        </xsl:choose>
      </body>
    </html>
  </xsl:template>

  <!-- Fee names as a seller reads them; a fee the site adds later shows under its own name. -->
  <xsl:template match="*" mode="name"><xsl:value-of select="local-name()"/></xsl:template>
  <xsl:template match="AuctionLengthFee" mode="name">Auction length</xsl:template>
  <xsl:template match="BoldFee" mode="name">Boldface</xsl:template>
  <xsl:template match="BuyItNowFee" mode="name">Buy It Now</xsl:template>
  <xsl:template match="CategoryFeaturedFee" mode="name">Home page featured</xsl:template>
  <xsl:template match="FeaturedFee" mode="name">Featured plus</xsl:template>
  <xsl:template match="FeaturedGalleryFee" mode="name">Featured in gallery</xsl:template>
  <xsl:template match="FixedPriceDurationFee" mode="name">Fixed price duration</xsl:template>
  <xsl:template match="GalleryFee" mode="name">Gallery</xsl:template>
  <xsl:template match="GiftIconFee" mode="name">Gift services</xsl:template>
  <xsl:template match="HighLightFee" mode="name">Highlight</xsl:template>
  <xsl:template match="InsertionFee" mode="name">Insertion</xsl:template>
  <xsl:template match="ListingDesignerFee" mode="name">Listing designer</xsl:template>
  <xsl:template match="ListingFee" mode="name">Total listing fees</xsl:template>
  <xsl:template match="PhotoDisplayFee" mode="name">Picture display</xsl:template>
  <xsl:template match="PhotoFee" mode="name">Picture</xsl:template>
  <xsl:template match="ReserveFee" mode="name">Reserve price</xsl:template>
  <xsl:template match="SchedulingFee" mode="name">Scheduled listing</xsl:template>
</xsl:stylesheet>
