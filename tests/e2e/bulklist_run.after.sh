. "$LW_E2E_DIR/listing_api_recorded.sh"
show_log
# Each posting is the request its validation left, verb changed: the category typed in the bulk view
# after the queuing doesn't reach the site.
for pair in "007 002" "008 006"; do
  set -- $pair
  sed 's#<Verb>VerifyAddItem</Verb>#<Verb>AddItem</Verb>#' "$api/$2-VerifyAddItem.xml" | cmp -s - "$api/$1-AddItem.xml" &&
    echo "$1-AddItem.xml is $2-VerifyAddItem.xml with the verb AddItem"
  grep -aE "^<(Title|Category)>" "$api/$1-AddItem.xml" | tr -d '\r'
done
