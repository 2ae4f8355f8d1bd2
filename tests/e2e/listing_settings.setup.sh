# Alice's listing settings as an earlier version left them: site id 1, the private upgrade without the
# home page one, PayPal and money orders, insurance "2", a tax rate and an insurance fee, no gift icon.
. "$LW_E2E_DIR/listing_store.sh"
sqlite3 "$store" "UPDATE setup SET countrylocation = '1', private = 'y', catfeatured = 'n',
  payoption = 'paypal,mo', insurance_option = '2', taxrate = 5, insurancefee = '2.00', gifticon = NULL,
  shipto = 'Homeplusregions', shipregion = 'canada,asia'"
