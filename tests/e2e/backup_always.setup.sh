# The store lacks one table, so that a run of lotwright-convert shows in the next start: it adds it.
store="$XDG_DATA_HOME/lotwright/lw.mdb"
mkdir -p "$XDG_DATA_HOME/lotwright"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
sqlite3 "$store" "UPDATE setup SET Userid = 'tester', Password = 'secret', Name = 'Test User'; UPDATE seller SET username = 'tester'"
sqlite3 "$store" "DROP TABLE bulkstatuslog"
