# Backup every "2 days" and no backup date stored: the exit never asks. The store lacks one table, which
# a run of lotwright-convert would add.
store="$XDG_DATA_HOME/lotwright/lw.mdb"
mkdir -p "$XDG_DATA_HOME/lotwright" "$XDG_CONFIG_HOME/lotwright"
cp "$LW_BINARY_DIR/share/lw.mdb" "$store"
sqlite3 "$store" "UPDATE setup SET Userid = 'tester', Password = 'secret', Name = 'Test User'; UPDATE seller SET username = 'tester'"
sqlite3 "$store" "DROP TABLE bulkstatuslog"
printf '[Lotwright/Database]\nBackupevery=1\n' > "$XDG_CONFIG_HOME/lotwright/settings.ini"
