. "$LW_E2E_DIR/listing_api_recorded.sh"
show_log
echo "logo request:"
cat "$api/001-GetLogoURL.xml"; echo
echo "headers of the validation:"
cat "$api/002-VerifyAddItem.headers"
compare_request "$api/002-VerifyAddItem.xml" "$LW_E2E_DIR/api/expected/listing_validate.xml"
echo "files in the database folder:"
cd "$XDG_DATA_HOME/lotwright" && ls | grep -E "\.(xml|htm|xsl)$"
head -c -2 sellitem.xml | cmp -s - "$api/002-VerifyAddItem.xml" && echo "sellitem.xml: the request as sent, and a line end"
echo "validateitem.xml, the reply with the stylesheet and the logo:"
grep -o "^<?xml[^>]*><?xml-stylesheet[^>]*>" validateitem.xml
grep -o "<EndTime>.*</url>" validateitem.xml
