# A store whose only user id is jan.
store="$XDG_DATA_HOME/lotwright/lw.mdb"
mkdir -p "$XDG_DATA_HOME/lotwright"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
sqlite3 "$store" "UPDATE setup SET Userid = 'jan', Password = 'secret', Name = 'Jan Smit'; UPDATE seller SET username = 'jan'"
