. "$LW_E2E_DIR/listing_api_recorded.sh"
show_log
for n in 002 004; do
  echo "request $n:"
  grep -aE "^<(Title|Category2|Quantity|Type|ShippingOption|ShipTo[A-Za-z]*|Location)>" "$api/$n-VerifyAddItem.xml" | tr -d '\r'
done
echo "validateitem.xml is the reply as it came, and a line end:"
head -c -2 "$XDG_DATA_HOME/lotwright/validateitem.xml" | cmp - "$LW_E2E_DIR/api/VerifyAddItem-plain.xml" && echo same
