# A store with two user ids, jan (first) and piet, and one auction of piet's on each side.
store="$XDG_DATA_HOME/lotwright/lw.mdb"
mkdir -p "$XDG_DATA_HOME/lotwright"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
sqlite3 "$store" "UPDATE setup SET Userid = 'jan', Password = 'secret', Name = 'Jan Smit'; UPDATE seller SET username = 'jan'"
sqlite3 "$store" "INSERT INTO setup (Userid, Password, Name, countrylocation, mailconnecttype, taxrate) VALUES ('piet', 'pw', 'Piet Bos', '0', 0, 0)"
sqlite3 "$store" "INSERT INTO seller (Item, Title, username, site) VALUES ('1001', 'Lamp', 'piet', 'eBay')"
sqlite3 "$store" "INSERT INTO bidder (Item, Title, username, site) VALUES ('2002', 'Vase', 'piet', 'eBay')"
