. "$LW_E2E_DIR/listing_api_recorded.sh"
show_log
# The posting is the validated request with its verb changed and nothing else, UUID and all.
sed 's#<Verb>VerifyAddItem</Verb>#<Verb>AddItem</Verb>#' "$api/002-VerifyAddItem.xml" | cmp -s - "$api/003-AddItem.xml" &&
  echo "003-AddItem.xml is 002-VerifyAddItem.xml with the verb AddItem"
grep -c "<Verb>" "$api/003-AddItem.xml"
echo "verify_auction.xml:"
grep -o "^<?xml[^>]*><?xml-stylesheet[^>]*>" "$XDG_DATA_HOME/lotwright/verify_auction.xml"
